#include "services/CustomProviderFile.h"

#include "services/CustomProviderStoreError.h"
#include "state/StateErrors.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

namespace kestrin {
namespace {

const std::string newerFormat = "This status-service format needs a newer Kestrin version.";
const std::string notRegular = "Kestrin's custom-provider settings are not a regular file.";

class CustomProviderFileTest : public ::testing::Test {
protected:
    CustomProviderFileTest() {
        std::string path = (std::filesystem::temp_directory_path() / "kestrin-services-XXXXXX").string();
        if (!::mkdtemp(path.data())) throw std::runtime_error("no temporary directory can be made");
        root = path;
    }
    ~CustomProviderFileTest() override { std::filesystem::remove_all(root); }

    void write(const std::string& text) const { std::ofstream(filePath()) << text; }
    [[nodiscard]] std::filesystem::path filePath() const { return root / "custom-providers.json"; }
    [[nodiscard]] CustomProviderFile file() const { return CustomProviderFile(root); }

    [[nodiscard]] std::string refusal() const {
        try {
            (void)file().load();
            return "it was not refused";
        } catch (const CustomProviderStoreError& error) {
            return error.message;
        }
    }

    std::filesystem::path root;
};

TEST_F(CustomProviderFileTest, isAbsentWithoutAStateDirectory) {
    std::filesystem::remove(root);
    EXPECT_EQ(file().load(), std::nullopt);
    EXPECT_EQ(file().revision(), HistoryFileRevision());
    std::filesystem::create_directory(root);
}

TEST_F(CustomProviderFileTest, isAbsentInAnEmptyStateDirectory) {
    EXPECT_EQ(file().load(), std::nullopt);
    EXPECT_EQ(file().revision(), HistoryFileRevision());
}

TEST_F(CustomProviderFileTest, refusesAFileThatIsThereAndLeavesItAsItIs) {
    const std::string text = "{\"schema_version\": 1, \"providers\": []}\n";
    write(text);
    EXPECT_EQ(refusal(), newerFormat);
    std::ifstream stream(filePath());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), text);
}

TEST_F(CustomProviderFileTest, refusesWhatIsNoRegularFile) {
    std::filesystem::create_directory(filePath());
    EXPECT_EQ(refusal(), notRegular);
    std::filesystem::remove(filePath());
    ASSERT_EQ(::mkfifo(filePath().c_str(), 0600), 0);
    EXPECT_EQ(refusal(), notRegular) << "and does not hang on it";
}

TEST_F(CustomProviderFileTest, refusesALinkAlsoOneToNowhere) {
    std::filesystem::create_symlink(root / "elsewhere.json", filePath());
    EXPECT_EQ(refusal(), notRegular);
    std::ofstream(root / "elsewhere.json") << "{}";
    EXPECT_EQ(refusal(), notRegular);
}

TEST_F(CustomProviderFileTest, refusesAStatePathThatIsNoDirectory) {
    std::filesystem::remove(root);
    std::ofstream(root) << "";
    EXPECT_EQ(refusal(), "Kestrin's state path is not a regular directory.");
    std::filesystem::remove(root);
    std::filesystem::create_directory_symlink(std::filesystem::temp_directory_path(), root);
    EXPECT_EQ(refusal(), "Kestrin's state path is not a regular directory.");
}

TEST_F(CustomProviderFileTest, hasARevisionThatChangesWithTheFile) {
    write("{}");
    const HistoryFileRevision first = file().revision();
    EXPECT_EQ(first.byteCount, 2);
    EXPECT_EQ(file().revision(), first);
    write("{ }");
    EXPECT_NE(file().revision(), first);
    std::filesystem::remove(filePath());
    EXPECT_EQ(file().revision(), HistoryFileRevision());
}

TEST_F(CustomProviderFileTest, hasARevisionWhateverKindOfFileItIs) {
    std::filesystem::create_symlink("elsewhere.json", filePath());
    EXPECT_NE(file().revision(), HistoryFileRevision());
    std::filesystem::remove(filePath());
    std::filesystem::create_directory(filePath());
    EXPECT_NE(file().revision(), HistoryFileRevision());
}

TEST_F(CustomProviderFileTest, saysWhyARevisionCannotBeRead) {
    std::filesystem::remove(root);
    std::ofstream(root) << "";
    try {
        (void)file().revision();
        FAIL() << "a file has no children";
    } catch (const POSIXError& error) {
        EXPECT_EQ(error.code, ENOTDIR);
        EXPECT_EQ(error.message, "Not a directory");
    }
}

} // namespace
} // namespace kestrin
