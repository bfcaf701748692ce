#pragma once

#include "state/HistoryScanner.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace kestrin {

/// Cuts the chunks of a file into lines. A line that lies within one chunk is handed on where it lies; only a line
/// that spans chunks is gathered in a buffer, and one that grows too long is dropped up to its line feed.
class HistoryLineSplitter {
public:
    explicit HistoryLineSplitter(HistoryLineSink& sink) : sink_(sink) {}

    /// `historyLinePadding` bytes behind the chunk must be readable.
    void take(std::string_view chunk);
    /// The file has ended: a last line without a line feed counts like any other.
    void finish();

    /// The most bytes that were gathered for one line, about.
    [[nodiscard]] std::size_t longestGatheredBytes() const { return gathered_.size(); }

private:
    void gather(std::string_view segment);
    void endGatheredLine();
    void handOn(std::string_view line);

    HistoryLineSink& sink_;
    std::vector<char> gathered_; ///< with room for the padding
    std::size_t gatheredSize_ = 0;
    bool oversized_ = false;
};

} // namespace kestrin
