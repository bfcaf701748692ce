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
#include <memory>
#include <string>

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
        SSL_set_tlsext_host_name(session.get(), "site.test");
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

} // namespace
} // namespace kestrin

BENCHMARK_MAIN();
