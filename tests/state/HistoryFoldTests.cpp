#include "state/HistoryFold.h"

#include "state/HistoryLine.h"
#include "state/HistoryLineMutations.h"
#include "state/HistoryLineSplitter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace kestrin;

namespace {

/// Folds every line by itself, each through the decoder: what the folds must equal.
struct SiteReference : HistoryLineSink {
    void take(std::string_view line) override {
        if (const CheckRecord* record = decoder.decodeCheck(line)) history.append(*record);
    }
    SiteHistoryProjection finish() { return history; }
    static constexpr PlainLineRecognition::Reading readPlain = readPlainCheck;
    std::optional<bool> up(std::string_view line) {
        const CheckRecord* record = decoder.decodeCheck(line);
        return record == nullptr ? std::nullopt : std::optional(record->up);
    }

    HistoryLineDecoder decoder;
    SiteHistoryProjection history;
};

struct ProviderReference : HistoryLineSink {
    void take(std::string_view line) override {
        if (const ProviderCheckRecord* record = decoder.decodeProviderCheck(line)) history.append(*record);
    }
    ProviderHistoryProjection finish() { return history; }
    static constexpr PlainLineRecognition::Reading readPlain = readPlainProviderCheck;
    std::optional<bool> up(std::string_view line) {
        return decoder.decodeProviderCheck(line) == nullptr ? std::nullopt : std::optional(true);
    }

    HistoryLineDecoder decoder;
    ProviderHistoryProjection history;
};

/// What a sink makes of a file that is read in chunks of so many bytes, behind each of which lies something else.
template <class Sink> auto folded(std::string_view file, std::size_t chunkBytes) {
    Sink sink;
    HistoryLineSplitter splitter(sink);
    std::string chunk;
    for (std::size_t at = 0; at < file.size(); at += chunkBytes) {
        const std::string_view bytes = file.substr(at, chunkBytes);
        chunk = bytes;
        chunk.append(historyLinePadding, at % 2 == 0 ? '7' : '\n');
        splitter.take({chunk.data(), bytes.size()});
        std::ranges::fill(chunk, '#');
    }
    splitter.finish();
    return sink.finish();
}

CheckRecord upCheck(int n) {
    return {.timestamp = "2026-01-31T09:" + std::to_string(10 + n % 50) + ":00Z",
        .siteID = "a",
        .url = "https://a.example/",
        .dnsOK = true,
        .ips = {"192.0.2.1", "2001:db8::1"},
        .httpStatus = 200,
        .elapsedMS = n % 1100,
        .up = true,
        .error = std::nullopt};
}

CheckRecord downCheck(int n) {
    CheckRecord record = upCheck(n);
    record.httpStatus.reset();
    record.up = false;
    record.error = "The request timed out.";
    return record;
}

ProviderCheckRecord providerCheck(int n) {
    ProviderCheckRecord record;
    record.timestamp = upCheck(n).timestamp;
    record.providerID = "p";
    record.endpoint = "https://p.example/status.json";
    record.httpStatus = 200;
    record.elapsedMS = n % 1100;
    record.state = ProviderState::operational;
    record.summary = "All systems operational";
    return record;
}

ProviderCheckRecord failedProviderCheck(int n) {
    ProviderCheckRecord record = providerCheck(n);
    record.httpStatus = 404;
    record.state = ProviderState::unknown;
    record.officialUpdatedAt = "2026-01-31T09:05:00.123Z";
    record.error = "Not found";
    record.failureCategory = ProviderFailureCategory::unavailable;
    return record;
}

template <class Sink, class Reference> void expectSameFold(std::string_view file, std::size_t chunkBytes) {
    // Not printed whole: the first record that differs says more.
    const auto expected = folded<Reference>(file, 65'536);
    const auto actual = folded<Sink>(file, chunkBytes);
    if (actual == expected) return;
    ASSERT_EQ(actual.recentChecks.size(), expected.recentChecks.size()) << file;
    for (std::size_t i = 0; i < expected.recentChecks.size(); ++i)
        ASSERT_EQ(actual.recentChecks[i], expected.recentChecks[i]) << file;
    FAIL() << "the counters or incidents differ\n" << file;
}

/// Judges lines in two ways, each with a known good line before it, from which it may be told to differ in digits
/// alone. What is recognised must decode and say the same. And a file of no more lines than a projection keeps
/// records must fold alike, so that the record of every line shows.
template <class Sink, class Reference> class Judgement {
public:
    explicit Judgement(std::vector<std::string> good) : good_(std::move(good)) {}

    void add(const std::string& line) {
        const std::string& before = good_[++count_ % good_.size()];
        ASSERT_TRUE(recognise(before));
        if (recognise(line)) ++recognised_;
        file_ += before + "\n" + line + (count_ % 64 == 0 ? "\r\n" : "\n");
        if (++lines_ == 12) judgeFile();
    }
    void judgeFile() {
        expectSameFold<Sink, Reference>(file_, 1 + count_ % 977 * 7);
        file_.clear();
        lines_ = 0;
    }
    [[nodiscard]] std::size_t count() const { return count_; }
    [[nodiscard]] std::size_t recognised() const { return recognised_; }

private:
    bool recognise(const std::string& line) {
        padded_ = line + "\n";
        const std::size_t size = padded_.size();
        padded_.append(historyLinePadding, '"');
        const auto match = recognition_.recognise({padded_.data(), size});
        if (match.lineBytes == 0) return false;
        EXPECT_EQ(match.lineBytes, std::min(line.size(), line.find('\n')));
        EXPECT_EQ(reference_.up({padded_.data(), match.lineBytes}), match.up) << line;
        return true;
    }

    std::vector<std::string> good_;
    PlainLineRecognition recognition_{Reference::readPlain};
    Reference reference_;
    std::string padded_;
    std::string file_;
    std::size_t lines_ = 0;
    std::size_t count_ = 0;
    std::size_t recognised_ = 0;
};

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KESTRIN_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
#define KESTRIN_SANITIZED
#endif

/// Sanitizers take twenty times as long; they judge memory, for which fewer lines do.
#ifdef KESTRIN_SANITIZED
constexpr std::size_t linesOfEachKind = 60'000;
#else
constexpr std::size_t linesOfEachKind = 500'000;
#endif

template <class Sink, class Reference> void judgeNearLines(const std::vector<std::string>& good) {
    Judgement<Sink, Reference> judgement(good);
    HistoryLineMutations mutations(20260131);
    for (const std::string& line : good) {
        for (const std::string& mutated : HistoryLineMutations::ofEveryPart(line))
            judgement.add(mutated);
        std::vector<std::string> lines = HistoryLineMutations::ofEveryByte(line);
        if (judgement.count() + lines.size() > linesOfEachKind)
            std::shuffle(lines.begin(), lines.end(), std::mt19937(1));
        for (const std::string& mutated : lines)
            if (judgement.count() < linesOfEachKind) judgement.add(mutated);
    }
    while (judgement.count() < linesOfEachKind)
        judgement.add(mutations.any(good[mutations.below(good.size())]));
    judgement.judgeFile();
    EXPECT_GT(judgement.recognised(), judgement.count() / 20) << "or else it says little";
    EXPECT_LT(judgement.recognised(), judgement.count() * 3 / 4);
}

} // namespace

TEST(FoldingAHistory, judgesHalfAMillionNearLinesOfWebsitesAsTheDecoderDoes) {
    CheckRecord bare = upCheck(3);
    bare.ips.clear();
    bare.elapsedMS.reset();
    CheckRecord answered = downCheck(1000);
    answered.httpStatus = 503;
    answered.error = "The website answered with status 503.";
    judgeNearLines<SiteHistoryFold, SiteReference>(
        {historyLine(upCheck(7)), historyLine(downCheck(10)), historyLine(answered), historyLine(bare)});
}

TEST(FoldingAHistory, judgesHalfAMillionNearLinesOfServicesAsTheDecoderDoes) {
    ProviderCheckRecord bare = providerCheck(3);
    bare.httpStatus.reset();
    bare.elapsedMS.reset();
    judgeNearLines<ProviderHistoryFold, ProviderReference>(
        {historyLine(providerCheck(7)), historyLine(failedProviderCheck(1000)), historyLine(bare)});
}

TEST(FoldingAHistory, equalsTheFoldOfAllRecordsWhateverTheRunsOfUpAndDown) {
    HistoryLineMutations random(7);
    for (int round = 0; round < 200; ++round) {
        std::string file;
        std::string providerFile;
        const std::size_t longest = 1 + random.below(80);
        bool up = random.below(2) == 0;
        for (int n = 0, run = 0; n < 400; ++n) {
            if (run-- == 0) {
                run = static_cast<int>(random.below(longest));
                up = !up;
            }
            CheckRecord record = up ? upCheck(n) : downCheck(n);
            if (random.below(5) == 0) record.ips = {"192.0.2." + std::to_string(random.below(300))};
            if (random.below(20) == 0) record.timestamp = "no time stamp";
            if (random.below(20) == 0) record.error = "Größe \"x\" \\";
            if (random.below(100) == 0) record.error = std::string(PlainHistoryLine::maximumBytes, 'e');
            file += historyLine(record) + "\n";
            providerFile += historyLine(up ? providerCheck(n) : failedProviderCheck(n)) + "\n";
            if (random.below(30) == 0) file += "not a record\n\n";
        }
        for (const std::size_t chunkBytes : {1000UL + random.below(5000), 65'536UL}) {
            expectSameFold<SiteHistoryFold, SiteReference>(file, chunkBytes);
            expectSameFold<ProviderHistoryFold, ProviderReference>(providerFile, chunkBytes);
        }
    }
}

TEST(FoldingAHistory, equalsTheFoldOfAllRecordsAtEveryLength) {
    std::string file;
    std::string providerFile;
    for (int n = 0; n < 70; ++n) {
        file += historyLine(n % 32 == 0 ? downCheck(n) : upCheck(n)) + "\n";
        providerFile += historyLine(providerCheck(n)) + "\n";
        expectSameFold<SiteHistoryFold, SiteReference>(file, 65'536);
        expectSameFold<SiteHistoryFold, SiteReference>(std::string_view(file).substr(0, file.size() - 1), 65'536);
        expectSameFold<ProviderHistoryFold, ProviderReference>(providerFile, 65'536);
    }
}

TEST(FoldingAHistory, equalsTheFoldOfAllRecordsAfterManyOtherLines) {
    // So many that recognition rests, finds plain lines among its next looks, and rests again.
    std::string file;
    for (int n = 0; n < 12'000; ++n) {
        const bool plain = n < 40 || (n >= 5'170 && n < 5'400);
        file += plain ? historyLine(upCheck(n))
                      : "{\"timestamp\":\"2026-01-31T09:10:00Z\"," + historyLine(downCheck(n)).substr(1);
        file += "\n";
    }
    expectSameFold<SiteHistoryFold, SiteReference>(file, 65'536);
}
