// Somebody plants a symbolic link between two steps of an operation, before each system call in turn. What the link
// leads to keeps its bytes, and whatever comes of the operation is told in a sentence.

#include "fakes/TemporaryDirectory.h"
#include "faults/Operation.h"
#include "faults/TracedRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::AnyOf;

namespace {

constexpr const char* linkRefused = "Symbolic links are not allowed in Kestrin state paths.";
constexpr const char* precious = "not Kestrin's\n";

/// Where a link is planted, and what it leads to. What stands there is moved out of the way.
struct Plant {
    std::string_view name;
    std::string_view operation;
    std::string path;
    std::string target;
    std::vector<std::string> refusals; ///< what an operation may say that does not succeed
};

void PrintTo(const Plant& plant, std::ostream* stream) {
    *stream << plant.name;
}

const std::string root = "share/Kestrin";
const std::string elsewhere = "elsewhere/file";
const std::string elsewhereDirectory = "elsewhere/directory";

struct LinkedRun {
    RunResult result;
    std::size_t calls = 0;
    Tree tree;
};

void plantLink(const Plant& plant, const fs::path& base) {
    const fs::path path = base / plant.path;
    fs::create_directories(path.parent_path());
    if (fs::exists(path)) fs::rename(path, base / "moved");
    fs::create_symlink(base / plant.target, path);
}

/// Plants the link before the call of the operation for which `isMoment` holds.
template <class IsMoment> LinkedRun runWithLink(const Plant& plant, const IsMoment& isMoment) {
    const Operation& operation = operationNamed(plant.operation);
    const TemporaryDirectory base;
    makeTree(operation.before, base.path());
    base.write(elsewhere, precious);
    base.write(elsewhereDirectory + "/site-1.jsonl.old", precious);
    LinkedRun run;
    run.result =
        runTraced(KESTRIN_STATE_DRIVER, operation.name, base / operation.root, [&](const SystemCall& call) {
            if (call.inOperation && isMoment(run.calls++, call)) plantLink(plant, base.path());
            return call.name() == "fsync" ? Verdict::answer(0) : Verdict::pass();
        });
    run.tree = treeOf(base.path());
    return run;
}

LinkedRun runWithLinkAt(const Plant& plant, std::size_t moment) {
    return runWithLink(plant, [moment](std::size_t number, const SystemCall&) { return number == moment; });
}

class ALinkPlantedMeanwhile : public testing::TestWithParam<Plant> {
protected:
    /// What was elsewhere stays; a whole file may have come beside it, never a part of one.
    static void expectNothingLost(const Tree& tree) {
        const Operation& operation = operationNamed(GetParam().operation);
        EXPECT_EQ(tree.at(elsewhere), precious);
        EXPECT_EQ(tree.at(elsewhereDirectory + "/site-1.jsonl.old"), precious);
        for (const auto& [path, content] : tree) {
            if (path.starts_with(elsewhereDirectory + "/") && !path.ends_with(".old")) {
                EXPECT_THAT(content, AnyOf(operation.after, operation.former())) << path;
            }
            EXPECT_FALSE(path.ends_with(".tmp")) << path << " was left behind";
        }
        for (const auto& [path, content] : operation.before) {
            const std::string moved = "moved" + path.substr(std::min(path.size(), GetParam().path.size()));
            const bool isMoved = path.starts_with(GetParam().path) && tree.contains(moved);
            const auto& now = tree.at(isMoved ? moved : path);
            if (path == operation.file) {
                EXPECT_THAT(now, AnyOf(content, operation.after));
            } else {
                EXPECT_EQ(now, content) << path;
            }
        }
    }
};

} // namespace

TEST_P(ALinkPlantedMeanwhile, losesNothingOfWhatItLeadsToOrReplaces) {
    const std::size_t calls = runWithLinkAt(GetParam(), 100'000).calls;
    ASSERT_GE(calls, 10u);
    std::size_t refused = 0;
    for (std::size_t moment = 0; moment < calls; ++moment) {
        SCOPED_TRACE("planted before call " + std::to_string(moment));
        const LinkedRun run = runWithLinkAt(GetParam(), moment);
        ASSERT_EQ(run.result.wrong, "");
        if (!run.result.succeeded) {
            ++refused;
            ASSERT_THAT(GetParam().refusals, testing::Contains(run.result.message));
        }
        expectNothingLost(run.tree);
        if (HasFailure()) FAIL() << described(run.tree);
    }
    EXPECT_GE(refused, GetParam().refusals.empty() ? 0u : 1u) << "no link was noticed";
}

INSTANTIATE_TEST_SUITE_P(InPlaceOf, ALinkPlantedMeanwhile,
    testing::Values(
        Plant{"aHistoryFile", "append", root + "/data/site-1.jsonl", elsewhere,
            {linkRefused, "Too many levels of symbolic links", "Kestrin history is not a regular file."}},
        Plant{"aHistoryFileThatBegins", "firstAppend", root + "/data/site-1.jsonl", elsewhere,
            {linkRefused, "Kestrin history is not a regular file."}},
        Plant{"theHistoryDirectory", "append", root + "/data", elsewhereDirectory,
            {linkRefused, "No such file or directory", "Kestrin history is not a regular file."}},
        Plant{"aHistoryDirectoryThatBegins", "firstAppend", root + "/data", elsewhereDirectory,
            {linkRefused, "Not a directory", "Too many levels of symbolic links", "No such file or directory"}},
        Plant{"theServiceDirectory", "serviceAppend", root + "/data/providers", elsewhereDirectory,
            {linkRefused, "No such file or directory", "Kestrin history is not a regular file."}},
        Plant{"theConfiguration", "save", root + "/sites.json", elsewhere, {}},
        Plant{"theFirstConfiguration", "firstSaveIntoAnEmptyRoot", root + "/sites.json", elsewhere,
            {"Kestrin's sites.json is not a regular file."}},
        Plant{"theConfigurationToBackUp", "saveWithABackup", root + "/sites.json", elsewhere,
            {"Kestrin's sites.json is not a regular file."}},
        Plant{"theBackups", "saveWithABackup", root + "/backups", elsewhereDirectory,
            {"Kestrin's backup path is not a regular directory.", "Not a directory",
                "Too many levels of symbolic links"}},
        Plant{"theFirstBackups", "firstSaveWithABackup", root + "/backups", elsewhereDirectory,
            {"Kestrin's backup path is not a regular directory.", "Not a directory",
                "Too many levels of symbolic links"}},
        Plant{"theAddedServices", "saveOfAddedServices", root + "/custom-providers.json", elsewhere,
            {"Kestrin refused an unsafe custom-provider settings path.",
                "Custom-provider settings changed while saving."}},
        Plant{"theFirstAddedServices", "firstSaveOfAddedServices", root + "/custom-providers.json", elsewhere,
            {"Kestrin refused an unsafe custom-provider settings path.",
                "Custom-provider settings changed while saving."}},
        Plant{"theAddedServicesToBackUp", "saveOfAddedServicesWithABackup", root + "/custom-providers.json",
            elsewhere,
            {"Kestrin refused an unsafe custom-provider settings path.",
                "Kestrin refused oversized or unsafe custom-provider settings.",
                "Custom-provider settings changed while saving."}},
        Plant{"theBackupsOfAddedServices", "saveOfAddedServicesWithABackup", root + "/backups", elsewhereDirectory,
            {"Kestrin refused an unsafe state directory.", "Not a directory", "Too many levels of symbolic links"}},
        Plant{"theFirstBackupsOfAddedServices", "saveOfAddedServicesWithAFirstBackup", root + "/backups",
            elsewhereDirectory,
            {"Kestrin refused an unsafe state directory.", "Not a directory", "Too many levels of symbolic links"}},
        Plant{"aFileReplacedForTheFirstTime", "replaceNotificationLedger", root + "/notification-ledger.json",
            elsewhere,
            {"Kestrin refused an unsafe notification state path.", "Notification state changed while saving."}}),
    [](const auto& plant) { return std::string(plant.param.name); });

/// Behind the last look only a directory can still be exchanged: no open and no new name follows a link at the end
/// of a path.
TEST(ALinkInAHistoryPath, isRefusedUpToTheLastLook) {
    for (const std::string_view operation : {"append", "sealingAppend", "firstAppend", "firstServiceAppend"}) {
        const Plant plant = {operation, operation, root + "/data", elsewhereDirectory, {}};
        std::size_t lastLook = 0;
        runWithLink(plant, [&](std::size_t number, const SystemCall& call) {
            if (call.name() == "newfstatat" && call.path().ends_with(root + "/data")) lastLook = number;
            return false;
        });
        ASSERT_GT(lastLook, 0u);
        for (std::size_t moment = 0; moment <= lastLook; ++moment) {
            const LinkedRun run = runWithLinkAt(plant, moment);
            ASSERT_EQ(run.result.message, linkRefused) << operation << ", planted before call " << moment;
            ASSERT_EQ(run.tree.count(elsewhereDirectory + "/site-1.jsonl"), 0u);
        }
    }
}
