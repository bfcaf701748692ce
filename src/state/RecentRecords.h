#pragma once

#include <cstddef>
#include <deque>
#include <utility>

namespace kestrin {

/// Appends to a list that keeps its last `maximum` records. A full list hands the memory of its oldest record to
/// the new one: a history of millions of lines is folded without allocating for each.
template <class Record> void appendRecent(std::deque<Record>& records, const Record& record, std::size_t maximum) {
    if (records.size() < maximum) {
        records.push_back(record);
        return;
    }
    Record reused = std::move(records.front());
    records.pop_front();
    reused = record;
    records.push_back(std::move(reused));
}

} // namespace kestrin
