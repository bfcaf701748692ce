#include "http/SystemNameResolver.h"

#include <netdb.h>
#include <netinet/in.h>

#include <array>
#include <memory>
#include <set>

namespace kestrin {

DNSResolution SystemNameResolver::resolve(const std::string& host) {
    addrinfo hints{};
    hints.ai_flags = AI_ADDRCONFIG;
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;

    addrinfo* list = nullptr;
    // The system would resolve what stands before a NUL, which is not what was asked.
    const bool whole = host.find('\0') == std::string::npos;
    const int code = whole ? getaddrinfo(host.c_str(), nullptr, &hints, &list) : EAI_NONAME;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(list, freeaddrinfo);
    return interpret(code, list);
}

DNSResolution SystemNameResolver::interpret(int code, const addrinfo* list) {
    DNSResolution resolution;
    if (code != 0 || list == nullptr) {
        resolution.error = std::string("DNS: ") + gai_strerror(code);
        return resolution;
    }
    std::set<std::string> texts;
    for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        const int failed = getnameinfo(entry->ai_addr, entry->ai_addrlen, text.data(),
            static_cast<socklen_t>(text.size()), nullptr, 0, NI_NUMERICHOST);
        if (failed == 0) texts.emplace(text.data());
    }
    resolution.ips.assign(texts.begin(), texts.end());
    resolution.ok = !resolution.ips.empty();
    return resolution;
}

} // namespace kestrin
