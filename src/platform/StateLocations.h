#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace kestrin {

/// Where Kestrin keeps what it keeps, as absolute paths. Nothing is created or looked at here.
struct StateLocations {
    std::filesystem::path stateRoot;     ///< "Kestrin" in the user's data directory
    std::filesystem::path legacyRoot;    ///< "Harbor Watch" beside it
    std::filesystem::path configuration; ///< "kestrin" in the user's configuration directory

    /// Follows XDG_DATA_HOME, XDG_CONFIG_HOME and HOME. Without a home directory the answer is one sentence for the
    /// user: guessing a place would hide the data that is already there.
    [[nodiscard]] static std::expected<StateLocations, std::string> find();
};

} // namespace kestrin
