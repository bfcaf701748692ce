#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrin {
namespace {

using test::sentenceOf;
using test::TLSConnection;
using test::TLSServer;
using test::TrustedSite;
using namespace std::chrono_literals;

/// A server that keeps the head of the last request it saw.
class RecordingServer {
public:
    explicit RecordingServer(const TrustedSite& site, const std::string& names = "DNS:site.test")
        : server_(site.authority.issue({.names = names}), [this](TLSConnection& connection) {
              std::string head = connection.readHead();
              {
                  const std::lock_guard guard(mutex_);
                  head_ = std::move(head);
              }
              connection.write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
              connection.waitForEnd();
          }) {}

    [[nodiscard]] std::uint16_t port() const { return server_.port(); }
    [[nodiscard]] int connections() const { return server_.connections(); }
    [[nodiscard]] std::string head() {
        const std::lock_guard guard(mutex_);
        return head_;
    }

private:
    std::mutex mutex_;
    std::string head_;
    TLSServer server_;
};

TEST(SendingARequest, sendsExactlyTheJudgedTargetAndTheGivenHeaders) {
    TrustedSite site;
    RecordingServer server(site);
    auto request = site.request(server.port());
    request.target = "/a/../b//c?x[]=1&y=%C3%A4&z=";
    request.headers = {{"User-Agent", "kestrin-macos/2.0"}, {"Cache-Control", "no-cache, no-store, max-age=0"},
        {"Pragma", "no-cache"}, {"X-Empty", ""}};
    ASSERT_TRUE(site.perform(request));
    EXPECT_EQ(server.head(), "GET /a/../b//c?x[]=1&y=%C3%A4&z= HTTP/1.1\r\n"
                             "Host: site.test:" +
                                 std::to_string(server.port()) +
                                 "\r\n"
                                 "Accept: */*\r\n"
                                 "User-Agent: kestrin-macos/2.0\r\n"
                                 "Cache-Control: no-cache, no-store, max-age=0\r\n"
                                 "Pragma: no-cache\r\n"
                                 "X-Empty:\r\n"
                                 "\r\n");
}

TEST(SendingARequest, keepsTheQuestionMarkOfAnEmptyQuery) {
    TrustedSite site;
    RecordingServer server(site);
    auto request = site.request(server.port());
    request.target = "/?";
    ASSERT_TRUE(site.perform(request));
    EXPECT_TRUE(server.head().starts_with("GET /? HTTP/1.1\r\n")) << server.head();
}

TEST(SendingARequest, sendsAHostThatLooksLikeANumberAsItStands) {
    TrustedSite site;
    for (const std::string host : {"134744072", "127.1", "0x7f.1", "site.test.", "xn--bcher-kva.test"}) {
        RecordingServer server(site, "DNS:" + (host.ends_with('.') ? host.substr(0, host.size() - 1) : host));
        auto request = site.request(server.port());
        request.host = host;
        const auto response = site.perform(request);
        EXPECT_EQ(sentenceOf(response), "response with status 200") << host;
        EXPECT_NE(server.head().find("\r\nHost: " + host + ":" + std::to_string(server.port()) + "\r\n"),
            std::string::npos)
            << server.head();
    }
}

TEST(SendingARequest, reachesALiteralAddress) {
    TrustedSite site;
    RecordingServer server(site, "IP:127.0.0.1");
    auto request = site.request(server.port());
    request.host = "127.0.0.1";
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
}

TEST(SendingARequest, sendsNothingThatCouldEndItsLineEarly) {
    TrustedSite site;
    RecordingServer server(site);
    for (const std::string target : {"", "a", "/a b", "/a\r\nX: y", "/\xc3\xa4", "/a#b", "/a\tb", "*"}) {
        auto request = site.request(server.port());
        request.target = target;
        EXPECT_EQ(sentenceOf(site.perform(request)), "refused") << target;
    }
    auto request = site.request(server.port());
    request.headers = {{"X", "a\r\nY: b"}};
    EXPECT_EQ(sentenceOf(site.perform(request)), "refused");
    request.headers = {{"X: a\r\nY", "b"}};
    EXPECT_EQ(sentenceOf(site.perform(request)), "refused");
    EXPECT_EQ(server.connections(), 0);
}

TEST(SendingARequest, refusesAHostThatItWouldHaveToRewrite) {
    TrustedSite site;
    RecordingServer server(site);
    for (const std::string host :
        {"", "a b", "a%41", "user@site.test", "site.test:1", "site.test/x", "[127.0.0.1]", "::1%lo",
            "b\xc3\xbc"
            "cher.test"}) {
        auto request = site.request(server.port());
        request.host = host;
        EXPECT_EQ(sentenceOf(site.perform(request)), "refused") << host;
    }
    EXPECT_EQ(server.connections(), 0);
}

TEST(SendingARequest, refusesOtherSchemesAndPortZero) {
    TrustedSite site;
    RecordingServer server(site);
    auto plain = site.request(server.port());
    plain.scheme = "http";
    EXPECT_EQ(sentenceOf(site.perform(plain)), "refused");
    EXPECT_EQ(sentenceOf(site.perform(site.request(0))), "refused");
    EXPECT_EQ(server.connections(), 0);
}

TEST(PinningAddresses, reachesANameThatResolvesNowhere) {
    TrustedSite site;
    RecordingServer server(site, "DNS:no-such-name.invalid");
    auto request = site.request(server.port());
    request.host = "no-such-name.invalid";
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
}

TEST(PinningAddresses, contactsNoAddressButTheListed) {
    TrustedSite site;
    const auto identity = site.authority.issue({.names = "DNS:localhost,IP:127.0.0.1"});
    const auto reply = test::answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    const TLSServer listed(identity, reply, {.address = "127.0.0.2"});
    const TLSServer resolved(identity, reply, {.address = "127.0.0.1", .port = listed.port()});
    auto request = site.request(listed.port());
    request.addresses = {"127.0.0.2"};
    request.host = "localhost"; // resolves to 127.0.0.1
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
    request.host = "127.0.0.1";
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
    EXPECT_EQ(listed.connections(), 2);
    EXPECT_EQ(resolved.connections(), 0);
}

TEST(PinningAddresses, refusesALiteralHostThatIsNotListed) {
    TrustedSite site;
    RecordingServer server(site);
    auto request = site.request(server.port());
    request.host = "::1";
    EXPECT_EQ(sentenceOf(site.perform(request)), "refused");
    request.host = "site.test";
    request.addresses = {};
    EXPECT_EQ(sentenceOf(site.perform(request)), "refused");
    request.addresses = {"site.test", "fe80::1%lo"};
    EXPECT_EQ(sentenceOf(site.perform(request)), "refused");
    EXPECT_EQ(server.connections(), 0);
}

TEST(PinningAddresses, goesOnToTheNextAddressAfterARefusal) {
    TrustedSite site;
    RecordingServer server(site);
    auto request = site.request(server.port());
    request.addresses = {"127.0.0.2", "127.0.0.3", "127.0.0.4", "127.0.0.1"};
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
}

} // namespace
} // namespace kestrin
