#include "json/JSONWriter.h"

#include "json/JSONParser.h"

#include <gtest/gtest.h>

#include <limits>

using namespace kestrin;

TEST(WritingPrettyJSON, sortsKeysIndentsAndEndsWithALineFeed) {
    const JSONValue value =
        JSONValue::object({{"url", "https://a/b"}, {"list", JSONValue::array({1, JSONValue::object({})})},
            {"empty", JSONValue::array({})}, {"b", JSONValue::object({{"y", true}, {"x", nullptr}})}});
    EXPECT_EQ(writePretty(value), R"({
  "b": {
    "x": null,
    "y": true
  },
  "empty": [],
  "list": [
    1,
    {}
  ],
  "url": "https://a/b"
}
)");
}

TEST(WritingPrettyJSON, sortsKeysAsUTF8Bytes) {
    const JSONValue value = JSONValue::object(
        {{"é", 1}, {"z", 2}, {"Z", 3}, {"a_b", 4}, {"aB", 5}, {"a", 6}, {"😀", 7}, {"\uFFFD", 8}});
    EXPECT_EQ(writePretty(value), "{\n  \"Z\": 3,\n  \"a\": 6,\n  \"aB\": 5,\n  \"a_b\": 4,\n  \"z\": 2,\n  \"é\": "
                                  "1,\n  \"\uFFFD\": 8,\n  \"😀\": 7\n}\n");
}

TEST(WritingCompactJSON, keepsTheOrderGivenAndEndsWithoutLineFeed) {
    EXPECT_EQ(writeCompact(JSONValue::object({{"z", JSONValue::array({1, "a/b"})}, {"a", false}})),
        R"({"z":[1,"a/b"],"a":false})");
}

TEST(WritingJSON, escapesWhatAStringMayNotHold) {
    EXPECT_EQ(writeCompact(JSONValue(std::string("\"\\\b\f\n\r\t\0\x1f\x7f/ä", 13))),
        "\"\\\"\\\\\\b\\f\\n\\r\\t\\u0000\\u001f\x7f/ä\"");
}

TEST(WritingJSON, replacesBytesThatAreNoUTF8) {
    EXPECT_EQ(writeCompact(JSONValue("a\xFF"
                                     "b")),
        "\"a\uFFFDb\"");
    EXPECT_EQ(writeCompact(JSONValue("\xC0\x80")), "\"\uFFFD\uFFFD\"");
    EXPECT_EQ(writeCompact(JSONValue("\xE2\x82")), "\"\uFFFD\"") << "one letter that was cut off";
    EXPECT_EQ(writeCompact(JSONValue("\xF0\x9F\x98x")), "\"\uFFFDx\"");
    EXPECT_EQ(writeCompact(JSONValue("\xED\xA0\x80")), "\"\uFFFD\uFFFD\uFFFD\"") << "a surrogate";
    EXPECT_EQ(writeCompact(JSONValue("\xF4\x90\x80\x80")), "\"\uFFFD\uFFFD\uFFFD\uFFFD\"");
    EXPECT_EQ(writeCompact(JSONValue::object({{"k\x80", 1}})), "{\"k\uFFFD\":1}");
    EXPECT_EQ(writeCompact(JSONValue("ä€😀\U0010FFFF")), "\"ä€😀\U0010FFFF\"");
}

TEST(WritingJSON, givesBackEveryByteStringAsValidJSON) {
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second), '\x80', 'x'};
            const std::string text = writeCompact(JSONValue(bytes));
            ASSERT_NO_THROW(static_cast<void>(parseJSON(text))) << first << " " << second;
        }
}

TEST(WritingJSON, writesNumbersThatReadBackTheSame) {
    for (const JSONValue& value : {JSONValue(0), JSONValue(INT64_MIN), JSONValue(UINT64_MAX), JSONValue(0.1),
             JSONValue(1e300), JSONValue(-2.5e-310)})
        EXPECT_EQ(parseJSON(writeCompact(value)), value) << writeCompact(value);
    EXPECT_EQ(writeCompact(JSONValue(std::numeric_limits<double>::infinity())), "null");
    EXPECT_EQ(writeCompact(JSONValue(std::numeric_limits<double>::quiet_NaN())), "null");
}
