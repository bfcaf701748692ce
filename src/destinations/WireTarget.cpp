#include "destinations/WireTarget.h"

#include <cstddef>
#include <string_view>

namespace kestrin {
namespace {

bool isHexDigit(char sign) {
    return (sign >= '0' && sign <= '9') || (sign >= 'a' && sign <= 'f') || (sign >= 'A' && sign <= 'F');
}

bool mayStand(char sign) {
    if ((sign >= 'a' && sign <= 'z') || (sign >= 'A' && sign <= 'Z') || (sign >= '0' && sign <= '9')) return true;
    return std::string_view("-._~!$&'()*+,;=:@/?[]").find(sign) != std::string_view::npos;
}

std::string encoded(std::string_view text) {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char sign = text[position];
        const bool beginsCode = sign == '%' && position + 2 < text.size() && isHexDigit(text[position + 1]) &&
                                isHexDigit(text[position + 2]);
        if (beginsCode || mayStand(sign)) {
            result += sign;
            continue;
        }
        const auto byte = static_cast<unsigned char>(sign);
        result += '%';
        result += hexDigits[byte >> 4U];
        result += hexDigits[byte & 0x0FU];
    }
    return result;
}

} // namespace

std::string wireTarget(const WebURL& url) {
    std::string target = url.path.empty() ? "/" : encoded(url.path);
    if (url.query) target.append("?").append(encoded(*url.query));
    return target;
}

std::string asciiHostForWire(const WebURL& url) {
    return url.host.find(':') == std::string::npos ? url.host : "[" + url.host + "]";
}

} // namespace kestrin
