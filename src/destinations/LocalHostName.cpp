#include "destinations/LocalHostName.h"

#include <algorithm>

namespace kestrin {

std::string normalizedHost(std::string_view host) {
    const auto first = host.find_first_not_of('.');
    if (first == std::string_view::npos) return {};
    std::string result(host.substr(first, host.find_last_not_of('.') - first + 1));
    std::ranges::transform(result, result.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return result;
}

bool isLocalHostName(std::string_view host) {
    const std::string name = normalizedHost(host);
    return name == "localhost" || name.ends_with(".localhost") || name.ends_with(".local");
}

} // namespace kestrin
