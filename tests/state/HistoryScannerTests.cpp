#include "state/HistoryScanner.h"

#include "fakes/TemporaryDirectory.h"
#include "model/MessageError.h"
#include "state/AsAnotherUser.h"
#include "state/FileRevision.h"
#include "state/StateErrors.h"
#include "state/ThrownMessage.h"
#include "tasks/CancellationError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <thread>
#include <vector>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::size_t chunk = 65'536;

/// Keeps the lines, and may do something at each.
struct Lines : HistoryLineSink {
    void take(std::string_view line) override {
        for (std::size_t i = 0; i < historyLinePadding; ++i)
            paddingSeen += line.data()[line.size() + i] != 'q';
        lines.emplace_back(line);
        if (atLine) atLine();
    }

    std::vector<std::string> lines;
    std::size_t paddingSeen = 0; ///< reading it is what the sanitizer judges
    std::function<void()> atLine;
};

class ScanningHistory : public testing::Test {
protected:
    std::vector<std::string> linesOf(std::string_view content) {
        root.write("data/a.jsonl", content);
        Lines sink;
        EXPECT_EQ(scan(sink), fileRevision(root / "data/a.jsonl", MissingFile::Refused));
        return sink.lines;
    }
    std::optional<HistoryFileRevision> scan(HistoryLineSink& sink, const std::stop_token& stop = {}) {
        return scanHistoryLines(root.path(), HistoryKind::Website, "a", sink, stop);
    }
    template <class Error> std::string refusal(HistoryLineSink& sink) {
        return thrownMessage<Error>([&] { scan(sink); });
    }

    TemporaryDirectory root;
};

constexpr const char* changed = "Kestrin history changed while it was being read.";

} // namespace

TEST_F(ScanningHistory, givesNothingForAMissingFile) {
    Lines sink;
    EXPECT_EQ(scan(sink), std::nullopt);
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(ScanningHistory, handsOnEveryLineInOrder) {
    EXPECT_THAT(linesOf("one\ntwo\nthree\n"), ElementsAre("one", "two", "three"));
    EXPECT_THAT(linesOf(""), IsEmpty());
}

TEST_F(ScanningHistory, takesALastLineWithoutLineFeedLikeAnyOther) {
    EXPECT_THAT(linesOf("one\ntwo"), ElementsAre("one", "two"));
    EXPECT_THAT(linesOf("one"), ElementsAre("one"));
}

TEST_F(ScanningHistory, removesOneCarriageReturnAndDropsEmptyLines) {
    EXPECT_THAT(linesOf("one\r\n\n\r\ntwo\r\r\nthree\r"), ElementsAre("one", "two\r", "three"));
}

TEST_F(ScanningHistory, joinsLinesAcrossChunksWhereverTheyAreCut) {
    for (const std::size_t shift : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}}) {
        const std::string first(chunk - 2 + shift, 'a');
        const std::string second(3 * chunk + 1 - shift, 'b');
        EXPECT_THAT(linesOf(first + "\n" + second + "\r\nc\n"), ElementsAre(first, second, "c")) << shift;
        EXPECT_THAT(linesOf(first + "\r\n" + second), ElementsAre(first, second)) << shift;
    }
}

TEST_F(ScanningHistory, handsOnALineOfExactlyTheLimitAndDropsOneByteMore) {
    const std::string line(maximumHistoryLineBytes, 'x');
    EXPECT_THAT(linesOf(line + "\nnext\n"), ElementsAre(line, "next"));
    EXPECT_THAT(linesOf(line + "\r\nnext\n"), ElementsAre(line, "next"));
    EXPECT_THAT(linesOf(line + "x\nnext\n"), ElementsAre("next"));
    EXPECT_THAT(linesOf(line + "x\r\nnext\n"), ElementsAre("next"));
    EXPECT_THAT(linesOf("before\n" + line + "xy"), ElementsAre("before"));
    EXPECT_THAT(linesOf(line), ElementsAre(line));
}

TEST_F(ScanningHistory, dropsAHugeLineAndGoesOnWithTheNext) {
    EXPECT_THAT(
        linesOf("a\n" + std::string(3 * maximumHistoryLineBytes, 'x') + "\nb\nc"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(linesOf(std::string(3 * maximumHistoryLineBytes, 'x')), IsEmpty());
}

TEST_F(ScanningHistory, holdsTheTurnOfHugeLinesWhileItHandsOneOnAndNoLonger) {
    const std::string huge(maximumHistoryLineBytes, 'x');
    root.write("data/a.jsonl", "one\n" + huge + "\ntwo\n" + huge + "x\nthree\n" + huge);
    HugeLineTurn turn;
    std::vector<bool> isFree;
    Lines sink;
    sink.atLine = [&] {
        std::thread other([&] {
            isFree.push_back(turn.try_lock());
            if (isFree.back()) turn.unlock();
        });
        other.join();
    };
    scanHistoryLines(root.path(), HistoryKind::Website, "a", sink, {}, &turn);
    EXPECT_THAT(isFree, ElementsAre(true, false, true, true, false));
    EXPECT_TRUE(turn.try_lock());
    turn.unlock();
}

TEST_F(ScanningHistory, readsServicesBelowProviders) {
    root.write("data/providers/p.jsonl", "one\n");
    Lines sink;
    EXPECT_TRUE(scanHistoryLines(root.path(), HistoryKind::Provider, "p", sink).has_value());
    EXPECT_THAT(sink.lines, ElementsAre("one"));
}

TEST_F(ScanningHistory, noticesALineThatIsAppendedMeanwhileAndDoesNotReadIt) {
    const fs::path file = root.write("data/a.jsonl", "one\ntwo\n");
    Lines sink;
    sink.atLine = [&] { std::ofstream(file, std::ios::app) << "new\n"; };
    EXPECT_EQ(refusal<HistoryReadError>(sink), changed);
    EXPECT_THAT(sink.lines, ElementsAre("one", "two"));
    EXPECT_EQ(root.read("data/a.jsonl"), "one\ntwo\nnew\nnew\n");
}

TEST_F(ScanningHistory, noticesAFileThatIsCutShortMeanwhile) {
    const fs::path file = root.write("data/a.jsonl", "one\n" + std::string(3 * chunk, 'x'));
    Lines sink;
    sink.atLine = [&] { fs::resize_file(file, 4); };
    EXPECT_EQ(refusal<HistoryReadError>(sink), changed);
}

TEST_F(ScanningHistory, noticesAFileOfTheSameSizeThatWasWrittenMeanwhile) {
    const fs::path file = root.write("data/a.jsonl", "one\ntwo\n");
    Lines sink;
    sink.atLine = [&] { fs::last_write_time(file, fs::last_write_time(file) + std::chrono::nanoseconds(1)); };
    EXPECT_EQ(refusal<HistoryReadError>(sink), changed);
}

TEST_F(ScanningHistory, stopsBeforeTheNextReadWhenAsked) {
    root.write("data/a.jsonl", "one\n" + std::string(chunk, 'x') + "\nlast\n");
    std::stop_source source;
    Lines sink;
    sink.atLine = [&] { source.request_stop(); };
    EXPECT_THROW(scan(sink, source.get_token()), CancellationError);
    EXPECT_THAT(sink.lines, ElementsAre("one"));
}

TEST_F(ScanningHistory, readsNothingWhenItIsAlreadyStopped) {
    root.write("data/a.jsonl", "one\n");
    std::stop_source source;
    source.request_stop();
    Lines sink;
    EXPECT_THROW(scan(sink, source.get_token()), CancellationError);
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(ScanningHistory, refusesADirectoryAndAFIFOWithoutWaiting) {
    fs::create_directories(root / "data/a.jsonl");
    Lines sink;
    EXPECT_EQ(refusal<HistoryReadError>(sink), "Kestrin history is not a regular file.");
    fs::remove(root / "data/a.jsonl");
    ASSERT_EQ(::mkfifo((root / "data/a.jsonl").c_str(), 0600), 0);
    EXPECT_EQ(refusal<HistoryReadError>(sink), "Kestrin history is not a regular file.");
}

TEST_F(ScanningHistory, refusesALinkBeforeAnyOpen) {
    root.write("real.jsonl", "one\n");
    fs::create_directory(root / "data");
    fs::create_symlink("../real.jsonl", root / "data/a.jsonl");
    Lines sink;
    EXPECT_EQ(refusal<StatePathError>(sink), "Symbolic links are not allowed in Kestrin state paths.");
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(ScanningHistory, saysThatAnUnreadableFileIsUnreadable) {
    const fs::path file = root.write("data/a.jsonl", "one\n");
    fs::permissions(root.path(), fs::perms(0755));
    fs::permissions(root / "data", fs::perms(0755));
    fs::permissions(file, fs::perms::none);
    EXPECT_EQ(asOrdinaryUser([&] {
        Lines sink;
        return refusal<POSIXError>(sink);
    }),
        "Permission denied");
}
