#pragma once

#include <cstddef>
#include <deque>
#include <utility>

namespace kestrin {

/// Appends to a list that keeps its last `maximum` records. A full list hands the memory of its oldest record to
/// the new one, unless that comes with memory of its own.
template <class Record, class NewRecord>
void appendRecent(std::deque<Record>& records, NewRecord&& record, std::size_t maximum) {
    if (records.size() < maximum) {
        records.push_back(std::forward<NewRecord>(record));
        return;
    }
    Record reused = std::move(records.front());
    records.pop_front();
    reused = std::forward<NewRecord>(record);
    records.push_back(std::move(reused));
}

} // namespace kestrin
