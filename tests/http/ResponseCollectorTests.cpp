#include "http/ResponseCollector.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace kestrin {
namespace {

using Next = ResponseCollector::Next;
using State = ResponseCollector::State;

/// The last answer of a collector that is fed lines until it wants no more.
Next feed(ResponseCollector& collector, std::initializer_list<std::string> lines) {
    Next next = Next::Continue;
    for (const auto& line : lines) {
        next = collector.takeHeaderLine(line + "\r\n");
        if (next == Next::Stop) break;
    }
    return next;
}

TEST(CollectingAResponse, readsOnAtAHeadWhoseBodyIsWanted) {
    ResponseCollector collector(false, 10);
    EXPECT_EQ(feed(collector, {"HTTP/1.1 200 OK", "Content-Type: text/plain; charset=utf-8", ""}), Next::Continue);
    EXPECT_EQ(collector.takeBody("hello"), Next::Continue);
    EXPECT_EQ(collector.state(), State::Reading);
    ASSERT_TRUE(collector.hasHead());
    const auto response = collector.takeResponse();
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.contentType, "text/plain; charset=utf-8");
    EXPECT_EQ(response.body, "hello");
}

TEST(CollectingAResponse, keepsExactlyTheLimitAndFailsAtTheByteBeyondIt) {
    ResponseCollector collector(false, 10);
    ASSERT_EQ(feed(collector, {"HTTP/1.1 200 OK", ""}), Next::Continue);
    EXPECT_EQ(collector.takeBody("12345"), Next::Continue);
    EXPECT_EQ(collector.takeBody("67890"), Next::Continue);
    EXPECT_EQ(collector.takeBody(""), Next::Continue);
    EXPECT_EQ(collector.takeBody("x"), Next::Stop);
    EXPECT_EQ(collector.state(), State::TooLarge);
}

TEST(CollectingAResponse, stopsAtAHeadThatDeclaresMoreThanTheLimit) {
    ResponseCollector exact(false, 10);
    EXPECT_EQ(feed(exact, {"HTTP/1.1 200 OK", "Content-Length: 10", ""}), Next::Continue);
    for (const std::string length : {"11", "99999999999999999999999"}) {
        ResponseCollector beyond(false, 10);
        EXPECT_EQ(feed(beyond, {"HTTP/1.1 200 OK", "Content-Length: " + length, ""}), Next::Stop);
        EXPECT_EQ(beyond.state(), State::TooLarge);
    }
}

TEST(CollectingAResponse, takesNoDeclaredLengthWhereThereIsNone) {
    ResponseCollector chunked(false, 10);
    EXPECT_EQ(
        feed(chunked, {"HTTP/1.1 200 OK", "Transfer-Encoding: chunked", "Content-Length: 99", ""}), Next::Continue);
    ResponseCollector notModified(false, 10);
    EXPECT_EQ(feed(notModified, {"HTTP/1.1 304 Not Modified", "Content-Length: 99", ""}), Next::Continue);
}

TEST(CollectingAResponse, callsContradictoryOrMeaninglessLengthsInvalid) {
    ResponseCollector two(false, 10);
    EXPECT_EQ(feed(two, {"HTTP/1.1 200 OK", "Content-Length: 1", "Content-Length: 2", ""}), Next::Stop);
    EXPECT_EQ(two.state(), State::Invalid);
    ResponseCollector twice(false, 10);
    EXPECT_EQ(feed(twice, {"HTTP/1.1 200 OK", "Content-Length: 2", "Content-Length: 2", ""}), Next::Continue);
    ResponseCollector negative(false, 10);
    EXPECT_EQ(feed(negative, {"HTTP/1.1 200 OK", "Content-Length: -1", ""}), Next::Stop);
    EXPECT_EQ(negative.state(), State::Invalid);
}

TEST(CollectingAResponse, endsAtTheHeadForHeadersOnlyWhateverIsDeclared) {
    ResponseCollector collector(true, 0);
    EXPECT_EQ(
        feed(collector, {"HTTP/1.1 200 OK", "Content-Length: 5000000000", "Content-Length: x", ""}), Next::Stop);
    EXPECT_EQ(collector.state(), State::Complete);
    EXPECT_EQ(collector.takeResponse().body, "");
}

TEST(CollectingAResponse, forgetsAllOfAnInterimHead) {
    ResponseCollector collector(true, 0);
    ASSERT_EQ(
        feed(collector, {"HTTP/1.1 103 Early Hints", "Location: /early", "Content-Type: x", ""}), Next::Continue);
    EXPECT_FALSE(collector.hasHead());
    EXPECT_EQ(feed(collector, {"HTTP/1.1 200 OK", "Content-Type: text/html", ""}), Next::Stop);
    const auto response = collector.takeResponse();
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.contentType, "text/html");
    EXPECT_TRUE(response.locations.empty());
}

TEST(CollectingAResponse, endsAtTheHeadOfARedirect) {
    for (const std::string status : {"301", "302", "303", "307", "308"}) {
        ResponseCollector collector(false, 10);
        EXPECT_EQ(feed(collector, {"HTTP/1.1 " + status + " Moved", "location:  /a b\t", "LOCATION: /c",
                                      "Content-Length: 5000", ""}),
            Next::Stop)
            << status;
        EXPECT_EQ(collector.state(), State::Complete);
        EXPECT_EQ(collector.takeResponse().locations, (std::vector<std::string>{"/a b", "/c"}));
    }
}

TEST(CollectingAResponse, readsTheBodyOfAStatusThatRedirectsNowhere) {
    for (const std::string status : {"300", "304", "305", "200"}) {
        ResponseCollector other(false, 10);
        EXPECT_EQ(feed(other, {"HTTP/1.1 " + status + " X", "Location: /a", ""}), Next::Continue) << status;
    }
    ResponseCollector empty(false, 10);
    EXPECT_EQ(feed(empty, {"HTTP/1.1 302 Found", "Location: ", ""}), Next::Continue);
    const auto response = empty.takeResponse();
    EXPECT_EQ(response.locations, std::vector<std::string>{""});
    EXPECT_FALSE(response.isRedirect());
}

TEST(CollectingAResponse, joinsAFoldedField) {
    ResponseCollector collector(true, 0);
    EXPECT_EQ(feed(collector, {"HTTP/1.1 200 OK", "Content-Type: text/plain;", "\tcharset=utf-8", "X: y", ""}),
        Next::Stop);
    EXPECT_EQ(collector.takeResponse().contentType, "text/plain; charset=utf-8");
}

TEST(CollectingAResponse, keepsNothingOfTrailers) {
    ResponseCollector collector(false, 10);
    ASSERT_EQ(feed(collector, {"HTTP/1.1 200 OK", ""}), Next::Continue);
    EXPECT_EQ(feed(collector, {"Location: /late", "Content-Type: late", ""}), Next::Continue);
    const auto response = collector.takeResponse();
    EXPECT_TRUE(response.locations.empty());
    EXPECT_EQ(response.contentType, std::nullopt);
}

TEST(CollectingAResponse, boundsHeadsThatNeverEnd) {
    ResponseCollector fields(true, 0);
    Next next = feed(fields, {"HTTP/1.1 200 OK"});
    for (int i = 0; i < 100000 && next == Next::Continue; ++i) {
        next = fields.takeHeaderLine("X: y\r\n");
    }
    EXPECT_EQ(next, Next::Stop);
    EXPECT_EQ(fields.state(), State::Invalid);

    ResponseCollector interim(true, 0);
    next = Next::Continue;
    for (int i = 0; i < 100000 && next == Next::Continue; ++i) {
        next = feed(interim, {"HTTP/1.1 103 Early Hints", ""});
    }
    EXPECT_EQ(interim.state(), State::Invalid);
}

TEST(CollectingAResponse, callsAStatusLineThatSaysNothingUsefulInvalid) {
    for (const std::string line : {"HTTP/1.1 20 OK", "HTTP/1.1 2000", "HTTP/1.1 abc", "HTTP/1.1", "HTTP/1.1 099 X",
             "HTTP/1.1 101 Switching"}) {
        ResponseCollector collector(true, 0);
        EXPECT_EQ(feed(collector, {line, ""}), Next::Stop) << line;
        EXPECT_EQ(collector.state(), State::Invalid) << line;
    }
    ResponseCollector short2(true, 0);
    EXPECT_EQ(feed(short2, {"HTTP/2 200", ""}), Next::Stop);
    EXPECT_EQ(short2.state(), State::Complete);
}

} // namespace
} // namespace kestrin
