#include "dashboard/DashboardCommands.h"

#include "dashboard/DashboardTest.h"

namespace kestrin {
namespace {

struct DashboardCommands : DashboardTest {
    static Command disabled(CommandID id, const std::string& label, const std::string& reason) {
        return {id, label, false, reason};
    }
    static Command enabled(CommandID id, const std::string& label) { return {id, label, true, ""}; }

    void expectNothingToCheck(const std::string& reason) const {
        EXPECT_EQ(startOrStop(), disabled(CommandID::startOrStop, "Start", reason));
        EXPECT_EQ(checkNow(), disabled(CommandID::checkNow, "Check now", reason));
    }
};

TEST_F(DashboardCommands, thereIsOneOfEachInAFixedOrder) {
    load(configurationOf({"a"}));
    const std::vector<Command> expected = {enabled(CommandID::openDashboard, "Open dashboard"),
        enabled(CommandID::startOrStop, "Start"), enabled(CommandID::checkNow, "Check now"),
        enabled(CommandID::openSettings, "Settings"), enabled(CommandID::quit, "Quit")};
    EXPECT_EQ(content().commands, expected);
}

TEST_F(DashboardCommands, settingsThatDoNotExistYetSaySo) {
    settings = SettingsAccess::notAvailable;
    load(configurationOf({"a"}));
    EXPECT_EQ(command(CommandID::openSettings),
        disabled(CommandID::openSettings, "Settings", "Settings are not available in this version yet."));
}

TEST_F(DashboardCommands, duringTheFirstLoadThereIsNothingToCheckYet) {
    create();
    expectNothingToCheck("Wait until the monitor history is loaded.");
    EXPECT_TRUE(command(CommandID::quit).enabled);
}

TEST_F(DashboardCommands, aReloadKeepsThemEnabled) {
    load(configurationOf({"a"}));
    model->reload();
    ASSERT_TRUE(model->isLoading());
    EXPECT_TRUE(startOrStop().enabled);
    EXPECT_TRUE(checkNow().enabled);
}

TEST_F(DashboardCommands, dataThatCannotBeReadSaysHowToTryAgain) {
    writeSitesText("[]");
    load();
    expectNothingToCheck("Monitor data couldn’t be read. Reopen the dashboard to try again.");
    model->reload();
    expectNothingToCheck("Wait until the monitor history is loaded.");
}

TEST_F(DashboardCommands, aFirstRunAsksForAWebsite) {
    load();
    expectNothingToCheck("Add a website in Settings first.");
}

TEST_F(DashboardCommands, disabledWebsitesAloneAreNothingToCheck) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.sites[0].enabled = false;
    load(configuration);
    expectNothingToCheck("Turn on a website in Settings first.");
}

TEST_F(DashboardCommands, websitesThatMayNotBeContactedAreNothingToCheck) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.sites[0].url = "http://example.com/";
    load(configuration);
    expectNothingToCheck("Give a website a public HTTPS URL in Settings first.");
}

TEST_F(DashboardCommands, oneWebsiteThatMayBeContactedIsEnough) {
    SiteConfiguration configuration = configurationOf({"a", "b"});
    configuration.sites[0].url = "http://example.com/";
    load(configuration);
    EXPECT_TRUE(startOrStop().enabled);
    EXPECT_TRUE(checkNow().enabled);
}

TEST_F(DashboardCommands, whatCanBeCheckedDependsOnThePageThatShows) {
    load(withServices(configurationOf({}), {"openai"}));
    expectNothingToCheck("Add a website in Settings first.");
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_TRUE(startOrStop().enabled);
    EXPECT_TRUE(checkNow().enabled);
}

TEST_F(DashboardCommands, aServicesPageWithoutServicesHasNothingToCheckThoughThereAreWebsites) {
    load(withServices(configurationOf({"a"}), {}));
    EXPECT_TRUE(checkNow().enabled);
    model->setMonitorPage(MonitorPage::providers);
    expectNothingToCheck("Choose a service in Settings first.");
}

TEST_F(DashboardCommands, aPageOfServicesThatAreOffDoesNotCount) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.providerStatus = {.enabled = false, .providerIDs = {"openai"}};
    load(configuration);
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_TRUE(startOrStop().enabled);
}

TEST_F(DashboardCommands, theyFollowTheMonitor) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    EXPECT_EQ(startOrStop(), enabled(CommandID::startOrStop, "Stop"));
    EXPECT_EQ(
        checkNow(), disabled(CommandID::checkNow, "Checking", "A check is running. Wait until it has finished."));
    answerChecks();
    EXPECT_EQ(startOrStop(), enabled(CommandID::startOrStop, "Stop"));
    EXPECT_EQ(checkNow(), enabled(CommandID::checkNow, "Check now"));
    model->stopMonitoring();
    EXPECT_EQ(startOrStop(), enabled(CommandID::startOrStop, "Start"));
}

TEST_F(DashboardCommands, stopStaysPossibleWhenNothingIsLeftToCheck) {
    load(configurationOf({"a"}));
    model->startMonitoring();
    settle();
    answerChecks();
    writeSites(configurationOf({}));
    model->reload();
    settle();
    EXPECT_EQ(startOrStop(), enabled(CommandID::startOrStop, "Stop"));
    EXPECT_EQ(checkNow(), disabled(CommandID::checkNow, "Check now", "Add a website in Settings first."));
}

} // namespace
} // namespace kestrin
