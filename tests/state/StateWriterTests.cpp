#include "state/StateWriter.h"

#include "fakes/TemporaryDirectory.h"
#include "state/AsAnotherUser.h"
#include "state/StateErrors.h"
#include "state/StateReader.h"
#include "state/ThrownMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace kestrin;
using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

const SiteConfiguration configuration = {
    .sites = {{.id = "b", .name = "Ä \"B\"", .url = "https://b.example/x?y", .enabled = false},
        {.id = "a", .name = "A", .url = "https://a.example"}},
    .activeSiteID = "a",
    .intervalSeconds = 600,
    .providerStatus = {.enabled = true, .providerIDs = {"claude"}},
};

constexpr std::string_view golden = R"({
  "active_site_id": "a",
  "interval_seconds": 600,
  "provider_status": {
    "enabled": true,
    "provider_ids": [
      "claude"
    ]
  },
  "sites": [
    {
      "enabled": false,
      "id": "b",
      "name": "Ä \"B\"",
      "url": "https://b.example/x?y"
    },
    {
      "enabled": true,
      "id": "a",
      "name": "A",
      "url": "https://a.example"
    }
  ]
}
)";

/// A writer whose clock stands still.
StateWriter writerAt(const fs::path& root) {
    return StateWriter(root, [] { return std::chrono::sys_days(std::chrono::January / 31 / 2026) + 9h + 5min; });
}

} // namespace

TEST(SavingAConfiguration, writesTheGoldenBytesAndNothingElse) {
    const TemporaryDirectory directory;
    EXPECT_EQ(writerAt(directory / "a/root").saveConfiguration(configuration, Backup::Make), std::nullopt);
    EXPECT_EQ(directory.read("a/root/sites.json"), golden);
    EXPECT_THAT(directory.entries(), ElementsAre("a", "a/root", "a/root/sites.json"));
}

TEST(SavingAConfiguration, readsBackTheSame) {
    const TemporaryDirectory root;
    writerAt(root.path()).saveConfiguration(configuration, Backup::None);
    EXPECT_EQ(StateReader(root.path()).loadConfiguration(), ConfigurationLoadResult::configured(configuration));
}

TEST(SavingAConfiguration, writesEnabledAlwaysAndAnAbsentActiveSiteNever) {
    const TemporaryDirectory root;
    root.write("sites.json", R"({"sites":[{"id":"a","name":"A","url":"u"}]})");
    const SiteConfiguration loaded = StateReader(root.path()).loadConfiguration().configuration();
    writerAt(root.path()).saveConfiguration(loaded, Backup::None);
    EXPECT_THAT(root.read("sites.json"), testing::HasSubstr("\"enabled\": true,\n      \"id\": \"a\""));
    EXPECT_THAT(root.read("sites.json"), testing::Not(testing::HasSubstr("active_site_id")));
    EXPECT_EQ(StateReader(root.path()).loadConfiguration().configuration(), loaded);
}

TEST(SavingAConfiguration, replacesTheFileAndLeavesNoTemporary) {
    const TemporaryDirectory root;
    root.write("sites.json", "whatever was there");
    EXPECT_EQ(writerAt(root.path()).saveConfiguration(configuration, Backup::None), std::nullopt);
    EXPECT_EQ(root.read("sites.json"), golden);
    EXPECT_THAT(root.entries(), ElementsAre("sites.json"));
}

TEST(SavingAConfiguration, givesTheFileDefaultPermissions) {
    const TemporaryDirectory root;
    const mode_t former = ::umask(026);
    writerAt(root.path()).saveConfiguration(configuration, Backup::None);
    EXPECT_EQ(fs::status(root / "sites.json").permissions(), fs::perms(0640)) << "a first file";
    fs::permissions(root / "sites.json", fs::perms(0600));
    writerAt(root.path()).saveConfiguration(configuration, Backup::None);
    EXPECT_EQ(fs::status(root / "sites.json").permissions(), fs::perms(0640)) << "a replaced file";
    ::umask(former);
}

TEST(SavingAConfiguration, backsUpTheFormerFileByteForByte) {
    const TemporaryDirectory root;
    const std::string former = std::string("not even JSON\0\xFF", 15);
    root.write("sites.json", former);
    EXPECT_EQ(writerAt(root.path()).saveConfiguration(configuration, Backup::Make),
        root / "backups/sites-2026-01-31T09-05-00Z.json");
    EXPECT_EQ(root.read("backups/sites-2026-01-31T09-05-00Z.json"), former);
    EXPECT_EQ(root.read("sites.json"), golden);
}

TEST(SavingAConfiguration, countsBackupsWithinTheSameSecond) {
    const TemporaryDirectory root;
    root.write("sites.json", "0");
    StateWriter writer = writerAt(root.path());
    writer.saveConfiguration(configuration, Backup::Make);
    root.write("sites.json", "1");
    EXPECT_EQ(
        writer.saveConfiguration(configuration, Backup::Make), root / "backups/sites-2026-01-31T09-05-00Z-2.json");
    root.write("sites.json", "2");
    EXPECT_EQ(
        writer.saveConfiguration(configuration, Backup::Make), root / "backups/sites-2026-01-31T09-05-00Z-3.json");
    EXPECT_THAT(root.entries(),
        ElementsAre("backups", "backups/sites-2026-01-31T09-05-00Z-2.json",
            "backups/sites-2026-01-31T09-05-00Z-3.json", "backups/sites-2026-01-31T09-05-00Z.json", "sites.json"));
    EXPECT_EQ(root.read("backups/sites-2026-01-31T09-05-00Z.json"), "0");
    EXPECT_EQ(root.read("backups/sites-2026-01-31T09-05-00Z-2.json"), "1");
}

TEST(SavingAConfiguration, skipsABackupNameThatALinkHas) {
    const TemporaryDirectory root;
    root.write("sites.json", "0");
    fs::create_directory(root / "backups");
    fs::create_symlink("../elsewhere", root / "backups/sites-2026-01-31T09-05-00Z.json");
    EXPECT_EQ(writerAt(root.path()).saveConfiguration(configuration, Backup::Make),
        root / "backups/sites-2026-01-31T09-05-00Z-2.json");
    EXPECT_FALSE(fs::exists(root / "elsewhere"));
}

TEST(SavingAConfiguration, writesNothingWhenTheBackupFails) {
    for (const bool link : {true, false}) {
        const TemporaryDirectory root;
        root.write("sites.json", "former");
        fs::create_directory(root / "real");
        if (link)
            fs::create_directory_symlink("real", root / "backups");
        else
            root.write("backups", "");
        EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                      [&] { writerAt(root.path()).saveConfiguration(configuration, Backup::Make); }),
            "Kestrin's backup path is not a regular directory.");
        EXPECT_EQ(root.read("sites.json"), "former");
        EXPECT_THAT(root.entries(), ElementsAre("backups", "real", "sites.json"));
    }
}

TEST(SavingAConfiguration, refusesToBackUpAFileThatIsNotRegular) {
    const TemporaryDirectory root;
    root.write("real.json", "real");
    fs::create_symlink("real.json", root / "sites.json");
    EXPECT_EQ(thrownMessage<ConfigurationReadError>(
                  [&] { writerAt(root.path()).saveConfiguration(configuration, Backup::Make); }),
        "Kestrin's sites.json is not a regular file.");
    EXPECT_EQ(root.read("real.json"), "real");
    EXPECT_THAT(root.entries(), ElementsAre("real.json", "sites.json"));
}

TEST(SavingAConfiguration, replacesALinkInsteadOfWritingThroughIt) {
    const TemporaryDirectory root;
    root.write("real.json", "real");
    fs::create_symlink("real.json", root / "sites.json");
    writerAt(root.path()).saveConfiguration(configuration, Backup::None);
    EXPECT_EQ(root.read("real.json"), "real");
    EXPECT_FALSE(fs::is_symlink(root / "sites.json"));
    EXPECT_EQ(root.read("sites.json"), golden);
}

TEST(SavingAConfiguration, worksBelowAParentThatIsALink) {
    const TemporaryDirectory place;
    fs::create_directory(place / "real");
    fs::create_directory_symlink("real", place / "link");
    writerAt(place / "link" / "Kestrin").saveConfiguration(configuration, Backup::None);
    EXPECT_EQ(place.read("real/Kestrin/sites.json"), golden);
}

TEST(SavingAConfiguration, refusesARootThatIsALinkAndWritesNothing) {
    const TemporaryDirectory place;
    fs::create_directory(place / "elsewhere");
    fs::create_directory_symlink("elsewhere", place / "Kestrin");
    const auto message = thrownMessage<AtomicStateFileError>(
        [&] { writerAt(place / "Kestrin").saveConfiguration(configuration, Backup::None); });
    EXPECT_EQ(message, "Kestrin's state path is not a regular directory.");
    EXPECT_TRUE(fs::is_empty(place / "elsewhere"));
}

TEST(SavingAConfiguration, leavesADirectoryInItsPlaceAloneAndNoTemporary) {
    const TemporaryDirectory root;
    root.write("sites.json/inner", "kept");
    EXPECT_EQ(
        thrownMessage<POSIXError>([&] { writerAt(root.path()).saveConfiguration(configuration, Backup::None); }),
        "Is a directory");
    EXPECT_THAT(root.entries(), ElementsAre("sites.json", "sites.json/inner"));
}

TEST(SavingAConfiguration, leavesAReadOnlyRootAsItIs) {
    const TemporaryDirectory root;
    root.write("sites.json", "former");
    fs::permissions(root.path(), fs::perms(0555));
    EXPECT_EQ(asOrdinaryUser([&] {
        return thrownMessage<POSIXError>(
            [&] { writerAt(root.path()).saveConfiguration(configuration, Backup::None); });
    }),
        "Permission denied");
    fs::permissions(root.path(), fs::perms(0755));
    EXPECT_EQ(root.read("sites.json"), "former");
    EXPECT_THAT(root.entries(), ElementsAre("sites.json"));
}

TEST(SavingAConfiguration, writesBadUTF8AsReplacementCharacters) {
    const TemporaryDirectory root;
    SiteConfiguration odd = configuration;
    odd.sites[0].name = "a\xFF";
    writerAt(root.path()).saveConfiguration(odd, Backup::None);
    EXPECT_EQ(StateReader(root.path()).loadConfiguration().configuration().sites[0].name, "a\uFFFD");
}
