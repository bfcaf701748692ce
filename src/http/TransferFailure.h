#pragma once

#include "http/HTTPHop.h"

#include <curl/curl.h>

namespace kestrin {

/// How libcurl ended a transfer that went wrong, with what it remembers of the cause.
struct TransferFailure {
    CURLcode code = CURLE_OK;
    long systemError = 0;        ///< errno of the last failed connect, 0 when unknown
    long verifyResult = 0;       ///< X509_V_OK or why the server's certificate was not accepted
    long proxyStatus = 0;        ///< the proxy's answer to CONNECT, 0 without one
    bool connected = false;      ///< a TCP connection stood
    bool statusLineRead = false; ///< the server has spoken HTTP
    bool alerted = false;        ///< the server ended TLS with a fatal alert
    bool secondTry = false;      ///< libcurl wanted to send the request once more, which it must not
    bool peerStayed = false;     ///< the server had not ended it when the connection was given up
};

/// The failure as callers hear of it: no HTTP, or one of a short list of sentences.
[[nodiscard]] HTTPHopError hopErrorFor(const TransferFailure& failure);

namespace sentences {

inline constexpr const char* timedOut = "The request timed out.";
inline constexpr const char* connectionRefused = "The connection was refused.";
inline constexpr const char* networkUnreachable = "The network is unreachable.";
inline constexpr const char* connectionLost = "The connection was lost.";
inline constexpr const char* certificateExpired = "The server certificate has expired.";
inline constexpr const char* certificateNotYetValid = "The server certificate is not valid yet.";
inline constexpr const char* certificateOfAnotherHost = "The server certificate is for another host.";
inline constexpr const char* certificateNotTrusted = "The server certificate is not trusted.";
inline constexpr const char* notSecure = "A secure connection could not be made.";
inline constexpr const char* invalidResponse = "The server sent an invalid response.";
inline constexpr const char* requestFailed = "The request failed.";

} // namespace sentences

} // namespace kestrin
