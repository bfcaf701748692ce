#pragma once

#include "state/ReplaceFileRules.h"
#include "state/StateErrors.h"
#include "state/StateFileKind.h"
#include "state/UUID.h"
#include "json/JSONValue.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// The device and inode number of a directory: which physical directory it is.
struct DirectoryIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const DirectoryIdentity&) const = default;
};

enum class IfMissing { Create, Refuse };

/// The one place for the rules of regular files, links, bounded reads and atomic replaces in the state directory.
/// Stateless; any thread; every operation blocks. A path is judged as it is written, no link is ever followed at
/// its end. A failure of the system throws `POSIXError`, a refusal `AtomicStateFileError` with the message given.
struct AtomicStateFile {
    AtomicStateFile() = delete;

    [[nodiscard]] static StateFileKind fileKind(const std::filesystem::path& url);

    /// The bytes of a regular file of at most `limit` bytes, also when it grows while it is read.
    [[nodiscard]] static std::string readBounded(
        const std::filesystem::path& url, std::int64_t limit, std::string_view message);

    /// Leaves a real directory there or throws; intermediate directories are created as well.
    static void ensureDirectory(const std::filesystem::path& url, IfMissing ifMissing, std::string_view message);

    [[nodiscard]] static DirectoryIdentity directoryIdentity(const std::filesystem::path& url);

    /// Writes every byte and syncs, also when there are none.
    static void writeAllAndSync(std::string_view data, int descriptor, std::string_view message);

    /// Flushes a directory's entries to disk.
    static void syncDirectory(const std::filesystem::path& url);

    /// Creates a file of mode 0600 that must not exist yet. A failure leaves no part of it behind; a kill may.
    static void writeNewFile(std::string_view data, const std::filesystem::path& url, std::string_view message);

    /// Replaces `destination`, a child of `root`, by the value in its pretty form; the new file has mode 0600.
    /// Either the old or the new content is there at any moment, and no temporary file stays behind a failure. When
    /// only the last flush of the directory fails, the new content is in place and the error is thrown all the
    /// same. `rememberedKind` is what the caller saw at the destination before; a difference throws the changed
    /// message.
    static void replaceFile(const JSONValue& value, const std::filesystem::path& destination,
        const std::filesystem::path& root, const ReplaceFileRules& rules,
        std::optional<StateFileKind> rememberedKind = std::nullopt,
        const std::function<std::string()>& makeUUID = freshUUID);
};

} // namespace kestrin
