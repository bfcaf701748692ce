#include "fakes/TemporaryDirectory.h"
#include "state/StateErrors.h"
#include "state/StateReader.h"
#include "state/ThrownMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string configurationWith(const std::string& id) {
    return R"({"sites":[{"id":")" + id + R"(","name":"N","url":"u"}]})";
}

std::string refusal(const fs::path& root) {
    return thrownMessage<ConfigurationReadError>(
        [&] { static_cast<void>(StateReader(root).knownBackupSiteIDs()); });
}

} // namespace

TEST(IdentifiersInBackups, areThoseOfEveryReadableBackup) {
    const TemporaryDirectory root;
    root.write("backups/sites-1.json", configurationWith("site-4"));
    root.write(
        "backups/anything.json", R"({"sites":[{"id":"b","name":"","url":""},{"id":"a","name":"","url":""}]})");
    EXPECT_THAT(StateReader(root.path()).knownBackupSiteIDs(), ElementsAre("a", "b", "site-4"));
}

TEST(IdentifiersInBackups, areNoneWithoutBackups) {
    const TemporaryDirectory root;
    EXPECT_THAT(StateReader(root.path()).knownBackupSiteIDs(), IsEmpty());
    EXPECT_THAT(StateReader(root / "missing").knownBackupSiteIDs(), IsEmpty());
}

TEST(IdentifiersInBackups, passOverWhatDoesNotDecodeAndWhatIsUnsafe) {
    const TemporaryDirectory root;
    root.write("backups/custom-providers-1.json", R"({"schema_version":1,"providers":[]})");
    root.write("backups/torn.json", R"({"sites":[{"id":"x")");
    root.write("backups/notes.txt", configurationWith("text"));
    root.write("backups/.json", configurationWith("hidden"));
    root.write("backups/folder.json/inner.json", configurationWith("inner"));
    root.write("backups/unsafe.json",
        R"({"sites":[{"id":"","name":"","url":""},{"id":"..","name":"","url":""},{"id":"a/b","name":"","url":""},{"id":"a\u0000","name":"","url":""},{"id":"ok","name":"","url":""}]})");
    EXPECT_THAT(StateReader(root.path()).knownBackupSiteIDs(), ElementsAre("ok"));
}

TEST(IdentifiersInBackups, refuseABackupThatIsALinkOrNoFile) {
    for (const bool link : {true, false}) {
        const TemporaryDirectory root;
        root.write("backups/a.json", configurationWith("a"));
        if (link)
            fs::create_symlink("a.json", root / "backups/b.json");
        else
            ASSERT_EQ(::mkfifo((root / "backups/b.json").c_str(), 0600), 0);
        EXPECT_EQ(refusal(root.path()), "Kestrin's configuration backup is not a regular file.");
    }
}

TEST(IdentifiersInBackups, refuseABackupPathThatIsNoDirectory) {
    for (const bool link : {true, false}) {
        const TemporaryDirectory root;
        fs::create_directory(root / "real");
        if (link)
            fs::create_directory_symlink("real", root / "backups");
        else
            root.write("backups", "");
        EXPECT_EQ(refusal(root.path()), "Kestrin's backup path is not a regular directory.");
    }
}

TEST(TheNextIdentifier, skipsWhatIsUsedAndWhatBackupsHold) {
    const TemporaryDirectory root;
    root.write("backups/sites-1.json", configurationWith("site-4"));
    const StateReader reader(root.path());
    EXPECT_EQ(reader.nextAvailableSiteID({}), "site-1");
    EXPECT_EQ(reader.nextAvailableSiteID({"site-1", "site-2", "site-3"}), "site-5");
    EXPECT_EQ(reader.nextAvailableSiteID({"site-2"}), "site-1");
}

TEST(TheNextIdentifier, skipsEveryEntryThatStandsWhereItsHistoryWouldBe) {
    const TemporaryDirectory root;
    root.write("data/site-1.jsonl", "");
    fs::create_directory(root / "data/site-2.jsonl");
    root.write("data/providers/site-3.jsonl", "");
    EXPECT_EQ(StateReader(root.path()).nextAvailableSiteID({}), "site-3");
}

TEST(TheNextIdentifier, refusesALinkWhereItsHistoryWouldBe) {
    const TemporaryDirectory root;
    fs::create_directory(root / "data");
    fs::create_symlink("nowhere", root / "data/site-1.jsonl");
    EXPECT_EQ(
        thrownMessage<StatePathError>([&] { static_cast<void>(StateReader(root.path()).nextAvailableSiteID({})); }),
        "Symbolic links are not allowed in Kestrin state paths.");
}
