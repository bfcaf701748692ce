#include "http/ProcessEnvironment.h"

#include "http/support/EnvironmentVariable.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace kestrin {
namespace {

TEST(CleaningTheEnvironment, dropsWhatWouldLogKeysOrChooseWhomToTrust) {
    const test::EnvironmentVariable keyLog("SSLKEYLOGFILE", "/tmp/keys");
    const test::EnvironmentVariable file("SSL_CERT_FILE", "/tmp/cert");
    const test::EnvironmentVariable directory("SSL_CERT_DIR", "/tmp");
    const test::EnvironmentVariable configuration("OPENSSL_CONF", "/tmp/conf");
    const test::EnvironmentVariable other("KESTRIN_OTHER", "kept");
    dropTLSVariables();
    for (const char* name : {"SSLKEYLOGFILE", "SSL_CERT_FILE", "SSL_CERT_DIR", "OPENSSL_CONF"}) {
        EXPECT_EQ(std::getenv(name), nullptr) << name;
    }
    EXPECT_STREQ(std::getenv("KESTRIN_OTHER"), "kept");
}

} // namespace
} // namespace kestrin
