#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrin {
namespace {

using test::LoopbackServer;
using test::sentenceOf;
using test::TLSConnection;
using test::TLSServer;
using test::TrustedSite;
using namespace std::chrono_literals;

constexpr const char* timedOut = "The request timed out.";

void stayMute(int descriptor) {
    test::waitForEnd(descriptor);
}

void neverAnswer(TLSConnection& connection) {
    static_cast<void>(connection.readHead());
    connection.waitForEnd();
}

/// A sign of life every few milliseconds, without an end.
void dripForever(TLSConnection& connection) {
    static_cast<void>(connection.readHead());
    connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
    while (connection.write("x") && connection.staysOpenFor(10ms)) {
    }
}

TEST(LimitingTime, endsAConnectionThatStaysMuteInTheHandshake) {
    TrustedSite site;
    const LoopbackServer server(stayMute);
    auto inactive = site.request(server.port());
    inactive.inactivityTimeout = 200ms;
    EXPECT_EQ(sentenceOf(site.perform(inactive)), timedOut);
    auto late = site.request(server.port());
    late.totalTimeout = 200ms;
    EXPECT_EQ(sentenceOf(site.perform(late)), timedOut);
}

TEST(LimitingTime, endsAServerThatNeverAnswers) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), neverAnswer);
    auto request = site.request(server.port());
    request.inactivityTimeout = 300ms;
    EXPECT_EQ(sentenceOf(site.perform(request)), timedOut);
}

TEST(LimitingTime, endsABodyThatStopsComing) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), [](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nabc");
        connection.waitForEnd();
    });
    auto request = site.request(server.port());
    request.inactivityTimeout = 400ms;
    EXPECT_EQ(sentenceOf(site.perform(request)), timedOut);
}

TEST(LimitingTime, endsTheWholeAlthoughTheServerKeepsGivingSigns) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), dripForever);
    auto request = site.request(server.port());
    request.maximumBodyBytes = 100000;
    request.totalTimeout = 400ms;
    EXPECT_EQ(sentenceOf(site.perform(request)), timedOut);
}

TEST(LimitingTime, countsInactivityFromTheLastSign) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), [](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\n");
        // In sum longer than the client waits for one sign.
        for (int i = 0; i < 6 && connection.staysOpenFor(400ms); ++i) {
            connection.write("x");
        }
        connection.waitForEnd();
    });
    auto request = site.request(server.port());
    request.inactivityTimeout = 2s;
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
}

TEST(LimitingTime, takesEachByteOfAHeaderLineForASign) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), [](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nX-Slow: ");
        for (int i = 0; i < 6 && connection.staysOpenFor(400ms); ++i) {
            connection.write("x");
        }
        connection.write("\r\n\r\n");
        connection.waitForEnd();
    });
    auto request = site.request(server.port());
    request.inactivityTimeout = 2s;
    request.headersOnly = true;
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
}

TEST(LimitingTime, contactsNobodyWhenNothingIsLeft) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), neverAnswer);
    for (const auto left : {0ms, -5ms}) {
        auto request = site.request(server.port());
        request.totalTimeout = left;
        EXPECT_EQ(sentenceOf(site.perform(request)), timedOut);
    }
    EXPECT_EQ(server.connections(), 0);
}

TEST(LimitingTime, standsLimitsBeyondTheClock) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), test::answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    auto request = site.request(server.port());
    request.totalTimeout = std::chrono::milliseconds::max();
    request.inactivityTimeout = std::chrono::milliseconds::max();
    EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200");
}

} // namespace
} // namespace kestrin
