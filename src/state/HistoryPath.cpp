#include "state/HistoryPath.h"

#include "state/SafeIdentifier.h"
#include "state/StandardizedPath.h"
#include "state/StateErrors.h"

#include <sys/stat.h>

#include <cerrno>
#include <vector>

namespace kestrin {

namespace {

void refuseLink(const std::filesystem::path& path) {
    struct stat status{};
    if (::lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT) return;
        throwPOSIXError();
    }
    if (S_ISLNK(status.st_mode)) throw StatePathError("Symbolic links are not allowed in Kestrin state paths.");
}

} // namespace

std::filesystem::path historyFilePath(const std::filesystem::path& root, HistoryKind kind, const std::string& id) {
    if (!isSafeIdentifier(id)) throw StatePathError("Unsafe history identifier was refused.");
    const std::filesystem::path standardizedRoot = standardizedPath(root);
    std::vector<std::filesystem::path> inspected = {standardizedRoot, standardizedPath(standardizedRoot / "data")};
    if (kind == HistoryKind::Provider) inspected.push_back(standardizedPath(inspected.back() / "providers"));
    inspected.push_back(standardizedPath(inspected.back() / (id + ".jsonl")));

    const std::string& file = inspected.back().native();
    if (!file.starts_with((standardizedRoot / "").native()))
        throw StatePathError("History path escaped Kestrin's state directory.");
    for (const std::filesystem::path& path : inspected)
        refuseLink(path);
    return inspected.back();
}

} // namespace kestrin
