#include "state/HistoryLineSplitter.h"

#include <algorithm>

namespace kestrin {

namespace {

/// One byte more than a line may have: it may be the carriage return that does not count.
constexpr std::size_t maximumGathered = maximumHistoryLineBytes + 1;
constexpr std::size_t hugeLineBytes = 1 << 20;

} // namespace

void HistoryLineSplitter::take(std::string_view chunk) {
    while (!chunk.empty()) {
        const bool atLine = gatheredSize_ == 0 && !oversized_;
        if (atLine) {
            chunk.remove_prefix(sink_.takeWholeLines(chunk));
            if (chunk.empty()) return;
        }
        const std::size_t end = chunk.find('\n');
        if (end == std::string_view::npos) return gather(chunk);
        if (atLine) {
            handOn(chunk.substr(0, end));
        } else {
            gather(chunk.substr(0, end));
            endGatheredLine();
        }
        chunk.remove_prefix(end + 1);
    }
}

void HistoryLineSplitter::finish() {
    if (!oversized_) handOn({gathered_.data(), gatheredSize_});
}

void HistoryLineSplitter::gather(std::string_view segment) {
    if (oversized_) return;
    const std::size_t size = gatheredSize_ + segment.size();
    if (size > maximumGathered) {
        oversized_ = true;
        gatheredSize_ = 0;
        endHugeLine();
        return;
    }
    makeRoom(size + sizeof '\n' + historyLinePadding);
    std::ranges::copy(segment, gathered_.begin() + static_cast<std::ptrdiff_t>(gatheredSize_));
    gatheredSize_ = size;
}

void HistoryLineSplitter::makeRoom(std::size_t bytes) {
    if (gathered_.size() >= bytes) return;
    constexpr std::size_t mostNeeded = maximumGathered + sizeof '\n' + historyLinePadding;
    const std::size_t room = std::clamp(2 * gathered_.size(), bytes, mostNeeded);
    if (room > hugeLineBytes) {
        hadHugeLine_ = true;
        if (turn_ != nullptr && !heldTurn_.owns_lock()) heldTurn_ = std::unique_lock(*turn_);
    }
    gathered_.resize(room);
}

void HistoryLineSplitter::endHugeLine() {
    if (gathered_.size() <= hugeLineBytes) return;
    gathered_ = {};
    if (heldTurn_.owns_lock()) heldTurn_.unlock();
}

void HistoryLineSplitter::endGatheredLine() {
    if (!oversized_) {
        gathered_[gatheredSize_] = '\n';
        if (sink_.takeWholeLines({gathered_.data(), gatheredSize_ + 1}) == 0)
            handOn({gathered_.data(), gatheredSize_});
    }
    oversized_ = false;
    gatheredSize_ = 0;
    endHugeLine();
}

void HistoryLineSplitter::handOn(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.empty() && line.size() <= maximumHistoryLineBytes) sink_.take(line);
}

} // namespace kestrin
