#include "http/support/LoopbackServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace kestrin::test {

namespace {

sockaddr_in addressOf(const std::string& text, std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    if (inet_pton(AF_INET, text.c_str(), &address.sin_addr) != 1) throw std::runtime_error("no address: " + text);
    return address;
}

/// A peer that closes early must not end the test program; only the servers' own threads look away.
void ignoreBrokenPipes() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

} // namespace

LoopbackServer::LoopbackServer(Script script, const std::string& address, std::uint16_t port)
    : script_(std::move(script)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)),
      stop_(::eventfd(0, EFD_CLOEXEC)) {
    auto wanted = addressOf(address, port);
    const int on = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&wanted), sizeof wanted) != 0 ||
        ::listen(listener_, 64) != 0) {
        throw std::runtime_error("cannot listen on " + address);
    }
    socklen_t length = sizeof wanted;
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&wanted), &length);
    port_ = ntohs(wanted.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
    const std::uint64_t one = 1;
    static_cast<void>(!::write(stop_, &one, sizeof one));
    acceptor_.join();
    {
        const std::lock_guard guard(mutex_);
        for (const int descriptor : open_) {
            ::shutdown(descriptor, SHUT_RDWR);
        }
    }
    for (std::thread& thread : threads_) {
        thread.join();
    }
    ::close(listener_);
    ::close(stop_);
}

void LoopbackServer::accept() {
    for (;;) {
        std::array<pollfd, 2> watched{pollfd{listener_, POLLIN, 0}, pollfd{stop_, POLLIN, 0}};
        if (::poll(watched.data(), watched.size(), -1) < 0) continue;
        if (watched[1].revents != 0) return;
        const int descriptor = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0) continue;
        const int on = 1;
        ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        ++connections_;
        {
            const std::lock_guard guard(mutex_);
            open_.insert(descriptor);
        }
        threads_.emplace_back([this, descriptor] { serve(descriptor); });
    }
}

void LoopbackServer::serve(int descriptor) {
    ignoreBrokenPipes();
    script_(descriptor);
    const std::lock_guard guard(mutex_);
    open_.erase(descriptor);
    ::close(descriptor);
}

std::string readHead(int descriptor) {
    std::string head;
    char byte = 0;
    while (!head.ends_with("\r\n\r\n")) {
        if (::recv(descriptor, &byte, 1, 0) != 1) return {};
        head += byte;
    }
    return head;
}

bool writeAll(int descriptor, const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const auto count = ::send(descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

void waitForEnd(int descriptor) {
    std::array<char, 4096> bytes{};
    while (::recv(descriptor, bytes.data(), bytes.size(), 0) > 0) {
    }
}

void resetOnClose(int descriptor) {
    const linger atOnce{1, 0};
    ::setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

int connectTo(std::uint16_t port) {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto address = addressOf("127.0.0.1", port);
    if (::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

} // namespace kestrin::test
