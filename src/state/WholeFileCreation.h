#pragma once

#include "state/FileMode.h"

#include <filesystem>
#include <string_view>

namespace kestrin {

enum class Durability {
    Written, ///< the system's buffers suffice
    Synced,  ///< the bytes are on disk before the name is there, and the name when the call returns
};

/// Creates a file that does not exist yet with its whole content: a kill at any moment leaves either nothing or the
/// file, and nothing beside it. Throws `POSIXError`, with `EEXIST` when the name is taken. File systems that cannot
/// hold a file without a name get a temporary one in `temporaryDirectory`, which must be on the same file system
/// and which alone a kill may then litter.
void createWholeFile(std::string_view data, const std::filesystem::path& destination,
    const std::filesystem::path& temporaryDirectory, Durability durability, mode_t mode = defaultFileMode);

/// The way for file systems that cannot hold a file without a name.
void createWholeFileUnderTemporaryName(std::string_view data, const std::filesystem::path& destination,
    const std::filesystem::path& temporaryDirectory, Durability durability, mode_t mode = defaultFileMode);

} // namespace kestrin
