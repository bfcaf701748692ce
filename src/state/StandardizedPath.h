#pragma once

#include <filesystem>
#include <vector>

namespace kestrin {

/// The path without ".", "..", doubled and trailing slashes, by its letters alone. A trailing slash would make the
/// system follow a link.
[[nodiscard]] std::filesystem::path standardizedPath(std::filesystem::path path);

/// Makes a directory of default attributes with its intermediate directories, unless it is there, and returns those
/// that were missing, outermost first. Throws `POSIXError`. A link to a directory counts as one.
std::vector<std::filesystem::path> createDirectories(const std::filesystem::path& path);

} // namespace kestrin
