// What one bounded HTTP request costs this machine, against the TLS handshake that it cannot do without. Both trust
// the machine's own authorities plus the one of a loopback server, and the CPU column counts the client's thread
// only.
#include "http/CurlTransport.h"
#include "http/TrustStore.h"
#include "http/support/TrustedSite.h"

#include <benchmark/benchmark.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kestrin {
namespace {

using test::BundleFile;
using test::TestAuthority;
using test::TLSServer;
using test::TrustedSite;

std::string systemAuthorities() {
    for (const auto& bundle : TrustStore::systemBundles()) {
        std::ifstream file(bundle);
        if (file) return std::string(std::istreambuf_iterator<char>(file), {});
    }
    return {};
}

struct Bench {
    TestAuthority authority;
    BundleFile bundle{systemAuthorities() + authority.pem()};
    TLSServer server{authority.issue(), test::answering("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n")};
};

void oneRequest(benchmark::State& state) {
    Bench bench;
    CurlTransport transport({bench.bundle.path()});
    auto request = TrustedSite::request(bench.server.port());
    request.headersOnly = true;
    for (auto _ : state) {
        const auto response = transport.perform(request, {});
        if (!response) state.SkipWithError(response.error().message.c_str());
    }
}
BENCHMARK(oneRequest)->Unit(benchmark::kMicrosecond)->MinTime(2);

void oneRequestThatLoadsItsOwnAuthorities(benchmark::State& state) {
    Bench bench;
    auto request = TrustedSite::request(bench.server.port());
    request.headersOnly = true;
    for (auto _ : state) {
        CurlTransport transport({bench.bundle.path()});
        benchmark::DoNotOptimize(transport.perform(request, {}));
    }
}
BENCHMARK(oneRequestThatLoadsItsOwnAuthorities)->Unit(benchmark::kMicrosecond);

void bareHandshake(benchmark::State& state) {
    Bench bench;
    TrustStore trust({bench.bundle.path()});
    const std::string question = "GET / HTTP/1.1\r\nHost: site.test\r\n\r\n";
    for (auto _ : state) {
        const auto store = trust.current();
        const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(
            SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
        SSL_CTX_set1_cert_store(context.get(), store.get());
        SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
        const std::unique_ptr<SSL, decltype(&SSL_free)> session(SSL_new(context.get()), SSL_free);
        const int descriptor = test::connectTo(bench.server.port());
        SSL_set_fd(session.get(), descriptor);
        std::string name = "site.test";
        SSL_ctrl(session.get(), SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name, name.data());
        SSL_set1_host(session.get(), "site.test");
        std::array<char, 4096> answer{};
        const bool answered = SSL_connect(session.get()) == 1 &&
                              SSL_write(session.get(), question.data(), static_cast<int>(question.size())) > 0 &&
                              SSL_read(session.get(), answer.data(), static_cast<int>(answer.size())) > 0;
        if (!answered) state.SkipWithError("no handshake");
        SSL_shutdown(session.get());
        ::close(descriptor);
    }
}
BENCHMARK(bareHandshake)->Unit(benchmark::kMicrosecond)->MinTime(2);

/// Prints the ratios under the table, since those hold when the machine's speed drifts.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            cpuTimes_[run.run_name.function_name] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override {
        for (const char* subject : {"oneRequest", "oneRequestThatLoadsItsOwnAuthorities"})
            if (cpuTimes_.contains(subject) && cpuTimes_["bareHandshake"] > 0)
                GetOutputStream() << subject
                                  << " / bareHandshake, CPU: " << cpuTimes_[subject] / cpuTimes_["bareHandshake"]
                                  << "\n";
    }

private:
    std::map<std::string, double> cpuTimes_;
};

} // namespace
} // namespace kestrin

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    kestrin::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
