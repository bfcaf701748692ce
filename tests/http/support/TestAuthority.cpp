#include "http/support/TestAuthority.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <fstream>
#include <stdexcept>

namespace kestrin::test {

namespace {

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

std::shared_ptr<EVP_PKEY> newKey() {
    std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    require(key != nullptr, "no key");
    return key;
}

void extend(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
    require(extension != nullptr, "no extension");
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

std::shared_ptr<X509> blank(const std::string& name, const CertificateRequest& request, EVP_PKEY* key) {
    static std::atomic<long> serial{1};
    std::shared_ptr<X509> certificate(X509_new(), X509_free);
    require(certificate != nullptr, "no certificate");
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial++);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), request.notBefore.count());
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), request.notAfter.count());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
        reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    X509_set_pubkey(certificate.get(), key);
    return certificate;
}

Identity signedBy(const Identity* issuer, const CertificateRequest& request) {
    auto key = newKey();
    auto certificate = blank("server", request, key.get());
    X509* signer = issuer ? issuer->certificate.get() : certificate.get();
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(signer));
    extend(certificate.get(), signer, NID_subject_alt_name, request.names);
    require(X509_sign(certificate.get(), issuer ? issuer->key.get() : key.get(), EVP_sha256()) > 0, "not signed");
    return {certificate, key};
}

} // namespace

TestAuthority::TestAuthority() {
    static std::atomic<int> count{0};
    auto key = newKey();
    auto root = blank("Authority " + std::to_string(++count), {}, key.get());
    X509_set_issuer_name(root.get(), X509_get_subject_name(root.get()));
    extend(root.get(), root.get(), NID_basic_constraints, "critical,CA:TRUE");
    extend(root.get(), root.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    require(X509_sign(root.get(), key.get(), EVP_sha256()) > 0, "not signed");
    root_ = {root, key};
}

Identity TestAuthority::issue(const CertificateRequest& request) const {
    return signedBy(&root_, request);
}

Identity TestAuthority::selfSigned(const CertificateRequest& request) {
    return signedBy(nullptr, request);
}

std::string TestAuthority::pem() const {
    const std::shared_ptr<BIO> memory(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_X509(memory.get(), root_.certificate.get());
    char* text = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &text);
    return std::string(text, static_cast<std::size_t>(size));
}

BundleFile::BundleFile(const std::string& pem) {
    std::string name = (std::filesystem::temp_directory_path() / "kestrin-trust-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "no directory");
    directory_ = name;
    path_ = directory_ / "bundle.crt";
    std::ofstream(path_) << pem;
}

BundleFile::~BundleFile() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

void BundleFile::replace(const std::string& pem) const {
    const auto fresh = directory_ / "fresh.crt";
    std::ofstream(fresh) << pem;
    std::filesystem::rename(fresh, path_);
}

} // namespace kestrin::test
