#pragma once

#include <openssl/types.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace kestrin {

/// The authorities whose certificates are believed, parsed once and shared by all connections, since parsing them
/// costs far more than a handshake. The bundle is read again when its file changes; while no bundle can be read,
/// the last one read stays in force, and before there was one nobody is trusted. Any thread.
class TrustStore {
public:
    /// The first bundle that can be read counts.
    explicit TrustStore(std::vector<std::filesystem::path> bundles = systemBundles());

    /// Never null. Stays valid while it is held, also past a reload.
    [[nodiscard]] std::shared_ptr<X509_STORE> current();

    /// Where the distribution keeps its bundle, and where OpenSSL was built to look for one.
    [[nodiscard]] static std::vector<std::filesystem::path> systemBundles();

private:
    /// Tells one version of a file from the next, whether it was written in place or replaced.
    struct Stamp {
        std::filesystem::path path;
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t modifiedSeconds = 0;
        std::int64_t modifiedNanoseconds = 0;

        bool operator==(const Stamp&) const = default;
    };

    [[nodiscard]] static std::optional<Stamp> stampOf(const std::filesystem::path& path);

    std::vector<std::filesystem::path> bundles_;
    std::mutex mutex_;
    std::shared_ptr<X509_STORE> store_;
    std::optional<Stamp> loaded_;
};

} // namespace kestrin
