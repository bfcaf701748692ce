#pragma once

#include <filesystem>

namespace kestrin {

/// The path without ".", "..", doubled and trailing slashes, by its letters alone. A trailing slash would make the
/// system follow a link.
[[nodiscard]] std::filesystem::path standardizedPath(const std::filesystem::path& path);

/// Makes a directory of default attributes with its intermediate directories, unless it is there. Throws
/// `POSIXError`. A link to a directory counts as one.
void createDirectories(const std::filesystem::path& path);

} // namespace kestrin
