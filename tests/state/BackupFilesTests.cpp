#include "state/BackupFiles.h"

#include "fakes/TemporaryDirectory.h"
#include "state/FileMode.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin;
using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr auto moment = std::chrono::sys_days(std::chrono::January / 31 / 2026) + 9h + 5min;

} // namespace

TEST(MakingABackup, namesItByPrefixMomentAndCounter) {
    const TemporaryDirectory root;
    EXPECT_EQ(createBackup("a", root.path(), "things-", moment, defaultFileMode),
        root / "things-2026-01-31T09-05-00Z.json");
    EXPECT_EQ(createBackup("b", root.path(), "things-", moment, defaultFileMode),
        root / "things-2026-01-31T09-05-00Z-2.json");
    EXPECT_EQ(createBackup("c", root.path(), "others-", moment, defaultFileMode),
        root / "others-2026-01-31T09-05-00Z.json");
    EXPECT_EQ(root.read("things-2026-01-31T09-05-00Z.json"), "a");
    EXPECT_EQ(root.read("things-2026-01-31T09-05-00Z-2.json"), "b");
}

TEST(MakingABackup, needsItsDirectory) {
    const TemporaryDirectory root;
    EXPECT_EQ(thrownMessage<POSIXError>([&] {
        static_cast<void>(createBackup("a", root / "backups", "things-", moment, ownerOnlyFileMode));
    }),
        "No such file or directory");
}

TEST(ListingBackups, givesEveryKindOfEntryThatIsNamedLikeOne) {
    const TemporaryDirectory root;
    EXPECT_THAT(backupEntries(root.path()), IsEmpty()) << "without a directory";
    root.write("backups/a.json", "");
    root.write("backups/b.json.tmp", "");
    root.write("backups/c", "");
    fs::create_directory(root / "backups/folder.json");
    fs::create_symlink("nowhere", root / "backups/link.json");
    EXPECT_THAT(backupEntries(root.path()),
        UnorderedElementsAre(root / "backups/a.json", root / "backups/folder.json", root / "backups/link.json"));
}

TEST(ListingBackups, refusesAnythingElseInPlaceOfTheirDirectory) {
    const TemporaryDirectory root;
    const auto refusal = [&] {
        return thrownMessage<AtomicStateFileError>([&] { static_cast<void>(backupEntries(root.path())); });
    };
    fs::create_directory(root / "real");
    fs::create_directory_symlink("real", root / "backups");
    EXPECT_EQ(refusal(), "Kestrin's backup path is not a regular directory.");
    fs::remove(root / "backups");
    root.write("backups", "");
    EXPECT_EQ(refusal(), "Kestrin's backup path is not a regular directory.");
}
