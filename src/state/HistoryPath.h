#pragma once

#include <filesystem>
#include <string>

namespace kestrin {

enum class HistoryKind { Website, Provider };

/// The path of a target's history file, "data/{id}.jsonl" or "data/providers/{id}.jsonl" below the root, which may
/// not exist yet. Throws `StatePathError` for an unsafe identifier and for a symbolic link anywhere from the root
/// down, `POSIXError` when the system cannot tell. What was found holds for that moment only.
[[nodiscard]] std::filesystem::path historyFilePath(
    const std::filesystem::path& root, HistoryKind kind, const std::string& id);

} // namespace kestrin
