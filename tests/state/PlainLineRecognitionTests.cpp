#include "state/PlainLineRecognition.h"

#include "state/HistoryLine.h"
#include "state/HistoryScanner.h"

#include <gtest/gtest.h>

#include <string>

using namespace kestrin;

namespace {

CheckRecord check(const std::string& timestamp) {
    return {.timestamp = timestamp,
        .siteID = "site-1",
        .url = "https://site-1.example/",
        .dnsOK = true,
        .ips = {"192.88.99.1"},
        .httpStatus = 200,
        .elapsedMS = 12,
        .up = true,
        .error = std::nullopt};
}

std::string lineOf(const CheckRecord& record) {
    return historyLine(record) + "\n";
}

/// How many lines in a row are left to the parser unseen.
std::size_t restOf(PlainLineRecognition& recognition) {
    std::size_t lines = 0;
    while (recognition.rests())
        ++lines;
    return lines;
}

/// How often it may be asked in vain until it rests.
std::size_t looksOf(PlainLineRecognition& recognition, std::size_t atMost) {
    std::size_t looks = 0;
    while (looks < atMost && !recognition.rests()) {
        recognition.count(0);
        ++looks;
    }
    return looks;
}

} // namespace

TEST(RecognisingPlainLines, givesTheBytesOfAPlainLineAndItsOutcome) {
    PlainLineRecognition recognition(readPlainCheck);
    for (const char* timestamp : {"2026-01-31T09:05:00Z", "2026-01-31T09:10:00Z"}) {
        CheckRecord record = check(timestamp);
        for (const bool up : {true, false}) {
            record.up = up;
            const std::string line = lineOf(record);
            const std::string text = line + lineOf(record) + std::string(historyLinePadding, '\0');
            const auto match = recognition.recognise(std::string_view(text).substr(0, 2 * line.size()));
            EXPECT_EQ(match.lineBytes, line.size() - 1);
            EXPECT_EQ(match.up, up);
        }
    }
}

TEST(RecognisingPlainLines, givesNothingForAnyOtherLine) {
    PlainLineRecognition recognition(readPlainCheck);
    const std::string plain = lineOf(check("2026-01-31T09:05:00Z"));
    const std::string cut = plain.substr(0, plain.size() - 1);
    for (const std::string& line : {std::string("\n"), std::string("{}\n"), " " + plain, cut, cut + "\r\n"}) {
        const std::string text = line + std::string(historyLinePadding, '\0');
        EXPECT_EQ(recognition.recognise(std::string_view(text).substr(0, line.size())).lineBytes, 0u) << line;
    }
}

TEST(RecognisingPlainLines, restsAfterManyLooksInVainAndThenLooksABriefWhileAgain) {
    PlainLineRecognition recognition(readPlainCheck);
    EXPECT_EQ(looksOf(recognition, 100'000), 1024u);
    EXPECT_EQ(restOf(recognition) + 1, 4096u) << "one was counted by the look that found it resting";
    EXPECT_EQ(looksOf(recognition, 100'000), 64u);
    EXPECT_EQ(restOf(recognition) + 1, 4096u);
}

TEST(RecognisingPlainLines, looksLongerAgainOnceLinesAreRecognised) {
    PlainLineRecognition recognition(readPlainCheck);
    looksOf(recognition, 100'000);
    restOf(recognition);
    recognition.count(5000);
    EXPECT_EQ(looksOf(recognition, 100'000), 1023u)
        << "no more than at the beginning, less the look after those lines";
}

TEST(RecognisingPlainLines, neverRestsWhereOneLineInTwoIsPlain) {
    PlainLineRecognition recognition(readPlainCheck);
    for (int line = 0; line < 100'000; ++line) {
        recognition.count(1);
        ASSERT_FALSE(recognition.rests());
    }
}
