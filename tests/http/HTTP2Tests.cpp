#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kestrin {
namespace {

using test::sentenceOf;
using test::TLSConnection;
using test::TLSServer;
using test::TrustedSite;

constexpr char dataType = 0;
constexpr char headersType = 1;
constexpr char settingsType = 4;
constexpr char endStream = 1;
constexpr char endHeaders = 4;

std::string frame(char type, char flags, char stream, const std::string& payload) {
    std::string bytes;
    bytes += static_cast<char>(payload.size() >> 16);
    bytes += static_cast<char>(payload.size() >> 8);
    bytes += static_cast<char>(payload.size());
    bytes += type;
    bytes += flags;
    bytes += std::string(3, '\0') + stream;
    return bytes + payload;
}

/// A header as a literal that is not indexed and has a name of its own.
std::string literal(const std::string& name, const std::string& value) {
    return std::string(1, '\0') + static_cast<char>(name.size()) + name + static_cast<char>(value.size()) + value;
}

/// Speaks just enough HTTP/2 to answer the first request with these frames.
TLSServer::Script answeringFrames(std::string frames) {
    return [frames = std::move(frames)](TLSConnection& connection) {
        const std::string preface = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";
        if (connection.read(preface.size()) != preface) return;
        connection.write(frame(settingsType, 0, 0, ""));
        for (;;) {
            const std::string head = connection.read(9);
            if (head.size() < 9) return;
            const auto byte = [&head](std::size_t i) {
                return static_cast<std::size_t>(static_cast<unsigned char>(head[i]));
            };
            const std::size_t length = byte(0) << 16 | byte(1) << 8 | byte(2);
            if (connection.read(length).size() < length) return;
            if (head[3] == settingsType && (head[4] & 1) == 0) connection.write(frame(settingsType, 1, 0, ""));
            if (head[3] == headersType) connection.write(frames);
        }
    };
}

std::expected<HTTPHopResponse, HTTPHopError> exchangeFrames(const std::string& frames, bool headersOnly) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), answeringFrames(frames), {.protocol = "h2"});
    auto request = site.request(server.port());
    request.headersOnly = headersOnly;
    return site.perform(request);
}

const std::string ok("\x88");
const std::string earlyHints = literal(":status", "103");

TEST(SpeakingHTTP2, reportsStatusTypeAndBody) {
    const auto response =
        exchangeFrames(frame(headersType, endHeaders, 1, ok + literal("content-type", "text/plain")) +
                           frame(dataType, 0, 1, "hel") + frame(dataType, endStream, 1, "lo"),
            false);
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(*response, (HTTPHopResponse{200, "text/plain", {}, "hello"}));
}

TEST(SpeakingHTTP2, passesOverInterimResponsesAndStopsAtTheHead) {
    const auto response =
        exchangeFrames(frame(headersType, endHeaders, 1, earlyHints) + frame(headersType, endHeaders, 1, ok), true);
    EXPECT_EQ(sentenceOf(response), "response with status 200");
}

TEST(SpeakingHTTP2, endsAtARedirectsHead) {
    const auto response = exchangeFrames(
        frame(headersType, endHeaders, 1, literal(":status", "302") + literal("location", "https://a.test/")),
        false);
    ASSERT_TRUE(response) << sentenceOf(response);
    EXPECT_EQ(response->locations, std::vector<std::string>{"https://a.test/"});
}

TEST(SpeakingHTTP2, boundsTheBody) {
    EXPECT_EQ(sentenceOf(exchangeFrames(
                  frame(headersType, endHeaders, 1, ok) + frame(dataType, 0, 1, std::string(1001, 'x')), false)),
        "too large");
    EXPECT_EQ(sentenceOf(
                  exchangeFrames(frame(headersType, endHeaders, 1, ok + literal("content-length", "1001")), false)),
        "too large");
}

TEST(SpeakingHTTP2, tellsAStreamThatTheServerGaveUp) {
    const std::string reset = frame(3, 0, 1, std::string("\0\0\0\2", 4));
    EXPECT_EQ(sentenceOf(exchangeFrames(reset, false)), "The connection was lost.");
}

TEST(SpeakingHTTP2, sendsARequestOnceAlsoWhenTheServerInvitesAnother) {
    // Refused stream, and HTTP/1.1 required: libcurl would try again.
    for (const char code : {'\x7', '\xd'}) {
        TrustedSite site;
        const std::string reset = frame(3, 0, 1, std::string("\0\0\0", 3) + code);
        const TLSServer server(site.authority.issue(), answeringFrames(reset), {.protocol = "h2"});
        EXPECT_EQ(sentenceOf(site.perform(site.request(server.port()))), "The connection was lost.");
        EXPECT_EQ(server.connections(), 1);
    }
}

TEST(SpeakingHTTP2, boundsTheHead) {
    // One field of 150 KB, its length written as HPACK's prefix integer: 127 and 153473 more.
    constexpr char continuationType = 9;
    const std::string field = std::string("\0\1x\x7f", 4) + "\x81\xaf\x09" + std::string(153600, 'y');
    std::string frames = frame(headersType, 0, 1, ok);
    for (std::size_t start = 0; start < field.size(); start += 16000) {
        const char flags = start + 16000 >= field.size() ? endHeaders : 0;
        frames += frame(continuationType, flags, 1, field.substr(start, 16000));
    }
    EXPECT_EQ(sentenceOf(exchangeFrames(frames, true)), "The server sent an invalid response.");
}

TEST(SpeakingHTTP2, callsABreachOfItsRulesAnInvalidResponse) {
    // Data belongs to a stream, and stream 0 is none.
    EXPECT_EQ(
        sentenceOf(exchangeFrames(frame(dataType, 0, 0, "x"), false)), "The server sent an invalid response.");
}

} // namespace
} // namespace kestrin
