#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrin {
namespace {

using test::answering;
using test::CertificateRequest;
using test::LoopbackServer;
using test::sentenceOf;
using test::TestAuthority;
using test::TLSConnection;
using test::TLSServer;
using test::TrustedSite;
using namespace std::chrono_literals;

std::string againstCertificate(TrustedSite& site, const test::Identity& identity) {
    const TLSServer server(identity, answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    return sentenceOf(site.perform(site.request(server.port())));
}

std::string againstScript(TrustedSite& site, LoopbackServer::Script script) {
    const LoopbackServer server(std::move(script));
    return sentenceOf(site.perform(site.request(server.port())));
}

/// A loopback port on which nobody listens.
std::uint16_t deadPort() {
    const LoopbackServer server([](int) {});
    return server.port();
}

TEST(JudgingACertificate, saysThatItHasExpired) {
    TrustedSite site;
    EXPECT_EQ(againstCertificate(site, site.authority.issue({.notBefore = -48h, .notAfter = -24h})),
        "The server certificate has expired.");
}

TEST(JudgingACertificate, saysThatItIsNotValidYet) {
    TrustedSite site;
    EXPECT_EQ(againstCertificate(site, site.authority.issue({.notBefore = 24h, .notAfter = 48h})),
        "The server certificate is not valid yet.");
}

TEST(JudgingACertificate, saysThatItIsForAnotherHost) {
    TrustedSite site;
    for (const std::string names : {"DNS:other.test", "DNS:*.site.test", "DNS:www.site.test", "IP:127.0.0.1"}) {
        EXPECT_EQ(againstCertificate(site, site.authority.issue({.names = names})),
            "The server certificate is for another host.")
            << names;
    }
}

TEST(JudgingACertificate, saysThatNobodyTrustedSignedIt) {
    TrustedSite site;
    EXPECT_EQ(againstCertificate(site, TestAuthority::selfSigned()), "The server certificate is not trusted.");
    EXPECT_EQ(againstCertificate(site, TestAuthority().issue()), "The server certificate is not trusted.");
}

TEST(JudgingACertificate, trustsNobodyWithoutABundle) {
    TrustedSite site;
    CurlTransport untrusting({site.bundle.path().string() + ".absent"});
    const TLSServer server(site.authority.issue(), answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_EQ(
        sentenceOf(untrusting.perform(site.request(server.port()), {})), "The server certificate is not trusted.");
}

TEST(JudgingACertificate, sendsNoRequestBeforeItIsAccepted) {
    TrustedSite site;
    std::atomic<int> requests{0};
    {
        const TLSServer server(TestAuthority::selfSigned(), [&requests](TLSConnection& connection) {
            if (!connection.readHead().empty()) ++requests;
        });
        static_cast<void>(site.perform(site.request(server.port())));
    }
    EXPECT_EQ(requests, 0);
}

TEST(FailingToConnect, saysThatTheConnectionWasRefused) {
    TrustedSite site;
    auto request = site.request(deadPort());
    EXPECT_EQ(sentenceOf(site.perform(request)), "The connection was refused.");
    request.addresses = {"127.0.0.2", "127.0.0.3"};
    EXPECT_EQ(sentenceOf(site.perform(request)), "The connection was refused.");
}

TEST(FailingToConnect, saysThatNoSecureConnectionCouldBeMade) {
    TrustedSite site;
    EXPECT_EQ(againstScript(site,
                  [](int descriptor) {
                      static_cast<void>(
                          test::writeAll(descriptor, "HTTP/1.1 200 OK\r\n\r\nthis is no TLS at all\r\n"));
                      test::waitForEnd(descriptor);
                  }),
        "A secure connection could not be made.");
    EXPECT_EQ(againstScript(site, [](int) {}), "A secure connection could not be made.");
}

TEST(FailingToConnect, saysSoToOldVersionsOfTLS) {
    TrustedSite site;
    // A server hello of TLS 1.1: version 3.2, empty session, an old cipher.
    const std::string hello =
        std::string("\x02\x00\x00\x26\x03\x02", 6) + std::string(32, '\1') + std::string("\x00\xc0\x13\x00", 4);
    const std::string record = std::string("\x16\x03\x02\x00", 4) + static_cast<char>(hello.size()) + hello;
    EXPECT_EQ(againstScript(site,
                  [&record](int descriptor) {
                      static_cast<void>(test::writeAll(descriptor, record));
                      test::waitForEnd(descriptor);
                  }),
        "A secure connection could not be made.");
}

TEST(FailingToConnect, saysSoWhenTheServerWantsACertificateOfTheClient) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), answering(""), {.wantsClientCertificate = true});
    EXPECT_EQ(sentenceOf(site.perform(site.request(server.port()))), "A secure connection could not be made.");
}

TEST(LosingAConnection, isToldWhenItEndsBeforeTheResponse) {
    TrustedSite site;
    EXPECT_EQ(
        sentenceOf(site.exchange([](TLSConnection& connection) { static_cast<void>(connection.readHead()); })),
        "The connection was lost.");
}

TEST(LosingAConnection, isToldWhenItIsReset) {
    TrustedSite site;
    EXPECT_EQ(sentenceOf(site.exchange([](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.reset();
    })),
        "The connection was lost.");
    EXPECT_EQ(sentenceOf(site.exchange([](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf");
        connection.reset();
    })),
        "The connection was lost.");
}

TEST(LosingAConnection, isToldWhenTheBodyEndsShort) {
    TrustedSite site;
    EXPECT_EQ(sentenceOf(site.exchange([](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf");
    })),
        "The connection was lost.");
    EXPECT_EQ(sentenceOf(site.exchange([](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhe");
    })),
        "The connection was lost.");
}

TEST(ReadingWhatIsNoHTTP, isToldApartFromABadResponse) {
    TrustedSite site;
    // HTTP/0.9 has no head: the page comes at once.
    EXPECT_EQ(sentenceOf(site.exchange(answering("<html>hello</html>\r\n\r\n"))), "not HTTP");
    EXPECT_EQ(sentenceOf(site.exchange(answering("220 mail.test ESMTP\r\n"))), "not HTTP");
    EXPECT_EQ(sentenceOf(site.exchange([](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("<html>hello</html>");
    })),
        "not HTTP");
}

TEST(ReadingABadResponse, saysThatItIsInvalid) {
    TrustedSite site;
    for (const std::string response : {
             "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\n",
             "HTTP/1.1 200 OK\r\nContent-Length: five\r\n\r\n",
             "HTTP/1.1 200 OK\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nab",
             "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nno length\r\n",
             "HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\nConnection: Upgrade\r\n\r\n",
         }) {
        EXPECT_EQ(sentenceOf(site.exchange(answering(response))), "The server sent an invalid response.")
            << response;
    }
}

TEST(ReadingABadResponse, boundsOneHeaderLine) {
    TrustedSite site;
    EXPECT_EQ(sentenceOf(site.exchange(
                  answering("HTTP/1.1 200 OK\r\nX-Long: " + std::string(150 * 1024, 'x') + "\r\n\r\n"), true)),
        "The server sent an invalid response.");
}

TEST(ReadingABadResponse, boundsTheWholeHead) {
    TrustedSite site;
    auto endless = [](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\n");
        while (connection.write("X-More: " + std::string(1000, 'x') + "\r\n")) {
        }
    };
    EXPECT_EQ(sentenceOf(site.exchange(endless, true)), "The server sent an invalid response.");
    auto interim = [](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        while (connection.write("HTTP/1.1 103 Early Hints\r\nX-More: " + std::string(1000, 'x') + "\r\n\r\n")) {
        }
    };
    EXPECT_EQ(sentenceOf(site.exchange(interim, true)), "The server sent an invalid response.");
}

} // namespace
} // namespace kestrin
