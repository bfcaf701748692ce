// Faults of one certain call, each with what exactly comes of it.

#include "faults/JudgedRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

using namespace kestrin;
using testing::Contains;
using testing::Field;
using testing::Not;

namespace {

namespace fs = std::filesystem;

using VerdictOnCall = std::function<Verdict(const SystemCall&)>;

Verdict untouched(const SystemCall&) {
    return Verdict::pass();
}

JudgedRun run(std::string_view operation, const VerdictOnCall& verdict) {
    const Scene scene = {operationNamed(operation), {"asTheMachineIs", untouched}};
    JudgedRun run =
        judgedRun(scene, [&](std::size_t, const SystemCall& call, const fs::path&) { return verdict(call); });
    EXPECT_TRUE(run.fault.empty()) << run.fault;
    return run;
}

bool isRename(const SystemCall& call) {
    return call.name() == "rename" || call.name() == "renameat2";
}

/// The state directory is a file system of its own, one that does not know nameless files.
Verdict onAMountPoint(const SystemCall& call) {
    if (call.opensNamelessFile()) return Verdict::fail(EOPNOTSUPP);
    const bool crosses = isRename(call) && fs::path(call.text(call.name() == "rename" ? 0 : 1)).parent_path() !=
                                               fs::path(call.path()).parent_path();
    return crosses ? Verdict::fail(EXDEV) : Verdict::pass();
}

/// The same file system, and a parent of somebody else's.
Verdict belowAForeignParent(const SystemCall& call) {
    if (call.opensNamelessFile()) return Verdict::fail(EOPNOTSUPP);
    const bool createsThere =
        (call.openFlags() & O_CREAT) != 0 && fs::path(call.path()).parent_path().filename() == "share";
    return createsThere ? Verdict::fail(EACCES) : Verdict::pass();
}

auto named(const std::string& name) {
    return Field(&JudgedRun::Call::name, name);
}

} // namespace

TEST(ASingleFault, ofTheLastFlushOfASaveIsToldAlthoughTheNewContentIsInPlace) {
    for (const std::string_view operation :
        {"save", "saveWithABackup", "firstSave", "saveOfAddedServices", "firstSaveOfAddedServices",
            "saveOfAddedServicesWithABackup", "replaceNotificationSettings", "replaceNotificationLedger"}) {
        const JudgedRun undisturbed = run(operation, untouched);
        const auto flushes = std::ranges::count(undisturbed.calls, "fsync", &JudgedRun::Call::name);
        std::ptrdiff_t seen = 0;
        const JudgedRun failed = run(operation, [&](const SystemCall& call) {
            return call.name() == "fsync" && ++seen == flushes ? Verdict::fail(EIO) : Verdict::pass();
        });
        EXPECT_EQ(failed.result.message, "Input/output error") << operation;
        const Operation& about = operationNamed(operation);
        EXPECT_EQ(failed.tree.at(about.file), about.after) << operation;
    }
}

TEST(ASingleFault, ofTheRenameLeavesTheFormerContentAndNoTemporary) {
    for (const std::string_view operation :
        {"save", "saveWithABackup", "saveOfAddedServices", "saveOfAddedServicesWithABackup"}) {
        const JudgedRun failed = run(operation,
            [](const SystemCall& call) { return call.name() == "rename" ? Verdict::fail(EIO) : Verdict::pass(); });
        EXPECT_EQ(failed.result.message, "Input/output error");
        const Operation& about = operationNamed(operation);
        EXPECT_EQ(failed.tree.at(about.file), about.former());
    }
}

TEST(ASingleFault, ofAFlushBeforeTheRenameLeavesTheFormerContent) {
    const JudgedRun failed = run("save",
        [](const SystemCall& call) { return call.name() == "fsync" ? Verdict::fail(EIO) : Verdict::pass(); });
    EXPECT_EQ(failed.result.message, "Input/output error");
    EXPECT_EQ(failed.tree.at("share/Kestrin/sites.json"), operationNamed("save").former());
    EXPECT_THAT(failed.calls, Not(Contains(named("rename"))));
}

/// Network file systems tell as late as this that they could not write.
TEST(ASingleFault, ofClosingAHistoryFileIsTold) {
    for (const std::string_view operation : {"append", "sealingAppend", "serviceAppend", "firstAppend"}) {
        int written = -1;
        const JudgedRun failed = run(operation, [&](const SystemCall& call) {
            if (call.name() == "write" && call.inOperation) written = call.argument(0);
            const bool isIt = call.name() == "close" && call.argument(0) == written;
            return isIt ? Verdict::failAfterwards(EDQUOT) : Verdict::pass();
        });
        EXPECT_EQ(failed.result.message, "Disk quota exceeded") << operation;
    }
}

TEST(ASingleFault, ofClosingAFileThatWasSyncedIsNone) {
    for (const std::string_view operation :
        {"save", "firstSave", "saveWithABackup", "saveOfAddedServicesWithABackup", "replaceNotificationLedger"}) {
        const JudgedRun saved = run(operation, [](const SystemCall& call) {
            return call.name() == "close" ? Verdict::failAfterwards(EIO) : Verdict::pass();
        });
        EXPECT_TRUE(saved.result.succeeded) << operation << saved.result.message;
    }
}

TEST(ASingleFault, ofAParentThatMayOnlyBePassedThroughOrReadDoesNotHinderASave) {
    for (const std::string_view operation : {"firstSave", "save", "firstSaveOfAddedServices"})
        for (const int code : {EACCES, EROFS}) {
            std::size_t refused = 0;
            const JudgedRun saved = run(operation, [&](const SystemCall& call) {
                if (!call.path().ends_with("/Kestrin/..")) return Verdict::pass();
                ++refused;
                return Verdict::fail(code);
            });
            EXPECT_TRUE(saved.result.succeeded) << operation << saved.result.message;
            EXPECT_GE(refused, 1u) << operation;
        }
}

TEST(ASingleFault, ofANamelessFileLetsTheFirstFileComeFromBesideTheDirectory) {
    const JudgedRun saved = run("firstSave", [](const SystemCall& call) {
        return call.opensNamelessFile() ? Verdict::fail(EOPNOTSUPP) : Verdict::pass();
    });
    EXPECT_TRUE(saved.result.succeeded) << saved.result.message;
    EXPECT_THAT(saved.calls, Contains(named("renameat2")));
    EXPECT_THAT(saved.calls, Not(Contains(named("linkat"))));
}

TEST(ASingleFault, ofAnExclusiveRenameLetsTheFirstFileBeLinked) {
    for (const int code : {EINVAL, ENOSYS}) {
        const JudgedRun saved = run("firstSave", [code](const SystemCall& call) {
            if (call.name() == "renameat2") return Verdict::fail(code);
            return call.opensNamelessFile() ? Verdict::fail(EOPNOTSUPP) : Verdict::pass();
        });
        EXPECT_TRUE(saved.result.succeeded) << saved.result.message;
        EXPECT_THAT(saved.calls, Contains(named("link")));
        EXPECT_THAT(saved.calls, Contains(named("unlink")));
    }
}

TEST(AParentThatTakesNoTemporary, doesNotHinderAFirstSave) {
    for (const VerdictOnCall& parent : {VerdictOnCall(onAMountPoint), VerdictOnCall(belowAForeignParent)})
        for (const std::string_view operation : {"firstSave", "firstSaveIntoAnEmptyRoot"})
            EXPECT_TRUE(run(operation, parent).result.succeeded);
}

TEST(AParentThatTakesNoTemporary, leavesNothingInTheDirectoryWhenACallFails) {
    for (const VerdictOnCall& parent : {VerdictOnCall(onAMountPoint), VerdictOnCall(belowAForeignParent)}) {
        const std::size_t calls = run("firstSaveIntoAnEmptyRoot", parent).calls.size();
        for (std::size_t number = 0; number < calls; ++number) {
            std::size_t seen = 0;
            const JudgedRun failed = run("firstSaveIntoAnEmptyRoot", [&](const SystemCall& call) {
                const bool isIt = seen++ == number && call.isAboutFiles() && call.inOperation;
                if (isIt && call.name() == "close") return Verdict::failAfterwards(EIO);
                return isIt && call.name() != "unlink" ? Verdict::fail(EIO) : parent(call);
            });
            ASSERT_FALSE(HasFailure()) << number;
        }
    }
}

/// The one place where a kill may leave a temporary that the next start stumbles over: nothing else is possible.
TEST(AParentThatTakesNoTemporary, neverLeavesAPartOfTheFirstFileToAKill) {
    const Scene scene = {operationNamed("firstSaveIntoAnEmptyRoot"), {"onAMountPoint", onAMountPoint}};
    bool wasKilled = true;
    for (std::size_t moment = 0; wasKilled; ++moment) {
        const JudgedRun killed = judgedRun(scene, [&](std::size_t number, const SystemCall&, const fs::path&) {
            return number == moment ? Verdict::kill() : Verdict::pass();
        });
        wasKilled = killed.result.wasKilled;
        for (const auto& [path, content] : killed.tree) {
            if (path == scene.operation.file) {
                EXPECT_EQ(content, scene.operation.after);
            } else if (content) {
                EXPECT_THAT(path, testing::MatchesRegex("share/(Kestrin/)?\\.Kestrin-[0-9A-F-]+\\.tmp"));
            }
        }
    }
}
