#include "text/Trimming.h"

#include <gtest/gtest.h>
#include <string>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kestrin {
namespace {

TEST(Trimming, takesAwayWhiteSpaceAndLineBreaksAtBothEndsOnly) {
    EXPECT_EQ(trimmed(" \t\n\v\f\r a \n b \r\n\t "), "a \n b");
    EXPECT_EQ(trimmed("\u0085\u00A0\u2028\u3000a\u3000b\u2029\u202F"), "a\u3000b");
    EXPECT_EQ(trimmed("a"), "a");
}

TEST(Trimming, leavesNothingOfWhiteSpaceAlone) {
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed(" \u2003\n\u00A0"), "");
}

TEST(Trimming, takesTheSeparatorsOfUnicodeAndTheLineBreaksAndNoOtherCharacter) {
    // All of the plane that has any of them, and samples of the others.
    for (UChar32 character = 0; character <= 0x10FFFF; character += character < 0xFFFF ? 1 : 251) {
        if (character >= 0xD800 && character <= 0xDFFF) continue; // encode no character
        const bool lineBreak = character == 0x09 || (character >= 0x0A && character <= 0x0D) || character == 0x85;
        const bool separator = (U_MASK(u_charType(character)) & U_GC_Z_MASK) != 0;
        std::string encoded;
        icu::UnicodeString(character).toUTF8String(encoded);
        const std::string text = encoded + "x" + encoded;
        ASSERT_EQ(trimmed(text) == "x", lineBreak || separator) << std::hex << character;
        ASSERT_EQ(trimmed(text) == text, !lineBreak && !separator) << std::hex << character;
    }
}

TEST(Trimming, leavesZeroWidthCharactersAndTheByteOrderMark) {
    EXPECT_EQ(trimmed("\u200Ba\uFEFF"), "\u200Ba\uFEFF");
}

TEST(Trimming, stopsAtBytesThatAreNoUTF8) {
    EXPECT_EQ(trimmed(" \x85 \xA0 "), "\x85 \xA0");
    EXPECT_EQ(trimmed(" \xC2 "), "\xC2");
    EXPECT_EQ(trimmed("\x80\xA8 "), "\x80\xA8");
}

TEST(Trimming, keepsAZeroByte) {
    EXPECT_EQ(trimmed(std::string_view(" \0 ", 3)), std::string_view("\0", 1));
}

} // namespace
} // namespace kestrin
