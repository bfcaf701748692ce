#include "text/LocaleCase.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>

namespace kestrin {
namespace {

TEST(LocaleLowercase, followsTheLocaleThatIsNamed) {
    EXPECT_EQ(localeLowercase("JIRA", "en_US.UTF-8"), "jira");
    EXPECT_EQ(localeLowercase("JIRA", "tr_TR.UTF-8"), "jıra");
    EXPECT_EQ(localeLowercase("JİRA", "tr_TR.UTF-8"), "jira");
}

TEST(LocaleLowercase, knowsLettersOfEveryScript) {
    EXPECT_EQ(localeLowercase("ÄÖÜ ΣΑΣ Ж", "de_DE.UTF-8"), "äöü σας ж");
}

TEST(LocaleLowercase, withoutANameLowersByTheUsersLocale) {
    const icu::Locale former;
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault("tr_TR", status);
    const std::string lowered = localeLowercase("JIRA 1-2");
    icu::Locale::setDefault(former, status);
    ASSERT_TRUE(U_SUCCESS(status));
    EXPECT_EQ(lowered, "jıra 1-2");
    EXPECT_EQ(localeLowercase(""), "");
}

TEST(LocaleLowercase, replacesBytesThatAreNoText) {
    EXPECT_EQ(localeLowercase("A\xFF\xC3", "en_US"), "a\uFFFD\uFFFD");
}

} // namespace
} // namespace kestrin
