#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

NotificationRoute toWebsite(std::string id) {
    return {.target = {.kind = NotificationTargetKind::website, .id = std::move(id)}};
}

NotificationRoute toService(std::string id) {
    return {.target = {.kind = NotificationTargetKind::provider, .id = std::move(id)}};
}

class ShowingARoute : public MonitorTest {
protected:
    static SiteConfiguration withServices(const std::vector<std::string>& siteIDs) {
        SiteConfiguration configuration = configurationOf(siteIDs);
        configuration.providerStatus.enabled = true;
        return configuration;
    }

    void expectNothingChangesBy(const NotificationRoute& route) {
        const std::string site = model->selectedSiteID();
        const std::string service = model->selectedProviderID();
        const MonitorPage page = model->monitorPage();
        int changes = 0;
        const auto listening = model->onChange([&] { ++changes; });
        model->show(route);
        settle();
        EXPECT_EQ(model->selectedSiteID(), site);
        EXPECT_EQ(model->selectedProviderID(), service);
        EXPECT_EQ(model->monitorPage(), page);
        EXPECT_EQ(changes, 0);
    }
};

TEST_F(ShowingARoute, toAWebsiteShowsItOnItsPage) {
    load(withServices({"a", "b"}));
    model->setMonitorPage(MonitorPage::providers);
    int changes = 0;
    const auto listening = model->onChange([&] { ++changes; });
    model->show(toWebsite("b"));
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(model->selectedSnapshot()->site.id, "b");
    EXPECT_EQ(model->monitorPage(), MonitorPage::sites);
    EXPECT_EQ(model->selectedProviderID(), "openai");
    EXPECT_GT(changes, 0);
}

TEST_F(ShowingARoute, toAServiceShowsItOnItsPage) {
    load(withServices({"a", "b"}));
    model->show(toService("claude"));
    EXPECT_EQ(model->selectedProviderID(), "claude");
    EXPECT_EQ(model->monitorPage(), MonitorPage::providers);
    EXPECT_EQ(model->selectedSiteID(), "a");
}

TEST_F(ShowingARoute, toAWebsiteIsNotPersisted) {
    load(withServices({"a", "b"}));
    model->show(toWebsite("b"));
    settle();
    EXPECT_TRUE(writer.saved.empty());
    EXPECT_EQ(model->configuration()->activeSiteID, std::nullopt);
    create();
    settle();
    EXPECT_EQ(model->selectedSiteID(), "a");
}

TEST_F(ShowingARoute, outlastsAReload) {
    load(withServices({"a", "b"}));
    model->show(toWebsite("b"));
    model->reload();
    settle();
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(model->monitorPage(), MonitorPage::sites);
}

TEST_F(ShowingARoute, ofAnotherVersionIsIgnored) {
    load(withServices({"a", "b"}));
    for (const int version : {0, 2, -1}) {
        NotificationRoute route = toWebsite("b");
        route.schemaVersion = version;
        expectNothingChangesBy(route);
    }
}

TEST_F(ShowingARoute, toATargetThatDoesNotExistIsIgnored) {
    load(withServices({"a", "b"}));
    model->setMonitorPage(MonitorPage::providers);
    expectNothingChangesBy(toWebsite("c"));
    expectNothingChangesBy(toWebsite(""));
    expectNothingChangesBy(toService("nobody"));
}

TEST_F(ShowingARoute, tellsAWebsiteFromAServiceWithTheSameID) {
    load(withServices({"a", "openai"}));
    expectNothingChangesBy(toService("a"));
    expectNothingChangesBy(toWebsite("claude"));
    model->show(toWebsite("openai"));
    EXPECT_EQ(model->selectedSiteID(), "openai");
    EXPECT_EQ(model->monitorPage(), MonitorPage::sites);
}

TEST_F(ShowingARoute, toATargetThatIsNotMonitoredIsIgnored) {
    SiteConfiguration configuration = withServices({"a", "disabled", "private"});
    configuration.sites[1].enabled = false;
    configuration.sites[2].url = "http://private.example.com/";
    configuration.providerStatus.providerIDs = {"openai"};
    load(configuration);
    expectNothingChangesBy(toWebsite("disabled"));
    expectNothingChangesBy(toWebsite("private"));
    expectNothingChangesBy(toService("claude"));
}

TEST_F(ShowingARoute, toAServiceIsIgnoredWhileServiceStatusIsOff) {
    load(configurationOf({"a"}));
    expectNothingChangesBy(toService("openai"));
}

TEST_F(ShowingARoute, isIgnoredWithoutAConfiguration) {
    writeSitesText("nonsense");
    load();
    ASSERT_TRUE(model->loadError().has_value());
    expectNothingChangesBy(toWebsite("a"));
    expectNothingChangesBy(toService("openai"));
}

TEST_F(ShowingARoute, leavesAnErrorAlone) {
    load(withServices({"a", "b"}));
    model->checkNow();
    settle();
    writer.failAppend(1, "Disk gone");
    answerChecks();
    ASSERT_TRUE(model->operationError().has_value());
    model->show(toWebsite("b"));
    EXPECT_TRUE(model->operationError().has_value());
}

} // namespace
} // namespace kestrin
