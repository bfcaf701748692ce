#include "state/HistoryLineDecoder.h"

#include "state/HistoryLine.h"
#include "state/HistoryLineMutations.h"
#include "state/HistoryScanner.h"

#include <gtest/gtest.h>

using namespace kestrin;

namespace {

/// The line with the readable bytes behind it that a scan would leave.
class Padded {
public:
    explicit Padded(std::string_view line) : bytes_(line), size_(line.size()) {
        bytes_.append(historyLinePadding, '}');
    }
    operator std::string_view() const { return {bytes_.data(), size_}; }

private:
    std::string bytes_;
    std::size_t size_;
};

std::optional<CheckRecord> check(std::string_view line) {
    HistoryLineDecoder decoder;
    const CheckRecord* record = decoder.decodeCheck(Padded(line));
    return record == nullptr ? std::nullopt : std::optional(*record);
}

std::optional<ProviderCheckRecord> providerCheck(std::string_view line) {
    HistoryLineDecoder decoder;
    const ProviderCheckRecord* record = decoder.decodeProviderCheck(Padded(line));
    return record == nullptr ? std::nullopt : std::optional(*record);
}

const CheckRecord full = {.timestamp = "t",
    .siteID = "s",
    .url = "u",
    .dnsOK = true,
    .ips = {"1", "2"},
    .httpStatus = 200,
    .elapsedMS = -5,
    .up = true,
    .error = "e\u0001ä"};

const ProviderCheckRecord fullProvider = {.timestamp = "t",
    .providerID = "p",
    .endpoint = "e",
    .httpStatus = INT64_MAX,
    .elapsedMS = 0,
    .state = ProviderState::maintenance,
    .summary = "s",
    .officialUpdatedAt = "o",
    .error = "x",
    .failureCategory = ProviderFailureCategory::changedSchema};

/// A line with every required field, in which the members given stand last and so count.
std::string checkWith(const std::string& members) {
    return R"({"timestamp":"t","site_id":"s","url":"u","dns_ok":true,"ips":[],"up":false)" + members + "}";
}

std::string providerWith(const std::string& members) {
    return R"({"timestamp":"t","provider_id":"p","endpoint":"e","state":"outage","summary":"s")" + members + "}";
}

} // namespace

TEST(DecodingALine, readsWhatWasWritten) {
    EXPECT_EQ(check(historyLine(full)), full);
    EXPECT_EQ(providerCheck(historyLine(fullProvider)), fullProvider);
    EXPECT_EQ(check(historyLine(CheckRecord())), CheckRecord());
    EXPECT_EQ(providerCheck(historyLine(ProviderCheckRecord())), ProviderCheckRecord());
}

TEST(DecodingALine, acceptsAnyOrderOfKeysAndIgnoresUnknownOnes) {
    const auto record = check(
        R"( {"up" : true, "new":{"up":[1,{}]}, "ips":["2"],"dns_ok":false,"url":"u","site_id":"s","":0,"timestamp":"t"} )");
    CheckRecord expected;
    expected.timestamp = "t";
    expected.siteID = "s";
    expected.url = "u";
    expected.ips = {"2"};
    expected.up = true;
    EXPECT_EQ(record, expected);
}

TEST(DecodingALine, takesTheLastOfTwoEqualKeys) {
    EXPECT_TRUE(check(checkWith(R"(,"up":true)"))->up);
    EXPECT_FALSE(check(checkWith(R"(,"up":1)"))) << "of which only the last is judged";
    EXPECT_TRUE(check(checkWith(R"(,"error":1,"error":"e")")));
}

TEST(DecodingALine, dropsALineThatLacksARequiredField) {
    for (const char* line : {R"({"site_id":"s","url":"u","dns_ok":true,"ips":[],"up":true})",
             R"({"timestamp":"t","url":"u","dns_ok":true,"ips":[],"up":true})",
             R"({"timestamp":"t","site_id":"s","dns_ok":true,"ips":[],"up":true})",
             R"({"timestamp":"t","site_id":"s","url":"u","ips":[],"up":true})",
             R"({"timestamp":"t","site_id":"s","url":"u","dns_ok":true,"up":true})",
             R"({"timestamp":"t","site_id":"s","url":"u","dns_ok":true,"ips":[]})", "{}"})
        EXPECT_FALSE(check(line)) << line;
    for (const char* line : {R"({"provider_id":"p","endpoint":"e","state":"outage","summary":"s"})",
             R"({"timestamp":"t","endpoint":"e","state":"outage","summary":"s"})",
             R"({"timestamp":"t","provider_id":"p","state":"outage","summary":"s"})",
             R"({"timestamp":"t","provider_id":"p","endpoint":"e","summary":"s"})",
             R"({"timestamp":"t","provider_id":"p","endpoint":"e","state":"outage"})"})
        EXPECT_FALSE(providerCheck(line)) << line;
}

TEST(DecodingALine, dropsALineWithAValueOfAnotherType) {
    for (const char* members :
        {R"(,"timestamp":1)", R"(,"site_id":null)", R"(,"url":["u"])", R"(,"dns_ok":1)", R"(,"dns_ok":"true")",
            R"(,"ips":"1")", R"(,"ips":[1])", R"(,"ips":[null])", R"(,"ips":null)", R"(,"up":null)", R"(,"up":0)",
            R"(,"http_status":"200")", R"(,"http_status":200.0)", R"(,"http_status":2e2)", R"(,"http_status":true)",
            R"(,"elapsed_ms":0.5)", R"(,"elapsed_ms":9223372036854775808)", R"(,"elapsed_ms":18446744073709551616)",
            R"(,"error":1)", R"(,"error":{})"})
        EXPECT_FALSE(check(checkWith(members))) << members;
    for (const char* members : {R"(,"state":1)", R"(,"summary":null)", R"(,"official_updated_at":1)",
             R"(,"failure_category":1)", R"(,"failure_category":"other")", R"(,"http_status":1.5)"})
        EXPECT_FALSE(providerCheck(providerWith(members))) << members;
}

TEST(DecodingALine, takesNullForAnAbsentOptional) {
    EXPECT_EQ(check(checkWith(R"(,"http_status":null,"elapsed_ms":null,"error":null)")), check(checkWith("")));
    EXPECT_EQ(
        providerCheck(providerWith(
            R"(,"http_status":null,"elapsed_ms":null,"official_updated_at":null,"error":null,"failure_category":null)")),
        providerCheck(providerWith("")));
}

TEST(DecodingALine, dropsAnUnknownStateOfAService) {
    for (const char* state : {"operational", "degraded", "outage", "maintenance", "unknown"})
        EXPECT_TRUE(providerCheck(providerWith(R"(,"state":")" + std::string(state) + "\""))) << state;
    for (const char* state : {"", "Outage", "down"})
        EXPECT_FALSE(providerCheck(providerWith(R"(,"state":")" + std::string(state) + "\""))) << state;
}

TEST(DecodingALine, dropsWhatIsNoJSON) {
    const std::string good = checkWith("");
    ASSERT_TRUE(check(good));
    for (std::size_t length = 1; length < good.size(); ++length)
        EXPECT_FALSE(check(good.substr(0, length))) << length;
    for (const std::string& bad : {good + "}", good + "x", good + good, good + std::string("\0", 1),
             checkWith(R"(,"x":01)"), checkWith(R"(,"x":tru)"), checkWith(R"(,"x":[1,])"),
             checkWith(R"(,"x":1e999)"), checkWith(R"(,"x":"\ud800")"), checkWith(",\"x\":\"\xFF\""),
             checkWith(",\"x\":\"\t\""), checkWith(","), std::string("[]"), std::string("1"), std::string("null"),
             std::string(" "), std::string("\xEF\xBB\xBF") + good, std::string(100'000, '[')})
        EXPECT_FALSE(check(bad)) << bad.substr(0, 200);
}

TEST(DecodingALine, keepsNothingOfTheLineBefore) {
    HistoryLineDecoder decoder;
    ASSERT_NE(decoder.decodeCheck(Padded(historyLine(full))), nullptr);
    EXPECT_EQ(decoder.decodeCheck(Padded("torn")), nullptr);
    const CheckRecord* second = decoder.decodeCheck(Padded(historyLine(CheckRecord())));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(*second, CheckRecord());
    ASSERT_NE(decoder.decodeProviderCheck(Padded(historyLine(fullProvider))), nullptr);
    const ProviderCheckRecord* third = decoder.decodeProviderCheck(Padded(historyLine(ProviderCheckRecord())));
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(*third, ProviderCheckRecord());
}

TEST(DecodingALine, readsALongLineAsItReadsAShortOne) {
    const std::string blanks(70'000, ' ');
    HistoryLineDecoder decoder;
    HistoryLineDecoder decoderOfLong;
    HistoryLineMutations mutations(5);
    for (int i = 0; i < 4000; ++i) {
        const std::string line = mutations.any(historyLine(full));
        const CheckRecord* record = decoder.decodeCheck(Padded(line));
        const CheckRecord* recordOfLong = decoderOfLong.decodeCheck(Padded(line + blanks));
        ASSERT_EQ(recordOfLong != nullptr, record != nullptr) << line;
        if (record != nullptr) {
            ASSERT_EQ(*recordOfLong, *record) << line;
        }
        const std::string providerLine = mutations.any(historyLine(fullProvider));
        const ProviderCheckRecord* provider = decoder.decodeProviderCheck(Padded(providerLine));
        const ProviderCheckRecord* providerOfLong =
            decoderOfLong.decodeProviderCheck(Padded(blanks + providerLine));
        ASSERT_EQ(providerOfLong != nullptr, provider != nullptr) << providerLine;
        if (provider != nullptr) {
            ASSERT_EQ(*providerOfLong, *provider) << providerLine;
        }
    }
}

TEST(DecodingALine, readsLongValues) {
    CheckRecord record = full;
    record.error = std::string(100'000, '"') + std::string(100'000, '\\') + "ä\x01";
    record.ips.assign(20'000, "2001:db8::\"\\,]");
    record.url = std::string(70'000, '/');
    const auto decoded = check(historyLine(record));
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(*decoded == record);
}

TEST(DecodingALine, dropsALongValueOfAnotherType) {
    std::string ones = "1";
    std::string texts = "\"1\"";
    for (int i = 0; i < 40'000; ++i) {
        ones += ",1";
        texts += " , \"1\"";
    }
    EXPECT_EQ(check(checkWith(",\"ips\":[ " + texts + " ]"))->ips.size(), 40'001u);
    for (const std::string& value : {"[" + ones + "]", "[" + texts + ",1]", "[[" + texts + "]]",
             "{\"a\":[" + texts + "]}", "[" + texts + ",]"}) {
        EXPECT_FALSE(check(checkWith(",\"ips\":" + value)));
        EXPECT_FALSE(check(checkWith(",\"error\":" + value)));
        EXPECT_FALSE(check(checkWith(",\"elapsed_ms\":" + value)));
    }
    EXPECT_TRUE(check(checkWith(",\"error\":[" + ones + "],\"error\":\"e\",\"x\":[" + ones + "]")));
}

TEST(DecodingALine, readsALineOfTheLargestSize) {
    CheckRecord large = full;
    large.error = "";
    large.error = std::string(maximumHistoryLineBytes - historyLine(large).size(), 'x');
    const std::string line = historyLine(large);
    ASSERT_EQ(line.size(), maximumHistoryLineBytes);
    HistoryLineDecoder decoder;
    const CheckRecord* record = decoder.decodeCheck(Padded(line));
    ASSERT_NE(record, nullptr);
    EXPECT_TRUE(*record == large); // a difference would be printed in millions of letters
    EXPECT_NE(decoder.decodeCheck(Padded(historyLine(full))), nullptr);
}
