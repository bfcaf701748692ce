#pragma once

#include "state/HistoryScanner.h"

#include <cstddef>
#include <mutex>
#include <string_view>
#include <vector>

namespace kestrin {

/// Cuts the chunks of a file into lines. A line that lies within one chunk is handed on where it lies; only a line
/// that spans chunks is gathered in a buffer, and one that grows too long is dropped up to its line feed. A huge
/// line is gathered and handed on while its splitter has the turn, if there is one to take.
class HistoryLineSplitter {
public:
    explicit HistoryLineSplitter(HistoryLineSink& sink, HugeLineTurn* turn = nullptr) : sink_(sink), turn_(turn) {}

    /// `historyLinePadding` bytes behind the chunk must be readable.
    void take(std::string_view chunk);
    /// The file has ended: a last line without a line feed counts like any other.
    void finish();

    [[nodiscard]] bool hadHugeLine() const { return hadHugeLine_; }

private:
    void gather(std::string_view segment);
    void makeRoom(std::size_t bytes);
    void endGatheredLine();
    void endHugeLine();
    void handOn(std::string_view line);

    HistoryLineSink& sink_;
    HugeLineTurn* turn_;
    std::unique_lock<HugeLineTurn> heldTurn_; ///< given back after the memory
    std::vector<char> gathered_;              ///< with room for the padding
    std::size_t gatheredSize_ = 0;
    bool oversized_ = false;
    bool hadHugeLine_ = false;
};

} // namespace kestrin
