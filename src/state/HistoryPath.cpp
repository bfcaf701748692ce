#include "state/HistoryPath.h"

#include "state/SafeIdentifier.h"
#include "state/StandardizedPath.h"
#include "state/StateErrors.h"

#include <sys/stat.h>

#include <cerrno>

namespace kestrin {

namespace {

void refuseLink(const std::string& path) {
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
    // Put together as text: every append comes by here, and a path is taken apart each time it is made.
    const std::string standardizedRoot = standardizedPath(root).native();
    const std::string data = standardizedRoot + "/data";
    const std::string directory = kind == HistoryKind::Provider ? data + "/providers" : data;
    std::filesystem::path file = standardizedPath(directory + "/" + id + ".jsonl");
    if (!file.native().starts_with(standardizedRoot + "/"))
        throw StatePathError("History path escaped Kestrin's state directory.");
    refuseLink(standardizedRoot);
    refuseLink(data);
    if (kind == HistoryKind::Provider) refuseLink(directory);
    refuseLink(file.native());
    return file;
}

} // namespace kestrin
