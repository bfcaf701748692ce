#pragma once

#include <curl/curl.h>

#include <memory>
#include <optional>
#include <string>

namespace kestrin {

/// libcurl's own form of a URL, owned.
struct CurlURLDeleter {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using CurlURL = std::unique_ptr<CURLU, CurlURLDeleter>;

/// One part as libcurl holds it; nothing when it has none.
[[nodiscard]] inline std::optional<std::string> partOf(const CurlURL& url, CURLUPart part) {
    char* text = nullptr;
    if (curl_url_get(url.get(), part, &text, 0) != CURLUE_OK) return std::nullopt;
    std::string copy(text);
    curl_free(text);
    return copy;
}

} // namespace kestrin
