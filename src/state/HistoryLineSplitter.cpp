#include "state/HistoryLineSplitter.h"

#include <algorithm>

namespace kestrin {

namespace {

/// One byte more than a line may have: it may be the carriage return that does not count.
constexpr std::size_t maximumGathered = maximumHistoryLineBytes + 1;

} // namespace

void HistoryLineSplitter::take(std::string_view chunk) {
    while (!chunk.empty()) {
        const std::size_t end = chunk.find('\n');
        if (end == std::string_view::npos) return gather(chunk);
        const std::string_view line = chunk.substr(0, end);
        if (gatheredSize_ == 0 && !oversized_) {
            handOn(line);
        } else {
            gather(line);
            endGatheredLine();
        }
        chunk.remove_prefix(end + 1);
    }
}

void HistoryLineSplitter::finish() {
    endGatheredLine();
}

void HistoryLineSplitter::gather(std::string_view segment) {
    if (oversized_) return;
    const std::size_t size = gatheredSize_ + segment.size();
    if (size > maximumGathered) {
        oversized_ = true;
        gatheredSize_ = 0;
        return;
    }
    if (gathered_.size() < size + historyLinePadding)
        gathered_.resize(std::max(size + historyLinePadding, 2 * gathered_.size()));
    std::ranges::copy(segment, gathered_.begin() + static_cast<std::ptrdiff_t>(gatheredSize_));
    gatheredSize_ = size;
}

void HistoryLineSplitter::endGatheredLine() {
    if (!oversized_) handOn({gathered_.data(), gatheredSize_});
    oversized_ = false;
    gatheredSize_ = 0;
}

void HistoryLineSplitter::handOn(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.empty() && line.size() <= maximumHistoryLineBytes) sink_.take(line);
}

} // namespace kestrin
