#include "state/AtomicStateFile.h"
#include "state/FileDescriptor.h"
#include "state/FileMode.h"
#include "state/StandardizedPath.h"
#include "state/TemporaryFile.h"
#include "state/WriteAll.h"
#include "json/JSONWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace kestrin {

namespace {

void requireReplaceable(StateFileKind kind, const ReplaceFileRules& rules) {
    if (kind != StateFileKind::missing && kind != StateFileKind::regularFile)
        throw AtomicStateFileError(std::string(rules.unsafePathMessage));
}

void requireUnchanged(StateFileKind before, StateFileKind now, const ReplaceFileRules& rules) {
    if (before != now) throw AtomicStateFileError(std::string(rules.changedMessage));
}

} // namespace

void AtomicStateFile::writeAllAndSync(std::string_view data, int descriptor, std::string_view message) {
    writeAll(data, descriptor, message);
    if (::fsync(descriptor) != 0) throwPOSIXError();
}

void AtomicStateFile::syncDirectory(const std::filesystem::path& url) {
    const FileDescriptor directory = FileDescriptor::open(url, O_RDONLY | O_DIRECTORY);
    // Some file systems keep no names of their own that could be flushed, and say so.
    if (::fsync(directory.get()) != 0 && errno != EINVAL) throwPOSIXError();
}

void AtomicStateFile::writeNewFile(
    std::string_view data, const std::filesystem::path& url, std::string_view message) {
    TemporaryFile file(url, ownerOnlyFileMode);
    writeAllAndSync(data, file.descriptor(), message);
    file.keep();
}

void AtomicStateFile::replaceFile(const JSONValue& value, const std::filesystem::path& destination,
    const std::filesystem::path& root, const ReplaceFileRules& rules, std::optional<StateFileKind> rememberedKind,
    const std::function<std::string()>& makeUUID) {
    const std::string text = writePretty(value);
    if (static_cast<std::int64_t>(text.size()) > rules.limit)
        throw AtomicStateFileError(std::string(rules.oversizeMessage));

    const std::filesystem::path target = standardizedPath(destination);
    const std::filesystem::path directory = standardizedPath(root);
    if (target.parent_path() != directory || fileKind(directory) != StateFileKind::directory)
        throw AtomicStateFileError(std::string(rules.unsafePathMessage));
    const StateFileKind kind = fileKind(target);
    requireReplaceable(kind, rules);
    requireUnchanged(rememberedKind.value_or(kind), kind, rules);

    TemporaryFile temporary(directory / (std::string(rules.prefix) + makeUUID() + ".tmp"), ownerOnlyFileMode);
    writeAllAndSync(text, temporary.descriptor(), rules.unsafePathMessage);
    requireUnchanged(kind, fileKind(target), rules);
    temporary.renameTo(target);
    syncDirectory(directory);
}

} // namespace kestrin
