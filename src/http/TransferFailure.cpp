#include "http/TransferFailure.h"

#include <openssl/x509_vfy.h>

#include <cerrno>

namespace kestrin {

namespace {

const char* connectSentence(long systemError) {
    switch (systemError) {
    case ECONNREFUSED:
        return sentences::connectionRefused;
    case ENETUNREACH:
    case EHOSTUNREACH:
    case ENETDOWN:
    case EHOSTDOWN:
    case EADDRNOTAVAIL:
    case EAFNOSUPPORT:
        return sentences::networkUnreachable;
    case ETIMEDOUT:
        return sentences::timedOut;
    case ECONNRESET:
    case ECONNABORTED:
    case EPIPE:
        return sentences::connectionLost;
    default:
        return sentences::requestFailed;
    }
}

const char* certificateSentence(long verifyResult) {
    switch (verifyResult) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return sentences::certificateExpired;
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return sentences::certificateNotYetValid;
    // libcurl compares the names itself, after OpenSSL was content with the chain and before it notes so.
    case X509_V_OK:
    case X509_V_ERR_UNSPECIFIED:
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return sentences::certificateOfAnotherHost;
    default:
        return sentences::certificateNotTrusted;
    }
}

const char* sentenceFor(const TransferFailure& failure) {
    if (failure.secondTry) return sentences::connectionLost;
    if (failure.proxyStatus != 0 && failure.proxyStatus / 100 != 2) return sentences::requestFailed;
    switch (failure.code) {
    case CURLE_OPERATION_TIMEDOUT:
        return sentences::timedOut;
    case CURLE_COULDNT_CONNECT:
        return connectSentence(failure.systemError);
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
        return certificateSentence(failure.verifyResult);
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CLIENTCERT:
    case CURLE_USE_SSL_FAILED:
        return sentences::notSecure;
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
        if (failure.alerted) return sentences::notSecure;
        // Nothing was wrong with the connection, so something was with what came over it.
        return failure.peerStayed ? sentences::invalidResponse : sentences::connectionLost;
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_HTTP2_STREAM:
        return sentences::connectionLost;
    // A header line beyond libcurl's own buffer is told as a lack of memory.
    case CURLE_OUT_OF_MEMORY:
        return failure.connected ? sentences::invalidResponse : sentences::requestFailed;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
#if LIBCURL_VERSION_NUM >= 0x080600
    case CURLE_TOO_LARGE:
#endif
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_HTTP2:
        return sentences::invalidResponse;
    default:
        return sentences::requestFailed;
    }
}

} // namespace

HTTPHopError hopErrorFor(const TransferFailure& failure) {
    // What libcurl calls an unsupported protocol on a standing connection is a first line that is not HTTP's.
    if (failure.code == CURLE_UNSUPPORTED_PROTOCOL && failure.connected && !failure.statusLineRead) {
        return {HTTPHopError::Kind::NonHTTPResponse, {}};
    }
    return {HTTPHopError::Kind::Transport, sentenceFor(failure)};
}

} // namespace kestrin
