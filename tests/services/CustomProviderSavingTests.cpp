#include "fakes/TemporaryDirectory.h"
#include "services/CustomProviderSamples.h"
#include "services/CustomProviderStore.h"
#include "services/CustomProviderStoreError.h"
#include "state/AsAnotherUser.h"
#include "state/ThrownMessage.h"

#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Services = std::vector<CustomProviderDefinition>;

constexpr const char* fileName = "custom-providers.json";
const std::string backupName = "backups/custom-providers-2026-01-31T09-05-00Z.json";
constexpr std::string_view unsafePath = "Kestrin refused an unsafe custom-provider settings path.";
constexpr std::string_view unsafeDirectory = "Kestrin refused an unsafe state directory.";
constexpr std::string_view unsafeContent = "Kestrin refused oversized or unsafe custom-provider settings.";
constexpr std::string_view changed = "Custom-provider settings changed while saving.";

std::optional<fs::path> save(const fs::path& root, const Services& services, Backup backup = Backup::None) {
    return storeAt(root).save(CustomProviderStore::schemaVersion(services), services, backup);
}

std::string refusal(const CustomProviderStore& store, const Services& services, Backup backup = Backup::None,
    std::int64_t version = 1) {
    return thrownMessage<CustomProviderStoreError>([&] { store.save(version, services, backup); });
}

std::string refusal(const fs::path& root, Backup backup = Backup::None) {
    return refusal(storeAt(root), addedServices(1), backup);
}

/// A store in whose directory something happens while the backup gets its name, behind the first look at the file.
CustomProviderStore disturbedStore(const fs::path& root, std::function<void()> disturb) {
    return CustomProviderStore(root, [disturb = std::move(disturb)] {
        disturb();
        return std::chrono::sys_seconds();
    });
}

std::string fileOf(const Services& services) {
    return kestrin::fileOf({.schemaVersion = CustomProviderStore::schemaVersion(services), .providers = services});
}

} // namespace

TEST(SavingAddedServices, createsDirectoryAndFileAndNothingElse) {
    const TemporaryDirectory place;
    EXPECT_EQ(save(place / "a/root", addedServices(2), Backup::Make), std::nullopt);
    EXPECT_EQ(place.read("a/root/custom-providers.json"), fileOf(addedServices(2)));
    EXPECT_THAT(place.entries(), ElementsAre("a", "a/root", "a/root/custom-providers.json"));
}

TEST(SavingAddedServices, readsBackTheSame) {
    const TemporaryDirectory root;
    Services services = addedServices(3);
    services[1].adapter = "betterstack-index";
    services[2].enabled = false;
    save(root.path(), services);
    EXPECT_EQ(
        storeAt(root.path()).load(), (CustomProviderConfiguration{.schemaVersion = 2, .providers = services}));
}

TEST(SavingAddedServices, givesTheFileToItsOwnerAloneWhateverItHadBefore) {
    const TemporaryDirectory root;
    const mode_t former = ::umask(0);
    save(root.path(), addedServices(1));
    EXPECT_EQ(fs::status(root / fileName).permissions(), fs::perms(0600));
    fs::permissions(root / fileName, fs::perms(0644));
    const auto backup = save(root.path(), addedServices(2), Backup::Make);
    ::umask(former);
    EXPECT_EQ(fs::status(root / fileName).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(*backup).permissions(), fs::perms(0600)) << "the backup too";
}

TEST(SavingAddedServices, writesTheLowestVersionThatFits) {
    const TemporaryDirectory root;
    const CustomProviderStore store = storeAt(root.path());
    store.save(2, addedServices(1), Backup::None);
    EXPECT_EQ(store.load()->schemaVersion, 1);
    store.save(2, {}, Backup::None);
    EXPECT_EQ(store.load()->schemaVersion, 1);
    Services mixed = addedServices(2);
    mixed[0].adapter = "instatus-summary";
    store.save(2, mixed, Backup::None);
    EXPECT_EQ(store.load()->schemaVersion, 2);
}

TEST(SavingAddedServices, validatesBeforeAnythingIsTouched) {
    const TemporaryDirectory place;
    Services wrong = addedServices(1);
    wrong[0].name = "";
    EXPECT_EQ(
        refusal(storeAt(place / "root"), wrong, Backup::Make), "A custom-provider name is invalid or too long.");
    EXPECT_EQ(refusal(storeAt(place / "root"), addedServices(1), Backup::Make, 3),
        "This status-service format needs a newer Kestrin version.");
    wrong = addedServices(1);
    wrong[0].adapter = "instatus-summary";
    EXPECT_EQ(refusal(storeAt(place / "root"), wrong, Backup::Make),
        "Kestrin refused mismatched status-service settings.");
    EXPECT_THAT(place.entries(), IsEmpty());
}

TEST(SavingAddedServices, refusesAStatePathThatIsNoDirectory) {
    const TemporaryDirectory place;
    place.write("file", "");
    fs::create_directory(place / "real");
    fs::create_directory_symlink("real", place / "link");
    EXPECT_EQ(refusal(place / "file"), unsafeDirectory);
    EXPECT_EQ(refusal(place / "link"), unsafeDirectory);
    EXPECT_TRUE(fs::is_empty(place / "real"));
}

TEST(SavingAddedServices, refusesATargetThatIsNoRegularFileAndLeavesItAlone) {
    for (const Backup backup : {Backup::Make, Backup::None}) {
        const TemporaryDirectory root;
        fs::create_directory(root / fileName);
        EXPECT_EQ(refusal(root.path(), backup), unsafePath);
        fs::remove(root / fileName);
        ASSERT_EQ(::mkfifo((root / fileName).c_str(), 0600), 0);
        EXPECT_EQ(refusal(root.path(), backup), unsafePath);
        fs::remove(root / fileName);
        root.write("elsewhere", "kept");
        fs::create_symlink("elsewhere", root / fileName);
        EXPECT_EQ(refusal(root.path(), backup), unsafePath);
        EXPECT_EQ(root.read("elsewhere"), "kept");
        EXPECT_THAT(root.entries(), ElementsAre(fileName, "elsewhere"));
    }
}

TEST(SavingAddedServices, backsUpTheFormerFileByteForByteAlsoOneThatCannotBeRead) {
    const TemporaryDirectory root;
    const std::string former("not even JSON\0\xFF", 15);
    root.write(fileName, former);
    EXPECT_EQ(save(root.path(), addedServices(1), Backup::Make), root / backupName);
    EXPECT_EQ(root.read(backupName), former);
    EXPECT_EQ(root.read(fileName), fileOf(addedServices(1)));
    EXPECT_THAT(root.entries(), ElementsAre("backups", backupName, fileName));
}

TEST(SavingAddedServices, givesTwoBackupsForTwoSavesWithinTheSameSecondTheSecondWithTheCounter2InItsName) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    EXPECT_EQ(save(root.path(), addedServices(2), Backup::Make), root / backupName);
    const fs::path second = root / "backups/custom-providers-2026-01-31T09-05-00Z-2.json";
    EXPECT_EQ(save(root.path(), addedServices(3), Backup::Make), second);
    EXPECT_EQ(root.read(backupName), fileOf(addedServices(1)));
    EXPECT_EQ(TemporaryDirectory::contentOf(second), fileOf(addedServices(2)));
    EXPECT_EQ(save(root.path(), {}, Backup::Make), root / "backups/custom-providers-2026-01-31T09-05-00Z-3.json");
}

TEST(SavingAddedServices, skipsABackupNameThatAnythingBears) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    fs::create_directory(root / "backups");
    fs::create_symlink("../elsewhere", root / backupName);
    fs::create_directory(root / "backups/custom-providers-2026-01-31T09-05-00Z-2.json");
    EXPECT_EQ(save(root.path(), addedServices(2), Backup::Make),
        root / "backups/custom-providers-2026-01-31T09-05-00Z-3.json");
    EXPECT_FALSE(fs::exists(root / "elsewhere"));
}

TEST(SavingAddedServices, makesNoBackupWhenEnabledIsToggledAndOneForEachThatIsAddedOrRemoved) {
    const TemporaryDirectory root;
    Services services = addedServices(1);
    EXPECT_EQ(save(root.path(), services, Backup::Make), std::nullopt) << "there was nothing to back up";
    services[0].enabled = false;
    EXPECT_EQ(save(root.path(), services), std::nullopt);
    EXPECT_FALSE(storeAt(root.path()).load()->providers[0].enabled);
    EXPECT_FALSE(fs::exists(root / "backups"));
    services.push_back(addedService(2));
    EXPECT_TRUE(save(root.path(), services, Backup::Make).has_value());
    services.erase(services.begin());
    EXPECT_TRUE(save(root.path(), services, Backup::Make).has_value());
    EXPECT_EQ(storeAt(root.path()).load()->providers, services);
}

TEST(SavingAddedServices, writesNothingWhenTheBackupFails) {
    for (const bool link : {true, false}) {
        const TemporaryDirectory root;
        root.write(fileName, "former");
        fs::create_directory(root / "real");
        if (link)
            fs::create_directory_symlink("real", root / "backups");
        else
            root.write("backups", "");
        EXPECT_EQ(refusal(root.path(), Backup::Make), unsafeDirectory);
        EXPECT_EQ(root.read(fileName), "former");
        EXPECT_EQ(refusal(root.path(), Backup::None), "no error") << "which needs no backups";
        EXPECT_THAT(root.entries(), ElementsAre("backups", fileName, "real"));
    }
}

TEST(SavingAddedServices, refusesToBackUpAnOversizedFileAndLeavesIt) {
    const TemporaryDirectory root;
    const std::string oversized(262'145, 'x');
    root.write(fileName, oversized);
    EXPECT_EQ(refusal(root.path(), Backup::Make), unsafeContent);
    EXPECT_EQ(root.read(fileName), oversized);
    EXPECT_THAT(root.entries(), ElementsAre("backups", fileName));
}

TEST(SavingAddedServices, refusesAListOfTooManyBytesBehindItsBackup) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    Services long_ = addedServices(100);
    for (CustomProviderDefinition& service : long_)
        service.id += std::string(3'000, '0');
    EXPECT_EQ(
        refusal(storeAt(root.path()), long_, Backup::Make), "Kestrin refused oversized custom-provider settings.");
    EXPECT_EQ(root.read(fileName), fileOf(addedServices(1)));
    EXPECT_THAT(root.entries(), ElementsAre("backups", backupName, fileName)) << "a backup already written stays";
}

TEST(SavingAddedServices, givesTheUnsafePathMessageForATargetReplacedByADirectoryMeanwhile) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    const CustomProviderStore store = disturbedStore(root.path(), [&] {
        fs::remove(root / fileName);
        fs::create_directory(root / fileName);
    });
    EXPECT_EQ(refusal(store, addedServices(2), Backup::Make), unsafePath);
    EXPECT_TRUE(fs::is_directory(root / fileName)) << "which is left alone";
}

TEST(SavingAddedServices, noticesATargetThatVanishesMeanwhile) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    const CustomProviderStore store = disturbedStore(root.path(), [&] { fs::remove(root / fileName); });
    EXPECT_EQ(refusal(store, addedServices(2), Backup::Make), changed);
    EXPECT_FALSE(fs::exists(root / fileName));
}

TEST(SavingAddedServices, noticesAStateDirectoryThatBecomesALinkMeanwhile) {
    const TemporaryDirectory place;
    save(place / "root", addedServices(1));
    const CustomProviderStore store = disturbedStore(place / "root", [&] {
        fs::rename(place / "root", place / "moved");
        fs::create_directory_symlink("moved", place / "root");
    });
    EXPECT_EQ(refusal(store, addedServices(2), Backup::Make), unsafePath);
    EXPECT_EQ(place.read("moved/custom-providers.json"), fileOf(addedServices(1)));
}

TEST(SavingAddedServices, acceptsContentThatChangesMeanwhileSinceOnlyTheKindIsCompared) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    const CustomProviderStore store = disturbedStore(root.path(), [&] { root.write(fileName, "another's"); });
    EXPECT_EQ(refusal(store, addedServices(2), Backup::Make), "no error");
    EXPECT_EQ(root.read(fileName), fileOf(addedServices(2)));
}

TEST(SavingAddedServices, leavesAReadOnlyDirectoryAsItIs) {
    const TemporaryDirectory root;
    save(root.path(), addedServices(1));
    fs::permissions(root / fileName, fs::perms(0644));
    fs::permissions(root.path(), fs::perms(0555));
    EXPECT_EQ(asOrdinaryUser([&] { return refusal(root.path(), Backup::None); }), "Permission denied");
    EXPECT_EQ(asOrdinaryUser([&] { return refusal(root.path(), Backup::Make); }), "Permission denied");
    fs::permissions(root.path(), fs::perms(0755));
    EXPECT_EQ(root.read(fileName), fileOf(addedServices(1)));
    EXPECT_THAT(root.entries(), ElementsAre(fileName));
}
