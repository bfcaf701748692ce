#include "state/HistoryAppending.h"

#include "fakes/TemporaryDirectory.h"
#include "state/AsAnotherUser.h"
#include "state/FileRevision.h"
#include "state/HistoryLine.h"
#include "state/HistoryScanner.h"
#include "state/StateErrors.h"
#include "state/StateWriter.h"
#include "state/ThrownMessage.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

const CheckRecord check = {.timestamp = "2026-01-31T09:05:00Z",
    .siteID = "site-1",
    .url = "https://a.example/x",
    .dnsOK = true,
    .ips = {"192.0.2.1", "2001:db8::1"},
    .httpStatus = 200,
    .elapsedMS = 123,
    .up = true,
    .error = std::nullopt};

const ProviderCheckRecord providerCheck = {.timestamp = "2026-01-31T09:05:00Z",
    .providerID = "claude",
    .endpoint = "https://status.example/api/v2/status.json",
    .httpStatus = 503,
    .elapsedMS = 40,
    .state = ProviderState::unknown,
    .summary = "Unknown",
    .officialUpdatedAt = "yesterday",
    .error = "It said \"no\"\n",
    .failureCategory = ProviderFailureCategory::unavailable};

constexpr std::string_view checkLine =
    R"({"timestamp":"2026-01-31T09:05:00Z","site_id":"site-1","url":"https://a.example/x","dns_ok":true,)"
    R"("ips":["192.0.2.1","2001:db8::1"],"http_status":200,"elapsed_ms":123,"up":true})";

/// A state directory that has been set up.
class AppendingHistory : public testing::Test {
protected:
    AppendingHistory() { root.write("sites.json", "{}"); }

    HistoryAppend append(const std::string& line) const {
        return appendHistoryLine(root.path(), HistoryKind::Website, "site-1", line);
    }
    template <class Error> [[nodiscard]] std::string refusal(const std::string& line = "new") const {
        return thrownMessage<Error>([&] { append(line); });
    }

    TemporaryDirectory root;
    const fs::path file = root / "data/site-1.jsonl";
};

} // namespace

TEST(AHistoryLine, hasTheFieldsOfACheckInTheirOrder) {
    EXPECT_EQ(historyLine(check), checkLine);
}

TEST(AHistoryLine, leavesOutWhatIsAbsent) {
    CheckRecord failed = check;
    failed.dnsOK = false;
    failed.ips.clear();
    failed.httpStatus.reset();
    failed.elapsedMS.reset();
    failed.up = false;
    failed.error = "No address.";
    EXPECT_EQ(historyLine(failed),
        R"({"timestamp":"2026-01-31T09:05:00Z","site_id":"site-1","url":"https://a.example/x","dns_ok":false,"ips":[],"up":false,"error":"No address."})");
    EXPECT_EQ(historyLine(ProviderCheckRecord{}),
        R"({"timestamp":"","provider_id":"","endpoint":"","state":"unknown","summary":""})");
}

TEST(AHistoryLine, hasTheFieldsOfAServiceCheckInTheirOrder) {
    EXPECT_EQ(historyLine(providerCheck),
        R"({"timestamp":"2026-01-31T09:05:00Z","provider_id":"claude","endpoint":"https://status.example/api/v2/status.json",)"
        R"("http_status":503,"elapsed_ms":40,"state":"unknown","summary":"Unknown","official_updated_at":"yesterday",)"
        R"("error":"It said \"no\"\n","failure_category":"unavailable"})");
}

TEST_F(AppendingHistory, beginsAFileWithItsDirectories) {
    StateWriter writer(root.path());
    const HistoryAppend begun = writer.appendCheck(check);
    EXPECT_EQ(TemporaryDirectory::contentOf(file), std::string(checkLine) + "\n");
    EXPECT_EQ(begun.before, HistoryFileRevision());
    EXPECT_EQ(begun.after, fileRevision(file, MissingFile::Refused));
    writer.appendProviderCheck(providerCheck);
    EXPECT_EQ(root.read("data/providers/claude.jsonl"), historyLine(providerCheck) + "\n");
    EXPECT_THAT(root.entries(),
        ElementsAre("data", "data/providers", "data/providers/claude.jsonl", "data/site-1.jsonl", "sites.json"));
}

TEST_F(AppendingHistory, addsBehindWhatIsThere) {
    const HistoryAppend first = append("first");
    const HistoryAppend second = append("second");
    EXPECT_EQ(TemporaryDirectory::contentOf(file), "first\nsecond\n");
    EXPECT_EQ(second.before, first.after);
    EXPECT_EQ(second.after, fileRevision(file, MissingFile::Refused));
    EXPECT_EQ(second.after.byteCount, 13);
}

TEST_F(AppendingHistory, findsWhatAnotherProgramHasAdded) {
    const HistoryAppend first = append("first");
    std::ofstream(file, std::ios::app) << "theirs\n";
    const HistoryFileRevision theirs = fileRevision(file, MissingFile::Refused);
    const HistoryAppend second = append("second");
    EXPECT_NE(second.before, first.after);
    EXPECT_EQ(second.before, theirs);
    EXPECT_EQ(TemporaryDirectory::contentOf(file), "first\ntheirs\nsecond\n");
}

TEST_F(AppendingHistory, sealsALineThatACrashLeftUnfinished) {
    root.write("data/site-1.jsonl", "whole\ntorn");
    EXPECT_EQ(append("new").after.byteCount, 15);
    EXPECT_EQ(TemporaryDirectory::contentOf(file), "whole\ntorn\nnew\n");
}

TEST_F(AppendingHistory, writesNoSealingByteIntoAnEmptyFile) {
    root.write("data/site-1.jsonl", "");
    append("new");
    EXPECT_EQ(TemporaryDirectory::contentOf(file), "new\n");
}

TEST_F(AppendingHistory, keepsTheFormerBytesWhateverTheyAre) {
    const std::string former = std::string("\0\xFF\r\n{\n\n", 7);
    root.write("data/site-1.jsonl", former);
    append("new");
    EXPECT_EQ(TemporaryDirectory::contentOf(file), former + "new\n");
}

TEST_F(AppendingHistory, acceptsALineOfExactlyTheLimitAndRefusesOneByteMore) {
    const std::string line(maximumHistoryLineBytes, 'x');
    EXPECT_EQ(append(line).after.byteCount, 8'388'609);
    EXPECT_EQ(refusal<StateWriteError>(line + "x"), "Kestrin refused an oversized history record.");
    EXPECT_EQ(fs::file_size(file), 8'388'609u);
}

TEST_F(AppendingHistory, refusesAnOversizedRecordBeforeItCreatesAnything) {
    CheckRecord huge = check;
    huge.error = std::string(maximumHistoryLineBytes, 'x');
    StateWriter writer(root.path());
    EXPECT_EQ(thrownMessage<StateWriteError>([&] { writer.appendCheck(huge); }),
        "Kestrin refused an oversized history record.");
    EXPECT_THAT(root.entries(), ElementsAre("sites.json"));
}

TEST_F(AppendingHistory, refusesADirectoryAndAFIFOInPlaceOfTheFile) {
    fs::create_directories(file);
    EXPECT_EQ(refusal<StateWriteError>(), "Kestrin history is not a regular file.");
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(refusal<StateWriteError>(), "Kestrin history is not a regular file.");
    EXPECT_THAT(root.entries(), ElementsAre("data", "data/site-1.jsonl", "sites.json"));
}

TEST_F(AppendingHistory, refusesALinkAnywhereBelowTheRoot) {
    fs::create_directory(root / "real");
    fs::create_directory_symlink("real", root / "data");
    EXPECT_EQ(refusal<StatePathError>(), "Symbolic links are not allowed in Kestrin state paths.");
    fs::remove(root / "data");
    fs::create_directory(root / "data");
    root.write("target", "former");
    fs::create_symlink("../target", file);
    EXPECT_EQ(refusal<StatePathError>(), "Symbolic links are not allowed in Kestrin state paths.");
    EXPECT_EQ(root.read("target"), "former");
    EXPECT_TRUE(fs::is_empty(root / "real"));
}

TEST_F(AppendingHistory, refusesAnUnsafeIdentifier) {
    StateWriter writer(root.path());
    for (const std::string& id : {std::string(), std::string(".."), std::string("a/b"), std::string("a\0", 2)}) {
        CheckRecord record = check;
        record.siteID = id;
        EXPECT_EQ(thrownMessage<StatePathError>([&] { writer.appendCheck(record); }),
            "Unsafe history identifier was refused.");
    }
    EXPECT_THAT(root.entries(), ElementsAre("sites.json"));
}

TEST_F(AppendingHistory, createsNothingInADirectoryWithoutSitesJSON) {
    fs::remove(root / "sites.json");
    EXPECT_EQ(refusal<StateWriteError>(), "Kestrin's state directory is missing sites.json.");
    EXPECT_THAT(root.entries(), ElementsAre());
    EXPECT_EQ(thrownMessage<StateWriteError>(
                  [&] { appendHistoryLine(root / "missing", HistoryKind::Website, "site-1", "new"); }),
        "Kestrin's state directory is missing sites.json.");
    EXPECT_FALSE(fs::exists(root / "missing"));
}

TEST_F(AppendingHistory, goesOnWithAnExistingFileWithoutSitesJSON) {
    append("first");
    fs::remove(root / "sites.json");
    append("second");
    EXPECT_EQ(TemporaryDirectory::contentOf(file), "first\nsecond\n");
}

TEST_F(AppendingHistory, saysThatAFileCannotBeWritten) {
    append("first");
    fs::permissions(root.path(), fs::perms(0755));
    fs::permissions(root / "data", fs::perms(0755));
    fs::permissions(file, fs::perms(0444));
    EXPECT_EQ(asOrdinaryUser([&] { return refusal<POSIXError>(); }), "Permission denied");
    fs::permissions(file, fs::perms(0644));
    EXPECT_EQ(TemporaryDirectory::contentOf(file), "first\n");
}
