// tls_server ADDRESS PORT HOST BUNDLE [FILE] - writes to BUNDLE what the machine trusts plus its own authority,
// says so, and answers every request for HOST with 200, and with FILE as JSON, until it is killed. One connection
// after the other.
#include "http/TrustStore.h"
#include "http/support/TestAuthority.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace kestrin;

std::string systemAuthorities() {
    for (const auto& bundle : TrustStore::systemBundles()) {
        std::ifstream file(bundle);
        if (file) return std::string(std::istreambuf_iterator<char>(file), {});
    }
    return {};
}

int listenOn(const std::string& text, std::uint16_t port) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    const int on = 1;
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::inet_pton(AF_INET, text.c_str(), &address.sin_addr) != 1 ||
        ::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || ::listen(listener, 64) != 0)
        return -1;
    return listener;
}

std::string answerWith(const char* file) {
    if (file == nullptr) return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 0\r\n\r\n";
    std::ifstream stream(file);
    const std::string body(std::istreambuf_iterator<char>(stream), {});
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

void serve(SSL_CTX* context, int descriptor, std::string_view answer) {
    const std::unique_ptr<SSL, decltype(&SSL_free)> session(SSL_new(context), SSL_free);
    SSL_set_fd(session.get(), descriptor);
    if (SSL_accept(session.get()) == 1) {
        std::array<char, 4096> bytes{};
        std::string request;
        for (int count = 0; (count = SSL_read(session.get(), bytes.data(), bytes.size())) > 0;) {
            request.append(bytes.data(), static_cast<std::size_t>(count));
            if (!request.ends_with("\r\n\r\n")) continue;
            SSL_write(session.get(), answer.data(), static_cast<int>(answer.size()));
            request.clear();
        }
    }
    ERR_clear_error();
    ::close(descriptor);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5 && argc != 6) {
        std::cerr << "usage: tls_server ADDRESS PORT HOST BUNDLE [FILE]\n";
        return EXIT_FAILURE;
    }
    // A client that goes right after the handshake has not read all that was sent to it.
    std::signal(SIGPIPE, SIG_IGN);
    const test::TestAuthority authority;
    std::ofstream(argv[4]) << systemAuthorities() << authority.pem();
    const test::Identity identity = authority.issue({.names = std::string("DNS:") + argv[3]});
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    SSL_CTX_use_certificate(context.get(), identity.certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), identity.key.get());

    const std::string answer = answerWith(argc == 6 ? argv[5] : nullptr);
    const int listener = listenOn(argv[1], static_cast<std::uint16_t>(std::atoi(argv[2])));
    if (listener < 0) {
        std::cerr << "Nobody can listen on " << argv[1] << " port " << argv[2] << ".\n";
        return EXIT_FAILURE;
    }
    std::cout << "ready" << std::endl;
    for (;;) {
        const int descriptor = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) continue;
        const int on = 1;
        ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        serve(context.get(), descriptor, answer);
    }
}
