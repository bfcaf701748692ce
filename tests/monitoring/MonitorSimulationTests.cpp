#include "monitoring/MonitorSimulation.h"

namespace kestrin {
namespace {

TEST(MonitorSimulation, keepsEveryRuleInWhateverOrderThingsHappen) {
    constexpr std::uint32_t runs = 300;
    constexpr int stepsPerRun = 200;
    std::size_t appends = 0;
    std::size_t observations = 0;
    std::size_t discarded = 0;
    std::size_t manual = 0;
    for (std::uint32_t seed = 1; seed <= runs; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        MonitorSimulation simulation(seed);
        const std::string report = simulation.run(stepsPerRun);
        if (!report.empty()) FAIL() << report;
        appends += simulation.appends;
        observations += simulation.observations;
        discarded += simulation.discardedCycles;
        manual += simulation.manualCycles;
    }
    // A run that meets nothing proves nothing.
    EXPECT_GT(appends, 10 * runs);
    EXPECT_GT(observations, 3 * runs);
    EXPECT_GT(discarded, runs);
    EXPECT_GT(manual, runs);
}

} // namespace
} // namespace kestrin
