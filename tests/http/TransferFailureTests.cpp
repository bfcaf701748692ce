#include "http/TransferFailure.h"

#include <gtest/gtest.h>
#include <openssl/x509_vfy.h>

#include <cerrno>
#include <string>

namespace kestrin {
namespace {

std::string sentenceFor(const TransferFailure& failure) {
    return hopErrorFor(failure).message;
}

TEST(TellingAFailure, namesWhatTheSystemSaidOfAConnect) {
    const auto connecting = [](int systemError) {
        return sentenceFor({.code = CURLE_COULDNT_CONNECT, .systemError = systemError});
    };
    EXPECT_EQ(connecting(ECONNREFUSED), "The connection was refused.");
    for (const int error : {ENETUNREACH, EHOSTUNREACH, ENETDOWN, EADDRNOTAVAIL}) {
        EXPECT_EQ(connecting(error), "The network is unreachable.") << error;
    }
    EXPECT_EQ(connecting(ETIMEDOUT), "The request timed out.");
    EXPECT_EQ(connecting(ECONNRESET), "The connection was lost.");
    EXPECT_EQ(connecting(0), "The request failed.");
    EXPECT_EQ(connecting(EMFILE), "The request failed.");
}

TEST(TellingAFailure, namesWhatIsWrongWithACertificate) {
    const auto judged = [](long result) {
        return sentenceFor({.code = CURLE_PEER_FAILED_VERIFICATION, .verifyResult = result});
    };
    EXPECT_EQ(judged(X509_V_ERR_CERT_HAS_EXPIRED), "The server certificate has expired.");
    EXPECT_EQ(judged(X509_V_ERR_CERT_NOT_YET_VALID), "The server certificate is not valid yet.");
    EXPECT_EQ(judged(X509_V_ERR_HOSTNAME_MISMATCH), "The server certificate is for another host.");
    for (const long result : {X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY, X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN,
             X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT, X509_V_ERR_CERT_REVOKED, X509_V_ERR_EE_KEY_TOO_SMALL}) {
        EXPECT_EQ(judged(result), "The server certificate is not trusted.") << result;
    }
}

TEST(TellingAFailure, hasASentenceForEveryCode) {
    EXPECT_EQ(sentenceFor({.code = CURLE_OPERATION_TIMEDOUT}), "The request timed out.");
    EXPECT_EQ(sentenceFor({.code = CURLE_RECV_ERROR}), "The connection was lost.");
    EXPECT_EQ(sentenceFor({.code = CURLE_SSL_CONNECT_ERROR}), "A secure connection could not be made.");
    EXPECT_EQ(sentenceFor({.code = CURLE_WEIRD_SERVER_REPLY}), "The server sent an invalid response.");
    for (int code = 1; code < CURL_LAST; ++code) {
        EXPECT_FALSE(sentenceFor({.code = static_cast<CURLcode>(code)}).empty()) << code;
    }
}

TEST(TellingAFailure, tellsALostConnectionFromABadResponseByWhoEndedIt) {
    EXPECT_EQ(sentenceFor({.code = CURLE_RECV_ERROR, .peerStayed = false}), "The connection was lost.");
    EXPECT_EQ(sentenceFor({.code = CURLE_RECV_ERROR, .peerStayed = true}), "The server sent an invalid response.");
    EXPECT_EQ(sentenceFor({.code = CURLE_RECV_ERROR, .alerted = true, .peerStayed = true}),
        "A secure connection could not be made.");
}

TEST(TellingAFailure, takesALackOfMemoryForABadResponseOnlyOnceConnected) {
    EXPECT_EQ(
        sentenceFor({.code = CURLE_OUT_OF_MEMORY, .connected = true}), "The server sent an invalid response.");
    EXPECT_EQ(sentenceFor({.code = CURLE_OUT_OF_MEMORY}), "The request failed.");
}

TEST(TellingAFailure, knowsAServerThatSpeaksNoHTTP) {
    EXPECT_EQ(hopErrorFor({.code = CURLE_UNSUPPORTED_PROTOCOL, .connected = true}).kind,
        HTTPHopError::Kind::NonHTTPResponse);
    EXPECT_EQ(hopErrorFor({.code = CURLE_UNSUPPORTED_PROTOCOL, .connected = true, .statusLineRead = true}),
        (HTTPHopError{HTTPHopError::Kind::Transport, "The server sent an invalid response."}));
}

TEST(TellingAFailure, blamesNoServerForWhatItsProxyRefused) {
    EXPECT_EQ(sentenceFor({.code = CURLE_RECV_ERROR, .proxyStatus = 407}), "The request failed.");
    EXPECT_EQ(sentenceFor({.code = CURLE_RECV_ERROR, .proxyStatus = 200}), "The connection was lost.");
}

} // namespace
} // namespace kestrin
