#include "destinations/URLScheme.h"

#include <algorithm>

namespace kestrin {

std::string lowercaseScheme(const WebURL& url) {
    std::string scheme = url.scheme;
    std::ranges::transform(scheme, scheme.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return scheme;
}

} // namespace kestrin
