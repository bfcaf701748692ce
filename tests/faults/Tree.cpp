#include "faults/Tree.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestrin {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t describedBytes = 60;

std::string contentOf(const fs::directory_entry& entry) {
    if (entry.is_symlink()) return "-> " + fs::read_symlink(entry.path()).string();
    std::ifstream stream(entry.path(), std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + entry.path().string());
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string visible(const std::string& content) {
    std::string text;
    for (const char byte : content.substr(0, describedBytes))
        text += byte == '\n' ? "\\n" : byte == '\0' ? "\\0" : std::string(1, byte);
    return text + (content.size() > describedBytes ? "..." : "");
}

} // namespace

Tree treeOf(const fs::path& directory) {
    Tree tree;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        const bool isDirectory = !entry.is_symlink() && entry.is_directory();
        tree[entry.path().lexically_relative(directory).string()] =
            isDirectory ? std::nullopt : std::optional(contentOf(entry));
    }
    return tree;
}

void makeTree(const Tree& tree, const fs::path& directory) {
    for (const auto& [path, content] : tree) {
        fs::create_directories(content ? (directory / path).parent_path() : directory / path);
        if (content) std::ofstream(directory / path, std::ios::binary) << *content;
    }
}

std::string described(const Tree& tree) {
    std::string text;
    for (const auto& [path, content] : tree) {
        text += "\n  " + path;
        if (content) text += " (" + std::to_string(content->size()) + " bytes): " + visible(*content);
    }
    return text.empty() ? "\n  nothing" : text;
}

} // namespace kestrin
