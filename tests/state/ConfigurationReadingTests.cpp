#include "state/StateReader.h"

#include "fakes/TemporaryDirectory.h"
#include "state/AsAnotherUser.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"
#include "json/JSONError.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

template <class Error = ConfigurationReadError> std::string loadRefusal(const fs::path& root) {
    return thrownMessage<Error>([&] { static_cast<void>(StateReader(root).loadConfiguration()); });
}

/// What reading this "sites.json" says after naming the file; the file must stay as it is.
std::string decodingRefusal(const std::string& content) {
    const TemporaryDirectory root;
    root.write("sites.json", content);
    const std::string message = loadRefusal<JSONError>(root.path());
    EXPECT_EQ(root.read("sites.json"), content);
    EXPECT_THAT(root.entries(), ElementsAre("sites.json"));
    constexpr std::string_view prefix = "sites.json: ";
    EXPECT_TRUE(message.starts_with(prefix)) << message;
    return message.substr(std::min(message.size(), prefix.size()));
}

SiteConfiguration loaded(const std::string& content) {
    const TemporaryDirectory root;
    root.write("sites.json", content);
    return StateReader(root.path()).loadConfiguration().configuration();
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

} // namespace

TEST(LoadingTheConfiguration, readsEveryField) {
    const SiteConfiguration configuration = loaded(R"({
        "sites": [{"id": "b", "name": "Ä", "url": "https://b.example/x", "enabled": false},
                  {"id": "a", "name": "A", "url": "anything", "enabled": true}],
        "active_site_id": "a", "interval_seconds": -7,
        "provider_status": {"enabled": true, "provider_ids": ["claude", "unheard-of"]}})");
    EXPECT_EQ(configuration,
        (SiteConfiguration{.sites = {{.id = "b", .name = "Ä", .url = "https://b.example/x", .enabled = false},
                               {.id = "a", .name = "A", .url = "anything", .enabled = true}},
            .activeSiteID = "a",
            .intervalSeconds = -7,
            .providerStatus = {.enabled = true, .providerIDs = {"claude", "unheard-of"}}}));
}

TEST(LoadingTheConfiguration, takesAnEmptyListOfSitesWithTheDefaults) {
    const SiteConfiguration configuration = loaded(R"({"sites":[]})");
    EXPECT_TRUE(configuration.sites.empty());
    EXPECT_EQ(configuration.activeSiteID, std::nullopt);
    EXPECT_EQ(configuration.intervalSeconds, 300);
    EXPECT_FALSE(configuration.providerStatus.enabled);
    EXPECT_THAT(configuration.providerStatus.providerIDs, ElementsAre("openai", "claude"));
}

TEST(LoadingTheConfiguration, takesASiteWithoutEnabledAsEnabledAndNullAsAbsent) {
    const SiteConfiguration configuration = loaded(
        R"({"sites":[{"id":"a","name":"A","url":"u"},{"id":"b","name":"B","url":"u","enabled":null}],
            "active_site_id":null,"interval_seconds":null,"provider_status":null})");
    EXPECT_TRUE(configuration.sites[0].enabled);
    EXPECT_TRUE(configuration.sites[1].enabled);
    SiteConfiguration defaults;
    defaults.sites = configuration.sites;
    EXPECT_EQ(configuration, defaults);
}

TEST(LoadingTheConfiguration, ignoresUnknownKeys) {
    EXPECT_EQ(
        loaded(R"({"sites":[{"id":"a","name":"A","url":"u","colour":1}],"schema_version":9,"x":{"sites":[]}})")
            .sites,
        (std::vector<SiteDefinition>{{.id = "a", .name = "A", .url = "u"}}));
}

TEST(LoadingTheConfiguration, isNotConfiguredWithoutADirectoryOrInAnEmptyOne) {
    const TemporaryDirectory root;
    EXPECT_EQ(StateReader(root / "missing").loadConfiguration(), ConfigurationLoadResult::notConfigured());
    EXPECT_EQ(StateReader(root.path()).loadConfiguration(), ConfigurationLoadResult::notConfigured());
    EXPECT_FALSE(fs::exists(root / "missing"));
}

TEST(LoadingTheConfiguration, refusesADirectoryThatHoldsOtherThingsButNoFile) {
    for (const char* name : {"backups/x", ".hidden", "data/site-1.jsonl"}) {
        const TemporaryDirectory root;
        root.write(name, "");
        EXPECT_EQ(loadRefusal(root.path()), "Kestrin's state directory contains data but is missing sites.json.")
            << name;
    }
}

TEST(LoadingTheConfiguration, refusesAStatePathThatIsNoDirectory) {
    const TemporaryDirectory directory;
    directory.write("file", "content");
    fs::create_directory_symlink(".", directory / "link");
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    for (const char* name : {"file", "link", "link/", "fifo"}) {
        EXPECT_EQ(loadRefusal(directory / name), "Kestrin's state path is not a regular directory.") << name;
        EXPECT_EQ(thrownMessage<ConfigurationReadError>(
                      [&] { static_cast<void>(StateReader(directory / name).configurationRevision()); }),
            "Kestrin's state path is not a regular directory.")
            << name;
    }
    EXPECT_EQ(directory.read("file"), "content");
}

TEST(LoadingTheConfiguration, refusesAFileThatIsNotRegular) {
    const auto make = [](const TemporaryDirectory& root, const std::string& kind) {
        if (kind == "directory") fs::create_directory(root / "sites.json");
        if (kind == "link") fs::create_symlink(root.write("real.json", R"({"sites":[]})"), root / "sites.json");
        if (kind == "dangling link") fs::create_symlink("nowhere", root / "sites.json");
        if (kind == "FIFO") {
            EXPECT_EQ(::mkfifo((root / "sites.json").c_str(), 0600), 0);
        }
    };
    for (const char* kind : {"directory", "link", "dangling link", "FIFO"}) {
        const TemporaryDirectory root;
        make(root, kind);
        const auto before = root.entries();
        EXPECT_EQ(loadRefusal(root.path()), "Kestrin's sites.json is not a regular file.") << kind;
        EXPECT_EQ(root.entries(), before) << kind;
    }
}

TEST(LoadingTheConfiguration, saysThatAnUnreadableFileIsUnreadable) {
    const TemporaryDirectory root;
    fs::permissions(root.path(), fs::perms(0755));
    fs::permissions(root.write("sites.json", R"({"sites":[]})"), fs::perms::none);
    EXPECT_EQ(asOrdinaryUser([&] { return loadRefusal<POSIXError>(root.path()); }), "Permission denied");
    fs::permissions(root / "sites.json", fs::perms::owner_read);
    EXPECT_EQ(root.read("sites.json"), R"({"sites":[]})");
}

TEST(LoadingTheConfiguration, saysThatADirectoryCannotBeListed) {
    const TemporaryDirectory root;
    fs::permissions(root.path(), fs::perms(0311));
    EXPECT_EQ(asOrdinaryUser([&] { return loadRefusal<POSIXError>(root.path()); }), "Permission denied");
    fs::permissions(root.path(), fs::perms(0755));
}

TEST(LoadingTheConfiguration, refusesTruncatedEmptyAndBinaryFiles) {
    const std::string whole =
        R"({"sites":[{"id":"a","name":"A","url":"u","enabled":true}],"interval_seconds":300})";
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_TRUE(decodingRefusal(whole.substr(0, length)).starts_with("This is not valid JSON: ")) << length;
    EXPECT_EQ(decodingRefusal(std::string("\x7F"
                                          "ELF\x02\0\0\0",
                  8)),
        "This is not valid JSON: byte 6 is not acceptable.");
    EXPECT_EQ(decodingRefusal(std::string(100, '\0')), "This is not valid JSON: byte 1 is not acceptable.");
    EXPECT_TRUE(decodingRefusal(whole + "}").starts_with("This is not valid JSON: "));
    EXPECT_TRUE(decodingRefusal(whole + std::string("\0", 1)).starts_with("This is not valid JSON: "));
    EXPECT_TRUE(decodingRefusal("\xEF\xBB\xBF" + whole).starts_with("This is not valid JSON: "));
    EXPECT_EQ(decodingRefusal(R"({"sites":[],"sites":[]})"),
        "This is not valid JSON: the key “sites” stands there twice.");
}

TEST(LoadingTheConfiguration, namesTheKeyThatIsMissingOrOfTheWrongType) {
    EXPECT_EQ(decodingRefusal("[]"), "The JSON value must be an object.");
    EXPECT_EQ(decodingRefusal("{}"), "“sites” is missing.");
    EXPECT_EQ(decodingRefusal(R"({"sites":null})"), "“sites” must be a list.");
    EXPECT_EQ(decodingRefusal(R"({"sites":["a"]})"), "“sites[0]” must be an object.");
    EXPECT_EQ(decodingRefusal(R"({"sites":[{"id":"a","name":"A"}]})"), "“sites[0].url” is missing.");
    EXPECT_EQ(decodingRefusal(R"({"sites":[{"id":7,"name":"A","url":"u"}]})"), "“sites[0].id” must be text.");
    EXPECT_EQ(decodingRefusal(R"({"sites":[{"id":"a","name":"A","url":"u","enabled":1}]})"),
        "“sites[0].enabled” must be true or false.");
    EXPECT_EQ(decodingRefusal(R"({"sites":[],"active_site_id":1})"), "“active_site_id” must be text.");
    for (const char* wrong : {"300.9", "300.0", "3e2", "\"300\"", "true", "9223372036854775808"})
        EXPECT_EQ(decodingRefusal(R"({"sites":[],"interval_seconds":)" + std::string(wrong) + "}"),
            "“interval_seconds” must be a whole number.")
            << wrong;
    EXPECT_EQ(decodingRefusal(R"({"sites":[],"provider_status":{"enabled":true}})"),
        "“provider_status.provider_ids” is missing.");
    EXPECT_EQ(decodingRefusal(R"({"sites":[],"provider_status":{"provider_ids":[]}})"),
        "“provider_status.enabled” is missing.");
    EXPECT_EQ(decodingRefusal(R"({"sites":[],"provider_status":{"enabled":true,"provider_ids":["a",1]}})"),
        "“provider_status.provider_ids[1]” must be text.");
}

TEST(LoadingTheConfiguration, saysOfAnEmptyOrCutFileThatItEndsTooEarly) {
    for (const char* content : {"", " \n", "{", "{\"sites\":[", "{\"si"})
        EXPECT_EQ(decodingRefusal(content), "This is not valid JSON: it ends too early.") << content;
}

TEST(LoadingTheConfiguration, survivesAFileOfAnyDepth) {
    for (const char* open : {"[", "{\"sites\":"})
        EXPECT_EQ(decodingRefusal(repeated(open, 100'000)),
            "This is not valid JSON: it is nested more than 128 levels deep.");
}

TEST(LoadingTheConfiguration, survivesAFileOfFiftyMegabytes) {
    constexpr std::size_t size = 50'000'000;
    EXPECT_EQ(decodingRefusal(std::string(size, '\0')), "This is not valid JSON: byte 1 is not acceptable.");
    EXPECT_EQ(
        decodingRefusal(std::string(size, '[')), "This is not valid JSON: it is nested more than 128 levels deep.");
    EXPECT_EQ(decodingRefusal(std::string(size, 'x')), "This is not valid JSON: byte 1 is not acceptable.");
}

TEST(LoadingTheConfiguration, readsThousandsOfSites) {
    const std::string site = R"({"id":"a","name":"A","url":"u"},)";
    EXPECT_EQ(loaded(R"({"sites":[)" + repeated(site, 20'000) + R"({"id":"z","name":"","url":""}]})").sites.size(),
        20'001u);
}

TEST(TheRevisionOfTheConfiguration, isAbsentWithoutADirectoryAndZeroWithoutAFile) {
    const TemporaryDirectory root;
    EXPECT_EQ(StateReader(root / "missing").configurationRevision(), std::nullopt);
    EXPECT_EQ(StateReader(root.path()).configurationRevision(), HistoryFileRevision());
}

TEST(TheRevisionOfTheConfiguration, isTheFilesFingerprint) {
    const TemporaryDirectory root;
    root.write("sites.json", "12345");
    struct stat status{};
    ASSERT_EQ(::lstat((root / "sites.json").c_str(), &status), 0);
    EXPECT_EQ(
        StateReader(root.path()).configurationRevision(), (HistoryFileRevision{.device = status.st_dev,
                                                              .inode = status.st_ino,
                                                              .byteCount = 5,
                                                              .modifiedSeconds = status.st_mtim.tv_sec,
                                                              .modifiedNanoseconds = status.st_mtim.tv_nsec}));
}

TEST(TheRevisionOfAFile, isRefusedForWhatIsNoRegularFile) {
    const TemporaryDirectory root;
    fs::create_symlink("nowhere", root / "link");
    const StateReader reader(root.path());
    for (const fs::path& path : {root / "link", root.path()})
        EXPECT_EQ(thrownMessage<HistoryReadError>(
                      [&] { static_cast<void>(reader.fileRevision(path, MissingFile::Allowed)); }),
            "Kestrin state metadata is not a regular file.");
    EXPECT_EQ(reader.fileRevision(root / "missing", MissingFile::Allowed), HistoryFileRevision());
    EXPECT_EQ(thrownMessage<POSIXError>(
                  [&] { static_cast<void>(reader.fileRevision(root / "missing", MissingFile::Refused)); }),
        "No such file or directory");
}
