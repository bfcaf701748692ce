#pragma once

#include "model/HistoryFileRevision.h"
#include "state/HistoryPath.h"

#include <cstddef>
#include <filesystem>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace kestrin {

/// The longest line of a history file, without its line feed.
inline constexpr std::size_t maximumHistoryLineBytes = 8'388'608;

/// The readable bytes behind every line that a sink gets; what they hold means nothing.
inline constexpr std::size_t historyLinePadding = 64;

/// Taken for as long as a line is gathered and handed on that needs a buffer of more than a megabyte, as all those
/// do that are longer. Scans that share one have at most one such line in memory, however many of them run.
using HugeLineTurn = std::mutex;

/// Takes the lines of a history file, one by one or several at once.
struct HistoryLineSink {
    virtual ~HistoryLineSink() = default;

    /// Offers the lines that come next before they are taken apart. Whoever knows the first of them with their line
    /// feeds returns how many bytes those have, and has then taken them; the line after them comes by `take`. The
    /// text is gone after the call, the `historyLinePadding` bytes behind it can be read.
    virtual std::size_t takeWholeLines(std::string_view text) {
        static_cast<void>(text);
        return 0;
    }

    /// `line` is neither empty nor too long, has no line feed and no carriage return at its end, and is gone after
    /// the call. `historyLinePadding` bytes behind it can be read, so that a parser can work in place.
    virtual void take(std::string_view line) = 0;
};

/// Hands every line of a target's history file to the sink, in file order, and returns the file's revision; no
/// value and no lines when there is no file. Reads what was there at the start, in chunks: memory is bounded by one
/// chunk and one line. Empty and oversized lines are passed over. Throws `HistoryReadError` when the file changed
/// meanwhile, `CancellationError` when a stop was requested, `StatePathError` and `POSIXError`; lines may have been
/// handed out before any of these. `turn`: shared with scans that run at the same time.
std::optional<HistoryFileRevision> scanHistoryLines(const std::filesystem::path& root, HistoryKind kind,
    const std::string& id, HistoryLineSink& sink, const std::stop_token& stop = {}, HugeLineTurn* turn = nullptr);

} // namespace kestrin
