#pragma once

#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"

#include <memory>
#include <string_view>

namespace kestrin {

class HistoryLineParser;

/// Decodes lines of history files, with any order of keys and unknown keys ignored; of a key that stands twice the
/// last one counts. A line that is no JSON, lacks a required field, or has a value of another type gives nothing;
/// null is accepted for optional fields alone. The record is valid until the next call, which reuses its memory,
/// and may be moved away. A long line takes little more memory than its record. `historyLinePadding` bytes behind a
/// line must be readable. One thread at a time.
class HistoryLineDecoder {
public:
    HistoryLineDecoder();
    ~HistoryLineDecoder();
    HistoryLineDecoder(const HistoryLineDecoder&) = delete;
    HistoryLineDecoder& operator=(const HistoryLineDecoder&) = delete;

    /// Null for a line that is to be dropped.
    [[nodiscard]] CheckRecord* decodeCheck(std::string_view line);
    [[nodiscard]] ProviderCheckRecord* decodeProviderCheck(std::string_view line);

private:
    std::unique_ptr<HistoryLineParser> parser_;
    CheckRecord check_;
    ProviderCheckRecord providerCheck_;
};

} // namespace kestrin
