#include "destinations/EffectivePort.h"

#include "destinations/LocalHostName.h"
#include "destinations/URLScheme.h"

namespace kestrin {

int effectivePort(const WebURL& url) {
    if (url.port) return *url.port;
    return lowercaseScheme(url) == "http" ? 80 : 443;
}

std::set<std::string> equivalentHosts(std::string_view host) {
    std::string name = normalizedHost(host);
    if (name.starts_with("www.")) name.erase(0, 4);
    return {name, "www." + name};
}

std::string normalizedEndpoint(const WebURL& url) {
    return url.text.substr(0, url.text.find('#'));
}

} // namespace kestrin
