#include "http/TrustStore.h"

#include <openssl/err.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <sys/stat.h>

#include <new>
#include <utility>

namespace kestrin {

namespace {

std::shared_ptr<X509_STORE> emptyStore() {
    X509_STORE* store = X509_STORE_new();
    if (store == nullptr) throw std::bad_alloc();
    std::shared_ptr<X509_STORE> shared(store, X509_STORE_free);
    // An authority that the machine trusts needs no further one above it.
    X509_STORE_set_flags(store, X509_V_FLAG_TRUSTED_FIRST | X509_V_FLAG_PARTIAL_CHAIN);
    return shared;
}

/// All of a bundle or nothing: one that is being written must not shrink the trust to its first half.
std::shared_ptr<X509_STORE> loadStore(const std::filesystem::path& bundle) {
    auto store = emptyStore();
    const bool loaded = X509_STORE_load_file(store.get(), bundle.c_str()) == 1;
    // The queue belongs to the thread, and the next TLS call on it would take these errors for its own.
    ERR_clear_error();
    return loaded ? store : nullptr;
}

} // namespace

TrustStore::TrustStore(std::vector<std::filesystem::path> bundles) : bundles_(std::move(bundles)) {}

std::vector<std::filesystem::path> TrustStore::systemBundles() {
    return {"/etc/ssl/certs/ca-certificates.crt", X509_get_default_cert_file()};
}

std::optional<TrustStore::Stamp> TrustStore::stampOf(const std::filesystem::path& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return Stamp{path, status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::shared_ptr<X509_STORE> TrustStore::current() {
    const std::lock_guard guard(mutex_);
    for (const auto& bundle : bundles_) {
        // Stamped before it is read: a change in between is noticed the next time.
        const auto stamp = stampOf(bundle);
        if (!stamp) continue;
        if (store_ && stamp == loaded_) return store_;
        if (auto store = loadStore(bundle)) {
            store_ = std::move(store);
            loaded_ = stamp;
            return store_;
        }
    }
    if (!store_) store_ = emptyStore();
    return store_;
}

} // namespace kestrin
