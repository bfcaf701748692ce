// The system calls of every operation are recorded and repeated on a model of a disk. After each of them the power
// goes, and every state that the disk may then be in must be a good one.

#include "fakes/TemporaryDirectory.h"
#include "faults/DiskRecorder.h"
#include "faults/Judgement.h"
#include "faults/Scene.h"
#include "faults/TracedRun.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <set>

using namespace kestrin;

namespace {

/// Every state that a loss of power may leave: while the operation runs, and when it has told success.
struct Aftermath {
    std::set<Tree> during;
    std::set<Tree> afterSuccess;
    std::size_t changes = 0;
};

/// A directory that is there when the operation begins, and its name not yet on the disk.
using UnsyncedDirectory = std::optional<std::string>;

Aftermath aftermathOf(
    const Scene& scene, const std::string& driver, const UnsyncedDirectory& unsynced = std::nullopt) {
    const Operation& operation = scene.operation;
    const TemporaryDirectory base;
    makeTree(operation.before, base.path());
    Tree onDisk = treeOf(base.path());
    if (unsynced) onDisk.erase(*unsynced);
    Disk disk(onDisk);
    if (unsynced) disk.makeDirectory(*unsynced);
    DiskRecorder recorder(disk, base.path().string());

    Aftermath aftermath;
    bool isOver = false;
    const auto before = [&](const SystemCall& call) {
        isOver = isOver || !call.inOperation;
        return isOver ? Verdict::pass() : scene.around.verdict(call);
    };
    const auto after = [&](const SystemCall& call, std::int64_t result) {
        if (isOver || !recorder.take(call, result)) return;
        ++aftermath.changes;
        disk.forEachTreeAfterLossOfPower([&](const Tree& tree) { aftermath.during.insert(tree); });
    };
    const RunResult result = runTraced(driver, operation.name, base / operation.root, before, after);
    EXPECT_TRUE(result.succeeded) << result.message << result.wrong;
    disk.forEachTreeAfterLossOfPower([&](const Tree& tree) { aftermath.afterSuccess.insert(tree); });
    return aftermath;
}

std::string faultIn(const Operation& operation, const std::set<Tree>& trees, Ending ending) {
    for (const Tree& tree : trees)
        if (const std::string wrong = fault(operation, tree, ending); !wrong.empty())
            return wrong + "\nthe disk held:" + described(tree);
    return {};
}

std::string faultIn(const Operation& operation, const Aftermath& aftermath) {
    const std::string wrong = faultIn(operation, aftermath.during, Ending::PowerLost);
    return wrong.empty() ? faultIn(operation, aftermath.afterSuccess, Ending::PowerLostAfterSuccess) : wrong;
}

class ALossOfPower : public testing::TestWithParam<Scene> {};

} // namespace

TEST_P(ALossOfPower, leavesWhatWasPromisedAndWorksAgain) {
    const Operation& operation = GetParam().operation;
    const Aftermath aftermath = aftermathOf(GetParam(), KESTRIN_STATE_DRIVER);
    if (operation.effect == Effect::Reads)
        ASSERT_EQ(aftermath.changes, 0u);
    else
        ASSERT_GE(aftermath.changes, 1u);
    const std::string wrong = faultIn(operation, aftermath);
    ASSERT_TRUE(wrong.empty()) << wrong;

    std::set<Tree> all = aftermath.during;
    all.insert(aftermath.afterSuccess.begin(), aftermath.afterSuccess.end());
    for (const Tree& tree : all) {
        const TemporaryDirectory base;
        makeTree(tree, base.path());
        const std::string next = nextStartFault(base / operation.root);
        ASSERT_TRUE(next.empty()) << next << described(tree);
    }
    RecordProperty("states", static_cast<int>(all.size()));
}

/// A first save that was killed may have made the directory without having put its name on the disk.
TEST(AFirstSave, putsAlsoTheNameOfADirectoryOnTheDiskThatAKilledOneHadMade) {
    int judged = 0;
    for (const Scene& scene : scenes()) {
        if (scene.operation.name != "firstSaveIntoAnEmptyRoot") continue;
        ++judged;
        const std::string wrong =
            faultIn(scene.operation, aftermathOf(scene, KESTRIN_STATE_DRIVER, scene.operation.root));
        EXPECT_TRUE(wrong.empty()) << nameOf(scene) << ": " << wrong;
    }
    EXPECT_GT(judged, 0);
}

/// The same of the directory of backups, whose name must be on the disk before the file is replaced.
TEST(ASaveWithABackup, putsAlsoTheNameOfADirectoryOnTheDiskThatAKilledOneHadMade) {
    std::set<std::string_view> judged;
    for (const Scene& scene : scenes()) {
        const Operation& operation = scene.operation;
        if (operation.name != "firstSaveWithABackup" && operation.name != "saveOfAddedServicesWithAFirstBackup")
            continue;
        judged.insert(operation.name);
        const std::string backups = operation.root + "/backups";
        Scene afterAKill = scene;
        afterAKill.operation.before[backups] = std::nullopt;
        const std::string wrong = faultIn(operation, aftermathOf(afterAKill, KESTRIN_STATE_DRIVER, backups));
        EXPECT_TRUE(wrong.empty()) << nameOf(scene) << ": " << wrong;
    }
    EXPECT_EQ(judged.size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    During, ALossOfPower, testing::ValuesIn(scenes()), [](const auto& scene) { return nameOf(scene.param); });

namespace {

/// A driver that leaves out flushes, and the promises that it cannot keep for it.
struct Mutant {
    std::string_view name;
    const char* driver;
    bool spoilsNewFile;
};

void PrintTo(const Mutant& mutant, std::ostream* stream) {
    *stream << mutant.name;
}

class ALeftOutFlush : public testing::TestWithParam<Mutant> {};

} // namespace

TEST_P(ALeftOutFlush, isNoticed) {
    for (const Scene& scene : scenes()) {
        const Operation& operation = scene.operation;
        const bool isPromised = operation.effect == Effect::Replaces ||
                                (operation.effect == Effect::Creates && GetParam().spoilsNewFile);
        if (!isPromised) continue;
        EXPECT_NE(faultIn(operation, aftermathOf(scene, GetParam().driver)), "") << nameOf(scene);
    }
}

INSTANTIATE_TEST_SUITE_P(In, ALeftOutFlush,
    testing::Values(Mutant{"files", KESTRIN_STATE_DRIVER "_without_file_sync", true},
        Mutant{"directories", KESTRIN_STATE_DRIVER "_without_directory_sync", false},
        Mutant{"both", KESTRIN_STATE_DRIVER "_without_any_sync", true}),
    [](const auto& mutant) { return std::string(mutant.param.name); });
