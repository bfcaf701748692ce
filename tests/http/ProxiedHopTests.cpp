#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <mutex>
#include <string>

namespace kestrin {
namespace {

using test::LoopbackServer;
using test::sentenceOf;
using test::TLSServer;
using test::TrustedSite;

/// Carries bytes both ways until one side ends.
void tunnel(int left, int right) {
    for (;;) {
        std::array<pollfd, 2> sides{pollfd{left, POLLIN, 0}, pollfd{right, POLLIN, 0}};
        if (::poll(sides.data(), sides.size(), -1) < 0) return;
        for (std::size_t i = 0; i < sides.size(); ++i) {
            if (sides[i].revents == 0) continue;
            std::array<char, 4096> bytes{};
            const auto count = ::recv(sides[i].fd, bytes.data(), bytes.size(), 0);
            if (count <= 0) return;
            if (!test::writeAll(sides[1 - i].fd, std::string(bytes.data(), static_cast<std::size_t>(count))))
                return;
        }
    }
}

/// A CONNECT proxy that leads wherever it is asked to one and the same loopback port.
class ConnectProxy {
public:
    explicit ConnectProxy(std::uint16_t target, std::string answer = "HTTP/1.1 200 Connected\r\nX-Proxy: y\r\n\r\n")
        : target_(target), answer_(std::move(answer)), server_([this](int descriptor) { serve(descriptor); }) {}

    [[nodiscard]] std::string address() const { return "127.0.0.1:" + std::to_string(server_.port()); }
    [[nodiscard]] int connections() const { return server_.connections(); }
    [[nodiscard]] std::string head() {
        const std::lock_guard guard(mutex_);
        return head_;
    }

private:
    void serve(int descriptor) {
        std::string head = test::readHead(descriptor);
        {
            const std::lock_guard guard(mutex_);
            head_ = std::move(head);
        }
        if (!test::writeAll(descriptor, answer_) || !answer_.contains(" 200 ")) return;
        const int onward = test::connectTo(target_);
        if (onward < 0) return;
        tunnel(descriptor, onward);
        ::close(onward);
    }

    std::uint16_t target_;
    std::string answer_;
    std::mutex mutex_;
    std::string head_;
    LoopbackServer server_;
};

/// What who calls a transport sends when its proxy was found.
HTTPHopRequest requestThroughProxy(const TrustedSite& site) {
    HTTPHopRequest request = site.request(443);
    request.proxyAddresses = {"127.0.0.1"};
    return request;
}

const auto reply = test::answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");

TEST(GoingThroughAProxy, asksItForTheNameAndContactsNobodyElse) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    ConnectProxy proxy(server.port());
    CurlTransport transport({site.bundle.path()}, ProxySettings(proxy.address()));
    auto request = site.request(443);
    request.addresses = {"203.0.113.7"}; // leads nowhere
    request.proxyAddresses = {"127.0.0.1"};
    request.headers = {{"User-Agent", "for the site only"}};
    EXPECT_EQ(sentenceOf(transport.perform(request, {})), "response with status 200");
    EXPECT_TRUE(proxy.head().starts_with("CONNECT site.test:443 HTTP/1.1\r\n")) << proxy.head();
    EXPECT_EQ(proxy.head().find("for the site only"), std::string::npos);
    EXPECT_EQ(proxy.connections(), 1);
}

TEST(GoingThroughAProxy, findsItWhereItsNameWasResolvedTo) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    ConnectProxy proxy(server.port());
    const std::string port = proxy.address().substr(proxy.address().find(':'));
    CurlTransport transport({site.bundle.path()}, ProxySettings("http://proxy.test" + port));
    EXPECT_EQ(transport.proxyHostFor("site.test"), "proxy.test");
    EXPECT_EQ(sentenceOf(transport.perform(requestThroughProxy(site), {})), "response with status 200");
}

TEST(GoingThroughAProxy, failsWithoutAnAddressOfIt) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    CurlTransport transport({site.bundle.path()}, ProxySettings("http://proxy.test:1"));
    EXPECT_EQ(sentenceOf(transport.perform(site.request(server.port()), {})), "The request failed.");
    EXPECT_EQ(server.connections(), 0);
}

TEST(GoingThroughAProxy, signsInAsItsUserWrote) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    ConnectProxy proxy(server.port());
    CurlTransport transport({site.bundle.path()}, ProxySettings("http://user:word@" + proxy.address()));
    EXPECT_EQ(sentenceOf(transport.perform(requestThroughProxy(site), {})), "response with status 200");
    EXPECT_NE(proxy.head().find("Proxy-Authorization: Basic dXNlcjp3b3Jk\r\n"), std::string::npos) << proxy.head();
}

TEST(GoingThroughAProxy, stillJudgesTheServersCertificate) {
    TrustedSite site;
    const TLSServer server(test::TestAuthority::selfSigned(), reply);
    const ConnectProxy proxy(server.port());
    CurlTransport transport({site.bundle.path()}, ProxySettings(proxy.address()));
    EXPECT_EQ(
        sentenceOf(transport.perform(requestThroughProxy(site), {})), "The server certificate is not trusted.");
}

TEST(GoingThroughAProxy, failsWhenItRefusesOrIsAway) {
    TrustedSite site;
    std::string address;
    {
        const ConnectProxy refusing(1, "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
        address = refusing.address();
        CurlTransport transport({site.bundle.path()}, ProxySettings(address));
        EXPECT_EQ(sentenceOf(transport.perform(requestThroughProxy(site), {})), "The request failed.");
    }
    CurlTransport transport({site.bundle.path()}, ProxySettings(address));
    EXPECT_EQ(sentenceOf(transport.perform(requestThroughProxy(site), {})), "The connection was refused.");
}

TEST(GoingThroughAProxy, neverGoesAroundOneThatMakesNoSense) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    for (const std::string& proxy : {std::string("ftp://127.0.0.1:1"), "http://" + std::string(300, 'x') + ":1"}) {
        CurlTransport transport({site.bundle.path()}, ProxySettings(proxy));
        EXPECT_EQ(sentenceOf(transport.perform(site.request(server.port()), {})), "The request failed.");
    }
    EXPECT_EQ(server.connections(), 0);
}

TEST(GoingThroughAProxy, leavesExceptionsToADirectConnection) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    const ConnectProxy proxy(server.port());
    CurlTransport transport({site.bundle.path()}, ProxySettings(proxy.address(), ProxyExceptions("site.test")));
    EXPECT_EQ(transport.proxyHostFor("site.test"), std::nullopt);
    EXPECT_EQ(sentenceOf(transport.perform(site.request(server.port()), {})), "response with status 200");
    EXPECT_EQ(proxy.connections(), 0);
}

TEST(GoingThroughAProxy, isDecidedWithoutAnotherLookAtTheEnvironment) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), reply);
    const ConnectProxy proxy(server.port());
    ::setenv("https_proxy", proxy.address().c_str(), 1);
    EXPECT_EQ(sentenceOf(site.perform(site.request(server.port()))), "response with status 200");
    ::unsetenv("https_proxy");
    EXPECT_EQ(proxy.connections(), 0);
}

} // namespace
} // namespace kestrin
