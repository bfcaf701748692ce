#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>

struct stat;

namespace kestrin {

/// Owns one open file and closes it. Every way of opening is without following a link at the end of the path,
/// closed on exec, and never waits, since opening a FIFO for reading would wait for its writer.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.descriptor_) { other.descriptor_ = -1; }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor();

    /// Throws `POSIXError` when the file cannot be opened. `mode` counts for files that are created.
    [[nodiscard]] static FileDescriptor open(const std::filesystem::path& path, int flags, mode_t mode = 0);
    /// No value for a path that does not exist.
    [[nodiscard]] static std::optional<FileDescriptor> openExisting(const std::filesystem::path& path, int flags);

    [[nodiscard]] int get() const { return descriptor_; }
    /// For bytes that nobody syncs: the last chance of some network file systems to say that they could not be
    /// written. Throws `POSIXError`; the descriptor is gone in any case. What was synced needs no such question.
    void close();
    /// What `fstat` says; throws `POSIXError`.
    [[nodiscard]] struct stat status() const;

private:
    int descriptor_;
};

} // namespace kestrin
