#include "destinations/LocalHostName.h"

#include "text/ASCIICase.h"

namespace kestrin {

std::string normalizedHost(std::string_view host) {
    const auto first = host.find_first_not_of('.');
    if (first == std::string_view::npos) return {};
    return asciiLowercase(host.substr(first, host.find_last_not_of('.') - first + 1));
}

bool isLocalHostName(std::string_view host) {
    const std::string name = normalizedHost(host);
    return name == "localhost" || name.ends_with(".localhost") || name.ends_with(".local");
}

} // namespace kestrin
