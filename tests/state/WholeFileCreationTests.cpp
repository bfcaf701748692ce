#include "state/WholeFileCreation.h"

#include "fakes/TemporaryDirectory.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

using Way = void (*)(std::string_view, const fs::path&, const fs::path&, Durability, mode_t);

class CreatingAWholeFile : public testing::TestWithParam<Way> {
protected:
    CreatingAWholeFile() { fs::create_directories(directory / "root"); }

    [[nodiscard]] std::string create(
        std::string_view content, Durability durability = Durability::Synced, mode_t mode = defaultFileMode) const {
        return thrownMessage<POSIXError>(
            [&] { GetParam()(content, directory / "root/file", directory.path(), durability, mode); });
    }

    TemporaryDirectory directory;
};

} // namespace

TEST_P(CreatingAWholeFile, leavesTheFileAlone) {
    const std::string content(200'000, 'c');
    EXPECT_EQ(create(content), "no error");
    EXPECT_EQ(directory.read("root/file"), content);
    EXPECT_THAT(directory.entries(), ElementsAre("root", "root/file"));
}

TEST_P(CreatingAWholeFile, givesItDefaultPermissions) {
    const mode_t former = ::umask(027);
    EXPECT_EQ(create("x", Durability::Written), "no error");
    ::umask(former);
    EXPECT_EQ(fs::status(directory / "root/file").permissions(), fs::perms(0640));
}

TEST_P(CreatingAWholeFile, givesItToItsOwnerAloneWhereThatIsAsked) {
    const mode_t former = ::umask(0);
    EXPECT_EQ(create("x", Durability::Synced, ownerOnlyFileMode), "no error");
    ::umask(former);
    EXPECT_EQ(fs::status(directory / "root/file").permissions(), fs::perms(0600));
}

TEST_P(CreatingAWholeFile, neverReplacesWhatIsThere) {
    directory.write("root/file", "former");
    EXPECT_EQ(create("x"), "File exists");
    EXPECT_EQ(directory.read("root/file"), "former");
    EXPECT_THAT(directory.entries(), ElementsAre("root", "root/file"));
}

TEST_P(CreatingAWholeFile, takesADanglingLinkForATakenName) {
    fs::create_symlink("target", directory / "root/file");
    EXPECT_EQ(create("x"), "File exists");
    EXPECT_THAT(directory.entries(), ElementsAre("root", "root/file"));
}

TEST_P(CreatingAWholeFile, failsWithoutADirectoryAndLeavesNothing) {
    fs::remove(directory / "root");
    EXPECT_EQ(create("x"), "No such file or directory");
    EXPECT_THAT(directory.entries(), ElementsAre());
}

INSTANTIATE_TEST_SUITE_P(InEitherWay, CreatingAWholeFile,
    testing::Values(&createWholeFile, &createWholeFileUnderTemporaryName),
    [](const auto& way) { return way.index == 0 ? "nameless" : "underATemporaryName"; });
