#pragma once

#include "monitoring/MonitorHarness.h"

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace kestrin {

/// A model under a user, a disk, a network and notifications that do what they want when they want, in virtual
/// time. After every step it is held to what must always be true. One seed is one course of events.
class MonitorSimulation {
public:
    explicit MonitorSimulation(std::uint32_t seed);

    /// Runs to the first broken rule or to the end. Gives what was broken, with the seed and every step taken;
    /// empty when all held.
    [[nodiscard]] std::string run(int steps);

    // How much of what is worth meeting was met, for the test to judge the run itself.
    std::size_t appends = 0;
    std::size_t observations = 0;
    std::size_t discardedCycles = 0;
    std::size_t manualCycles = 0;

private:
    /// What an older cycle may no longer touch: both move on with a stop, a restart and a reload.
    struct Epoch {
        std::shared_ptr<NotificationPolicyLease> lease;
        std::size_t stops = 0;
        bool operator==(const Epoch&) const = default;
    };
    struct Cycle {
        Epoch epoch;
        bool surelyManual = false;
        bool written = false;
    };

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
    [[nodiscard]] Epoch epoch() const;
    void broken(const std::string& rule);

    void step();
    void actAsUser();
    void actAsDisk();
    void actAsNetwork();
    void actAsNotifications();
    void goOn();

    SiteConfiguration anyConfiguration();
    std::string anySite();
    template <class Calls> void answerOne(Calls& calls);
    std::vector<CheckRecord> anyResults(const std::vector<SiteDefinition>& sites);
    std::vector<ProviderCheckRecord> anyResults(const std::vector<ProviderDefinition>& services);
    void remember(const std::string& timestamp, std::size_t cycle) { cycleOfRecord_[timestamp] = cycle; }

    void noteRestart();
    void noteCall();
    void noteAppend(const std::string& timestamp);
    void noteChange();
    void checkAlways();
    void checkWhenIdle();
    void checkShownAgainstDisk();
    void checkObservations();
    void settleEverything();
    void checkAtTheEnd();

    std::mt19937 random_;
    MonitorHarness harness_;
    ChangeListeners::Subscription listening_;
    std::vector<std::string> steps_;
    std::vector<std::string> broken_;

    std::size_t stops_ = 0;
    bool shouldMonitor_ = false;
    std::set<std::size_t> toBeSeenOut_;                ///< cycles that a restarted loop waits for
    std::vector<Cycle> cycles_;                        ///< one for each pair of lists asked for
    std::map<std::string, std::size_t> cycleOfRecord_; ///< by time stamp, which no two records share
    std::size_t answeringCycle_ = 0;
    std::set<std::string> written_;         ///< time stamps
    std::set<std::string> touchedByOthers_; ///< history files with lines that the model did not write
    std::map<std::string, std::shared_ptr<NotificationPolicyLease>> leaseOfAnswer_;
    std::map<const FakeNotifications::Call*, std::size_t> stopsOfObserve_;
    std::size_t checkedObserves_ = 0;
    std::size_t answers_ = 0;
    std::size_t appendsAtLastLook_ = 0;
    NotificationManagementState lastState_;
};

} // namespace kestrin
