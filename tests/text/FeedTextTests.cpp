#include "text/FeedText.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kestrin {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t ample = 1000;

std::string encoded(UChar32 character) {
    std::string bytes;
    icu::UnicodeString(character).toUTF8String(bytes);
    return bytes;
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}

TEST(FeedText, leavesAPlainTextAsItIs) {
    for (const std::string_view text :
        {"All Systems Operational"sv, "Größe – 100 %"sv, "障害が発生しています"sv, "الخدمة تعمل"sv, "שירות"sv,
            "हिन्दी"sv, "\u00E9 and e\u0301"sv, "🚀"sv, "\uFFFD"sv, "a"sv, "<b>&amp;"sv})
        EXPECT_EQ(cleanFeedText(text, ample), text);
    EXPECT_EQ(cleanFeedText("", ample), "");
}

TEST(FeedText, joinsItsPiecesBySingleBlanks) {
    EXPECT_EQ(cleanFeedText("  a\t\tb\r\n c \v\f d\n", ample), "a b c d");
    EXPECT_EQ(cleanFeedText("a\u00A0b\u1680c\u2003d\u2028e\u2029f\u202Fg\u205Fh\u3000i\u0085j", ample),
        "a b c d e f g h i j");
    EXPECT_EQ(cleanFeedText(" \t\u3000\n", ample), "");
}

TEST(FeedText, hasBlanksForControlCharacters) {
    EXPECT_EQ(cleanFeedText("a\0b\x07\x1B[31mc\x7F\u0080d\u009F"sv, ample), "a b [31mc d");
}

TEST(FeedText, hasBlanksForWhatTurnsOrHidesText) {
    EXPECT_EQ(cleanFeedText("\u202Eevil\u202C \u2066b\u2069\u200E\u200Fc\u061C", ample), "evil b c");
    EXPECT_EQ(cleanFeedText("a\u200Bb\u200Cc\u200Dd\u2060e\uFEFFf\u00ADg", ample), "a b c d e f g");
    EXPECT_EQ(cleanFeedText("x\U000E0041\U000E007Fy\uFFF9z\U0001D173\u0600!", ample), "x y z !");
}

TEST(FeedText, takesEmojiThatAreJoinedApart) {
    EXPECT_EQ(cleanFeedText("👩\u200D🚒", ample), "👩 🚒");
}

TEST(FeedText, hasBlanksForCharactersThatAreNone) {
    EXPECT_EQ(cleanFeedText("a\uFFFEb\uFFFFc\uFDD0d\U0010FFFFe\u0378f", ample), "a b c d e f");
}

TEST(FeedText, keepsPrivateCharactersAndMarks) {
    EXPECT_EQ(cleanFeedText("\uE000\U000F0000 ✔\uFE0F", ample), "\uE000\U000F0000 ✔\uFE0F");
}

TEST(FeedText, becomesABlankForExactlyTheCharactersThatAreUnfit) {
    // All of the plane that has nearly all of them, and samples of the others.
    for (UChar32 character = 0; character <= 0x10FFFF; character += character < 0xFFFF ? 1 : 61) {
        if (character >= 0xD800 && character <= 0xDFFF) continue; // encode no character
        const int category = u_charType(character);
        const bool unfit = category == U_CONTROL_CHAR || category == U_FORMAT_CHAR || category == U_UNASSIGNED;
        const bool separator =
            category == U_SPACE_SEPARATOR || category == U_LINE_SEPARATOR || category == U_PARAGRAPH_SEPARATOR;
        const std::string text = "a" + encoded(character) + "b";
        ASSERT_EQ(cleanFeedText(text, ample), unfit || separator ? "a b" : text) << std::hex << character;
    }
}

TEST(FeedText, hasAReplacementForBytesThatAreNoUTF8) {
    EXPECT_EQ(cleanFeedText("a\xFF\xC0\xAF b\xE2\x82"sv, ample), "a\uFFFD\uFFFD\uFFFD b\uFFFD");
    EXPECT_EQ(cleanFeedText("\xED\xA0\x80"sv, ample), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(cleanFeedText("\xF0\x9F\x9A"sv, ample), "\uFFFD");
    EXPECT_EQ(cleanFeedText("\xE2\x80 \xAE"sv, ample), "\uFFFD \uFFFD");
}

TEST(FeedText, isCutAtTheLimit) {
    EXPECT_EQ(cleanFeedText("abcdef", 6), "abcdef");
    EXPECT_EQ(cleanFeedText("abcdef", 5), "abcde");
    EXPECT_EQ(cleanFeedText("abcdef", 0), "");
    EXPECT_EQ(cleanFeedText(std::string(200, 'd'), 160), std::string(160, 'd'));
}

TEST(FeedText, hasNoBlankAtItsEndAfterTheCut) {
    EXPECT_EQ(cleanFeedText("abc def", 4), "abc");
    EXPECT_EQ(cleanFeedText("abc  \u200B def", 5), "abc d");
    EXPECT_EQ(cleanFeedText("    abc    ", 3), "abc");
}

TEST(FeedText, countsWhatAReaderTakesForCharacters) {
    EXPECT_EQ(cleanFeedText(repeated("e\u0301", 100), 80), repeated("e\u0301", 80));
    EXPECT_EQ(cleanFeedText(repeated("🇩🇪", 5), 3), repeated("🇩🇪", 3));
    EXPECT_EQ(cleanFeedText(repeated("👍🏽", 5), 3), repeated("👍🏽", 3));
    EXPECT_EQ(cleanFeedText(repeated("\u1112\u1161\u11AB", 5), 3), repeated("\u1112\u1161\u11AB", 3));
    EXPECT_EQ(cleanFeedText("x" + repeated("\u0301", 5000) + "yz", 2), "x" + repeated("\u0301", 5000) + "y");
    EXPECT_EQ(cleanFeedText("障害が発生", 2), "障害");
}

TEST(FeedText, thatIsWithinTheLimitInCharactersAloneIsNotCut) {
    const std::string text = repeated("e\u0301", 80);
    EXPECT_EQ(cleanFeedText(text, 80), text);
}

} // namespace
} // namespace kestrin
