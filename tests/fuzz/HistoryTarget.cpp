#include "fuzz/FuzzTarget.h"
#include "fuzz/GuardedBytes.h"
#include "fuzz/StrictHistoryLine.h"
#include "state/HistoryAppending.h"
#include "state/HistoryLineDecoder.h"
#include "state/HistoryLineSplitter.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

// The input is the content of a history file, of a website and of a service at once. The byte 0xFF, which no line
// holds, marks where one read of the file ends and the next begins: wherever that is, the same records come out,
// and they are what a strict reader finds in the same lines.

using namespace kestrin;

namespace {

constexpr char readBoundary = '\xFF';
constexpr std::size_t largestInput = 1 << 20;

template <class Record> using Decode = const Record* (HistoryLineDecoder::*)(std::string_view);

/// The records that a reader of a whole file gets, through one decoder.
template <class Record> class Records : public HistoryLineSink {
public:
    explicit Records(Decode<Record> decode) : decode_(decode) {}
    void take(std::string_view line) override {
        if (const Record* record = (decoder_.*decode_)(line)) found.push_back(*record);
    }

    std::vector<Record> found;

private:
    Decode<Record> decode_;
    HistoryLineDecoder decoder_;
};

/// Kept between inputs: mapping memory anew takes longer than most inputs do.
GuardedBytes& guardedBytes() {
    static GuardedBytes bytes(largestInput + historyLinePadding);
    return bytes;
}

void readInPieces(std::string_view file, HistoryLineSink& sink) {
    HistoryLineSplitter splitter(sink);
    while (!file.empty()) {
        const auto end = std::min(file.find(readBoundary), file.size());
        splitter.take(guardedBytes().place(file.substr(0, end), historyLinePadding));
        file.remove_prefix(std::min(end + 1, file.size()));
    }
    splitter.finish();
}

/// The lines by a rule of one sentence: whatever line feeds separate, without a carriage return at the end.
std::vector<std::string_view> linesOf(std::string_view file) {
    std::vector<std::string_view> lines;
    while (!file.empty()) {
        const auto end = std::min(file.find('\n'), file.size());
        std::string_view line = file.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!line.empty()) lines.push_back(line);
        file.remove_prefix(std::min(end + 1, file.size()));
    }
    return lines;
}

/// What a line gives to a decoder that has seen no other line.
template <class Record> std::optional<Record> decodedAlone(Decode<Record> decode, std::string_view line) {
    HistoryLineDecoder decoder;
    const Record* record = (decoder.*decode)(guardedBytes().place(line, historyLinePadding));
    return record == nullptr ? std::nullopt : std::optional(*record);
}

template <class Record>
void judge(std::string_view file, Decode<Record> decode, StrictHistoryLine<Record> (*strict)(std::string_view)) {
    std::string whole(file);
    std::erase(whole, readBoundary);
    std::vector<Record> expected;
    for (const std::string_view line : linesOf(whole)) {
        const auto record = decodedAlone(decode, line);
        if (record) expected.push_back(*record);

        const auto opinion = strict(line);
        if (record && !opinion.refusedForItsOwnReasons)
            require(opinion.record == record, "a strict reader finds the same record");
        if (opinion.record && !opinion.holdsAHugeNumber)
            require(record.has_value(), "no line is dropped that a strict reader takes");
        if (record)
            require(decodedAlone(decode, historyLine(*record)) == record, "a record is written and read again");
    }
    Records<Record> records(decode);
    readInPieces(file, records);
    require(records.found == expected, "the boundaries of reads and the lines before change no record");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size > largestInput) return 0;
    const std::string_view file = inputText(bytes, size);
    judge(file, &HistoryLineDecoder::decodeCheck, strictCheck);
    judge(file, &HistoryLineDecoder::decodeProviderCheck, strictProviderCheck);
    return 0;
}
