#pragma once

#include <simdjson.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// A known key of a history line, and what was found under it: of two equal keys the last. Its type is judged after
/// the whole line was seen.
struct HistoryLineField {
    std::string_view key;
    std::optional<simdjson::dom::element> value = {}; ///< in an ordinary line
    std::string_view text = {};                       ///< in a long line, not parsed yet
};

/// Parses lines strictly and finds their fields. The parser behind it takes many times the memory of what it
/// parses, so a long line is walked through and its values are parsed when they are asked for, one at a time.
/// `historyLinePadding` bytes behind a line must be readable.
class HistoryLineParser {
public:
    using Value = std::optional<simdjson::dom::element>;

    /// Whether the line is a JSON object; fills in the fields it has. The line must stay as long as they are used.
    bool find(std::string_view line, std::span<HistoryLineField> fields);
    /// The value of a field, which lives until the next call; no value for a field that is not there.
    [[nodiscard]] Value valueOf(const HistoryLineField& field);
    /// The text of a string, which lives until the next call; no value for anything else.
    [[nodiscard]] std::optional<std::string_view> textOf(const HistoryLineField& field);
    /// Whether the field is an array of strings. Memory of the target is used again.
    bool readStrings(const HistoryLineField& field, std::vector<std::string>& target);
    /// Gives back what a long value took.
    void release() { large_.reset(); }

private:
    Value parse(std::string_view text);
    std::optional<std::string_view> textIn(std::string_view quoted);
    bool isKey(std::string_view quoted, std::string_view key);
    bool readLongArray(std::string_view array, std::vector<std::string>& target);

    simdjson::dom::parser ordinary_;
    std::optional<simdjson::dom::parser> large_; ///< only as long as its value is used
};

} // namespace kestrin
