#include "state/AtomicStateFile.h"

#include "fakes/TemporaryDirectory.h"
#include "state/ThrownMessage.h"
#include "json/JSONWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

const JSONValue value = JSONValue::object({{"b", "a/b"}, {"a", 1}});
constexpr std::string_view written = "{\n  \"a\": 1,\n  \"b\": \"a/b\"\n}\n";
constexpr const ReplaceFileRules& rules = customProviderFileRules;

std::string replacing(const TemporaryDirectory& root, const fs::path& name,
    std::optional<StateFileKind> remembered = std::nullopt,
    const std::function<std::string()>& makeUUID = freshUUID) {
    return thrownMessage<AtomicStateFileError>(
        [&] { AtomicStateFile::replaceFile(value, root / name, root.path(), rules, remembered, makeUUID); });
}

/// A string whose pretty form has that many bytes, with quotes and line feed.
JSONValue ofSize(std::int64_t bytes) {
    return JSONValue(std::string(static_cast<std::size_t>(bytes) - 3, 'x'));
}

} // namespace

TEST(ReplacingAFile, writesSortedPrettyJSONAndLeavesNoTemporary) {
    const TemporaryDirectory root;
    EXPECT_EQ(replacing(root, "custom-providers.json"), "no error");
    EXPECT_EQ(root.read("custom-providers.json"), written);
    EXPECT_EQ(replacing(root, "custom-providers.json"), "no error");
    EXPECT_THAT(root.entries(), ElementsAre("custom-providers.json"));
}

TEST(ReplacingAFile, givesItMode0600WhateverItHadBefore) {
    const TemporaryDirectory root;
    const fs::path file = root.write("file.json", "old");
    fs::permissions(file, fs::perms(0666));
    const mode_t former = ::umask(0);
    EXPECT_EQ(replacing(root, "file.json"), "no error");
    ::umask(former);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
    EXPECT_EQ(root.read("file.json"), written);
}

TEST(ReplacingAFile, acceptsExactlyTheLimitOfItsRules) {
    const TemporaryDirectory root;
    for (const ReplaceFileRules& each :
        {customProviderFileRules, notificationSettingsFileRules, notificationLedgerFileRules}) {
        const fs::path file = root / "file.json";
        AtomicStateFile::replaceFile(ofSize(each.limit), file, root.path(), each);
        EXPECT_EQ(fs::file_size(file), static_cast<std::uintmax_t>(each.limit));
        EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                      [&] { AtomicStateFile::replaceFile(ofSize(each.limit + 1), file, root.path(), each); }),
            each.oversizeMessage);
        EXPECT_EQ(fs::file_size(file), static_cast<std::uintmax_t>(each.limit)) << "the old file stays";
        EXPECT_THAT(root.entries(), ElementsAre("file.json"));
    }
}

TEST(ReplacingAFile, refusesAnOversizedValueBeforeItLooksAtAnyPath) {
    EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                  [] { AtomicStateFile::replaceFile(ofSize(300'000), "/nowhere/file", "/elsewhere", rules); }),
        "Kestrin refused oversized custom-provider settings.");
}

TEST(ReplacingAFile, hasTheLimitsNamesAndMessagesOfEachFile) {
    EXPECT_EQ(customProviderFileRules.limit, 262'144);
    EXPECT_EQ(notificationSettingsFileRules.limit, 65'536);
    EXPECT_EQ(notificationLedgerFileRules.limit, 262'144);
    EXPECT_EQ(customProviderFileRules.prefix, ".custom-providers-");
    EXPECT_EQ(notificationSettingsFileRules.prefix, ".notification-settings-");
    EXPECT_EQ(notificationLedgerFileRules.prefix, ".notification-ledger-");
    EXPECT_EQ(customProviderFileRules.oversizeMessage, "Kestrin refused oversized custom-provider settings.");
    EXPECT_EQ(
        customProviderFileRules.unsafePathMessage, "Kestrin refused an unsafe custom-provider settings path.");
    EXPECT_EQ(customProviderFileRules.changedMessage, "Custom-provider settings changed while saving.");
    for (const ReplaceFileRules& each : {notificationSettingsFileRules, notificationLedgerFileRules}) {
        EXPECT_EQ(each.oversizeMessage, "Kestrin refused oversized notification state.");
        EXPECT_EQ(each.unsafePathMessage, "Kestrin refused an unsafe notification state path.");
        EXPECT_EQ(each.changedMessage, "Notification state changed while saving.");
    }
}

TEST(ReplacingAFile, refusesADirectoryALinkOrAFIFOAtTheDestinationAndLeavesItAlone) {
    const TemporaryDirectory root;
    fs::create_directory(root / "folder");
    fs::create_symlink("elsewhere", root / "link");
    ASSERT_EQ(::mkfifo((root / "fifo").c_str(), 0600), 0);
    for (const char* name : {"folder", "link", "fifo"})
        EXPECT_EQ(replacing(root, name), rules.unsafePathMessage) << name;
    EXPECT_THAT(root.entries(), ElementsAre("fifo", "folder", "link"));
    EXPECT_EQ(AtomicStateFile::fileKind(root / "fifo"), StateFileKind::other);
    EXPECT_EQ(AtomicStateFile::fileKind(root / "folder"), StateFileKind::directory);
    EXPECT_EQ(fs::read_symlink(root / "link"), "elsewhere");
}

TEST(ReplacingAFile, acceptsOnlyAChildOfARealStateDirectory) {
    const TemporaryDirectory root;
    fs::create_directory(root / "below");
    fs::create_directory_symlink("below", root / "link");
    EXPECT_EQ(replacing(root, "below/file.json"), rules.unsafePathMessage);
    EXPECT_EQ(replacing(root, "../file.json"), rules.unsafePathMessage);
    EXPECT_EQ(replacing(root, "below/../file.json"), "no error") << "the same path by its letters";
    for (const char* name : {"link", "missing"})
        EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                      [&] { AtomicStateFile::replaceFile(value, root / name / "file.json", root / name, rules); }),
            rules.unsafePathMessage)
            << name;
    EXPECT_THAT(root.entries(), ElementsAre("below", "file.json", "link"));
}

TEST(ReplacingAFile, noticesAKindThatDiffersFromTheOneRemembered) {
    const TemporaryDirectory root;
    EXPECT_EQ(replacing(root, "file.json", StateFileKind::regularFile), rules.changedMessage);
    root.write("file.json", "old");
    EXPECT_EQ(replacing(root, "file.json", StateFileKind::missing), rules.changedMessage);
    EXPECT_EQ(root.read("file.json"), "old");
    EXPECT_EQ(replacing(root, "file.json", StateFileKind::regularFile), "no error");
    EXPECT_THAT(root.entries(), ElementsAre("file.json"));
}

TEST(ReplacingAFile, noticesADestinationThatComesIntoBeingMeanwhileAndRemovesTheTemporary) {
    const TemporaryDirectory root;
    // The name of the temporary is asked for after the destination was first looked at.
    const auto appear = [&] {
        root.write("file.json", "another program's");
        return freshUUID();
    };
    EXPECT_EQ(replacing(root, "file.json", std::nullopt, appear), rules.changedMessage);
    EXPECT_EQ(root.read("file.json"), "another program's");
    EXPECT_THAT(root.entries(), ElementsAre("file.json"));
}

TEST(ReplacingAFile, noticesADestinationThatVanishesOrTurnsIntoADirectoryMeanwhile) {
    const TemporaryDirectory root;
    root.write("file.json", "old");
    const auto vanish = [&] {
        fs::remove(root / "file.json");
        return freshUUID();
    };
    EXPECT_EQ(replacing(root, "file.json", std::nullopt, vanish), rules.changedMessage);
    EXPECT_THAT(root.entries(), ElementsAre());
    const auto turn = [&] {
        fs::create_directory(root / "file.json");
        return freshUUID();
    };
    EXPECT_EQ(replacing(root, "file.json", std::nullopt, turn), rules.changedMessage);
    EXPECT_THAT(root.entries(), ElementsAre("file.json"));
}

TEST(ReplacingAFile, namesTheTemporaryByPrefixAndUUIDAndLeavesAForeignOneAlone) {
    const TemporaryDirectory root;
    root.write(".custom-providers-TAKEN.tmp", "from a crash");
    EXPECT_EQ(thrownMessage<POSIXError>([&] {
        AtomicStateFile::replaceFile(
            value, root / "file.json", root.path(), rules, std::nullopt, [] { return "TAKEN"; });
    }),
        "File exists");
    EXPECT_EQ(root.read(".custom-providers-TAKEN.tmp"), "from a crash");
    EXPECT_THAT(root.entries(), ElementsAre(".custom-providers-TAKEN.tmp"));
}

TEST(AFreshUUID, isUpperCaseAndNeverTheSame) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    const std::string first = freshUUID();
    EXPECT_TRUE(std::regex_match(first, form)) << first;
    EXPECT_NE(first, freshUUID());
}
