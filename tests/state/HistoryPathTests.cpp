#include "state/HistoryPath.h"

#include "fakes/TemporaryDirectory.h"
#include "state/SafeIdentifier.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"

#include <gtest/gtest.h>

using namespace kestrin;
namespace fs = std::filesystem;

namespace {

std::string refusal(const fs::path& root, HistoryKind kind, const std::string& id) {
    return thrownMessage<StatePathError>([&] { static_cast<void>(historyFilePath(root, kind, id)); });
}

const std::vector<std::string> unsafe = {
    "", ".", "..", "a/b", "/", "../x", "a\\b", std::string("a\0b", 3), std::string(1, '\0')};
constexpr const char* linkRefused = "Symbolic links are not allowed in Kestrin state paths.";

} // namespace

TEST(ASafeIdentifier, isAnythingThatStaysInItsDirectory) {
    for (const std::string& id : unsafe)
        EXPECT_EQ(thrownMessage<StateValidationError>([&] { validateSafeIdentifier(id); }),
            "Unsafe website identifier was refused.")
            << id;
    for (const char* id : {"site-1", "A B", "...", ".a", "ä", "a:b", "-"}) {
        EXPECT_TRUE(isSafeIdentifier(id)) << id;
        validateSafeIdentifier(id);
    }
}

TEST(AHistoryPath, liesBelowDataByKind) {
    const TemporaryDirectory root;
    EXPECT_EQ(historyFilePath(root.path(), HistoryKind::Website, "site-1"), root / "data/site-1.jsonl");
    EXPECT_EQ(historyFilePath(root.path(), HistoryKind::Provider, "claude"), root / "data/providers/claude.jsonl");
    EXPECT_EQ(historyFilePath(root.path() / "x/../", HistoryKind::Website, "site-1"), root / "data/site-1.jsonl");
    EXPECT_EQ(historyFilePath(root / "missing", HistoryKind::Website, "a"), root / "missing/data/a.jsonl");
}

TEST(AHistoryPath, isRefusedForAnUnsafeIdentifier) {
    const TemporaryDirectory root;
    for (const std::string& id : unsafe)
        for (const HistoryKind kind : {HistoryKind::Website, HistoryKind::Provider})
            EXPECT_EQ(refusal(root.path(), kind, id), "Unsafe history identifier was refused.") << id;
}

TEST(AHistoryPath, isRefusedWhenDataIsALinkAlsoForAFileThatDoesNotExist) {
    const TemporaryDirectory root;
    fs::create_directory(root / "real");
    fs::create_directory_symlink("real", root / "data");
    EXPECT_EQ(refusal(root.path(), HistoryKind::Website, "site-1"), linkRefused);
    EXPECT_EQ(refusal(root.path(), HistoryKind::Provider, "claude"), linkRefused);
}

TEST(AHistoryPath, isRefusedForALinkAnywhereFromTheRootDown) {
    const TemporaryDirectory directory;
    fs::create_directories(directory / "root/data/real");
    fs::create_directory_symlink("root", directory / "link");
    EXPECT_EQ(refusal(directory / "link", HistoryKind::Website, "site-1"), linkRefused);
    EXPECT_EQ(refusal(directory.path() / "link/", HistoryKind::Website, "site-1"), linkRefused);
    fs::create_directory_symlink("real", directory / "root/data/providers");
    EXPECT_EQ(refusal(directory / "root", HistoryKind::Provider, "claude"), linkRefused);
    fs::create_symlink("nowhere", directory / "root/data/site-1.jsonl");
    EXPECT_EQ(refusal(directory / "root", HistoryKind::Website, "site-1"), linkRefused);
    EXPECT_EQ(
        historyFilePath(directory / "root", HistoryKind::Website, "site-2"), directory / "root/data/site-2.jsonl");
}

TEST(AHistoryPath, doesNotLookAtTheRootsParent) {
    const TemporaryDirectory directory;
    fs::create_directories(directory / "real/root");
    fs::create_directory_symlink("real", directory / "parent");
    EXPECT_EQ(historyFilePath(directory / "parent/root", HistoryKind::Website, "a"),
        directory / "parent/root/data/a.jsonl");
}

TEST(AHistoryPath, passesOnAnyOtherFailure) {
    const TemporaryDirectory root;
    root.write("data", "a file where a directory should be");
    EXPECT_EQ(thrownMessage<POSIXError>(
                  [&] { static_cast<void>(historyFilePath(root.path(), HistoryKind::Website, "site-1")); }),
        "Not a directory");
}
