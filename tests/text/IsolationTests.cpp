#include "text/Isolation.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(IsolationInSentences, putsATextBetweenIsolates) {
    EXPECT_EQ(isolatedInSentence("متجر"), "\u2068متجر\u2069");
    EXPECT_EQ(isolatedInSentence(""), "\u2068\u2069");
}

TEST(IsolationInSentences, aTextCannotEndItsIsolationItself) {
    EXPECT_EQ(isolatedInSentence("a\u2069b\u2066c\u2067d\u2068e"), "\u2068abcde\u2069");
}

TEST(IsolationInSentences, aTextCannotTurnItself) {
    EXPECT_EQ(isolatedInSentence("\u202Aa\u202Bb\u202Cc\u202Dd\u202E"), "\u2068abcd\u2069");
}

TEST(IsolationInSentences, leavesTheNeighboursOfThoseCharacters) {
    EXPECT_EQ(isolatedInSentence("\u2029\u202F\u2065\u206A…"), "\u2068\u2029\u202F\u2065\u206A…\u2069");
}

TEST(IsolationInSentences, standsBytesThatAreNoText) {
    EXPECT_EQ(isolatedInSentence("\xE2\x80"), "\u2068\xE2\x80\u2069");
}

} // namespace
} // namespace kestrin
