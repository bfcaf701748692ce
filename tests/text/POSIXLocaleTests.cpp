#include "text/POSIXLocale.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(POSIXLocales, loseTheirEncoding) {
    EXPECT_EQ(icuLocaleName("de_DE"), "de_DE");
    EXPECT_EQ(icuLocaleName("en_GB.UTF-8"), "en_GB");
    EXPECT_EQ(icuLocaleName("en_GB.UTF-8@euro"), "en_GB");
    EXPECT_EQ(icuLocaleName(""), "");
}

TEST(POSIXLocales, aModifierThatNamesAScriptBecomesThatScript) {
    EXPECT_EQ(icuLocaleName("sr_RS@latin"), "sr_Latn_RS");
    EXPECT_EQ(icuLocaleName("uz_UZ.UTF-8@cyrillic"), "uz_Cyrl_UZ");
    EXPECT_EQ(icuLocaleName("sd@devanagari"), "sd_Deva");
}

TEST(POSIXLocales, keywordsOfICUStay) {
    EXPECT_EQ(icuLocaleName("en_US.UTF-8@hours=h23"), "en_US@hours=h23");
}

} // namespace
} // namespace kestrin
