#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string_view>
#include <vector>

namespace kestrin {

// Copies of former state files stand in the directory "backups" below the root. They are named by what they copy
// and when, for instance "sites-2026-01-31T09-05-00Z.json", written once and never pruned.

inline constexpr std::string_view backupPathIsNoDirectory = "Kestrin's backup path is not a regular directory.";

[[nodiscard]] std::filesystem::path backupDirectoryPath(const std::filesystem::path& root);

/// Writes a backup into that directory under a name that nothing there has yet, with a counter from 2 where the
/// moment is taken. Whole or absent at any moment, and on the disk when the call returns. Throws `POSIXError`, or
/// `AtomicStateFileError` when the system takes no bytes.
[[nodiscard]] std::filesystem::path createBackup(std::string_view content, const std::filesystem::path& directory,
    std::string_view prefix, std::chrono::sys_seconds now, mode_t mode);

/// Everything with the extension "json" in the backup directory, of whatever kind; nothing when there is no such
/// directory. Throws `AtomicStateFileError` when something else is in its place, `POSIXError` when it cannot be
/// listed.
[[nodiscard]] std::vector<std::filesystem::path> backupEntries(const std::filesystem::path& root);

} // namespace kestrin
