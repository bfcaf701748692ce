#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace kestrin {

/// What stands below a directory: relative paths with the content of files. A directory has no content, and a link
/// has its target behind "-> ".
using Tree = std::map<std::string, std::optional<std::string>>;

[[nodiscard]] Tree treeOf(const std::filesystem::path& directory);
/// Makes what the tree says below an empty directory. Trees with links are not made.
void makeTree(const Tree& tree, const std::filesystem::path& directory);
/// For a failure's text.
[[nodiscard]] std::string described(const Tree& tree);

} // namespace kestrin
