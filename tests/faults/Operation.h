#pragma once

#include "faults/Tree.h"

#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// What an operation promises about the one file that it is about.
enum class Effect {
    Replaces, ///< old or new and whole at any moment, new and on disk after success
    Creates,  ///< whole after success and gone after a failure; a kill may leave a part of it
    Appends,  ///< the former bytes stay, behind them at most a part of the new line; nothing is promised on disk
    Begins,   ///< whole or absent at any moment; nothing is promised on disk
    Reads,    ///< nothing changes
};

/// One thing that Kestrin does to its state directory, with all that must be known to judge what it left behind.
/// Paths are relative to a base directory, in which `root` is the state directory.
struct Operation {
    std::string_view name;
    Effect effect = Effect::Replaces;
    Tree before;
    std::string file;
    std::string after; ///< the file's content when all went well
    void (*perform)(const std::filesystem::path& root) = nullptr;
    std::string root = "share/Kestrin";
    bool makesBackup = false;

    /// The file's content before, if there was a file.
    [[nodiscard]] std::optional<std::string> former() const;
};

/// For a failure's text.
void PrintTo(const Operation& operation, std::ostream* stream);

/// Every operation that the suite looks at.
[[nodiscard]] const std::vector<Operation>& operations();
[[nodiscard]] const Operation& operationNamed(std::string_view name);

} // namespace kestrin
