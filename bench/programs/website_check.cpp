// website_check (check|exchange|handshake) HOST ADDRESS PORT BUNDLE COUNT - makes COUNT of them, one after the
// other, and prints the CPU time of this whole process for one, in microseconds. The authorities are read before.
//
// check: a website check as the program makes it, all of it but the system's name look-up, which answers from a
// script. handshake: connecting and a TLS handshake, no more. exchange: the same with a request and its answer.
#include "CPUTime.h"
#include "fakes/ScriptedResolver.h"
#include "fakes/VirtualClock.h"
#include "http/CurlTransport.h"
#include "probing/WebsiteChecker.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Spawn.h"
#include "tasks/ThreadPool.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;
using namespace std::chrono_literals;
using bench::cpuTime;
using bench::Microseconds;

struct Target {
    std::string host;
    std::string address;
    std::string port;
    std::string bundle;
};

/// The parts of a check, put together as the program puts them together.
class Checks {
public:
    explicit Checks(const Target& target)
        : site_{"site-1", "Site", "https://" + target.host + ":" + target.port + "/", true},
          transport_({target.bundle}) {
        names_->answer(target.host, {target.address});
    }

    void make() {
        std::promise<CheckRecord> ended;
        auto task = told(checker_.checkWebsite(site_, 15s), &ended);
        spawn(checkExecutor_, std::move(task));
        const CheckRecord record = ended.get_future().get();
        if (!record.up) throw std::runtime_error(record.error.value_or("The site is not up."));
    }

private:
    static Task<> told(Task<CheckRecord> check, std::promise<CheckRecord>* ended) {
        CheckRecord record = co_await std::move(check);
        ended->set_value(std::move(record));
    }

    SiteDefinition site_;
    VirtualClock clock_;
    ThreadPool pool_{12};
    ThreadPool resolverPool_{12};
    SerialExecutor checkExecutor_{pool_};
    std::shared_ptr<ScriptedResolver> names_ = std::make_shared<ScriptedResolver>();
    std::stop_source shutdown_;
    BackgroundResolver resolver_{resolverPool_, names_, clock_, shutdown_.get_token()};
    CurlTransport transport_;
    FreshHTTPClient client_{FreshHTTPServices{checkExecutor_, clock_, pool_, transport_, resolver_}};
    WebsiteChecker checker_{client_, resolver_, clock_,
        [] { return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()); }};
};

int connectTo(const Target& target) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(target.port)));
    ::inet_pton(AF_INET, target.address.c_str(), &address.sin_addr);
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("The server could not be reached.");
    return descriptor;
}

void shakeHands(const Target& target, X509_STORE* trusted, bool exchanges) {
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
    SSL_CTX_set1_cert_store(context.get(), trusted);
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    const std::unique_ptr<SSL, decltype(&SSL_free)> session(SSL_new(context.get()), SSL_free);
    const int descriptor = connectTo(target);
    SSL_set_fd(session.get(), descriptor);
    std::string name = target.host;
    SSL_ctrl(session.get(), SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name, name.data());
    SSL_set1_host(session.get(), target.host.c_str());
    bool done = SSL_connect(session.get()) == 1;
    if (done && exchanges) {
        const std::string request = "GET / HTTP/1.1\r\nHost: " + target.host + "\r\n\r\n";
        std::array<char, 4096> answer{};
        done = SSL_write(session.get(), request.data(), static_cast<int>(request.size())) > 0 &&
               SSL_read(session.get(), answer.data(), static_cast<int>(answer.size())) > 0;
    }
    if (!done) throw std::runtime_error("No handshake.");
    SSL_shutdown(session.get());
    ::close(descriptor);
}

double measured(int count, const std::function<void()>& make) {
    for (int warmingUp = 0; warmingUp < 3; ++warmingUp)
        make();
    const Microseconds before = cpuTime();
    for (int index = 0; index < count; ++index)
        make();
    return (cpuTime() - before).count() / count;
}

double measured(const std::string& what, const Target& target, int count) {
    if (what == "check") {
        Checks checks(target);
        return measured(count, [&] { checks.make(); });
    }
    TrustStore trust({target.bundle});
    return measured(count, [&] { shakeHands(target, trust.current().get(), what == "exchange"); });
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 7) {
        std::cerr << "usage: website_check (check|exchange|handshake) HOST ADDRESS PORT BUNDLE COUNT\n";
        return EXIT_FAILURE;
    }
    try {
        std::cout << measured(argv[1], {argv[2], argv[3], argv[4], argv[5]}, std::atoi(argv[6])) << "\n";
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
