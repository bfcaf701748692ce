#include "destinations/URLCharacters.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace kestrin {
namespace {

using namespace std::string_view_literals;

TEST(URLCharacters, areEveryASCIISignExceptControlsAndTheBackslash) {
    for (int byte = 0; byte < 0x80; ++byte) {
        const std::string text = std::string("a") + static_cast<char>(byte) + "b";
        EXPECT_EQ(hasOnlyURLCharacters(text), byte >= 0x20 && byte != 0x7F && byte != '\\') << byte;
    }
}

TEST(URLCharacters, areTheFirstAndLastOfEveryLengthOfUTF8) {
    for (const auto text : {"\xC2\xA0"sv, "\xDF\xBF"sv, "\xE0\xA0\x80"sv, "\xED\x9F\xBF"sv, "\xEE\x80\x80"sv,
             "\xEF\xBF\xBF"sv, "\xF0\x90\x80\x80"sv, "\xF4\x8F\xBF\xBF"sv}) {
        EXPECT_TRUE(hasOnlyURLCharacters(text)) << text;
    }
    EXPECT_TRUE(hasOnlyURLCharacters(""));
}

TEST(URLCharacters, areNotTheControlsBeyondASCII) {
    EXPECT_FALSE(hasOnlyURLCharacters("\xC2\x80"));
    EXPECT_FALSE(hasOnlyURLCharacters("\xC2\x85"));
    EXPECT_FALSE(hasOnlyURLCharacters("\xC2\x9F"));
}

TEST(URLCharacters, areNotBytesOutsideUTF8) {
    for (const auto text : {"\x80"sv, "\xBF"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC2"sv, "\xC2g"sv, "\xE0\x9F\xBF"sv,
             "\xE2\x82"sv, "\xED\xA0\x80"sv, "\xED\xBF\xBF"sv, "\xF0\x8F\xBF\xBF"sv, "\xF0\x9F\x98"sv,
             "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xFE"sv, "\xFF"sv}) {
        EXPECT_FALSE(hasOnlyURLCharacters(text));
        EXPECT_FALSE(hasOnlyURLCharacters(std::string("a").append(text).append("b")));
    }
}

} // namespace
} // namespace kestrin
