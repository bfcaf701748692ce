#include "text/Words.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(WordsOfAText, standBetweenRunsOfWhiteSpaceOfAnyKind) {
    EXPECT_THAT(wordsOf("  digital\t\n cloud\r"), ElementsAre("digital", "cloud"));
    EXPECT_THAT(wordsOf("a\u00A0b\u3000c\u2028d\u0085e"), ElementsAre("a", "b", "c", "d", "e"));
}

TEST(WordsOfAText, areNoneInATextOfBlanks) {
    EXPECT_THAT(wordsOf(""), IsEmpty());
    EXPECT_THAT(wordsOf(" \t\u2003\n"), IsEmpty());
}

TEST(WordsOfAText, keepEveryOtherCharacter) {
    EXPECT_THAT(wordsOf("Fly.io Größe\u200Bnull"), ElementsAre("Fly.io", "Größe\u200Bnull"));
}

TEST(WordsOfAText, keepBytesThatAreNoText) {
    EXPECT_THAT(wordsOf("\xFF\xC3 \xE2\x80"), ElementsAre("\xFF\xC3", "\xE2\x80"));
}

} // namespace
} // namespace kestrin
