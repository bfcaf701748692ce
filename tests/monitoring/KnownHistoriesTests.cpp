#include "monitoring/MonitorHarness.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <fstream>

namespace kestrin {
namespace {

/// Tells what was read from what was taken from memory: a history's content can be exchanged behind the back of
/// whoever looks at revisions alone.
class AReload : public MonitorTest {
protected:
    [[nodiscard]] std::filesystem::path historyPath(const std::string& id) const {
        return root / "data" / (id + ".jsonl");
    }

    /// Makes every line unreadable and leaves the file's revision as it was.
    void blankOutUnseen(const std::string& id) const {
        const std::filesystem::path path = historyPath(id);
        struct stat before{};
        ASSERT_EQ(::stat(path.c_str(), &before), 0);
        std::fstream(path, std::ios::in | std::ios::out)
            << std::string(static_cast<std::size_t>(before.st_size), ' ');
        const std::array<timespec, 2> times = {before.st_atim, before.st_mtim};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0);
    }

    void reload() {
        model->reload();
        settle();
    }

    void checkOnce() {
        model->checkNow();
        settle();
        answerChecks();
    }
};

TEST_F(AReload, readsNoByteOfAHistoryThatDidNotChange) {
    writeSites(configurationOf({"a", "b"}));
    (void)files.appendCheck(checkOf("a"));
    (void)files.appendCheck(checkOf("b"));
    load();
    blankOutUnseen("a");
    (void)files.appendCheck(checkOf("b"));
    reload();
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
    EXPECT_EQ(snapshot("b").history.totalCheckCount, 2);
}

TEST_F(AReload, readsNoByteOfWhatTheProgramItselfHasWritten) {
    load(configurationOf({"a"}));
    checkOnce();
    checkOnce();
    blankOutUnseen("a");
    reload();
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 2);
}

TEST_F(AReload, takesAHistoryOverWithTheNewDefinitionOfItsSite) {
    SiteConfiguration configuration = configurationOf({"a"});
    load(configuration);
    checkOnce();
    blankOutUnseen("a");
    configuration.sites[0].name = "Another name";
    writeSites(configuration);
    reload();
    EXPECT_EQ(snapshot("a").site.name, "Another name");
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 1);
}

TEST_F(AReload, findsTheLineThatAnotherProgramWroteBetweenTwoOfOurs) {
    load(configurationOf({"a"}));
    checkOnce();
    (void)files.appendCheck(checkOf("a", false));
    checkOnce();
    ASSERT_EQ(snapshot("a").history.totalCheckCount, 2);
    reload();
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 3);
    EXPECT_EQ(snapshot("a").history, historyOnDisk("a"));
}

TEST_F(AReload, knowsAHistoryAgainOnceItHasReadTheLineOfAnotherProgram) {
    load(configurationOf({"a"}));
    (void)files.appendCheck(checkOf("a", false));
    checkOnce();
    reload();
    blankOutUnseen("a");
    reload();
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 2);
}

TEST_F(AReload, findsTheLineThatAnotherProgramWroteForAService) {
    SiteConfiguration configuration = configurationOf({});
    configuration.providerStatus = {.enabled = true, .providerIDs = {"openai"}};
    load(configuration);
    (void)files.appendProviderCheck(serviceCheckOf("openai"));
    checkOnce();
    ASSERT_EQ(model->providerSnapshots()[0].history.recentChecks.size(), 1U);
    reload();
    EXPECT_EQ(model->providerSnapshots()[0].history.recentChecks.size(), 2U);
    EXPECT_EQ(model->providerSnapshots()[0].history, serviceHistoryOnDisk("openai"));
}

TEST_F(AReload, afterAFailureReadsEverythingAgain) {
    const SiteConfiguration configuration = configurationOf({"a"});
    load(configuration);
    checkOnce();
    writeSitesText("nonsense");
    reload();
    ASSERT_TRUE(model->loadError().has_value());
    writeSites(configuration);
    blankOutUnseen("a");
    reload();
    EXPECT_EQ(snapshot("a").history.totalCheckCount, 0);
}

} // namespace
} // namespace kestrin
