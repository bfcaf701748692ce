#include "monitoring/ModelLoader.h"
#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

const std::string movedMessage = "Kestrin's configuration changed while it was being read.";
const std::string stoppedMessage = "Kestrin stopped loading monitor data.";

class ModelLoading : public MonitorTest {
protected:
    [[nodiscard]] AppModelLoadResult loadOnce(const std::stop_token& stop = {}) const {
        return ModelLoader(reader, customProviders, services).load({}, stop);
    }

    [[nodiscard]] static std::string failureOf(const AppModelLoadResult& result) {
        const auto* failed = std::get_if<LoadFailed>(&result);
        return failed ? failed->message : "it did not fail";
    }
};

TEST_F(ModelLoading, findsAMissingDirectoryAFirstRun) {
    std::filesystem::remove(root);
    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedNotConfigured>(result));
    EXPECT_EQ(std::get<LoadedNotConfigured>(result).configurationRevision, HistoryFileRevision());
}

TEST_F(ModelLoading, findsAnEmptyDirectoryAFirstRun) {
    EXPECT_TRUE(std::holds_alternative<LoadedNotConfigured>(loadOnce()));
    EXPECT_EQ(customProviders->loads, 0);
}

TEST_F(ModelLoading, givesEverythingWithTheRevisionsItWasReadAt) {
    SiteConfiguration configuration = configurationOf({"a", "b"});
    configuration.activeSiteID = "b";
    configuration.intervalSeconds = 900;
    configuration.providerStatus = {.enabled = true, .providerIDs = {"claude"}};
    writeSites(configuration);
    (void)files.appendCheck(checkOf("a"));
    (void)files.appendProviderCheck(serviceCheckOf("claude"));
    CustomProviderConfiguration added;
    added.providers = {{.id = "provider-1",
        .name = "Mine",
        .statusPageURL = "https://status.example.com/",
        .adapter = "statuspage-v2",
        .adapterVersion = 1,
        .enabled = true}};
    customProviders->replace(added);

    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedConfigured>(result)) << failureOf(result);
    const auto& loaded = std::get<LoadedConfigured>(result);
    EXPECT_EQ(loaded.configuration, configuration);
    EXPECT_EQ(loaded.configurationRevision, reader.configurationRevision());
    EXPECT_EQ(loaded.customProviderConfiguration, added);
    EXPECT_EQ(loaded.customProviderRevision, customProviders->revision());
    EXPECT_EQ(loaded.customProviderIssue, std::nullopt);
    ASSERT_EQ(loaded.snapshots.size(), 2U);
    EXPECT_EQ(loaded.snapshots[0].history.totalCheckCount, 1);
    EXPECT_EQ(loaded.snapshots[0].historyRevision, reader.historyRevision(HistoryKind::Website, "a"));
    ASSERT_EQ(loaded.providerSnapshots.size(), 2U);
    EXPECT_EQ(loaded.providerSnapshots[0].provider.id, "claude");
    EXPECT_EQ(loaded.providerSnapshots[0].history.recentChecks.size(), 1U);
    EXPECT_EQ(loaded.providerSnapshots[1].provider.id, "provider-1");
}

TEST_F(ModelLoading, buildsNoServicesWhileTheyAreOff) {
    writeSites(configurationOf({"a"}));
    CustomProviderConfiguration added;
    added.providers.push_back({.id = "provider-1", .name = "Mine", .statusPageURL = "", .adapter = "unknown"});
    customProviders->replace(added);
    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedConfigured>(result)) << "nobody asked for the service that is unknown";
    EXPECT_TRUE(std::get<LoadedConfigured>(result).providerSnapshots.empty());
    EXPECT_EQ(std::get<LoadedConfigured>(result).customProviderConfiguration, added);
}

TEST_F(ModelLoading, failsWithTheErrorOfAnAddedServiceThatCannotBeBuilt) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.providerStatus.enabled = true;
    writeSites(configuration);
    CustomProviderConfiguration added;
    added.providers.push_back({.id = "provider-1", .name = "Mine", .statusPageURL = "", .adapter = "unknown"});
    customProviders->replace(added);
    EXPECT_EQ(failureOf(loadOnce()), "The adapter is not known.");
}

TEST_F(ModelLoading, isRetriedOnceWithoutNoticeWhenSitesAreReplacedBetweenTheTwoLooks) {
    writeSites(configurationOf({"old"}));
    customProviders->onLoad = [&] {
        if (customProviders->loads == 1) writeSites(configurationOf({"new"}));
    };
    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedConfigured>(result)) << failureOf(result);
    EXPECT_EQ(customProviders->loads, 2);
    EXPECT_EQ(std::get<LoadedConfigured>(result).configuration, configurationOf({"new"}));
    EXPECT_EQ(std::get<LoadedConfigured>(result).configurationRevision, reader.configurationRevision());
}

TEST_F(ModelLoading, failsWhenSitesAreReplacedDuringBothAttempts) {
    writeSites(configurationOf({"a"}));
    customProviders->onLoad = [&] { writeSites(configurationOf({"a"})); };
    EXPECT_EQ(failureOf(loadOnce()), movedMessage);
    EXPECT_EQ(customProviders->loads, 2) << "two attempts and no third";
}

TEST_F(ModelLoading, isRetriedWhenTheAddedServicesAreReplacedBetweenTheTwoLooks) {
    writeSites(configurationOf({"a"}));
    customProviders->onLoad = [&] {
        if (customProviders->loads == 1) customProviders->replace(CustomProviderConfiguration());
    };
    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedConfigured>(result)) << failureOf(result);
    EXPECT_EQ(customProviders->loads, 2);
    EXPECT_EQ(std::get<LoadedConfigured>(result).customProviderRevision, customProviders->revision());
}

TEST_F(ModelLoading, failsWhenTheAddedServicesAreReplacedDuringBothAttempts) {
    writeSites(configurationOf({"a"}));
    customProviders->onLoad = [&] { customProviders->replace(CustomProviderConfiguration()); };
    EXPECT_EQ(failureOf(loadOnce()), movedMessage);
}

TEST_F(ModelLoading, isRetriedWhenSitesAppearBeforeTheyAreReadForTheFirstTime) {
    bool written = false;
    customProviders->onRevision = [&] {
        if (!std::exchange(written, true)) writeSites(configurationOf({"a"}));
    };
    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedConfigured>(result)) << failureOf(result);
    EXPECT_EQ(customProviders->loads, 2);
}

TEST_F(ModelLoading, isRetriedWhenSitesVanishBeforeTheyAreRead) {
    writeSites(configurationOf({"a"}));
    int looks = 0;
    customProviders->onRevision = [&] {
        ++looks;
        removeSites();
    };
    const auto result = loadOnce();
    EXPECT_TRUE(std::holds_alternative<LoadedNotConfigured>(result)) << failureOf(result);
    EXPECT_EQ(looks, 2);
}

TEST_F(ModelLoading, failsWhenSitesVanishDuringOneAttemptAndAppearDuringTheOther) {
    writeSites(configurationOf({"a"}));
    int looks = 0;
    customProviders->onRevision = [&] {
        if (++looks == 1)
            removeSites();
        else
            writeSites(configurationOf({"a"}));
    };
    EXPECT_EQ(failureOf(loadOnce()), movedMessage);
}

TEST_F(ModelLoading, doesNotRetryAnyOtherFailure) {
    writeSitesText("{\"sites\": 1}");
    int looks = 0;
    customProviders->onRevision = [&] { ++looks; };
    EXPECT_NE(failureOf(loadOnce()), "it did not fail");
    EXPECT_EQ(looks, 1);
}

TEST_F(ModelLoading, failsWithTheErrorsOwnDescriptionAndLeavesTheFilesUntouched) {
    writeSitesText("{\"sites\": 1}");
    const std::string failure = failureOf(loadOnce());
    std::string expected;
    try {
        (void)reader.loadConfiguration();
    } catch (const MessageError& error) {
        expected = error.message;
    }
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(failure, expected);
    EXPECT_EQ(std::filesystem::file_size(sitesPath()), 12U);
}

TEST_F(ModelLoading, failsWhenDataIsThereButNoSites) {
    writeSites(configurationOf({"a"}));
    (void)files.appendCheck(checkOf("a"));
    removeSites();
    EXPECT_EQ(failureOf(loadOnce()), "Kestrin's state directory contains data but is missing sites.json.");
}

TEST_F(ModelLoading, failsWhenAHistoryCannotBeRead) {
    std::filesystem::create_directories(root / "data" / "a.jsonl");
    writeSites(configurationOf({"a"}));
    EXPECT_EQ(failureOf(loadOnce()), "Kestrin history is not a regular file.");
}

TEST_F(ModelLoading, failsWhenTheRevisionOfTheAddedServicesCannotBeRead) {
    writeSites(configurationOf({"a"}));
    customProviders->revisionFailure = "Permission denied";
    EXPECT_EQ(failureOf(loadOnce()), "Permission denied");
}

TEST_F(ModelLoading, goesOnWithoutAddedServicesThatCannotBeRead) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.providerStatus = {.enabled = true, .providerIDs = {"openai"}};
    writeSites(configuration);
    customProviders->loadFailure = "The file is damaged.";
    const auto result = loadOnce();
    ASSERT_TRUE(std::holds_alternative<LoadedConfigured>(result)) << failureOf(result);
    const auto& loaded = std::get<LoadedConfigured>(result);
    EXPECT_EQ(loaded.customProviderIssue, "Could not read additional status services: The file is damaged.");
    EXPECT_EQ(loaded.customProviderConfiguration, CustomProviderConfiguration());
    EXPECT_EQ(loaded.snapshots.size(), 1U);
    EXPECT_EQ(loaded.providerSnapshots.size(), 1U);
}

TEST_F(ModelLoading, doesNotBeginWhenItIsCancelled) {
    writeSites(configurationOf({"a"}));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(failureOf(loadOnce(stop.get_token())), stoppedMessage);
    EXPECT_EQ(customProviders->loads, 0);
}

TEST_F(ModelLoading, stopsReadingAtItsNextLookWhenItIsCancelled) {
    writeSites(configurationOf({"a"}));
    (void)files.appendCheck(checkOf("a"));
    std::stop_source stop;
    customProviders->onLoad = [&] { stop.request_stop(); };
    EXPECT_EQ(failureOf(loadOnce(stop.get_token())), stoppedMessage);
}

TEST_F(ModelLoading, makesNoSecondAttemptWhenItIsCancelled) {
    writeSites(configurationOf({}));
    std::stop_source stop;
    customProviders->onLoad = [&] {
        writeSites(configurationOf({}));
        stop.request_stop();
    };
    EXPECT_EQ(failureOf(loadOnce(stop.get_token())), stoppedMessage);
    EXPECT_EQ(customProviders->loads, 1);
}

// The comparison.

class RevisionComparison : public ModelLoading {
protected:
    ExpectedStateRevisions expected;

    void SetUp() override {
        writeSites(configurationOf({"a"}));
        (void)files.appendCheck(checkOf("a"));
        (void)files.appendProviderCheck(serviceCheckOf("openai"));
        customProviders->replace(CustomProviderConfiguration());
        expected.configuration = reader.configurationRevision().value();
        expected.customProviders = customProviders->revision();
        expected.websites = {{"a", reader.historyRevision(HistoryKind::Website, "a")}, {"none", {}}};
        expected.providers = {{"openai", reader.historyRevision(HistoryKind::Provider, "openai")}};
    }

    [[nodiscard]] bool match(const std::stop_token& stop = {}) const {
        return ModelLoader(reader, customProviders, services).revisionsMatch(expected, stop);
    }
};

TEST_F(RevisionComparison, holdsWhenNothingMoved) {
    EXPECT_TRUE(match());
}

TEST_F(RevisionComparison, seesNewSites) {
    writeSites(configurationOf({"a"}));
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, seesSitesGone) {
    removeSites();
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, seesNewAddedServices) {
    customProviders->replace(CustomProviderConfiguration());
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, seesALineMoreInAWebsitesHistory) {
    (void)files.appendCheck(checkOf("a"));
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, seesAHistoryAppear) {
    (void)files.appendCheck(checkOf("none"));
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, seesALineMoreInAServicesHistory) {
    (void)files.appendProviderCheck(serviceCheckOf("openai"));
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, looksAtEveryFieldOfARevision) {
    const HistoryFileRevision present = expected.configuration;
    const auto differs = [&](auto HistoryFileRevision::* field) {
        expected.configuration = present;
        expected.configuration.*field += 1;
        return !match();
    };
    EXPECT_TRUE(differs(&HistoryFileRevision::device));
    EXPECT_TRUE(differs(&HistoryFileRevision::inode));
    EXPECT_TRUE(differs(&HistoryFileRevision::byteCount));
    EXPECT_TRUE(differs(&HistoryFileRevision::modifiedSeconds));
    EXPECT_TRUE(differs(&HistoryFileRevision::modifiedNanoseconds));
}

TEST_F(RevisionComparison, takesARevisionThatCannotBeReadForADifference) {
    std::filesystem::remove(root / "data" / "a.jsonl");
    std::filesystem::create_directories(root / "data" / "a.jsonl");
    EXPECT_FALSE(match());
    expected.websites.clear();
    ASSERT_TRUE(match());
    customProviders->revisionFailure = "Permission denied";
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, takesAnUnsafeIdentifierForADifference) {
    expected.websites[".."] = {};
    EXPECT_FALSE(match());
}

TEST_F(RevisionComparison, takesAMissingDirectoryForTheMissingFile) {
    std::filesystem::remove_all(root);
    expected = {};
    customProviders->replace(std::nullopt);
    EXPECT_TRUE(match());
}

TEST_F(RevisionComparison, stopsAtTheFirstDifference) {
    int looks = 0;
    customProviders->onRevision = [&] { ++looks; };
    writeSites(configurationOf({"a"}));
    EXPECT_FALSE(match());
    EXPECT_EQ(looks, 0);
}

} // namespace
} // namespace kestrin
