#include "text/ASCIICase.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(LoweringASCII, changesLettersOfASCIIAndNothingElse) {
    EXPECT_EQ(asciiLowercase(""), "");
    EXPECT_EQ(asciiLowercase("AbZ@[`{09"), "abz@[`{09");
    EXPECT_EQ(asciiLowercase("ÄÖ\xC3İ"), "ÄÖ\xC3İ");
}

} // namespace
} // namespace kestrin
