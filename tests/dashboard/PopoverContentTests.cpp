#include "dashboard/PopoverContent.h"

#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

struct PopoverContentTest : MonitorTest {
    const LocaleFormats formats{"de_DE", "en_US", "UTC"};

    [[nodiscard]] PopoverContent content() const { return popoverContent(*model, formats); }

    static SiteSnapshot snapshotWith(std::vector<CheckRecord> checks) {
        SiteSnapshot snapshot;
        snapshot.site = siteNamed("site-1");
        for (const CheckRecord& check : checks)
            snapshot.history.append(check);
        return snapshot;
    }

    static CheckRecord checkAt(const std::string& timestamp) {
        CheckRecord record;
        record.timestamp = timestamp;
        record.siteID = "site-1";
        return record;
    }
};

TEST_F(PopoverContentTest, theVeryFirstLoadSaysThatItLoads) {
    create();
    ASSERT_TRUE(content().panel);
    EXPECT_EQ(content().panel->title, "Loading monitor history…");
    EXPECT_FALSE(content().startStop.enabled);
}

TEST_F(PopoverContentTest, aFirstRunAsksForTheFirstWebsite) {
    load();
    ASSERT_TRUE(content().panel);
    EXPECT_EQ(content().panel->title, "Add your first website");
    EXPECT_EQ(content().subtitle, "Monitoring paused");
    EXPECT_FALSE(content().startStop.enabled);
    EXPECT_FALSE(content().checkNow.enabled);
    EXPECT_TRUE(content().quit.enabled);
}

TEST_F(PopoverContentTest, aFailedLoadShowsItsMessageInPlaceOfTheList) {
    writeSitesText("[]");
    load();
    ASSERT_TRUE(content().panel);
    EXPECT_EQ(content().panel->title, "Couldn’t Read Monitor Data");
    EXPECT_EQ(content().panel->description, *model->loadError());
    EXPECT_TRUE(content().websites.empty());
}

TEST_F(PopoverContentTest, aReloadLeavesTheContentUp) {
    load(configurationOf({"site-1"}));
    const PopoverContent before = content();
    model->reload();
    ASSERT_TRUE(model->isLoading());
    EXPECT_EQ(content(), before);
}

TEST_F(PopoverContentTest, theButtonsFollowTheMonitor) {
    load(configurationOf({"site-1"}));
    EXPECT_EQ(content().startStop, (PopoverButton{"Start", true}));
    EXPECT_EQ(content().checkNow, (PopoverButton{"Check now", true}));

    model->startMonitoring();
    settle();
    EXPECT_EQ(content().subtitle, "Monitoring active");
    EXPECT_EQ(content().startStop, (PopoverButton{"Stop", true}));
    EXPECT_EQ(content().checkNow, (PopoverButton{"Checking", false}));

    answerChecks();
    EXPECT_EQ(content().checkNow, (PopoverButton{"Check now", true}));
    model->stopMonitoring();
    EXPECT_EQ(content().startStop, (PopoverButton{"Start", true}));
}

TEST_F(PopoverContentTest, stopStaysPossibleWhenNothingIsLeftToCheck) {
    load(configurationOf({"site-1"}));
    model->startMonitoring();
    settle();
    answerChecks();
    writeSites(configurationOf({}));
    model->reload();
    settle();
    EXPECT_EQ(content().startStop, (PopoverButton{"Stop", true}));
    EXPECT_FALSE(content().checkNow.enabled);
}

TEST_F(PopoverContentTest, websitesStandInConfigurationOrder) {
    load(configurationOf({"site-2", "site-1"}));
    ASSERT_EQ(content().websites.size(), 2u);
    EXPECT_EQ(content().websites[0].name, siteNamed("site-2").name);
    EXPECT_EQ(content().websites[1].name, siteNamed("site-1").name);
}

TEST_F(PopoverContentTest, anEnabledWebsiteThatMayNotBeCheckedIsNamed) {
    SiteConfiguration configuration = configurationOf({"site-1", "site-2"});
    configuration.sites[0].url = "http://example.com/";
    load(configuration);
    ASSERT_EQ(content().notices.size(), 1u);
    EXPECT_EQ(content().notices[0], *model->configurationIssue());
    EXPECT_TRUE(content().checkNow.enabled);
}

TEST_F(PopoverContentTest, aFailedAppendIsSaidUntilACycleWorksAgain) {
    load(configurationOf({"site-1"}));
    writer.failAppend(1, "No space left on device");
    model->checkNow();
    settle();
    answerChecks();
    ASSERT_EQ(content().notices.size(), 1u);
    EXPECT_EQ(content().notices[0], *model->operationError());

    model->checkNow();
    settle();
    answerChecks();
    EXPECT_TRUE(content().notices.empty());
}

TEST_F(PopoverContentTest, aWebsiteWithoutChecksHasNoData) {
    const StatusRow row = websiteStatusRow(snapshotWith({}), formats);
    EXPECT_EQ(row.stateText, "NO DATA");
    EXPECT_EQ(row.lastResult, "No checks");
    EXPECT_EQ(row.lastChecked, "");
}

TEST_F(PopoverContentTest, aWebsiteThatAnsweredShowsItsStatusTimeAndDuration) {
    CheckRecord record = checkAt("2026-01-31T09:05:00Z");
    record.up = true;
    record.httpStatus = 204;
    record.elapsedMS = 87;
    const StatusRow row = websiteStatusRow(snapshotWith({record}), formats);
    EXPECT_EQ(row.stateText, "UP");
    EXPECT_EQ(row.lastResult, "HTTP 204");
    EXPECT_EQ(row.lastChecked, "09:05 · 87ms");
}

TEST_F(PopoverContentTest, aWebsiteThatDidNotAnswerShowsWhy) {
    CheckRecord record = checkAt("2026-01-31T09:05:00Z");
    record.error = "The connection was refused.";
    const StatusRow row = websiteStatusRow(snapshotWith({record}), formats);
    EXPECT_EQ(row.stateText, "DOWN");
    EXPECT_EQ(row.lastResult, "The connection was refused.");
    EXPECT_EQ(row.lastChecked, "09:05");
}

TEST_F(PopoverContentTest, aRecordWithNeitherStatusNorErrorHadNoResponse) {
    EXPECT_EQ(websiteStatusRow(snapshotWith({checkAt("2026-01-31T09:05:00Z")}), formats).lastResult, "No response");
}

TEST_F(PopoverContentTest, aTimestampThatIsNoneIsShownAsItStands) {
    EXPECT_EQ(websiteStatusRow(snapshotWith({checkAt("yesterday")}), formats).lastChecked, "yesterday");
}

TEST_F(PopoverContentTest, aTextOfAnyLengthFromAFileIsCutToWhatCanBeRead) {
    CheckRecord record = checkAt(std::string(1'000'000, 'x'));
    record.error = std::string(8'000'000, '\n');
    const StatusRow row = websiteStatusRow(snapshotWith({record}), formats);
    EXPECT_LT(row.lastResult.size(), 500u);
    EXPECT_TRUE(row.lastResult.ends_with(" …"));
    EXPECT_LT(row.lastChecked.size(), 100u);
}

TEST_F(PopoverContentTest, aDisabledWebsiteSaysSoBesideItsOldChecks) {
    SiteSnapshot snapshot = snapshotWith({checkAt("2026-01-31T09:05:00Z")});
    snapshot.site.enabled = false;
    const StatusRow row = websiteStatusRow(snapshot, formats);
    EXPECT_EQ(row.stateText, "DISABLED");
    EXPECT_EQ(row.lastChecked, "09:05");
}

ProviderSnapshot serviceWith(std::vector<ProviderCheckRecord> checks) {
    ProviderSnapshot snapshot;
    snapshot.provider = FakeServices::serviceNamed("openai", "OpenAI");
    for (const ProviderCheckRecord& check : checks)
        snapshot.history.append(check);
    return snapshot;
}

TEST_F(PopoverContentTest, aServiceWithoutChecksIsUnknown) {
    const StatusRow row = serviceStatusRow(serviceWith({}), formats);
    EXPECT_EQ(row.name, "OpenAI");
    EXPECT_EQ(row.stateText, "Unknown");
    EXPECT_EQ(row.lastResult, "No status recorded yet");
    EXPECT_EQ(row.lastChecked, "Not checked");
}

TEST_F(PopoverContentTest, aServiceShowsWhatItLastPublished) {
    ProviderCheckRecord record;
    record.timestamp = "2026-01-31T09:05:00Z";
    record.elapsedMS = 87;
    record.state = ProviderState::degraded;
    record.summary = "Elevated errors";
    const StatusRow row = serviceStatusRow(serviceWith({record}), formats);
    EXPECT_EQ(row.stateText, "Degraded");
    EXPECT_EQ(row.lastResult, "Elevated errors");
    EXPECT_EQ(row.lastChecked, "09:05 · 87ms");
}

TEST_F(PopoverContentTest, aServiceShowsAllLettersOfASummaryInAnyScript) {
    ProviderCheckRecord record;
    record.timestamp = "2026-01-31T09:05:00Z";
    for (int letter = 0; letter < 160; ++letter)
        record.summary += "障";
    EXPECT_EQ(serviceStatusRow(serviceWith({record}), formats).lastResult, record.summary);
}

TEST_F(PopoverContentTest, servicesStandBelowTheWebsitesWhileTheyAreSwitchedOn) {
    SiteConfiguration configuration = configurationOf({"site-1"});
    configuration.providerStatus = {.enabled = true, .providerIDs = {"claude", "openai"}};
    load(configuration);
    ASSERT_EQ(content().services.size(), 2U);
    EXPECT_EQ(content().services[0].name, "OpenAI");
    EXPECT_EQ(content().services[1].name, "Claude");
    EXPECT_EQ(content().websites.size(), 1U);

    configuration.providerStatus.enabled = false;
    writeSites(configuration);
    model->reload();
    settle();
    EXPECT_TRUE(content().services.empty());
}

TEST_F(PopoverContentTest, servicesAloneCanBeChecked) {
    SiteConfiguration configuration = configurationOf({});
    configuration.providerStatus = {.enabled = true, .providerIDs = {"openai"}};
    load(configuration);
    EXPECT_FALSE(content().panel);
    EXPECT_EQ(content().services.size(), 1U);
    EXPECT_TRUE(content().startStop.enabled);
    EXPECT_TRUE(content().checkNow.enabled);
}

} // namespace
} // namespace kestrin
