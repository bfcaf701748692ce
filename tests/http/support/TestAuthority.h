#pragma once

#include <openssl/types.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace kestrin::test {

/// A certificate with its key, ready for a server.
struct Identity {
    std::shared_ptr<X509> certificate;
    std::shared_ptr<EVP_PKEY> key;
};

struct CertificateRequest {
    std::string names = "DNS:site.test";    ///< subject alternative names as OpenSSL writes them
    std::chrono::seconds notBefore{-86400}; ///< from now
    std::chrono::seconds notAfter{86400};
};

/// A certificate authority that lives for one test, with keys made on the spot.
class TestAuthority {
public:
    TestAuthority();

    [[nodiscard]] Identity issue(const CertificateRequest& request = {}) const;
    [[nodiscard]] static Identity selfSigned(const CertificateRequest& request = {});
    [[nodiscard]] std::string pem() const;

private:
    Identity root_;
};

/// A trust bundle in a directory of its own, both gone with it.
class BundleFile {
public:
    explicit BundleFile(const std::string& pem);
    ~BundleFile();
    BundleFile(const BundleFile&) = delete;
    BundleFile& operator=(const BundleFile&) = delete;

    /// Puts a new file in the old one's place, as a distribution's update does.
    void replace(const std::string& pem) const;
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path directory_;
    std::filesystem::path path_;
};

} // namespace kestrin::test
