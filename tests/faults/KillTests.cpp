// Killed before each system call of an operation in turn, the process must leave a state directory that holds the
// old or the new and that the next start works with.

#include "faults/JudgedRun.h"

#include <gtest/gtest.h>

using namespace kestrin;

namespace {

class AKill : public testing::TestWithParam<Scene> {};

/// The run that is killed before that call; one that ends before it comes to it is not killed.
JudgedRun killedBefore(std::size_t moment, const Scene& scene) {
    return judgedRun(scene, [moment](std::size_t number, const SystemCall&, const auto&) {
        return number == moment ? Verdict::kill() : Verdict::pass();
    });
}

} // namespace

TEST_P(AKill, beforeAnySystemCallLeavesOldOrNew) {
    std::size_t moment = 0;
    while (true) {
        const JudgedRun run = killedBefore(moment, GetParam());
        ASSERT_TRUE(run.fault.empty()) << run.fault << "\nkilled before call " << moment << ", "
                                       << run.calls.back().name << " " << run.calls.back().path;
        if (!run.result.wasKilled) {
            EXPECT_TRUE(run.result.succeeded) << "the run that was not killed: " << run.result.message;
            break;
        }
        ++moment;
    }
    EXPECT_GT(moment, 10u) << "hardly any call was seen";
}

INSTANTIATE_TEST_SUITE_P(
    During, AKill, testing::ValuesIn(scenes()), [](const auto& scene) { return nameOf(scene.param); });
