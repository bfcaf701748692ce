// website_check (check|exchange|handshake) HOST ADDRESS PORT BUNDLE COUNT - makes COUNT of them, one after the
// other, and prints the CPU time of this whole process for one, in microseconds. The authorities are read before.
//
// check: a website check as the program makes it, all of it but the system's name look-up, which answers from a
// script. handshake: connecting and a TLS handshake, no more. exchange: the same with a request and its answer.
#include "CPUTime.h"
#include "CheckParts.h"
#include "http/CurlTransport.h"
#include "probing/WebsiteChecker.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;
using namespace std::chrono_literals;
using bench::cpuTimeOfOne;
using bench::Target;

class Checks {
public:
    explicit Checks(const Target& target)
        : site_{"site-1", "Site", "https://" + target.host + ":" + target.port + "/", true}, parts_(target) {}

    void make() {
        const CheckRecord record = parts_.recordOf(checker_.checkWebsite(site_, 15s));
        if (!record.up) throw std::runtime_error(record.error.value_or("The site is not up."));
    }

private:
    SiteDefinition site_;
    bench::CheckParts parts_;
    WebsiteChecker checker_{parts_.client(), parts_.resolver(), parts_.clock(), bench::CheckParts::now};
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

double measured(const std::string& what, const Target& target, int count) {
    if (what == "check") {
        Checks checks(target);
        return cpuTimeOfOne(count, [&] { checks.make(); }).count();
    }
    TrustStore trust({target.bundle});
    const auto make = [&] { shakeHands(target, trust.current().get(), what == "exchange"); };
    return cpuTimeOfOne(count, make).count();
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
