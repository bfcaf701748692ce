// Each file call of an operation fails once, with each error that a file system has: the operation succeeds or says
// so in a sentence, loses nothing, leaves no descriptor open and nothing behind, and the next start works.

#include "faults/JudgedRun.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <set>

using namespace kestrin;
using testing::AnyOf;

namespace {

class AFailingCall : public testing::TestWithParam<Scene> {
protected:
    /// The operation's file calls when nothing fails.
    [[nodiscard]] std::vector<JudgedRun::Call> calls() const {
        const JudgedRun run = judgedRun(GetParam(), passAll);
        EXPECT_TRUE(run.fault.empty()) << run.fault;
        EXPECT_TRUE(run.result.succeeded) << run.result.message;
        std::vector<JudgedRun::Call> calls;
        for (const JudgedRun::Call& call : run.calls)
            if (call.isAboutFiles && call.inOperation) calls.push_back(call);
        EXPECT_GE(calls.size(), 4u) << "hardly any call was seen";
        return calls;
    }

    /// The run whose file call of that number meets that verdict; `reached` tells whether it was made at all.
    [[nodiscard]] JudgedRun runWith(std::size_t number, const Verdict& verdict) {
        std::size_t fileCalls = 0;
        return judgedRun(GetParam(), [&](std::size_t, const SystemCall& call, const auto&) {
            if (!call.isAboutFiles() || !call.inOperation || fileCalls++ != number) return Verdict::pass();
            return verdict;
        });
    }

    static Verdict passAll(std::size_t, const SystemCall&, const std::filesystem::path&) { return Verdict::pass(); }
};

const std::set<std::string> writing = {"write", "pwrite64", "writev"};
/// Where POSIX lets a signal interrupt a call that has done nothing yet, and doing it again is right.
const std::set<std::string> restarting = {"open", "openat", "read", "pread64", "write", "getrandom"};

/// A close that reports an error has closed all the same.
Verdict failure(const JudgedRun::Call& call, int code) {
    return call.name == "close" ? Verdict::failAfterwards(code) : Verdict::fail(code);
}

std::string sentence(int code) {
    return ::strerrordesc_np(code);
}

} // namespace

TEST_P(AFailingCall, isToldInASentenceAndLosesNothing) {
    const auto all = calls();
    for (std::size_t number = 0; number < all.size(); ++number) {
        for (const int code : {ENOSPC, EIO, EDQUOT, EMFILE}) {
            SCOPED_TRACE(all[number].name + " " + all[number].path + ": " + sentence(code));
            const JudgedRun run = runWith(number, failure(all[number], code));
            ASSERT_TRUE(run.fault.empty()) << run.fault;
            ASSERT_THAT(run.result.message, AnyOf("", sentence(code)));
        }
    }
}

TEST_P(AFailingCall, isRepeatedWhenASignalInterruptedIt) {
    const auto all = calls();
    for (std::size_t number = 0; number < all.size(); ++number) {
        SCOPED_TRACE(all[number].name + " " + all[number].path);
        const JudgedRun run = runWith(number, failure(all[number], EINTR));
        ASSERT_TRUE(run.fault.empty()) << run.fault;
        if (restarting.contains(all[number].name) || all[number].name == "close") {
            ASSERT_EQ(run.result.message, "");
        }
        ASSERT_THAT(run.result.message, AnyOf("", sentence(EINTR)));
    }
}

TEST_P(AFailingCall, goesOnAfterAWriteThatTookOneByte) {
    const auto all = calls();
    for (std::size_t number = 0; number < all.size(); ++number) {
        if (!writing.contains(all[number].name)) continue;
        const JudgedRun run = runWith(number, Verdict::firstByteOnly());
        ASSERT_TRUE(run.fault.empty()) << run.fault;
        ASSERT_TRUE(run.result.succeeded) << run.result.message;
    }
}

TEST_P(AFailingCall, endsAtAWriteThatTookNothing) {
    const auto all = calls();
    for (std::size_t number = 0; number < all.size(); ++number) {
        if (!writing.contains(all[number].name)) continue;
        const JudgedRun run = runWith(number, Verdict::answer(0));
        ASSERT_TRUE(run.fault.empty()) << run.fault;
        ASSERT_FALSE(run.result.succeeded);
        ASSERT_THAT(run.result.message, testing::EndsWith("."));
    }
}

/// From one moment on nothing can be written or created any more.
TEST_P(AFailingCall, meetsADiskThatIsFullFromThereOn) {
    static const std::set<std::string> growing = {
        "write", "mkdir", "mkdirat", "link", "linkat", "rename", "renameat", "renameat2", "fsync"};
    const auto all = calls();
    for (std::size_t moment = 0; moment < all.size(); ++moment) {
        std::size_t fileCalls = 0;
        const JudgedRun run = judgedRun(GetParam(), [&](std::size_t, const SystemCall& call, const auto&) {
            if (!call.isAboutFiles() || !call.inOperation || fileCalls++ < moment) return Verdict::pass();
            const bool creates = (call.openFlags() & O_CREAT) != 0 || call.opensNamelessFile();
            return creates || growing.contains(call.name()) ? Verdict::fail(ENOSPC) : Verdict::pass();
        });
        SCOPED_TRACE("full from " + all[moment].name + " " + all[moment].path);
        ASSERT_TRUE(run.fault.empty()) << run.fault;
        ASSERT_THAT(run.result.message, AnyOf("", "No space left on device"));
    }
}

/// The kernel may have thrown away what it could not write, so asking the same descriptor again would lie.
TEST_P(AFailingCall, isNeverFlushedAgain) {
    const auto all = calls();
    for (std::size_t number = 0; number < all.size(); ++number) {
        if (all[number].name != "fsync") continue;
        std::set<int> failed;
        std::size_t fileCalls = 0;
        bool again = false;
        const JudgedRun run = judgedRun(GetParam(), [&](std::size_t, const SystemCall& call, const auto&) {
            if (!call.isAboutFiles() || !call.inOperation) return Verdict::pass();
            if (call.name() == "close") failed.erase(call.argument(0));
            if (call.name() == "fsync") again = again || failed.contains(call.argument(0));
            if (fileCalls++ != number) return Verdict::pass();
            failed.insert(call.argument(0));
            return Verdict::fail(EIO);
        });
        ASSERT_TRUE(run.fault.empty()) << run.fault;
        ASSERT_FALSE(run.result.succeeded);
        ASSERT_FALSE(again);
    }
}

INSTANTIATE_TEST_SUITE_P(
    During, AFailingCall, testing::ValuesIn(scenes()), [](const auto& scene) { return nameOf(scene.param); });
