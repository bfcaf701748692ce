#include "json/JSONParser.h"

#include "json/JSONWriter.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

using namespace kestrin;

namespace {

std::string refusal(std::string_view text) {
    try {
        return "accepted as " + writeCompact(parseJSON(text));
    } catch (const JSONError& error) {
        return error.message;
    }
}

bool refused(std::string_view text) {
    return refusal(text).starts_with("This is not valid JSON: ");
}

std::string nested(std::size_t depth, std::string_view open, std::string_view close) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i)
        text += open;
    for (std::size_t i = 0; i < depth; ++i)
        text += close;
    return text;
}

} // namespace

TEST(ParsingJSON, keepsEveryTypeAndTheOrderOfKeys) {
    EXPECT_EQ(
        parseJSON(R"( {"b": [1, -2, 18446744073709551615, 0.5, true, false, null], "a": {"": "ä\u00e4\n"}} )"),
        JSONValue::object({{"b", JSONValue::array({1, -2, UINT64_MAX, 0.5, true, false, nullptr})},
            {"a", JSONValue::object({{"", "ää\n"}})}}));
}

TEST(ParsingJSON, tellsIntegersFromFractions) {
    EXPECT_EQ(parseJSON("300").signedInteger(), 300);
    EXPECT_EQ(parseJSON("-9223372036854775808").signedInteger(), INT64_MIN);
    EXPECT_EQ(parseJSON("9223372036854775808").signedInteger(), std::nullopt);
    EXPECT_EQ(parseJSON("9223372036854775808").unsignedInteger(), 9223372036854775808u);
    EXPECT_EQ(parseJSON("-1").unsignedInteger(), std::nullopt);
    for (const char* text : {"300.0", "300.9", "3e2", "18446744073709551616", "-9223372036854775809"}) {
        EXPECT_EQ(parseJSON(text).signedInteger(), std::nullopt) << text;
        EXPECT_NE(parseJSON(text).asDouble(), nullptr) << text;
    }
}

TEST(ParsingJSON, refusesAKeyThatStandsTwice) {
    EXPECT_EQ(refusal(R"({"a":1,"b":2,"a":3})"), "This is not valid JSON: the key “a” stands there twice.");
    EXPECT_TRUE(refused(R"({"o":{"x":1,"x":1}})"));
    EXPECT_TRUE(refused(R"({"a":1,"\u0061":1})"));
    EXPECT_FALSE(refused(R"({"a":{"a":1},"b":{"a":1}})"));
}

TEST(ParsingJSON, cutsAHugeDuplicateKeyBetweenLetters) {
    std::string key = "x";
    for (int i = 0; i < 1000; ++i)
        key += "ä";
    const std::string message = refusal("{\"" + key + "\":1,\"" + key + "\":1}");
    EXPECT_EQ(writeCompact(JSONValue(message)), "\"" + message + "\"") << "the message is no UTF-8";
    EXPECT_LT(message.size(), 150u);
}

TEST(ParsingJSON, refusesNULAndByteOrderMark) {
    EXPECT_EQ(refusal(std::string_view("{}\0garbage", 10)), "This is not valid JSON: byte 3 is not acceptable.");
    EXPECT_TRUE(refused(std::string_view("\0", 1)));
    EXPECT_TRUE(refused(std::string_view("\"a\0b\"", 5)));
    EXPECT_EQ(refusal("\xEF\xBB\xBF{}"), "This is not valid JSON: it begins with a byte order mark.");
    EXPECT_EQ(*parseJSON(R"("a\u0000b")").asString(), std::string("a\0b", 3));
}

TEST(ParsingForeignJSON, keepsBothMembersOfAKeyThatStandsTwice) {
    EXPECT_EQ(parseForeignJSON(R"({"a":1,"b":2,"a":3})"), JSONValue::object({{"a", 1}, {"b", 2}, {"a", 3}}));
}

TEST(ParsingForeignJSON, passesOverOneByteOrderMarkInFrontAndNoOther) {
    EXPECT_EQ(parseForeignJSON("\xEF\xBB\xBF{}"), JSONValue::object({}));
    for (const char* text : {"\xEF\xBB\xBF", "\xEF\xBB\xBF\xEF\xBB\xBF{}", "{\xEF\xBB\xBF}", " \xEF\xBB\xBF{}",
             "{}\xEF\xBB\xBF", "\xEF\xBB{}"})
        EXPECT_THROW(static_cast<void>(parseForeignJSON(text)), JSONError) << text;
}

TEST(ParsingForeignJSON, takesWhatIsCloserToZeroThanADoubleCanBeForZero) {
    for (const char* text : {"1e-400", "-1e-400", "0.1e-999999"}) {
        EXPECT_EQ(parseForeignJSON(text), JSONValue(0.0)) << text;
        EXPECT_TRUE(refused(text)) << text;
    }
    for (const char* text : {"1e400", "-1e400"})
        EXPECT_THROW(static_cast<void>(parseForeignJSON(text)), JSONError) << text;
}

TEST(ParsingForeignJSON, isOtherwiseAsStrict) {
    for (const char* text : {"", "{", "{} {}", "[1,]", "// c\n1", "NaN", "\"\xFF\"", R"("\ud800")"})
        EXPECT_THROW(static_cast<void>(parseForeignJSON(text)), JSONError) << text;
    EXPECT_THROW(static_cast<void>(parseForeignJSON(std::string_view("{}\0", 3))), JSONError);
    EXPECT_THROW(static_cast<void>(parseForeignJSON(nested(maximumJSONDepth + 1, "[", "]"))), JSONError);
}

TEST(ParsingJSON, refusesWhatIsNoJSON) {
    for (const char* text :
        {"", " ", "{", "}", "[1,]", "{\"a\":1,}", "{} {}", "{}x", "[1 2]", "{a:1}", "{'a':1}", "tru", "True", "nul",
            "NaN", "Infinity", "01", "+1", "-", "1.", ".5", "1e", "0x10", "1e999", "-1e999", "\"", "\"\\x\"",
            "\"\\u12\"", "\"\t\"", "\"\n\"", "// c\n1", "/* c */ 1", "1 // c", "\f1", "\v1", "\xC2\xA0"})
        EXPECT_TRUE(refused(text)) << text << ": " << refusal(text);
}

TEST(ParsingJSON, refusesBadUTF8AndLoneSurrogates) {
    for (const char* text : {"\"\xFF\"", "\"\xC0\x80\"", "\"\xC3\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"",
             "\"\xE0\x80\x80\"", R"("\ud800")", R"("\udc00")", R"("\ud800\ud800")", R"("\ud800x")"})
        EXPECT_TRUE(refused(text)) << text;
    EXPECT_EQ(*parseJSON(R"("\ud83d\ude00")").asString(), "😀");
}

TEST(ParsingJSON, acceptsTheMaximumDepthAndRefusesOneMore) {
    EXPECT_FALSE(refused(nested(maximumJSONDepth, "[", "]")));
    EXPECT_EQ(refusal(nested(maximumJSONDepth + 1, "[", "]")),
        "This is not valid JSON: it is nested more than 128 levels deep.");
    EXPECT_FALSE(
        refused("[" + nested(maximumJSONDepth - 1, "[", "]") + "," + nested(maximumJSONDepth - 1, "[", "]") + "]"));
}

TEST(ParsingJSON, survivesAnyDepth) {
    EXPECT_TRUE(refused(nested(100'000, "[", "]")));
    EXPECT_TRUE(refused(nested(100'000, "{\"a\":", "}")));
    EXPECT_TRUE(refused(std::string(5'000'000, '[')));
}

TEST(ParsingJSON, survivesMillionsOfKeys) {
    std::string text = "{";
    for (int i = 0; i < 200'000; ++i)
        text += "\"k" + std::to_string(i) + "\":0,";
    EXPECT_EQ(parseJSON(text + "\"z\":0}").asObject()->size(), 200'001u);
    EXPECT_TRUE(refused(text + "\"k7\":0}"));
}

TEST(ParsingJSON, readsFractionsAlikeInEveryLocale) {
    const std::string former = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* locale : {"C", "de_DE.UTF-8", "fa_IR.UTF-8", "ps_AF.UTF-8"}) {
        std::setlocale(LC_NUMERIC, locale); // one that is not installed leaves the former
        EXPECT_EQ(*parseJSON("-1234.5e-1").asDouble(), -123.45) << locale;
        EXPECT_EQ(writeCompact(JSONValue(0.5)), "0.5") << locale;
    }
    std::setlocale(LC_NUMERIC, former.c_str());
}
