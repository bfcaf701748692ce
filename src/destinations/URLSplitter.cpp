#include "destinations/URLSplitter.h"

#include "destinations/AddressTable.h"
#include "destinations/HostConversion.h"
#include "destinations/URLCharacters.h"
#include "destinations/WireTarget.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace kestrin {
namespace {

constexpr auto npos = std::string_view::npos;

bool isLetter(char sign) {
    return (sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z');
}
bool isDigit(char sign) {
    return sign >= '0' && sign <= '9';
}
bool isASCII(char sign) {
    return static_cast<unsigned char>(sign) < 0x80;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char sign) {
        return isLetter(sign) || isDigit(sign) || sign == '+' || sign == '-' || sign == '.';
    });
}

/// Underscores are in use; the other signs that the general URL grammar allows name no host anywhere.
bool isHostName(std::string_view name) {
    return std::ranges::any_of(name, [](char sign) { return sign != '.'; }) &&
           std::ranges::all_of(name, [](char sign) {
               return isLetter(sign) || isDigit(sign) || sign == '-' || sign == '.' || sign == '_';
           });
}

std::optional<std::string> hostFromName(std::string_view name) {
    if (std::ranges::all_of(name, isASCII)) {
        if (!isHostName(name)) return std::nullopt;
        return std::string(name);
    }
    auto converted = asciiHost(name);
    if (!converted || !isHostName(*converted)) return std::nullopt;
    return converted;
}

/// Reads what stands behind the host: nothing, ":" alone, or ":" and a number.
bool readPort(std::string_view text, std::optional<std::uint16_t>& port) {
    if (text.empty() || text == ":") return true;
    text.remove_prefix(1);
    std::uint32_t number = 0;
    for (const char sign : text) {
        if (!isDigit(sign)) return false;
        number = number * 10 + static_cast<std::uint32_t>(sign - '0');
        if (number > std::numeric_limits<std::uint16_t>::max()) return false;
    }
    if (number == 0) return false;
    port = static_cast<std::uint16_t>(number);
    return true;
}

bool readUserInfo(std::string_view text, WebURL& url) {
    if (text.find_first_of("@[] ") != npos) return false;
    const auto colon = text.find(':');
    url.user = std::string(text.substr(0, colon));
    if (colon != npos) url.password = std::string(text.substr(colon + 1));
    return true;
}

bool readHostAndPort(std::string_view text, WebURL& url) {
    if (text.starts_with('[')) {
        const auto end = text.find(']');
        if (end == npos) return false;
        const auto literal = text.substr(1, end - 1);
        const auto behind = text.substr(end + 1);
        // Of the numeric forms only IPv6 contains a colon: "[127.0.0.1]" is no literal.
        if (literal.find(':') == npos || !isNumericAddress(literal)) return false;
        if (!behind.empty() && behind.front() != ':') return false;
        url.host = std::string(literal);
        return readPort(behind, url.port);
    }
    const auto colon = text.find(':');
    auto host = hostFromName(text.substr(0, colon));
    if (!host) return false;
    url.host = std::move(*host);
    return colon == npos || readPort(text.substr(colon), url.port);
}

bool readAuthority(std::string_view text, WebURL& url) {
    // From the right: a second "@" is then left over in the user's part and refused there.
    const auto at = text.rfind('@');
    if (at == npos) return readHostAndPort(text, url);
    return readUserInfo(text.substr(0, at), url) && readHostAndPort(text.substr(at + 1), url);
}

} // namespace

std::optional<WebURL> splitURL(std::string_view text) {
    if (!hasOnlyURLCharacters(text)) return std::nullopt;
    WebURL url;
    url.text = std::string(text);
    const auto colon = text.find(':');
    if (colon == npos || !isScheme(text.substr(0, colon))) return std::nullopt;
    url.scheme = std::string(text.substr(0, colon));
    auto rest = text.substr(colon + 1);
    if (!rest.starts_with("//")) return std::nullopt;
    rest.remove_prefix(2);

    if (const auto hash = rest.find('#'); hash != npos) {
        url.fragment = std::string(rest.substr(hash + 1));
        rest = rest.substr(0, hash);
    }
    if (const auto question = rest.find('?'); question != npos) {
        url.query = std::string(rest.substr(question + 1));
        rest = rest.substr(0, question);
    }
    const auto slash = rest.find('/');
    if (slash != npos) url.path = std::string(rest.substr(slash));
    if (!readAuthority(rest.substr(0, slash), url)) return std::nullopt;
    return url;
}

std::string joinURL(const WebURL& url) {
    std::string text = url.scheme + "://";
    if (url.user || url.password) {
        text += url.user.value_or("");
        if (url.password) text.append(":").append(*url.password);
        text += "@";
    }
    text += asciiHostForWire(url);
    if (url.port) text.append(":").append(std::to_string(*url.port));
    text += url.path;
    if (url.query) text.append("?").append(*url.query);
    if (url.fragment) text.append("#").append(*url.fragment);
    return text;
}

} // namespace kestrin
