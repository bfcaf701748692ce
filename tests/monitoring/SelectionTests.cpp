#include "monitoring/MonitorHarness.h"
#include "monitoring/Selection.h"

namespace kestrin {
namespace {

using Choice = std::optional<std::string>;

std::vector<SiteSnapshot> shown(const std::vector<std::string>& ids) {
    std::vector<SiteSnapshot> snapshots;
    for (const std::string& id : ids)
        snapshots.push_back({.site = siteNamed(id), .history = {}, .historyRevision = std::nullopt});
    return snapshots;
}

std::vector<ProviderSnapshot> services(const std::vector<std::string>& ids) {
    std::vector<ProviderSnapshot> snapshots;
    for (const std::string& id : ids) {
        ProviderSnapshot snapshot;
        snapshot.provider = FakeServices::serviceNamed(id, id);
        snapshots.push_back(std::move(snapshot));
    }
    return snapshots;
}

struct SiteRow {
    const char* says;
    std::string selected;
    Choice before;
    Choice now;
    std::vector<std::string> ids;
    std::string expected;
};

TEST(SelectingAWebsiteAfterALoad, followsItsTable) {
    const SiteRow rows[] = {
        {"nothing is selected and a choice is stored", "", std::nullopt, "b", {"a", "b"}, "b"},
        {"nothing is selected and the choice did not change", "", "b", "b", {"a", "b"}, "b"},
        {"nothing is selected and nothing is stored", "", std::nullopt, std::nullopt, {"a", "b"}, "a"},
        {"nothing is selected and the choice is gone", "", std::nullopt, "z", {"a", "b"}, "a"},
        {"there is nothing to select", "", std::nullopt, std::nullopt, {}, ""},
        {"the selected one stays", "b", "a", "a", {"a", "b"}, "b"},
        {"the selected one stays without any choice", "b", std::nullopt, std::nullopt, {"a", "b"}, "b"},
        {"the selected one stays though the choice is gone", "b", "z", "z", {"a", "b"}, "b"},
        {"the choice changed behind our back", "b", "b", "a", {"a", "b"}, "a"},
        {"a choice appeared", "b", std::nullopt, "a", {"a", "b"}, "a"},
        {"the choice was taken away", "b", "b", std::nullopt, {"a", "b"}, "a"},
        {"the choice changed to one that is gone", "b", "b", "z", {"a", "b"}, "a"},
        {"the selected one is gone", "z", "b", "b", {"a", "b"}, "b"},
        {"the selected one is gone without any choice", "z", std::nullopt, std::nullopt, {"a", "b"}, "a"},
        {"the selected one and the choice are gone", "z", "z", "z", {"a", "b"}, "a"},
        {"everything is gone", "a", "a", "a", {}, ""},
    };
    for (const SiteRow& row : rows)
        EXPECT_EQ(reconciledSiteSelection(row.selected, row.before, row.now, shown(row.ids)), row.expected)
            << row.says;
}

TEST(SelectingAServiceAfterALoad, keepsOneThatIsThereAndElseTakesTheFirst) {
    EXPECT_EQ(reconciledProviderSelection("b", services({"a", "b"})), "b");
    EXPECT_EQ(reconciledProviderSelection("z", services({"a", "b"})), "a");
    EXPECT_EQ(reconciledProviderSelection("", services({"a", "b"})), "a");
    EXPECT_EQ(reconciledProviderSelection("a", services({})), "");
}

class Selection : public MonitorTest {
protected:
    static SiteConfiguration active(const std::vector<std::string>& ids, Choice activeSiteID) {
        SiteConfiguration configuration = configurationOf(ids);
        configuration.activeSiteID = std::move(activeSiteID);
        return configuration;
    }

    void reloadWith(const SiteConfiguration& configuration) {
        writeSites(configuration);
        model->reload();
        settle();
    }
};

TEST_F(Selection, fallsToTheStoredActiveSiteWhenTheSelectedOneWasRemoved) {
    load(active({"a", "b", "c"}, "c"));
    model->selectSite("b");
    // Whoever removed it also set the choice back.
    reloadWith(active({"a", "c"}, "c"));
    EXPECT_EQ(model->selectedSiteID(), "c");
}

TEST_F(Selection, fallsToTheFirstSiteWhenTheSelectedOneWasRemovedAndNoChoiceIsStored) {
    load(configurationOf({"a", "b"}));
    model->selectSite("b");
    reloadWith(configurationOf({"a"}));
    EXPECT_EQ(model->selectedSiteID(), "a");
}

TEST_F(Selection, fallsToTheFirstSiteWhenTheStoredChoiceWasRemovedToo) {
    load(active({"a", "b"}, "b"));
    ASSERT_EQ(model->selectedSiteID(), "b");
    reloadWith(active({"a"}, "b"));
    EXPECT_EQ(model->selectedSiteID(), "a");
}

TEST_F(Selection, followsTheFileWhenTheActiveSiteWasChangedByHandWhileTheModelRan) {
    load(active({"a", "b", "c"}, "a"));
    reloadWith(active({"a", "b", "c"}, "c"));
    EXPECT_EQ(model->selectedSiteID(), "c");
}

TEST_F(Selection, staysThroughReloadsThatChangeOtherThings) {
    load(active({"a", "b"}, "a"));
    model->selectSite("b");
    reloadWith(active({"x", "a", "b"}, "b"));
    EXPECT_EQ(model->selectedSiteID(), "b");
}

TEST_F(Selection, ofAServiceStaysWhileItIsThereAndIsNotPersisted) {
    SiteConfiguration configuration = configurationOf({"a"});
    configuration.providerStatus.enabled = true;
    load(configuration);
    EXPECT_EQ(model->selectedProviderID(), "openai");
    model->setSelectedProviderID("claude");
    model->reload();
    settle();
    EXPECT_EQ(model->selectedProviderID(), "claude");
    EXPECT_TRUE(writer.saved.empty());
    configuration.providerStatus.providerIDs = {"openai"};
    reloadWith(configuration);
    EXPECT_EQ(model->selectedProviderID(), "openai");
}

TEST_F(Selection, ofThePageIsSetDirectly) {
    load();
    EXPECT_EQ(displayName(model->monitorPage()), "Sites");
    model->setMonitorPage(MonitorPage::providers);
    EXPECT_EQ(displayName(model->monitorPage()), "Services");
}

// selectSite

TEST_F(Selection, isRememberedInTheConfigurationAndNothingElseOfItChanges) {
    SiteConfiguration configuration = active({"a", "b"}, "a");
    configuration.intervalSeconds = 1234;
    load(configuration);
    model->selectSite("b");
    configuration.activeSiteID = "b";
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(model->configuration(), configuration);
    EXPECT_EQ(reader.loadConfiguration().configuration(), configuration);
    EXPECT_FALSE(std::filesystem::exists(root / "backups")) << "a selection is no reason for a backup";
}

TEST_F(Selection, byTheModelItselfDoesNotLookLikeAForeignChange) {
    load(active({"a", "b"}, "a"));
    model->selectSite("b");
    model->refreshIfStateChanged();
    settle();
    EXPECT_EQ(notifications.refreshCalls.size(), 1U);
}

TEST_F(Selection, ofTheStoredOneWritesNothingButClearsTheError) {
    load(active({"a", "b"}, "a"));
    writer.saveFailure = "Disk gone";
    model->selectSite("b");
    ASSERT_TRUE(model->operationError().has_value());
    model->selectSite("a");
    EXPECT_EQ(model->operationError(), std::nullopt);
    EXPECT_TRUE(writer.saved.empty());
    EXPECT_EQ(model->selectedSiteID(), "a");
}

TEST_F(Selection, ofAnUnknownSiteDoesNothing) {
    load(active({"a"}, "a"));
    writer.saveFailure = "Disk gone";
    model->selectSite("z");
    EXPECT_EQ(model->operationError(), std::nullopt);
    EXPECT_EQ(model->selectedSiteID(), "a");
}

TEST_F(Selection, withoutAConfigurationDoesNothing) {
    writeSitesText("nonsense");
    load();
    model->selectSite("a");
    EXPECT_TRUE(writer.saved.empty());
    EXPECT_EQ(model->selectedSiteID(), "");
}

TEST_F(Selection, staysAsItWasWhenItCannotBeStored) {
    load(active({"a", "b"}, "a"));
    writer.saveFailure = "Read-only file system";
    model->selectSite("b");
    EXPECT_EQ(model->operationError(), "Could not remember the selected website: Read-only file system");
    EXPECT_EQ(model->selectedSiteID(), "a");
    EXPECT_EQ(model->configuration()->activeSiteID, "a");
    EXPECT_EQ(reader.loadConfiguration().configuration().activeSiteID, "a");
    writer.saveFailure.reset();
    model->selectSite("b");
    EXPECT_EQ(model->operationError(), std::nullopt);
    EXPECT_EQ(model->selectedSiteID(), "b");
}

// While a load reads, a choice is shown at once and written afterwards.

TEST_F(Selection, duringALoadIsShownAtOnceAndStoredOnceTheLoadHasEnded) {
    load(active({"a", "b"}, "a"));
    // The load has read everything but its second look when the user chooses.
    customProviders->onLoad = [&] {
        if (customProviders->loads != 2) return;
        model->selectSite("b");
        EXPECT_EQ(model->selectedSiteID(), "b");
        EXPECT_TRUE(writer.saved.empty());
    };
    model->reload();
    settle();
    EXPECT_EQ(customProviders->loads, 2) << "the model's own write made the load repeat itself";
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(model->configuration()->activeSiteID, "b");
    EXPECT_EQ(reader.loadConfiguration().configuration().activeSiteID, "b");
}

TEST_F(Selection, madeTwiceDuringALoadDoesNotFailTheLoad) {
    load(active({"a", "b", "c"}, "a"));
    customProviders->onLoad = [&] { model->selectSite(customProviders->loads % 2 == 0 ? "b" : "c"); };
    model->reload();
    settle();
    EXPECT_EQ(model->loadError(), std::nullopt);
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(writer.saved.size(), 1U);
}

TEST_F(Selection, duringALoadOutlastsTheLoadsThatSupersedeIt) {
    load(active({"a", "b"}, "a"));
    model->reload();
    main.runUntilIdle();
    model->selectSite("b");
    model->reload();
    settle();
    EXPECT_EQ(reader.loadConfiguration().configuration().activeSiteID, "b");
}

TEST_F(Selection, duringALoadWinsOverAChoiceThatTheLoadFinds) {
    load(active({"a", "b", "c"}, "a"));
    writeSites(active({"a", "b", "c"}, "c"));
    model->reload();
    main.runUntilIdle();
    model->selectSite("b");
    settle();
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(reader.loadConfiguration().configuration().activeSiteID, "b");
}

TEST_F(Selection, duringALoadOfAWebsiteThatIsGoneAfterItIsForgotten) {
    load(active({"a", "b"}, "a"));
    writeSites(active({"a"}, "a"));
    model->reload();
    main.runUntilIdle();
    model->selectSite("b");
    settle();
    EXPECT_EQ(model->selectedSiteID(), "a");
    EXPECT_TRUE(writer.saved.empty());
    writeSites(active({"a", "b"}, "a"));
    model->reload();
    settle();
    EXPECT_EQ(model->selectedSiteID(), "a");
}

// A file that somebody else has written since the load.

TEST_F(Selection, neverOverwritesAFileThatSomebodyElseHasWritten) {
    load(active({"a", "b"}, "a"));
    const SiteConfiguration theirs = active({"a", "b", "new"}, "a");
    writeSites(theirs);
    model->selectSite("b");
    EXPECT_EQ(model->selectedSiteID(), "b");
    settle();
    EXPECT_EQ(reader.loadConfiguration().configuration(), theirs);
    EXPECT_EQ(model->configuration(), theirs) << "their file was loaded";
    EXPECT_EQ(model->selectedSiteID(), "b") << "the choice is kept in memory";
    EXPECT_TRUE(writer.saved.empty());
}

TEST_F(Selection, outlastsTheLoadOfAFileInWhichSomebodyElseHasChosenAnother) {
    load(active({"a", "b", "c"}, "a"));
    writeSites(active({"a", "b", "c"}, "c"));
    model->selectSite("b");
    settle();
    EXPECT_EQ(model->selectedSiteID(), "b");
    EXPECT_EQ(model->configuration()->activeSiteID, "c");
    EXPECT_TRUE(writer.saved.empty());
}

TEST_F(Selection, doesNotBringBackAFileThatSomebodyElseHasRemoved) {
    load(active({"a", "b"}, "a"));
    removeSites();
    model->selectSite("b");
    settle();
    EXPECT_FALSE(std::filesystem::exists(sitesPath()));
    EXPECT_TRUE(model->isFirstRun());
}

TEST_F(Selection, showsTheSnapshotOfTheSelectedWebsite) {
    load(active({"a", "b"}, "b"));
    ASSERT_NE(model->selectedSnapshot(), nullptr);
    EXPECT_EQ(model->selectedSnapshot()->site.id, "b");
    model->selectSite("a");
    EXPECT_EQ(model->selectedSnapshot()->site.id, "a");
}

} // namespace
} // namespace kestrin
