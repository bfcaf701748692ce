#include "state/JSONObjectWalk.h"

#include "state/HistoryLine.h"
#include "state/HistoryLineMutations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <simdjson.h>

#include <utility>
#include <vector>

using namespace kestrin;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using Members = std::vector<std::pair<std::string, std::string>>;

/// The walk through texts, beside the parser that it must agree with.
class WalkingThroughAnObject : public testing::Test {
protected:
    bool walk(std::string_view text) {
        members.clear();
        JSONObjectWalk walk(
            text, [&](std::string_view key, std::string_view value) { members.emplace_back(key, value); },
            [&](std::string_view scalar) { return isJSON(scalar); });
        return simdjson::validate_utf8(text.data(), text.size()) && walk.run();
    }
    bool isJSON(std::string_view text) {
        return parser.parse(simdjson::padded_string(text)).error() == simdjson::SUCCESS;
    }
    bool isObject(std::string_view text) { return parser.parse(simdjson::padded_string(text)).is_object(); }

    simdjson::dom::parser parser;
    Members members;
};

std::string nested(std::size_t levels, const std::string& inner) {
    return R"({"x":)" + std::string(levels, '[') + inner + std::string(levels, ']') + "}";
}

} // namespace

TEST_F(WalkingThroughAnObject, findsItsMembersAsTheyStand) {
    EXPECT_TRUE(walk(R"( { "a" : 1 ,"b":{"a":[2,{"c":3}]}, "a":"x\"," ,"\u0061":[ ] } )"));
    EXPECT_THAT(members, ElementsAre(Pair("\"a\"", "1"), Pair("\"b\"", R"({"a":[2,{"c":3}]})"),
                             Pair("\"a\"", R"("x\",")"), Pair(R"("\u0061")", "[ ]")));
    EXPECT_TRUE(walk("{}"));
    EXPECT_THAT(members, IsEmpty());
}

TEST_F(WalkingThroughAnObject, refusesWhatIsNoObject) {
    for (const char* text :
        {"", " ", "[]", "1", "null", "\"a\"", "{", "}", "{}}", "{} 1", "{]", "[}", "{,}", R"({"a"})", R"({"a":})",
            R"({"a":1,})", R"({"a":[1,]})", R"({"a":[1}})", R"({1:2})", R"({"a":1 "b":2})"}) {
        EXPECT_FALSE(walk(text)) << text;
        EXPECT_FALSE(isObject(text)) << text;
    }
}

TEST_F(WalkingThroughAnObject, judgesScalarsAsTheParserDoes) {
    for (const char* scalar :
        {"0", "-0", "-", "00", "-01", "01", "1.", "1.0", ".5", "1e5", "1E+5", "1e", "1e+", "1e999", "-1e999",
            "1e-999", "0e999", "999999999999999999", "9999999999999999999", "-9223372036854775808",
            "-9223372036854775809", "18446744073709551615", "18446744073709551616", "1.7976931348623159e308",
            "123456789012345678901234567890.0", "+1", "1-1", "1+1", "0x1", "NaN", "Infinity", "true", "tru",
            "truee", "false", "null", "nulll", "\"\"", "\"\\\"\"", "\"\\\\\"", "\"\\/\\b\\f\\n\\r\\t\"", "\"\\x\"",
            "\"\\\"", "\"\\u00e4\"", "\"\\u00E\"", "\"\\ud800\"", "\"\\udc00\"", "\"\\ud83d\\ude00\"",
            "\"\\ud83d\\u0041\"", "\"\\ud83d\"", "\"\\u0000\"", "\"\t\"", "\"\x7F\"", "\"\xC3\xA4\"", "\"\xC3\"",
            "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"", "\"\xC0\xAF\"", "\xC2\xA0", "'a'"})
        for (const char* around : {R"({"a":%})", R"({"a": % ,"b":[%,%]})"}) {
            std::string text;
            for (const char letter : std::string_view(around))
                text += letter == '%' ? scalar : std::string(1, letter);
            EXPECT_EQ(walk(text), isObject(text)) << text;
        }
}

TEST_F(WalkingThroughAnObject, nestsAsDeepAsTheParserDoes) {
    EXPECT_TRUE(walk(nested(1021, "1")));
    for (std::size_t levels = 1018; levels < 1030; ++levels)
        for (const char* inner : {"", "1", "[]", "{}", R"({"a":1})"})
            EXPECT_EQ(walk(nested(levels, inner)), isObject(nested(levels, inner))) << levels << inner;
    EXPECT_FALSE(walk(nested(1'000'000, "")));
}

TEST_F(WalkingThroughAnObject, judgesNearLinesAsTheParserDoes) {
    CheckRecord record;
    record.timestamp = "2026-01-31T09:05:00Z";
    record.ips = {"1", "2"};
    record.elapsedMS = 12;
    record.error = "e\\\"\u0001ä";
    const std::string line = historyLine(record);
    std::vector<std::string> texts = HistoryLineMutations::ofEveryByte(line);
    for (std::string& text : HistoryLineMutations::ofEveryPart(line))
        texts.push_back(std::move(text));
    HistoryLineMutations mutations(3);
    for (int i = 0; i < 20'000; ++i)
        texts.push_back(mutations.any(line));
    for (const std::string& text : texts)
        ASSERT_EQ(walk(text), isObject(text)) << text;
}
