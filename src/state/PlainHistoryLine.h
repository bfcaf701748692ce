#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrin {

/// A line of a history file that stands exactly as Kestrin writes it: every key once and in its order, no blanks,
/// whole numbers from 0 on with at most 18 digits, and strings of ASCII without escapes. That it decodes, and to
/// what, is plain from this form. Other lines may well decode; they are the parser's to judge.
struct PlainHistoryLine {
    static constexpr std::size_t maximumBytes = 4096;
    /// Where the time stamp begins in every such line.
    static constexpr std::size_t timestampOffset = 14;

    std::string_view line;      ///< without the line feed
    std::string_view timestamp; ///< without the quotes
    std::string_view elapsedMS; ///< the digits; empty when the line has none
    bool up = true;             ///< of a website's check; true for a service's
};

/// Reads the first line of a text; no value when it is not plain or its line feed is not there. The
/// `historyLinePadding` bytes behind the text must be readable. The result refers to the text.
[[nodiscard]] std::optional<PlainHistoryLine> readPlainCheck(std::string_view text);
[[nodiscard]] std::optional<PlainHistoryLine> readPlainProviderCheck(std::string_view text);

} // namespace kestrin
