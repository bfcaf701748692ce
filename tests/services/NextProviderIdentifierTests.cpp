#include "fakes/TemporaryDirectory.h"
#include "services/CustomProviderSamples.h"
#include "services/CustomProviderStore.h"
#include "services/CustomProviderStoreError.h"
#include "state/ThrownMessage.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

using namespace kestrin;
namespace fs = std::filesystem;

namespace {

std::string next(const TemporaryDirectory& root, const std::set<std::string>& excluding = {}) {
    return storeAt(root.path()).nextIdentifier(excluding);
}

std::string refusal(const TemporaryDirectory& root) {
    return thrownMessage<CustomProviderStoreError>([&] { static_cast<void>(next(root)); });
}

std::string fileWith(const std::vector<int>& numbers) {
    CustomProviderConfiguration configuration;
    for (const int number : numbers)
        configuration.providers.push_back(addedService(number));
    return fileOf(configuration);
}

} // namespace

TEST(TheNextServiceIdentifier, isTheFirstOneWhereNothingIs) {
    const TemporaryDirectory root;
    EXPECT_EQ(next(root), "provider-1");
    EXPECT_EQ(storeAt(root / "missing").nextIdentifier({}), "provider-1");
    EXPECT_TRUE(root.entries().empty()) << "nothing is made by asking";
}

TEST(TheNextServiceIdentifier, skipsThoseInTheModelInTheFileAndInBackups) {
    const TemporaryDirectory root;
    EXPECT_EQ(next(root, {"provider-1", "provider-2", "claude"}), "provider-3");
    root.write("custom-providers.json", fileWith({1, 3}));
    EXPECT_EQ(next(root), "provider-2");
    root.write("backups/custom-providers-x.json", fileWith({2, 5}));
    EXPECT_EQ(next(root), "provider-4");
    root.write("backups/custom-providers-y.json", fileWith({4}));
    EXPECT_EQ(next(root), "provider-6");
    EXPECT_EQ(next(root, {"provider-6", "provider-10"}), "provider-7");
}

TEST(TheNextServiceIdentifier, skipsARemovedServiceWhoseHistoryRemainsAlsoAfterItsBackupsAreDeleted) {
    const TemporaryDirectory root;
    const CustomProviderStore store = storeAt(root.path());
    store.save(1, addedServices(2), Backup::Make);
    root.write("data/providers/provider-1.jsonl", "");
    store.save(1, {addedService(2)}, Backup::Make);
    EXPECT_EQ(next(root), "provider-3");
    fs::remove_all(root / "backups");
    EXPECT_EQ(next(root), "provider-3") << "its history keeps it taken";
    fs::remove(root / "data/providers/provider-1.jsonl");
    EXPECT_EQ(next(root), "provider-1");
}

TEST(TheNextServiceIdentifier, skipsARemovedServiceWithoutHistoryAsLongAsABackupHasIt) {
    const TemporaryDirectory root;
    const CustomProviderStore store = storeAt(root.path());
    store.save(1, addedServices(1), Backup::Make);
    store.save(1, {}, Backup::Make);
    EXPECT_EQ(next(root), "provider-2");
}

TEST(TheNextServiceIdentifier, skipsEveryEntryThatStandsWhereItsHistoryWouldBe) {
    const TemporaryDirectory root;
    fs::create_directories(root / "data/providers/provider-1.jsonl");
    root.write("data/provider-2.jsonl", "of a website");
    EXPECT_EQ(next(root), "provider-2");
}

TEST(TheNextServiceIdentifier, passesInSilenceOverBackupsThatCannotBeUsed) {
    const TemporaryDirectory root;
    const std::string good = fileWith({1});
    root.write("backups/custom-providers-torn.json", good.substr(0, 100));
    root.write("backups/custom-providers-newer.json", R"({"providers": [], "schema_version": 3})");
    root.write("backups/custom-providers-unknown.json", R"({"providers": [], "schema_version": 1, "x": 1})");
    std::string wrong = good;
    wrong.replace(wrong.find("https"), 5, "http");
    root.write("backups/custom-providers-invalid.json", wrong);
    root.write("backups/custom-providers-oversized.json", good + std::string(262'144, ' '));
    root.write("backups/custom-providers-text.txt", good);
    root.write("backups/custom-providers-", good);
    root.write("backups/other.json", good);
    root.write("backups/sites-2026.json", good);
    fs::create_symlink("other.json", root / "backups/custom-providers-link.json");
    fs::create_directory(root / "backups/custom-providers-folder.json");
    ASSERT_EQ(::mkfifo((root / "backups/custom-providers-fifo.json").c_str(), 0600), 0);
    EXPECT_EQ(next(root), "provider-1");
    root.write("backups/custom-providers-.json", good);
    EXPECT_EQ(next(root), "provider-2");
}

TEST(TheNextServiceIdentifier, refusesABackupPathThatIsNoDirectory) {
    for (const bool link : {true, false}) {
        const TemporaryDirectory root;
        fs::create_directory(root / "real");
        if (link)
            fs::create_directory_symlink("real", root / "backups");
        else
            root.write("backups", "");
        EXPECT_EQ(refusal(root), "Kestrin's backup path is not a regular directory.");
    }
}

TEST(TheNextServiceIdentifier, isNotGivenOutWhileTheFileCannotBeRead) {
    const TemporaryDirectory root;
    root.write("custom-providers.json", "{");
    EXPECT_EQ(refusal(root), "Kestrin could not read custom-provider settings.");
}

TEST(TheNextServiceIdentifier, refusesALinkWhereItsHistoryWouldBe) {
    const TemporaryDirectory root;
    fs::create_directories(root / "data/providers");
    fs::create_symlink("nowhere", root / "data/providers/provider-1.jsonl");
    EXPECT_EQ(refusal(root), "Symbolic links are not allowed in Kestrin state paths.");
}
