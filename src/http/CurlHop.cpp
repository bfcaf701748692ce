#include "http/CurlHop.h"

#include "http/CurlDestination.h"

#include <openssl/ssl.h>

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace kestrin {

using namespace std::chrono_literals;

namespace {

/// libcurl's own limit stands behind ours, in case it ever blocks in a call.
constexpr auto backstop = 500ms;

long milliseconds(std::chrono::milliseconds duration) {
    return static_cast<long>(std::clamp(duration, 1ms, std::chrono::milliseconds(24h)).count());
}

} // namespace

CurlHop::CurlHop(const HTTPHopRequest& request, const std::optional<ProxyRoute>& proxy, X509_STORE* trusted)
    : admitted_(proxy ? proxy->addresses : request.addresses, proxy ? proxy->server.port : request.port),
      collector_(request.headersOnly, request.maximumBodyBytes),
      loop_({request.inactivityTimeout, request.totalTimeout}), trusted_(trusted), url_(curlDestination(request)),
      easy_(curl_easy_init()) {
    ready_ = url_ && easy_ && !admitted_.empty();
    if (!ready_) return;
    setDestination(request);
    setRoute(request, proxy);
    setHeaders(request);
    setSecurity();
    setIsolation();
    setLimits(request);
    setCallbacks();
}

template <typename Value> void CurlHop::set(CURLoption option, Value value) {
    ready_ = ready_ && curl_easy_setopt(easy_.get(), option, value) == CURLE_OK;
}

void CurlHop::append(List& list, const std::string& text) {
    curl_slist* longer = curl_slist_append(list.get(), text.c_str());
    if (longer == nullptr) {
        ready_ = false;
        return;
    }
    static_cast<void>(list.release());
    list.reset(longer);
}

void CurlHop::setDestination(const HTTPHopRequest& request) {
    set(CURLOPT_CURLU, url_.get());
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_REQUEST_TARGET, request.target.c_str());
    set(CURLOPT_HTTPGET, 1L);
    set(CURLOPT_FOLLOWLOCATION, 0L);
}

void CurlHop::setRoute(const HTTPHopRequest& request, const std::optional<ProxyRoute>& proxy) {
    // Both set, or libcurl would read the environment itself.
    set(CURLOPT_PROXY, proxy ? proxy->server.url.c_str() : "");
    set(CURLOPT_NOPROXY, "");
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    const AdmittedAddresses judged(request.addresses, request.port);
    // A literal IPv6 host cannot be pinned and needs no name service either.
    if (request.host.find(':') == std::string::npos && !judged.empty()) {
        append(pins_, request.host + ":" + std::to_string(request.port) + ":" + judged.pinned());
    }
    if (proxy && proxy->server.host.find(':') == std::string::npos) {
        append(pins_, proxy->server.host + ":" + std::to_string(proxy->server.port) + ":" + admitted_.pinned());
    }
    set(CURLOPT_RESOLVE, pins_.get());
}

void CurlHop::setHeaders(const HTTPHopRequest& request) {
    for (const HTTPHeader& header : request.headers) {
        // libcurl takes "Name:" as an order to leave a header out, and "Name;" for an empty one.
        append(headers_, header.value.empty() ? header.name + ";" : header.name + ": " + header.value);
    }
    set(CURLOPT_HTTPHEADER, headers_.get());
    set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
    set(CURLOPT_ACCEPT_ENCODING, static_cast<const char*>(nullptr));
    set(CURLOPT_HTTP_CONTENT_DECODING, 0L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    set(CURLOPT_HTTP09_ALLOWED, 0L);
    // What is only declared cannot spoil a response whose body nobody reads.
    set(CURLOPT_IGNORE_CONTENT_LENGTH, request.headersOnly ? 1L : 0L);
}

void CurlHop::setSecurity() {
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_PROXY_SSL_VERIFYPEER, 1L);
    set(CURLOPT_PROXY_SSL_VERIFYHOST, 2L);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
    // The shared store takes the place of a bundle read for each connection.
    for (const CURLoption bundle : {CURLOPT_CAINFO, CURLOPT_CAPATH, CURLOPT_PROXY_CAINFO, CURLOPT_PROXY_CAPATH}) {
        set(bundle, static_cast<const char*>(nullptr));
    }
    set(CURLOPT_SSL_CTX_FUNCTION, &CurlHop::onSecureContext);
    set(CURLOPT_SSL_CTX_DATA, this);
}

void CurlHop::setIsolation() {
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
    set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
    // The signals of the process are not libcurl's to change.
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_NOPROGRESS, 1L);
}

void CurlHop::setLimits(const HTTPHopRequest& request) {
    set(CURLOPT_TIMEOUT_MS, milliseconds(request.totalTimeout) + static_cast<long>(backstop.count()));
    // Bounded by the rest: libcurl shares it out among the addresses that are still to be tried.
    set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(std::min(request.totalTimeout, request.inactivityTimeout)));
}

void CurlHop::setCallbacks() {
    set(CURLOPT_HEADERFUNCTION, &CurlHop::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &CurlHop::onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_OPENSOCKETFUNCTION, &CurlHop::onOpenSocket);
    set(CURLOPT_OPENSOCKETDATA, this);
    set(CURLOPT_CLOSESOCKETFUNCTION, &CurlHop::onCloseSocket);
    set(CURLOPT_CLOSESOCKETDATA, this);
}

TransferFailure CurlHop::failure(CURLcode code) const {
    TransferFailure failure;
    failure.code = code;
    curl_off_t connectTime = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_OS_ERRNO, &failure.systemError);
    curl_easy_getinfo(easy_.get(), CURLINFO_SSL_VERIFYRESULT, &failure.verifyResult);
    curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_CONNECTCODE, &failure.proxyStatus);
    curl_easy_getinfo(easy_.get(), CURLINFO_CONNECT_TIME_T, &connectTime);
    failure.connected = connectTime > 0;
    failure.statusLineRead = collector_.hasStatus();
    failure.alerted = alerted_;
    failure.secondTry = secondTry_;
    failure.peerStayed = peerStayed_ && !farewell_;
    return failure;
}

std::size_t CurlHop::onHeader(char* bytes, std::size_t size, std::size_t count, void* hop) noexcept {
    auto& self = *static_cast<CurlHop*>(hop);
    self.loop_.noteActivity();
    const auto next = self.collector_.takeHeaderLine({bytes, size * count});
    return next == ResponseCollector::Next::Continue ? size * count : 0;
}

std::size_t CurlHop::onBody(char* bytes, std::size_t size, std::size_t count, void* hop) noexcept {
    auto& self = *static_cast<CurlHop*>(hop);
    self.loop_.noteActivity();
    const auto next = self.collector_.takeBody({bytes, size * count});
    return next == ResponseCollector::Next::Continue ? size * count : 0;
}

curl_socket_t CurlHop::onOpenSocket(void* hop, curlsocktype, curl_sockaddr* address) noexcept {
    auto& self = *static_cast<CurlHop*>(hop);
    // Addresses are tried side by side before there is a secure connection. A socket wanted after that would carry
    // the request a second time, as libcurl does when a server refuses its stream.
    self.secondTry_ = self.secondTry_ || self.secured_;
    if (self.secondTry_) return CURL_SOCKET_BAD;
    return self.admitted_.openSocket(address->addr, address->addrlen, address->socktype, address->protocol);
}

int CurlHop::onCloseSocket(void* hop, curl_socket_t descriptor) noexcept {
    char byte = 0;
    const auto count = ::recv(descriptor, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    static_cast<CurlHop*>(hop)->peerStayed_ = count > 0 || (count < 0 && errno == EAGAIN);
    return ::close(descriptor);
}

CURLcode CurlHop::onSecureContext(CURL*, void* context, void* hop) noexcept {
    auto* secureContext = static_cast<SSL_CTX*>(context);
    SSL_CTX_set1_cert_store(secureContext, static_cast<CurlHop*>(hop)->trusted_);
    SSL_CTX_set_app_data(secureContext, hop);
    SSL_CTX_set_info_callback(secureContext, &CurlHop::onSecurityEvent);
    // libcurl tells of a header line once it is whole; a server that sends one slowly is not silent meanwhile.
    SSL_CTX_set_msg_callback(secureContext, &CurlHop::onSecurityRecord);
    SSL_CTX_set_msg_callback_arg(secureContext, hop);
    return CURLE_OK;
}

void CurlHop::onSecurityRecord(
    int isSent, int, int contentType, const void*, std::size_t, SSL*, void* hop) noexcept {
    if (!isSent && contentType == SSL3_RT_HEADER) static_cast<CurlHop*>(hop)->loop_.noteActivity();
}

void CurlHop::onSecurityEvent(const SSL* session, int where, int value) noexcept {
    auto& self = *static_cast<CurlHop*>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(session)));
    self.secured_ = self.secured_ || (where & SSL_CB_HANDSHAKE_DONE) != 0;
    if ((where & SSL_CB_READ_ALERT) != SSL_CB_READ_ALERT) return;
    self.alerted_ = self.alerted_ || value >> 8 == SSL3_AL_FATAL;
    self.farewell_ = self.farewell_ || (value & 0xff) == SSL_AD_CLOSE_NOTIFY;
}

} // namespace kestrin
