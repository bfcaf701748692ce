#include "state/StandardizedPath.h"

#include "state/StateErrors.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace kestrin {

namespace {

constexpr mode_t defaultMode = 0777;

/// Whether a directory, or a link to one, is there. Throws when something else is.
bool isDirectory(const std::filesystem::path& path) {
    struct stat status{};
    // The empty path stands above a relative one, for the directory one is in.
    if (::stat(path.empty() ? "." : path.c_str(), &status) != 0) {
        if (errno == ENOENT) return false;
        throwPOSIXError();
    }
    if (!S_ISDIR(status.st_mode)) throw POSIXError(ENOTDIR);
    return true;
}

/// Whether there is nothing to standardise in an absolute path: no empty part, none of dots, no slash at its end.
bool isStandardized(std::string_view path) {
    if (path.size() < 2 || path.front() != '/') return false;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::string_view part = path.substr(0, path.find('/'));
        if (part.empty() || part == "." || part == "..") return false;
        path.remove_prefix(part.size());
    }
    return true;
}

} // namespace

std::filesystem::path standardizedPath(std::filesystem::path path) {
    // Most are, and taking a path apart and putting it together again costs more than a system call.
    if (isStandardized(path.native())) return path;
    std::filesystem::path standardized = path.lexically_normal();
    // A path that ends in a slash has an empty last part.
    if (!standardized.has_filename() && standardized.has_relative_path()) standardized = standardized.parent_path();
    return standardized;
}

// Not the standard library's: that one takes an error of looking at a parent for a parent that is there.
std::vector<std::filesystem::path> createDirectories(const std::filesystem::path& path) {
    std::vector<std::filesystem::path> missing;
    for (std::filesystem::path next = standardizedPath(path); !isDirectory(next); next = next.parent_path())
        missing.push_back(next);
    std::ranges::reverse(missing);
    for (const std::filesystem::path& directory : missing) {
        if (::mkdir(directory.c_str(), defaultMode) == 0) continue;
        const int code = errno;
        if (code != EEXIST || !isDirectory(directory)) throw POSIXError(code); // another program may have made it
    }
    return missing;
}

} // namespace kestrin
