#include "fuzz/FuzzTarget.h"
#include "fuzz/GuardedBytes.h"
#include "fuzz/StrictHistoryLine.h"
#include "state/HistoryFold.h"
#include "state/HistoryLine.h"
#include "state/HistoryLineDecoder.h"
#include "state/HistoryLineSplitter.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

// The input is the content of a history file, of a website and of a service at once. Three bytes that no line holds
// are signs: 0xFF marks where one read of the file ends and the next begins, 0xFE stands for the line in front of
// it so often again that it fills a projection, and 0xFD for more blanks than an ordinary line has letters.
// Wherever the reads end, folding the file equals appending what the decoder makes of one line after the other; the
// decoder finds what a strict JSON reader finds, and the same in a long line as in an ordinary one.

using namespace kestrin;

namespace {

constexpr char readBoundary = '\xFF';
constexpr char repeatedLine = '\xFE';
constexpr char manyBlanks = '\xFD';
constexpr std::size_t repetitions = 29;
constexpr std::size_t blanksOfALongLine = 66'000;
constexpr std::size_t largestInput = 1 << 16;
constexpr std::size_t largestFile = 8 * largestInput;

struct Websites {
    using Record = CheckRecord;
    using Projection = SiteHistoryProjection;
    using Fold = SiteHistoryFold;
    static const Record* decode(HistoryLineDecoder& decoder, std::string_view line) {
        return decoder.decodeCheck(line);
    }
    static std::optional<Record> strict(const StrictHistoryLine& line) { return line.check(); }
};

struct Services {
    using Record = ProviderCheckRecord;
    using Projection = ProviderHistoryProjection;
    using Fold = ProviderHistoryFold;
    static const Record* decode(HistoryLineDecoder& decoder, std::string_view line) {
        return decoder.decodeProviderCheck(line);
    }
    static std::optional<Record> strict(const StrictHistoryLine& line) { return line.providerCheck(); }
};

/// The file that the input stands for, still with the boundaries of its reads.
std::string fileOf(std::string_view input) {
    std::string file;
    for (const char byte : input) {
        if (byte == manyBlanks && file.size() + blanksOfALongLine <= largestFile) {
            file.append(blanksOfALongLine, ' ');
            continue;
        }
        if (byte != repeatedLine) {
            file += byte;
            continue;
        }
        if (!file.ends_with('\n')) continue;
        const auto before = file.size() < 2 ? std::string::npos : file.rfind('\n', file.size() - 2);
        const std::string line = file.substr(before == std::string::npos ? 0 : before + 1);
        if (file.size() + repetitions * line.size() > largestFile) continue;
        for (std::size_t count = 0; count < repetitions; ++count)
            file += line;
    }
    return file;
}

/// Kept between inputs: mapping memory anew takes longer than most inputs do.
std::string_view placed(std::string_view text) {
    static GuardedBytes bytes(largestFile + blanksOfALongLine + historyLinePadding);
    return bytes.place(text, historyLinePadding);
}

template <class Kind> Kind::Projection foldedInPieces(std::string_view file) {
    typename Kind::Fold fold;
    HistoryLineSplitter splitter(fold);
    while (!file.empty()) {
        const auto end = std::min(file.find(readBoundary), file.size());
        splitter.take(placed(file.substr(0, end)));
        file.remove_prefix(std::min(end + 1, file.size()));
    }
    splitter.finish();
    return fold.finish();
}

struct Line {
    std::string_view text;
    std::size_t times = 0; ///< so often one behind the other
    StrictHistoryLine opinion;
};

/// By a rule of one sentence: whatever line feeds separate, without a carriage return at the end.
std::vector<Line> linesOf(std::string_view file) {
    std::vector<Line> lines;
    while (!file.empty()) {
        const auto end = std::min(file.find('\n'), file.size());
        std::string_view line = file.substr(0, end);
        file.remove_prefix(std::min(end + 1, file.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty()) continue;
        if (lines.empty() || lines.back().text != line) lines.push_back({line, 0, StrictHistoryLine(line)});
        ++lines.back().times;
    }
    return lines;
}

/// What the decoder, which has seen other lines, makes of this one.
template <class Kind> std::optional<typename Kind::Record> decoded(HistoryLineDecoder& decoder, const Line& line) {
    const auto* found = Kind::decode(decoder, placed(line.text));
    const auto record = found == nullptr ? std::nullopt : std::optional(*found);
    const std::string lengthened = std::string(line.text) + std::string(blanksOfALongLine, ' ');
    const auto* inALongLine = Kind::decode(decoder, placed(lengthened));
    require((inALongLine != nullptr) == record.has_value() && (!record || *inALongLine == *record),
        "blanks behind a line change no record");

    const auto strictly = Kind::strict(line.opinion);
    if (record && !line.opinion.isRefusedForItsOwnReasons())
        require(strictly == record, "a strict reader finds the same record");
    if (strictly && !line.opinion.holdsAHugeNumber())
        require(record.has_value(), "no line is dropped that a strict reader takes");
    if (record) {
        const auto* again = Kind::decode(decoder, placed(historyLine(*record)));
        require(again != nullptr && *again == *record, "a record is written and read again");
    }
    return record;
}

template <class Kind> void judge(const std::string& file, const std::vector<Line>& lines) {
    typename Kind::Projection expected;
    HistoryLineDecoder decoder;
    for (const Line& line : lines)
        if (const auto record = decoded<Kind>(decoder, line))
            for (std::size_t count = 0; count < line.times; ++count)
                expected.append(*record);
    require(
        foldedInPieces<Kind>(file) == expected, "folding a file in pieces equals appending its records one by one");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size > largestInput) return 0;
    const std::string file = fileOf(inputText(bytes, size));
    std::string whole = file;
    std::erase(whole, readBoundary);
    const std::vector<Line> lines = linesOf(whole);
    judge<Websites>(file, lines);
    judge<Services>(file, lines);
    return 0;
}
