#include "text/Shortening.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(ShorteningForDisplay, leavesATextThatFits) {
    EXPECT_EQ(shortenedForDisplay("", 3), "");
    EXPECT_EQ(shortenedForDisplay("abc", 3), "abc");
}

TEST(ShorteningForDisplay, cutsALongerOneAndSaysSo) {
    EXPECT_EQ(shortenedForDisplay("abcd", 3), "abc…");
}

TEST(ShorteningForDisplay, cutsBetweenLetters) {
    EXPECT_EQ(shortenedForDisplay("aäö", 2), "a…");
    EXPECT_EQ(shortenedForDisplay("aäö", 3), "aä…");
    EXPECT_EQ(shortenedForDisplay("\U0001F426\U0001F426", 7), "\U0001F426…");
}

TEST(ShorteningForDisplay, makesControlCharactersBlanks) {
    EXPECT_EQ(shortenedForDisplay("a\nb\tc\x7f", 10), "a b c ");
}

TEST(ShorteningForDisplay, makesEveryLineBreakABlank) {
    EXPECT_EQ(shortenedForDisplay("a\u0085b\u2028c\u2029\u2029d", 40), "a b c  d");
}

TEST(ShorteningForDisplay, standsBytesThatAreNoText) {
    EXPECT_EQ(shortenedForDisplay("\x80\x80\x80", 2), "…");
}

} // namespace
} // namespace kestrin
