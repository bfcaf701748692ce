#pragma once

#include "state/FileDescriptor.h"

#include <filesystem>

namespace kestrin {

/// A new file that is removed again unless it has been renamed to its final name or kept under the one it has.
class TemporaryFile {
public:
    /// Creates the file exclusively; throws `POSIXError`. `mode` is lessened by the umask.
    TemporaryFile(std::filesystem::path path, mode_t mode);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] int descriptor() const { return file_.get(); }

    /// Ends the writing of bytes that are not synced; throws `POSIXError` when they could not be written.
    void close() { file_.close(); }
    void keep() { removeOnExit_ = false; }
    /// Replaces what bears that name.
    void renameTo(const std::filesystem::path& destination);
    /// Throws `POSIXError` with `EEXIST` when the name is taken.
    void renameToUnused(const std::filesystem::path& destination);

private:
    std::filesystem::path path_;
    FileDescriptor file_;
    bool removeOnExit_ = true;
};

} // namespace kestrin
