#include "dashboard/DashboardTest.h"

namespace kestrin {
namespace {

struct DashboardBody : DashboardTest {};

constexpr const char* firstWebsiteText =
    "Kestrin lives in the menu bar, not the Dock. Open Settings to add a website — nothing runs until you press "
    "Start.";

TEST_F(DashboardBody, theVeryFirstLoadShowsThatItLoads) {
    create();
    EXPECT_EQ(body<LoadingContent>(), LoadingContent{"Loading monitor history…"});
}

TEST_F(DashboardBody, aFirstRunAsksForTheFirstWebsite) {
    load();
    EXPECT_EQ(body<PanelContent>(), (PanelContent{"globe", StateColor::secondary, "Add your first website",
                                        firstWebsiteText, "Open Settings"}));
}

TEST_F(DashboardBody, aConfigurationWithoutWebsitesAsksForTheFirstOne) {
    load(configurationOf({}));
    EXPECT_EQ(body<PanelContent>().title, "Add your first website");
}

TEST_F(DashboardBody, aReloadWhileTheDashboardIsOpenLeavesTheContentUpWithoutASpinner) {
    load(configurationOf({"a", "b"}));
    const DashboardContent before = content();
    model->reload();
    ASSERT_TRUE(model->isLoading());
    EXPECT_EQ(content(), before);
}

TEST_F(DashboardBody, aFailedReloadReplacesTheContentAndReopeningBringsItBack) {
    load(configurationOf({"a"}));
    const DashboardContent before = content();
    writeSitesText("[]");
    model->refreshIfStateChanged();
    settle();
    EXPECT_EQ(body<PanelContent>(), (PanelContent{"exclamationmark.triangle", StateColor::orange,
                                        "Couldn’t Read Monitor Data", *model->loadError(), std::nullopt}));
    EXPECT_FALSE(content().header.picker);

    writeSites(configurationOf({"a"}));
    model->refreshIfStateChanged();
    EXPECT_FALSE(isLoadingShown());
    settle();
    EXPECT_EQ(content(), before);
}

TEST_F(DashboardBody, aFailedFirstLoadShowsItsMessage) {
    writeSitesText("[]");
    load();
    EXPECT_EQ(body<PanelContent>().description, *model->loadError());
}

TEST_F(DashboardBody, theAttentionPanelWinsOverTheHistoryOfASelectedWebsite) {
    SiteConfiguration configuration = configurationOf({"a", "b"});
    configuration.sites[1].url = "http://example.com/";
    load(configuration);
    ASSERT_TRUE(model->selectedSnapshot());
    EXPECT_EQ(body<PanelContent>(), (PanelContent{"globe.badge.exclamationmark", StateColor::orange,
                                        "Website Needs Attention", *model->configurationIssue(), "Open Settings"}));
}

TEST_F(DashboardBody, otherwiseTheSelectedWebsiteIsShown) {
    load(configurationOf({"a", "b"}));
    EXPECT_EQ(body<WebsitePageContent>().summary.name, "Site a");
    model->selectSite("b");
    settle();
    EXPECT_EQ(body<WebsitePageContent>().summary.name, "Site b");
}

TEST_F(DashboardBody, theServicesPageShowsWhileItIsChosenAndServicesAreOn) {
    load(withServices(configurationOf({"a"}), {"openai"}));
    EXPECT_TRUE(std::holds_alternative<WebsitePageContent>(content().body));
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_EQ(body<ServicesPageContent>().services.size(), 1U);
}

TEST_F(DashboardBody, theServicesPageDoesNotMindAWebsiteThatNeedsAttention) {
    SiteConfiguration configuration = withServices(configurationOf({"a"}), {"openai"});
    configuration.sites[0].url = "http://example.com/";
    load(configuration);
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_TRUE(std::holds_alternative<ServicesPageContent>(content().body));
}

TEST_F(DashboardBody, servicesSwitchedOffWhileTheirPageShowsGiveWayToTheWebsitesAndThePageKeepsItsValue) {
    SiteConfiguration configuration = withServices(configurationOf({"a"}), {"openai"});
    load(configuration);
    model->setMonitorPage(MonitorPage::providers);
    configuration.providerStatus.enabled = false;
    writeSites(configuration);
    model->reload();
    settle();
    EXPECT_TRUE(std::holds_alternative<WebsitePageContent>(content().body));
    EXPECT_FALSE(content().pageSwitch);
    EXPECT_EQ(model->monitorPage(), MonitorPage::providers);
}

TEST_F(DashboardBody, withoutServicesThePanelSaysWhereToChooseThem) {
    load(withServices(configurationOf({"a"}), {}));
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_EQ(body<PanelContent>(), (PanelContent{"checkmark.shield", StateColor::secondary, "No services enabled",
                                        "Choose services in Settings.", "Open Settings"}));
}

TEST_F(DashboardBody, withoutServicesThePanelSaysWhatIsWrongWithTheAddedOnes) {
    customProviders->loadFailure = "The added services cannot be read.";
    load(withServices(configurationOf({"a"}), {}));
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_EQ(body<PanelContent>().description, *model->customProviderIssue());
}

TEST_F(DashboardBody, aProblemOfTheAddedServicesStandsAboveTheOthers) {
    customProviders->loadFailure = "The added services cannot be read.";
    load(withServices(configurationOf({"a"}), {"openai"}));
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_EQ(body<ServicesPageContent>().issue,
        (NoteContent{"exclamationmark.triangle.fill", StateColor::orange, *model->customProviderIssue()}));
}

TEST_F(DashboardBody, aFailedAppendIsSaidUntilACycleWorksAgain) {
    load(configurationOf({"a"}));
    EXPECT_FALSE(body<WebsitePageContent>().operationError);
    writer.failAppend(1, "No space left on device");
    model->checkNow();
    settle();
    answerChecks();
    EXPECT_EQ(body<WebsitePageContent>().operationError,
        (NoteContent{"exclamationmark.triangle.fill", StateColor::orange, *model->operationError()}));

    model->checkNow();
    settle();
    answerChecks();
    EXPECT_FALSE(body<WebsitePageContent>().operationError);
}

} // namespace
} // namespace kestrin
