#include "http/TrustStore.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>
#include <openssl/x509_vfy.h>

#include <fstream>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

using test::BundleFile;
using test::sentenceOf;
using test::TestAuthority;
using test::TLSServer;
using test::TrustedSite;

int authoritiesIn(X509_STORE* store) {
    return sk_X509_OBJECT_num(X509_STORE_get0_objects(store));
}

TEST(KeepingTrust, loadsABundleOnceAndSharesIt) {
    const BundleFile bundle(TestAuthority().pem() + TestAuthority().pem());
    TrustStore trust({bundle.path()});
    const auto first = trust.current();
    EXPECT_EQ(authoritiesIn(first.get()), 2);
    EXPECT_EQ(trust.current(), first);
}

TEST(KeepingTrust, reloadsABundleThatWasReplaced) {
    const BundleFile bundle(TestAuthority().pem());
    TrustStore trust({bundle.path()});
    const auto first = trust.current();
    bundle.replace(TestAuthority().pem() + TestAuthority().pem());
    const auto second = trust.current();
    EXPECT_NE(first, second);
    EXPECT_EQ(authoritiesIn(first.get()), 1);
    EXPECT_EQ(authoritiesIn(second.get()), 2);
}

TEST(KeepingTrust, keepsTheLastBundleWhileThereIsNoneToRead) {
    const BundleFile bundle(TestAuthority().pem());
    TrustStore trust({bundle.path()});
    const auto first = trust.current();
    std::filesystem::remove(bundle.path());
    EXPECT_EQ(trust.current(), first);
    bundle.replace("half a bundle");
    EXPECT_EQ(trust.current(), first);
    bundle.replace(TestAuthority().pem());
    EXPECT_NE(trust.current(), first);
}

TEST(KeepingTrust, takesAllOfABundleOrNothing) {
    const std::string whole = TestAuthority().pem();
    const BundleFile bundle(whole + whole.substr(0, whole.size() / 2) + "\n-----END CERTIFICATE-----\n");
    TrustStore trust({bundle.path()});
    EXPECT_EQ(authoritiesIn(trust.current().get()), 0);
}

TEST(KeepingTrust, fallsBackToTheNextBundle) {
    const BundleFile bundle(TestAuthority().pem());
    TrustStore trust({bundle.path().string() + ".absent", bundle.path().parent_path(), bundle.path()});
    EXPECT_EQ(authoritiesIn(trust.current().get()), 1);
}

TEST(KeepingTrust, trustsNobodyWithoutAnyBundle) {
    TrustStore trust({"/nonexistent/bundle.crt"});
    ASSERT_NE(trust.current(), nullptr);
    EXPECT_EQ(authoritiesIn(trust.current().get()), 0);
}

TEST(KeepingTrust, serversAreJudgedByTheNewBundleAfterAReplacement) {
    TrustedSite site;
    const TestAuthority next;
    const auto reply = test::answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    const TLSServer oldServer(site.authority.issue(), reply);
    const TLSServer newServer(next.issue(), reply);
    EXPECT_EQ(sentenceOf(site.perform(site.request(oldServer.port()))), "response with status 200");
    EXPECT_EQ(sentenceOf(site.perform(site.request(newServer.port()))), "The server certificate is not trusted.");
    site.bundle.replace(next.pem());
    EXPECT_EQ(sentenceOf(site.perform(site.request(newServer.port()))), "response with status 200");
    EXPECT_EQ(sentenceOf(site.perform(site.request(oldServer.port()))), "The server certificate is not trusted.");
}

TEST(KeepingTrust, isSharedByThreadsWhileTheBundleChanges) {
    const BundleFile bundle(TestAuthority().pem());
    TrustStore trust({bundle.path()});
    std::vector<std::thread> readers;
    std::atomic<bool> everLess{false};
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                if (authoritiesIn(trust.current().get()) != 1) everLess = true;
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        bundle.replace(TestAuthority().pem());
    }
    for (auto& reader : readers) {
        reader.join();
    }
    EXPECT_FALSE(everLess);
}

} // namespace
} // namespace kestrin
