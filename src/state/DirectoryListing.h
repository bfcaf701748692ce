#pragma once

#include <filesystem>
#include <vector>

namespace kestrin {

/// Everything that stands in a directory, in the order of the file system. Throws `POSIXError`.
[[nodiscard]] std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& directory);

} // namespace kestrin
