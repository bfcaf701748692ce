#pragma once

#include "state/HistoryAppend.h"
#include "state/HistoryPath.h"

#include <filesystem>
#include <string>

namespace kestrin {

/// Adds a line to a target's history file, creating file and directories, and returns the file's revisions.
/// The former bytes stay as they are, whatever fails: at most the new line is torn, and the next append seals it
/// with a line feed. Not synced: the latest lines may be lost with the machine. Throws `StateWriteError` for a line
/// that is too long, for anything but a regular file, and rather than begin a history in a directory without
/// "sites.json", which the next start would refuse; `StatePathError` and `POSIXError` as `historyFilePath` does.
HistoryAppend appendHistoryLine(
    const std::filesystem::path& root, HistoryKind kind, const std::string& id, std::string line);

} // namespace kestrin
