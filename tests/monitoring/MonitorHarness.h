#pragma once

#include "fakes/FakeCustomProviders.h"
#include "fakes/FakeNotifications.h"
#include "fakes/FakeServices.h"
#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "fakes/RecordingStateWriter.h"
#include "fakes/ScriptedCheckRunner.h"
#include "fakes/VirtualClock.h"
#include "monitoring/AppModel.h"
#include "state/StateReader.h"
#include "state/StateWriter.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// An enabled website with a public HTTPS address.
SiteDefinition siteNamed(const std::string& id);
SiteConfiguration configurationOf(const std::vector<std::string>& siteIDs);
/// A check of a website or service; each call gives a later time stamp when none is named.
CheckRecord checkOf(const std::string& siteID, bool up = true, std::optional<int> second = std::nullopt);
ProviderCheckRecord serviceCheckOf(const std::string& id, ProviderState state = ProviderState::operational,
    std::optional<int> second = std::nullopt);
std::vector<CheckRecord> checksOf(const std::vector<SiteDefinition>& sites);
std::vector<ProviderCheckRecord> serviceChecksOf(const std::vector<ProviderDefinition>& services);
std::vector<std::string> idsOf(const std::vector<SiteDefinition>& sites);
std::vector<std::string> idsOf(const std::vector<ProviderDefinition>& services);

/// A model over a real state directory of its own, in virtual time: nothing happens until the test lets the main
/// thread, the pool or the clock go on. When it ends it takes the model away and sees every task out.
class MonitorHarness {
public:
    MonitorHarness();
    ~MonitorHarness();
    MonitorHarness(const MonitorHarness&) = delete;
    MonitorHarness& operator=(const MonitorHarness&) = delete;

    const std::filesystem::path root;
    ManualExecutor main;
    ManualPool loads;
    VirtualClock clock;
    TaskScope tasks;
    ScriptedCheckRunner checks;
    FakeNotifications notifications;
    std::shared_ptr<FakeCustomProviders> customProviders = std::make_shared<FakeCustomProviders>();
    std::shared_ptr<FakeServices> services = std::make_shared<FakeServices>();
    StateReader reader;
    StateWriter files;
    RecordingStateWriter writer;
    std::unique_ptr<AppModel> model;

    [[nodiscard]] AppModel::Collaborators collaborators();
    /// Makes the model, which begins to load.
    void create();
    /// Makes the model and lets it load.
    void load();
    /// Writes the configuration, makes the model and lets it load.
    void load(const SiteConfiguration& configuration);

    /// Lets the main thread and the pool go on until neither has anything to do.
    void settle();
    /// Moves the clock and settles.
    void advance(std::chrono::seconds duration);
    /// Answers every check that is waited for with a success for each target, and settles.
    void answerChecks();
    /// From now on every check is answered at once with a success.
    void answerChecksAtOnce();

    /// Writes "sites.json" as somebody else does; its revision is new each time.
    void writeSites(const SiteConfiguration& configuration) const;
    void writeSitesText(const std::string& text) const;
    void removeSites() const;
    [[nodiscard]] std::filesystem::path sitesPath() const { return root / "sites.json"; }

    /// What a fresh read of the history gives.
    [[nodiscard]] SiteHistoryProjection historyOnDisk(const std::string& siteID) const;
    [[nodiscard]] ProviderHistoryProjection serviceHistoryOnDisk(const std::string& id) const;

    [[nodiscard]] const SiteSnapshot& snapshot(const std::string& siteID) const;

private:
    static std::filesystem::path makeRoot();
    void windUp();
};

struct MonitorTest : ::testing::Test, MonitorHarness {};

} // namespace kestrin
