#pragma once

#include <cstdint>

namespace kestrin {

/// The cheap fingerprint of a file by which a foreign change is noticed. All five are zero for a missing file.
struct HistoryFileRevision {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t byteCount = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;

    bool operator==(const HistoryFileRevision&) const = default;
};

} // namespace kestrin
