#include "services/CustomProviderStore.h"

#include "fakes/TemporaryDirectory.h"
#include "services/CustomProviderSamples.h"
#include "services/CustomProviderStoreError.h"
#include "state/AsAnotherUser.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"

#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

using namespace kestrin;
namespace fs = std::filesystem;

namespace {

constexpr const char* fileName = "custom-providers.json";
constexpr std::string_view notRegular = "Kestrin's custom-provider settings are not a regular file.";
constexpr std::string_view noDirectory = "Kestrin's state path is not a regular directory.";
constexpr std::string_view unsafeContent = "Kestrin refused oversized or unsafe custom-provider settings.";
constexpr std::size_t limit = 262'144;

std::string refusal(const fs::path& root) {
    return thrownMessage<CustomProviderStoreError>([&] { static_cast<void>(CustomProviderStore(root).load()); });
}

/// An acceptable file of so many bytes.
std::string fileOfSize(std::size_t bytes) {
    std::string text = fileOf({.schemaVersion = 1, .providers = addedServices(2)});
    text.insert(text.size() - 1, bytes - text.size(), ' ');
    return text;
}

} // namespace

TEST(LoadingAddedServices, isAbsentWithoutErrorForAnAbsentFileAndAnAbsentStateDirectory) {
    const TemporaryDirectory root;
    EXPECT_EQ(CustomProviderStore(root.path()).load(), std::nullopt);
    EXPECT_EQ(CustomProviderStore(root / "missing").load(), std::nullopt);
    EXPECT_EQ(CustomProviderStore(root / "missing/below").load(), std::nullopt);
    EXPECT_TRUE(root.entries().empty()) << "nothing is made by looking";
}

TEST(LoadingAddedServices, givesWhatWasSaved) {
    const TemporaryDirectory root;
    const CustomProviderConfiguration saved = {.schemaVersion = 1, .providers = addedServices(3)};
    root.write(fileName, fileOf(saved));
    EXPECT_EQ(CustomProviderStore(root.path()).load(), saved);
    EXPECT_EQ(CustomProviderStore(root / "x/../").load(), saved) << "the same path by its letters";
}

TEST(LoadingAddedServices, refusesAStatePathThatIsNoDirectory) {
    const TemporaryDirectory place;
    place.write("file", "");
    fs::create_directory(place / "real");
    fs::create_directory_symlink("real", place / "link");
    EXPECT_EQ(refusal(place / "file"), noDirectory);
    EXPECT_EQ(refusal(place / "link"), noDirectory);
    EXPECT_EQ(refusal(place / "link/"), noDirectory);
}

TEST(LoadingAddedServices, refusesWhatIsNoRegularFileAndDoesNotHangOnIt) {
    const TemporaryDirectory root;
    fs::create_directory(root / fileName);
    EXPECT_EQ(refusal(root.path()), notRegular);
    fs::remove(root / fileName);
    ASSERT_EQ(::mkfifo((root / fileName).c_str(), 0600), 0);
    EXPECT_EQ(refusal(root.path()), notRegular);
}

TEST(LoadingAddedServices, neverFollowsALinkAlsoOneToNowhere) {
    const TemporaryDirectory root;
    fs::create_symlink(root / "elsewhere.json", root / fileName);
    EXPECT_EQ(refusal(root.path()), notRegular);
    root.write("elsewhere.json", fileOf({}));
    EXPECT_EQ(refusal(root.path()), notRegular);
}

TEST(LoadingAddedServices, readsAFileOfTheLimitAndRefusesOneByteMore) {
    const TemporaryDirectory root;
    root.write(fileName, fileOfSize(limit));
    EXPECT_EQ(CustomProviderStore(root.path()).load()->providers, addedServices(2));
    root.write(fileName, fileOfSize(limit + 1));
    EXPECT_EQ(refusal(root.path()), unsafeContent);
}

TEST(LoadingAddedServices, refusesAFileWithSchemaVersion3WithTheNewerTextAndLeavesItUntouched) {
    const TemporaryDirectory root;
    const std::string newer = "{\"providers\": [], \"schema_version\": 3}";
    root.write(fileName, newer);
    EXPECT_EQ(refusal(root.path()), "This status-service format needs a newer Kestrin version.");
    EXPECT_EQ(root.read(fileName), newer);
}

TEST(LoadingAddedServices, judgesTheKeysThenTheTypesThenTheContent) {
    const TemporaryDirectory root;
    root.write(fileName, R"({"providers": [{}], "schema_version": "3"})");
    EXPECT_EQ(refusal(root.path()), "Kestrin refused unsupported custom-provider settings.");
    root.write(fileName, R"({"providers": [], "schema_version": "3"})");
    EXPECT_EQ(refusal(root.path()), "Kestrin could not read custom-provider settings.");
    root.write(fileName, R"({"providers": [], "schema_version": 3})");
    EXPECT_EQ(refusal(root.path()), "This status-service format needs a newer Kestrin version.");
}

TEST(LoadingAddedServices, saysInItsOwnErrorWhatTheSystemSays) {
    const TemporaryDirectory root;
    root.write(fileName, fileOf({}));
    fs::permissions(root.path(), fs::perms(0755));
    fs::permissions(root / fileName, fs::perms(0));
    EXPECT_EQ(asOrdinaryUser([&] { return refusal(root.path()); }), "Permission denied");
    EXPECT_EQ(refusal(root / fileName / "below"), "Not a directory");
}

TEST(TheRevisionOfAddedServices, isZeroWithoutTheFileAndChangesWithIt) {
    const TemporaryDirectory root;
    const CustomProviderStore store(root.path());
    EXPECT_EQ(CustomProviderStore(root / "missing").revision(), HistoryFileRevision());
    EXPECT_EQ(store.revision(), HistoryFileRevision());
    root.write(fileName, "{}");
    const HistoryFileRevision first = store.revision();
    EXPECT_EQ(first.byteCount, 2);
    EXPECT_EQ(store.revision(), first);
    root.write(fileName, "{ }");
    EXPECT_NE(store.revision(), first);
    fs::remove(root / fileName);
    EXPECT_EQ(store.revision(), HistoryFileRevision());
}

TEST(TheRevisionOfAddedServices, isThereWhateverKindOfFileItIs) {
    const TemporaryDirectory root;
    const CustomProviderStore store(root.path());
    fs::create_symlink("elsewhere.json", root / fileName);
    EXPECT_NE(store.revision(), HistoryFileRevision());
    fs::remove(root / fileName);
    fs::create_directory(root / fileName);
    EXPECT_NE(store.revision(), HistoryFileRevision());
}

TEST(TheRevisionOfAddedServices, throwsWhyItCannotBeTaken) {
    const TemporaryDirectory place;
    place.write("file", "");
    const CustomProviderStore store(place / "file"); // which has no children
    EXPECT_EQ(
        thrownMessage<CustomProviderStoreError>([&] { static_cast<void>(store.revision()); }), "Not a directory");
}
