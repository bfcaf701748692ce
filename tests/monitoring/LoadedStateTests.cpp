#include "monitoring/LoadedState.h"
#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

using std::chrono::seconds;

constexpr std::chrono::system_clock::time_point atNoon{seconds(43200)};
const HistoryFileRevision firstRevision{.device = 1, .inode = 2, .byteCount = 100};
const HistoryFileRevision secondRevision{.device = 1, .inode = 2, .byteCount = 200};
const HistoryFileRevision foreignRevision{.device = 1, .inode = 2, .byteCount = 150};

LoadedConfigured everything() {
    LoadedConfigured loaded;
    loaded.configuration = configurationOf({"a", "b"});
    loaded.configuration.activeSiteID = "b";
    loaded.configuration.providerStatus.enabled = true;
    loaded.configurationRevision = firstRevision;
    loaded.customProviderRevision = secondRevision;
    loaded.customProviderIssue = "Odd";
    for (const SiteDefinition& site : loaded.configuration.sites)
        loaded.snapshots.push_back({.site = site, .history = {}, .historyRevision = std::nullopt});
    loaded.providerSnapshots.push_back({.provider = FakeServices::serviceNamed("openai", "OpenAI"),
        .history = {},
        .historyRevision = firstRevision});
    return loaded;
}

TEST(LoadedState, holdsNothingBeforeALoad) {
    const LoadedState state;
    EXPECT_FALSE(state.configuration.has_value());
    EXPECT_FALSE(state.loadedAt.has_value());
    EXPECT_EQ(state.intervalSeconds(), 300);
    EXPECT_FALSE(state.providerStatusEnabled());
    EXPECT_TRUE(state.targets().empty());
}

TEST(LoadedState, isEmptyButConfiguredOnAFirstRun) {
    LoadedState expected;
    expected.configuration = SiteConfiguration();
    expected.configurationRevision = firstRevision;
    expected.isFirstRun = true;
    expected.loadedAt = atNoon;
    EXPECT_EQ(LoadedState::from(LoadedNotConfigured{firstRevision}, atNoon), expected);
}

TEST(LoadedState, holdsNothingButTheMessageAfterAFailure) {
    LoadedState expected;
    expected.loadError = "Unreadable";
    expected.loadedAt = atNoon;
    EXPECT_EQ(LoadedState::from(LoadFailed{"Unreadable"}, atNoon), expected);
}

TEST(LoadedState, takesOverEverythingThatWasRead) {
    const LoadedState state = LoadedState::from(everything(), atNoon);
    EXPECT_EQ(state.configuration, everything().configuration);
    EXPECT_EQ(state.configurationRevision, firstRevision);
    EXPECT_EQ(state.customProviderRevision, secondRevision);
    EXPECT_EQ(state.customProviderIssue, "Odd");
    EXPECT_EQ(state.snapshots, everything().snapshots);
    EXPECT_EQ(state.providerSnapshots, everything().providerSnapshots);
    EXPECT_EQ(state.activeSiteID(), "b");
    EXPECT_TRUE(state.providerStatusEnabled());
    EXPECT_FALSE(state.isFirstRun);
    EXPECT_EQ(state.configurationIssue, std::nullopt);
    EXPECT_EQ(state.loadedAt, atNoon);
}

TEST(LoadedState, raisesAnIntervalToAMinute) {
    for (const auto& [configured, used] : {std::pair(-5, 60), std::pair(59, 60), std::pair(61, 61)}) {
        LoadedConfigured loaded = everything();
        loaded.configuration.intervalSeconds = configured;
        EXPECT_EQ(LoadedState::from(std::move(loaded), atNoon).intervalSeconds(), used);
    }
}

TEST(LoadedState, checksTheEnabledWebsitesAndAllServices) {
    LoadedConfigured loaded = everything();
    loaded.configuration.sites[0].enabled = false;
    const CycleTargets targets = LoadedState::from(std::move(loaded), atNoon).targets();
    EXPECT_EQ(idsOf(targets.sites), (std::vector<std::string>{"b"}));
    EXPECT_EQ(idsOf(targets.services), (std::vector<std::string>{"openai"}));
}

TEST(LoadedState, takesALineIntoItsSnapshot) {
    LoadedState state = LoadedState::from(everything(), atNoon);
    EXPECT_TRUE(state.take(checkOf("b", false), HistoryAppend{.before = {}, .after = firstRevision}));
    EXPECT_EQ(state.snapshots[1].historyRevision, firstRevision);
    ASSERT_EQ(state.snapshots[1].history.recentChecks.size(), 1U);
    EXPECT_FALSE(state.snapshots[1].history.recentChecks.back().up);
    EXPECT_TRUE(state.snapshots[0].history.recentChecks.empty());
    EXPECT_TRUE(
        state.take(serviceCheckOf("openai"), HistoryAppend{.before = firstRevision, .after = secondRevision}));
    EXPECT_EQ(state.providerSnapshots[0].historyRevision, secondRevision);
    EXPECT_EQ(state.knownHistories().sites.size(), 2U);
    EXPECT_EQ(state.knownHistories().services.size(), 1U);
    EXPECT_EQ(state.expectedRevisions().websites.at("b"), firstRevision);
}

TEST(LoadedState, hasNoPlaceForALineOfAnUnknownTarget) {
    LoadedState state = LoadedState::from(everything(), atNoon);
    const LoadedState before = state;
    EXPECT_FALSE(state.take(checkOf("c"), HistoryAppend{}));
    EXPECT_FALSE(state.take(serviceCheckOf("claude"), HistoryAppend{}));
    EXPECT_EQ(state, before);
    EXPECT_FALSE(state.showsService("claude"));
    EXPECT_TRUE(state.showsService("openai"));
}

TEST(LoadedState, doesNotVouchForAHistoryThatLacksAForeignLine) {
    LoadedState state = LoadedState::from(everything(), atNoon);
    EXPECT_TRUE(state.take(checkOf("a"), HistoryAppend{.before = foreignRevision, .after = secondRevision}));
    EXPECT_TRUE(
        state.take(serviceCheckOf("openai"), HistoryAppend{.before = foreignRevision, .after = secondRevision}));
    const KnownHistories known = state.knownHistories();
    ASSERT_EQ(known.sites.size(), 1U);
    EXPECT_EQ(known.sites[0].site.id, "b");
    EXPECT_TRUE(known.services.empty());
    EXPECT_EQ(state.incompleteHistories.size(), 2U);
}

} // namespace
} // namespace kestrin
