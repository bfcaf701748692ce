#pragma once

#include "http/AdmittedAddresses.h"
#include "http/CurlURL.h"
#include "http/HTTPHop.h"
#include "http/ProxySettings.h"
#include "http/ResponseCollector.h"
#include "http/TransferFailure.h"
#include "http/TransferLoop.h"

#include <curl/curl.h>
#include <openssl/types.h>

#include <memory>
#include <optional>

namespace kestrin {

/// One hop as libcurl carries it out: a fresh handle filled by parts, so that no second parser reads the URL, with
/// sockets to admitted addresses only and every memory of libcurl's switched off. Stays where it is made, as the
/// handle's callbacks point to it. One thread.
class CurlHop {
public:
    /// The way to go in place of a direct connection.
    struct ProxyRoute {
        ProxyServer server;
        std::vector<std::string> addresses;
    };

    /// `trusted` must outlive the hop; the request is only read here.
    CurlHop(const HTTPHopRequest& request, const std::optional<ProxyRoute>& proxy, X509_STORE* trusted);
    CurlHop(const CurlHop&) = delete;
    CurlHop& operator=(const CurlHop&) = delete;
    ~CurlHop() = default;

    /// libcurl holds exactly what was judged and agreed to every setting. A hop that is not ready must not run.
    [[nodiscard]] bool ready() const { return ready_; }

    [[nodiscard]] CURL* handle() const { return easy_.get(); }
    [[nodiscard]] TransferLoop& loop() { return loop_; }
    [[nodiscard]] ResponseCollector& collector() { return collector_; }
    [[nodiscard]] const AdmittedAddresses& admitted() const { return admitted_; }
    [[nodiscard]] TransferFailure failure(CURLcode code) const;

private:
    struct EasyDeleter {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };
    struct ListDeleter {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };
    using List = std::unique_ptr<curl_slist, ListDeleter>;

    template <typename Value> void set(CURLoption option, Value value);
    void append(List& list, const std::string& text);
    void setDestination(const HTTPHopRequest& request);
    void setRoute(const HTTPHopRequest& request, const std::optional<ProxyRoute>& proxy);
    void setHeaders(const HTTPHopRequest& request);
    void setSecurity();
    void setIsolation();
    void setLimits(const HTTPHopRequest& request);
    void setCallbacks();

    static std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* hop) noexcept;
    static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* hop) noexcept;
    static curl_socket_t onOpenSocket(void* hop, curlsocktype purpose, curl_sockaddr* address) noexcept;
    static int onCloseSocket(void* hop, curl_socket_t descriptor) noexcept;
    static CURLcode onSecureContext(CURL* handle, void* context, void* hop) noexcept;
    static void onSecurityRecord(int isSent, int version, int contentType, const void* bytes, std::size_t size,
        SSL* session, void* hop) noexcept;
    static void onSecurityEvent(const SSL* session, int where, int value) noexcept;

    AdmittedAddresses admitted_;
    ResponseCollector collector_;
    TransferLoop loop_;
    X509_STORE* trusted_;
    bool ready_ = true;
    bool alerted_ = false;
    bool secured_ = false;
    bool secondTry_ = false;
    bool farewell_ = false;
    bool peerStayed_ = false;
    CurlURL url_;
    List headers_;
    List pins_;
    std::unique_ptr<CURL, EasyDeleter> easy_; ///< last, as it refers to all of the above
};

} // namespace kestrin
