#include "state/WholeFileCreation.h"

#include "state/AtomicStateFile.h"
#include "state/FileDescriptor.h"
#include "state/TemporaryFile.h"
#include "state/WriteAll.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace kestrin {

namespace {

void write(std::string_view data, int descriptor, Durability durability) {
    if (durability == Durability::Synced)
        AtomicStateFile::writeAllAndSync(data, descriptor, diskTookNoData);
    else
        writeAll(data, descriptor, diskTookNoData);
}

/// Bytes that are not synced may be refused as late as this.
template <class File> void finish(File& file, Durability durability) {
    if (durability == Durability::Written) file.close();
}

void syncName(const std::filesystem::path& destination, Durability durability) {
    if (durability == Durability::Synced) AtomicStateFile::syncDirectory(destination.parent_path());
}

/// Whether a nameless file is refused because the file system does not know such files.
bool namelessIsUnknown(int code) {
    return code == EOPNOTSUPP || code == EISDIR || code == EINVAL;
}

/// Gives a nameless file its name. False where "/proc", through which that is done, is not there.
bool giveName(const FileDescriptor& file, const std::filesystem::path& destination) {
    const std::string nameless = "/proc/self/fd/" + std::to_string(file.get());
    if (::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, destination.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
    if (errno != ENOENT) throwPOSIXError();
    return false;
}

/// False where the file system or the machine cannot do it; nothing is left then.
bool createNameless(
    std::string_view data, const std::filesystem::path& destination, Durability durability, mode_t mode) {
    try {
        FileDescriptor file = FileDescriptor::open(destination.parent_path(), O_WRONLY | O_TMPFILE, mode);
        write(data, file.get(), durability);
        const bool isNamed = giveName(file, destination);
        finish(file, durability);
        return isNamed;
    } catch (const POSIXError& error) {
        if (namelessIsUnknown(error.code)) return false;
        throw;
    }
}

} // namespace

void createWholeFile(std::string_view data, const std::filesystem::path& destination,
    const std::filesystem::path& temporaryDirectory, Durability durability, mode_t mode) {
    if (!createNameless(data, destination, durability, mode))
        return createWholeFileUnderTemporaryName(data, destination, temporaryDirectory, durability, mode);
    syncName(destination, durability);
}

void createWholeFileUnderTemporaryName(std::string_view data, const std::filesystem::path& destination,
    const std::filesystem::path& temporaryDirectory, Durability durability, mode_t mode) {
    TemporaryFile temporary(temporaryDirectory / (".Kestrin-" + freshUUID() + ".tmp"), mode);
    write(data, temporary.descriptor(), durability);
    finish(temporary, durability);
    temporary.renameToUnused(destination);
    syncName(destination, durability);
}

} // namespace kestrin
