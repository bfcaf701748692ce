#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>

namespace kestrin {
namespace {

using test::answering;
using test::sentenceOf;
using test::TLSConnection;
using test::TLSServer;
using test::TrustedSite;
using namespace std::chrono_literals;

TEST(CarryingOutAHop, reportsStatusTypeAndBody) {
    TrustedSite site;
    const auto response = site.exchange(
        answering("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}"));
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(*response, (HTTPHopResponse{200, "application/json", {}, "{}"}));
}

TEST(CarryingOutAHop, reportsAnyFinalStatusAsItIs) {
    TrustedSite site;
    for (const int status : {200, 204, 304, 399, 400, 404, 500, 503, 599, 600, 999}) {
        const auto response = site.exchange(
            answering("HTTP/1.1 " + std::to_string(status) + " Some words\r\nContent-Length: 0\r\n\r\n"));
        ASSERT_TRUE(response) << status << ": " << sentenceOf(response);
        EXPECT_EQ(response->status, status);
    }
}

TEST(CarryingOutAHop, passesOverInterimResponses) {
    TrustedSite site;
    const auto response = site.exchange(answering("HTTP/1.1 100 Continue\r\n\r\n"
                                                  "HTTP/1.1 103 Early Hints\r\nLink: </a.css>\r\n\r\n"
                                                  "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n"),
        true);
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->contentType, "text/html");
}

TEST(CarryingOutAHop, returnsAtTheHeadOfAnEndlessBodyWhenOnlyHeadersAreWanted) {
    TrustedSite site;
    auto endless = [](TLSConnection& connection) {
        if (connection.readHead().empty()) return;
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 9000000000000000000\r\n\r\n");
        while (connection.write(std::string(4096, 'x'))) {
        }
    };
    const auto response = site.exchange(endless, true);
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->body, "");
}

TEST(CarryingOutAHop, succeedsWithHeadersOnlyWhateverLengthIsDeclared) {
    TrustedSite site;
    for (const std::string length : {"0", "5", "-5", "many", "99999999999999999999999"}) {
        const TLSServer server(
            site.authority.issue(), answering("HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n"));
        auto request = site.request(server.port());
        request.headersOnly = true;
        request.maximumBodyBytes = 0;
        EXPECT_EQ(sentenceOf(site.perform(request)), "response with status 200") << length;
    }
}

TEST(CarryingOutAHop, neverReadsTheBodyBehindAHeadThatDeclaresTooMuch) {
    TrustedSite site;
    // No body is ever sent: only the head can be the reason.
    const auto response = site.exchange(answering("HTTP/1.1 200 OK\r\nContent-Length: 1001\r\n\r\n"));
    EXPECT_EQ(sentenceOf(response), "too large");
}

TEST(CarryingOutAHop, passesABodyOfExactlyTheLimit) {
    TrustedSite site;
    const std::string body(1000, 'x');
    const auto declared = site.exchange(answering("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + body));
    ASSERT_TRUE(declared) << sentenceOf(declared);
    EXPECT_EQ(declared->body, body);
    const auto undeclared = site.exchange([&body](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + body);
    });
    ASSERT_TRUE(undeclared) << sentenceOf(undeclared);
    EXPECT_EQ(undeclared->body, body);
}

TEST(CarryingOutAHop, failsAtTheChunkThatCrossesTheLimit) {
    TrustedSite site;
    auto endless = [](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        while (connection.write("64\r\n" + std::string(100, 'x') + "\r\n")) {
        }
    };
    EXPECT_EQ(sentenceOf(site.exchange(endless)), "too large");
}

TEST(CarryingOutAHop, putsChunksTogether) {
    TrustedSite site;
    const auto response = site.exchange(answering("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                                  "3\r\nabc\r\n2;extension=1\r\nde\r\n0\r\nTrailer: x\r\n\r\n"));
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(response->body, "abcde");
}

TEST(CarryingOutAHop, leavesAnUnaskedContentEncodingAlone) {
    TrustedSite site;
    const auto response = site.exchange(
        answering("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 4\r\n\r\n\x1f\x8b!!"));
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(response->body, "\x1f\x8b!!");
}

TEST(CarryingOutAHop, endsAtARedirectsHeadAndTellsEveryTargetInOrder) {
    TrustedSite site;
    // The declared body never comes.
    const auto response = site.exchange(answering("HTTP/1.1 302 Found\r\nLocation: https://a.test/?q=1#f\r\n"
                                                  "Location: //127.1/\r\nContent-Length: 999999\r\n\r\n"));
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(response->status, 302);
    EXPECT_EQ(response->locations, (std::vector<std::string>{"https://a.test/?q=1#f", "//127.1/"}));
    EXPECT_TRUE(response->isRedirect());
    EXPECT_EQ(response->body, "");
}

TEST(CarryingOutAHop, takesARedirectWithAnEmptyOrAbsentTargetAsFinal) {
    TrustedSite site;
    const auto empty = site.exchange(answering("HTTP/1.1 301 Moved\r\nLocation:\r\nContent-Length: 2\r\n\r\nhm"));
    ASSERT_TRUE(empty) << sentenceOf(empty);
    EXPECT_EQ(*empty, (HTTPHopResponse{301, std::nullopt, {""}, "hm"}));
    const auto absent = site.exchange(answering("HTTP/1.1 301 Moved\r\nContent-Length: 2\r\n\r\nhm"));
    ASSERT_TRUE(absent) << sentenceOf(absent);
    EXPECT_EQ(*absent, (HTTPHopResponse{301, std::nullopt, {}, "hm"}));
}

TEST(CarryingOutAHop, sharesNothingWithTheCallBefore) {
    TrustedSite site;
    std::atomic<int> withCookie{0};
    const TLSServer server(site.authority.issue(), [&withCookie](TLSConnection& connection) {
        if (connection.readHead().find("ookie") != std::string::npos) ++withCookie;
        connection.write("HTTP/1.1 200 OK\r\nSet-Cookie: a=b; Path=/\r\nContent-Length: 0\r\n\r\n");
        connection.waitForEnd();
    });
    for (int call = 1; call <= 3; ++call) {
        ASSERT_TRUE(site.perform(site.request(server.port())));
        EXPECT_EQ(server.connections(), call);
    }
    EXPECT_EQ(withCookie, 0);
}

TEST(CarryingOutAHop, leavesNoDescriptorBehind) {
    TrustedSite site;
    const auto countDescriptors = [] {
        const std::filesystem::directory_iterator entries("/proc/self/fd");
        return std::distance(begin(entries), end(entries));
    };
    const auto runAll = [&site] {
        static_cast<void>(site.exchange(answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n")));
        static_cast<void>(site.exchange(answering("HTTP/1.1 200 OK\r\n\r\n"), true));
        static_cast<void>(site.exchange(answering("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n")));
        static_cast<void>(site.exchange(answering("no HTTP\r\n\r\n")));
        const TLSServer wrong(test::TestAuthority::selfSigned(), answering(""));
        static_cast<void>(site.perform(site.request(wrong.port())));
        auto refused = site.request(wrong.port());
        refused.addresses = {"127.0.0.9", "127.0.0.8"};
        static_cast<void>(site.perform(refused));
        auto late = site.request(wrong.port());
        late.totalTimeout = 1ms;
        static_cast<void>(site.perform(late));
    };
    runAll();
    const auto before = countDescriptors();
    for (int round = 0; round < 3; ++round) {
        runAll();
    }
    EXPECT_EQ(countDescriptors(), before);
}

} // namespace
} // namespace kestrin
