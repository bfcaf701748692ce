#include "state/PlainHistoryLine.h"

#include "state/HistoryLine.h"
#include "state/HistoryLineTemplates.h"
#include "state/HistoryScanner.h"

#include <gtest/gtest.h>

using namespace kestrin;

namespace {

const CheckRecord up = {.timestamp = "2026-01-31T09:05:00Z",
    .siteID = "a",
    .url = "https://a.example/",
    .dnsOK = true,
    .ips = {"192.0.2.1"},
    .httpStatus = 200,
    .elapsedMS = 12,
    .up = true,
    .error = std::nullopt};

CheckRecord down() {
    CheckRecord record = up;
    record.up = false;
    record.error = "The request timed out.";
    return record;
}

/// A text with readable bytes behind it.
std::string padded(const std::string& text) {
    return text + std::string(historyLinePadding, '0');
}

std::size_t plainBytes(const std::string& text) {
    const std::string memory = padded(text);
    const auto plain = readPlainCheck({memory.data(), text.size()});
    return plain ? plain->line.size() : 0;
}

/// The templates of some lines.
class Templates : public testing::Test {
protected:
    void learn(const CheckRecord& record) {
        const std::string line = historyLine(record) + "\n";
        const std::string memory = padded(line);
        const auto plain = readPlainCheck({memory.data(), line.size()});
        ASSERT_TRUE(plain);
        templates.learn(*plain);
    }
    std::size_t matched(const std::string& text) {
        const std::string memory = padded(text);
        return templates.match({memory.data(), text.size()}).lineBytes;
    }
    bool matches(const CheckRecord& record) {
        const std::string line = historyLine(record);
        return matched(line + "\n") == line.size();
    }

    HistoryLineTemplates templates;
};

} // namespace

TEST(APlainLine, isWhatIsWrittenOfAnOrdinaryCheck) {
    for (CheckRecord record : {up, down()}) {
        EXPECT_EQ(plainBytes(historyLine(record) + "\nnext"), historyLine(record).size());
        record.elapsedMS.reset();
        record.httpStatus.reset();
        record.ips.clear();
        EXPECT_EQ(plainBytes(historyLine(record) + "\n"), historyLine(record).size());
    }
    const std::string line = historyLine(down()) + "\n" + std::string(historyLinePadding, '0');
    const auto plain = readPlainCheck({line.data(), line.size() - historyLinePadding});
    ASSERT_TRUE(plain);
    EXPECT_FALSE(plain->up);
    EXPECT_EQ(plain->timestamp, up.timestamp);
    EXPECT_EQ(plain->elapsedMS, "12");
}

TEST(APlainLine, isWhatIsWrittenOfAnOrdinaryCheckOfAService) {
    ProviderCheckRecord record;
    record.state = ProviderState::degraded;
    record.elapsedMS = 7;
    for (const bool failed : {false, true}) {
        if (failed) {
            record.error = "Not found";
            record.officialUpdatedAt = "today";
            record.failureCategory = ProviderFailureCategory::unavailable;
        }
        const std::string line = historyLine(record) + "\n" + std::string(historyLinePadding, '0');
        const auto plain = readPlainProviderCheck({line.data(), line.size() - historyLinePadding});
        ASSERT_TRUE(plain);
        EXPECT_EQ(plain->line, historyLine(record));
    }
}

TEST(APlainLine, hasItsLineFeedAndNoOtherBytes) {
    const std::string line = historyLine(up);
    for (std::size_t length = 0; length <= line.size(); ++length)
        EXPECT_EQ(plainBytes(line.substr(0, length)), 0u) << length;
    EXPECT_EQ(plainBytes(line + "\r\n"), 0u);
    EXPECT_EQ(plainBytes(line + " \n"), 0u);
}

TEST(APlainLine, hasNoEscapesAndNoOtherLettersThanASCII) {
    for (const char* text : {"\"", "\\", "\n", "\x01", "ä", "\x1F"})
        for (std::size_t before = 0; before < 17; ++before) {
            CheckRecord record = down();
            record.error = std::string(before, 'e') + text;
            EXPECT_EQ(plainBytes(historyLine(record) + "\n"), 0u) << *record.error;
        }
}

TEST(APlainLine, isBoundedInLength) {
    CheckRecord record = down();
    const std::size_t rest = historyLine(record).size() - record.error->size();
    record.error = std::string(PlainHistoryLine::maximumBytes - rest, 'e');
    EXPECT_EQ(plainBytes(historyLine(record) + "\n"), PlainHistoryLine::maximumBytes);
    *record.error += 'e';
    EXPECT_EQ(plainBytes(historyLine(record) + "\n"), 0u);
}

TEST_F(Templates, matchNothingAtFirst) {
    EXPECT_FALSE(matches(up));
    EXPECT_EQ(matched(""), 0u);
}

TEST_F(Templates, matchOtherDigitsOfTheTimeStampAndTheElapsedTime) {
    learn(up);
    CheckRecord record = up;
    record.timestamp = "1999-99-99T99:99:99Z";
    for (const std::int64_t elapsed : {0L, 9L, 10L, 123'456L, 999'999'999'999'999'999L}) {
        record.elapsedMS = elapsed;
        EXPECT_TRUE(matches(record)) << elapsed;
    }
    record.elapsedMS = 1'000'000'000'000'000'000;
    EXPECT_FALSE(matches(record)) << "which is left to the parser";
}

TEST_F(Templates, matchNoOtherLine) {
    learn(up);
    const std::string line = historyLine(up) + "\n";
    ASSERT_NE(matched(line), 0u);
    for (std::size_t at = 0; at < line.size(); ++at) {
        for (const char byte : {'/', ':', '\0', '\xB0', '\x7F', '"'}) {
            std::string other = line;
            if (other[at] == byte) continue;
            other[at] = byte;
            EXPECT_EQ(matched(other), 0u) << other;
        }
        EXPECT_EQ(matched(line.substr(0, at)), 0u) << at;
    }
    for (const char* number : {"", "012", "00", "-1", "1.0", "1e3", "+1", " 1", "1 "}) {
        std::string other = line;
        other.replace(other.find(":12,") + 1, 2, number);
        EXPECT_EQ(matched(other), 0u) << other;
    }
}

TEST_F(Templates, learnNothingFromATimeStampOfAnotherShapeOrALineWithoutElapsedTime) {
    for (const char* text : {"2026-01-31 09:05:00Z", "2026-01-31T09:05:00.1Z", "yesterday", ""}) {
        CheckRecord record = up;
        record.timestamp = text;
        learn(record);
        EXPECT_FALSE(matches(record)) << text;
    }
    CheckRecord record = up;
    record.elapsedMS.reset();
    learn(record);
    EXPECT_FALSE(matches(record));
}

TEST_F(Templates, rememberFourThatTakeTurns) {
    std::vector<CheckRecord> records(5, up);
    for (std::size_t i = 0; i < records.size(); ++i)
        records[i].siteID = std::string(i + 1, 'a');
    for (std::size_t i = 0; i < 4; ++i)
        learn(records[i]);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_TRUE(matches(records[i % 4])) << i;
    learn(records[4]);
    EXPECT_FALSE(matches(records[0])) << "the oldest is forgotten";
    for (std::size_t i = 1; i < 5; ++i)
        EXPECT_TRUE(matches(records[i])) << i;
}
