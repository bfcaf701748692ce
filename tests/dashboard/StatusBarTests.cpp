#include "dashboard/DashboardTest.h"

#include <cstdint>
#include <limits>

namespace kestrin {
namespace {

struct StatusBar : DashboardTest {
    void loadWithInterval(std::int64_t seconds) {
        SiteConfiguration configuration = configurationOf({"a"});
        configuration.intervalSeconds = seconds;
        load(configuration);
    }
};

constexpr const char* secondLine = "All activity ends when this app quits.";

TEST_F(StatusBar, aMonitorThatIsStoppedSaysSo) {
    load(configurationOf({"a"}));
    EXPECT_EQ(content().statusBar,
        (StatusBarContent{false, "pause.circle", StateColor::secondary, "Monitoring is stopped", secondLine}));
    EXPECT_EQ(content().intervalText, "Paused");
}

TEST_F(StatusBar, aCycleThatRunsShowsASpinner) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    ASSERT_TRUE(model->isChecking());
    EXPECT_EQ(content().statusBar,
        (StatusBarContent{true, "", StateColor::secondary, "Checking configured sites…", secondLine}));
    EXPECT_EQ(content().intervalText, "5 minutes interval");
}

TEST_F(StatusBar, betweenTwoCyclesItNamesTheInterval) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    answerChecks();
    EXPECT_EQ(content().statusBar, (StatusBarContent{false, "dot.radiowaves.left.and.right", StateColor::green,
                                       "Checking every 5 minutes", secondLine}));
    EXPECT_EQ(content().intervalText, "5 minutes interval");
}

TEST_F(StatusBar, aCheckNowWhileStoppedShowsASpinnerAndStaysPaused) {
    load(configurationOf({"a"}));
    model->checkNow();
    settle();
    EXPECT_TRUE(content().statusBar.isBusy);
    EXPECT_EQ(content().statusBar.text, "Checking configured sites…");
    EXPECT_EQ(content().intervalText, "Paused");
}

TEST_F(StatusBar, anIntervalOfTheConfigurationIsTheOneNamed) {
    loadWithInterval(1800);
    model->startMonitoring();
    settle();
    answerChecks();
    EXPECT_EQ(content().statusBar.text, "Checking every 30 minutes");
    EXPECT_EQ(content().intervalText, "30 minutes interval");
}

TEST_F(StatusBar, theBottomBarHasItsSymbols) {
    load();
    EXPECT_EQ(content().checkNowSymbol, "arrow.clockwise");
    EXPECT_EQ(content().settingsSymbol, "gearshape");
}

TEST(IntervalText, anIntervalOf60Or119SecondsIsOneMinute) {
    EXPECT_EQ(intervalText(60, formatsOf("en_US")), "1 minute");
    EXPECT_EQ(intervalText(119, formatsOf("en_US")), "1 minute");
}

TEST(IntervalText, from120SecondsTheFractionIsDropped) {
    EXPECT_EQ(intervalText(120, formatsOf("en_US")), "2 minutes");
    EXPECT_EQ(intervalText(150, formatsOf("en_US")), "2 minutes");
    EXPECT_EQ(intervalText(3600, formatsOf("en_US")), "60 minutes");
}

TEST(IntervalText, usesTheDigitsOfTheLocale) {
    EXPECT_EQ(intervalText(300, formatsOf("ar_EG")), "٥ minutes");
    EXPECT_EQ(intervalText(86'400, formatsOf("de_DE")), "1.440 minutes");
}

TEST(IntervalText, survivesAnyInterval) {
    EXPECT_EQ(intervalText(std::numeric_limits<std::int64_t>::max(), formatsOf("en_US")),
        "153,722,867,280,912,930 minutes");
    EXPECT_EQ(intervalText(std::numeric_limits<std::int64_t>::min(), formatsOf("en_US")), "1 minute");
}

TEST(LaunchNotices, areShortNotesWithAWarning) {
    EXPECT_EQ(launchNotice("There is no session bus."),
        (NoteContent{"exclamationmark.triangle.fill", StateColor::orange, "There is no session bus."}));
    EXPECT_LT(launchNotice(std::string(1'000'000, 'x')).text.size(), 2'100U);
}

} // namespace
} // namespace kestrin
