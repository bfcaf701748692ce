#include "platform/HiddenVariables.h"

#include "platform/SavedEnvironment.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace kestrin {

namespace {

constexpr const char* first = "KESTRIN_TEST_FIRST";
constexpr const char* second = "KESTRIN_TEST_SECOND";
constexpr const char* longer = "KESTRIN_TEST_FIRST_AND_MORE";
constexpr const char* both[] = {first, second};

class HiddenVariablesOfAProcess : public testing::Test {
protected:
    void SetUp() override {
        qputenv(first, "one");
        qputenv(second, "");
        qputenv(longer, "KESTRIN_TEST_FIRST=x");
    }
    test::SavedEnvironment saved{first, second, longer, "KESTRIN_TEST_NEW"};
};

} // namespace

TEST_F(HiddenVariablesOfAProcess, areNotSetUntilTheyAreRestored) {
    HiddenVariables hidden(both);
    EXPECT_EQ(std::getenv(first), nullptr);
    EXPECT_EQ(std::getenv(second), nullptr);
    hidden.restore();
    EXPECT_STREQ(std::getenv(first), "one");
    EXPECT_STREQ(std::getenv(second), "");
}

TEST_F(HiddenVariablesOfAProcess, areBackAfterTheLifeOfTheObject) {
    {
        const HiddenVariables hidden(both);
    }
    EXPECT_STREQ(std::getenv(first), "one");
}

TEST_F(HiddenVariablesOfAProcess, leaveAllOthersAlone) {
    const HiddenVariables hidden(both);
    EXPECT_STREQ(std::getenv(longer), "KESTRIN_TEST_FIRST=x");
}

TEST_F(HiddenVariablesOfAProcess, areBackInTheirPlacesWhenOthersCameAndWentMeanwhile) {
    HiddenVariables hidden(both);
    unsetenv(longer);
    setenv("KESTRIN_TEST_NEW", "new", 1);
    const char* place = std::getenv("KESTRIN_TEST_NEW");
    hidden.restore();
    EXPECT_STREQ(std::getenv(first), "one");
    EXPECT_STREQ(std::getenv(second), "");
    EXPECT_EQ(std::getenv("KESTRIN_TEST_NEW"), place);
    EXPECT_EQ(std::getenv(longer), nullptr);
}

TEST_F(HiddenVariablesOfAProcess, areRestoredOnlyOnce) {
    HiddenVariables hidden(both);
    hidden.restore();
    unsetenv(first);
    hidden.restore();
    EXPECT_EQ(std::getenv(first), nullptr);
}

TEST_F(HiddenVariablesOfAProcess, thatWereNeverSetStayUnset) {
    unsetenv(first);
    HiddenVariables hidden(both);
    hidden.restore();
    EXPECT_EQ(std::getenv(first), nullptr);
}

} // namespace kestrin
