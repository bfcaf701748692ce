#include "destinations/HostileURLs.h"
#include "destinations/LocalHostName.h"
#include "destinations/URLScheme.h"
#include "destinations/URLSplitter.h"
#include "destinations/WireTarget.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cctype>
#include <cstddef>
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <memory>
#include <netinet/in.h>
#include <string>

namespace kestrin {
namespace {

struct FreeHandle {
    void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
};
using Handle = std::unique_ptr<CURLU, FreeHandle>;

std::string partOf(const Handle& handle, CURLUPart part, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(handle.get(), part, &text, flags) != CURLUE_OK) return "(none)";
    std::string result(text);
    curl_free(text);
    return result;
}

std::string pathOf(const std::string& target) {
    return target.substr(0, target.find('?'));
}

/// The same path for a server: this parser writes the letters of percent codes small. On the wire goes the target
/// itself.
std::string withSmallCodes(std::string path) {
    for (auto code = path.find('%'); code != std::string::npos; code = path.find('%', code + 1)) {
        for (std::size_t digit = code + 1; digit < std::min(code + 3, path.size()); ++digit) {
            path[digit] = static_cast<char>(std::tolower(static_cast<unsigned char>(path[digit])));
        }
    }
    return path;
}

/// The bytes of an IPv6 address in brackets: this parser gives the shortest spelling. Other hosts come as they are.
std::string inBytes(const std::string& host) {
    if (!host.starts_with('[') || !host.ends_with(']')) return host;
    std::string bytes(sizeof(in6_addr), '\0');
    const std::string address = host.substr(1, host.size() - 2);
    return inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1 ? "IPv6 " + bytes : host;
}

/// The URL as the fetcher is given it: part by part, so that no other reader takes the whole text apart again.
CURLUcode fill(const Handle& handle, const WebURL& url) {
    const std::string target = wireTarget(url);
    CURLUcode code = curl_url_set(handle.get(), CURLUPART_SCHEME, lowercaseScheme(url).c_str(), 0);
    if (code == CURLUE_OK) code = curl_url_set(handle.get(), CURLUPART_HOST, asciiHostForWire(url).c_str(), 0);
    if (code == CURLUE_OK && url.port) {
        code = curl_url_set(handle.get(), CURLUPART_PORT, std::to_string(*url.port).c_str(), 0);
    }
    if (code == CURLUE_OK) code = curl_url_set(handle.get(), CURLUPART_PATH, pathOf(target).c_str(), 0);
    if (code == CURLUE_OK && url.query) {
        code = curl_url_set(handle.get(), CURLUPART_QUERY, target.substr(pathOf(target).size() + 1).c_str(), 0);
    }
    return code;
}

TEST(TheFetchersParser, givesBackTheJudgedPartsOfEveryAcceptedHTTPSURL) {
    int compared = 0;
    for (const auto& hostile : hostileURLs()) {
        const auto url = splitURL(hostile.text);
        if (!url || lowercaseScheme(*url) != "https") continue;
        const Handle handle(curl_url());
        ASSERT_EQ(fill(handle, *url), CURLUE_OK) << hostile.text;
        EXPECT_EQ(inBytes(partOf(handle, CURLUPART_HOST)), inBytes(asciiHostForWire(*url))) << hostile.text;
        EXPECT_EQ(partOf(handle, CURLUPART_PORT, CURLU_DEFAULT_PORT), std::to_string(url->port.value_or(443)));
        EXPECT_EQ(withSmallCodes(partOf(handle, CURLUPART_PATH)), withSmallCodes(pathOf(wireTarget(*url))))
            << hostile.text;
        EXPECT_EQ(partOf(handle, CURLUPART_USER), "(none)") << hostile.text;
        ++compared;
    }
    EXPECT_GT(compared, 80);
}

/// The name that other readers turn into an address: its last label is a number, decimal or hexadecimal.
bool endsInANumber(const std::string& host) {
    const std::string name = normalizedHost(host);
    const std::string last = name.substr(name.rfind('.') + 1);
    return last.find_first_not_of("0123456789") == std::string::npos || last.starts_with("0x");
}

TEST(TheFetchersParser, readsNoOtherHostOutOfTheWholeTextExceptForNumbers) {
    for (const auto& hostile : hostileURLs()) {
        const auto url = splitURL(hostile.text);
        if (!url || lowercaseScheme(*url) != "https" || endsInANumber(url->host)) continue;
        const Handle handle(curl_url());
        const std::string joined = joinURL(*url);
        // Refusing a text that we accept is safe; reading another host out of it would not be.
        if (curl_url_set(handle.get(), CURLUPART_URL, joined.c_str(), 0) != CURLUE_OK) continue;
        const std::string host = normalizedHost(partOf(handle, CURLUPART_HOST));
        EXPECT_EQ(inBytes(host), inBytes(normalizedHost(asciiHostForWire(*url)))) << hostile.text;
    }
}

TEST(TheFetchersParser, isNotLedToRewriteAHostThatIsANumber) {
    for (const auto* text : {"https://127.1/", "https://0x7f.1/", "https://134744072/", "https://0177.0.0.1/"}) {
        const auto url = splitURL(text);
        ASSERT_TRUE(url) << text;
        const Handle handle(curl_url());
        ASSERT_EQ(fill(handle, *url), CURLUE_OK) << text;
        EXPECT_EQ(partOf(handle, CURLUPART_URL), text);
    }
}

} // namespace
} // namespace kestrin
