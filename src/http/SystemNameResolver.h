#pragma once

#include "http/NameResolver.h"

struct addrinfo;

namespace kestrin {

/// Asks the system by `getaddrinfo`: stream sockets over TCP, and only address families that the machine has. A
/// failure reads "DNS: " and the system's own words. An address with a zone keeps it ("fe80::1%eth0").
class SystemNameResolver final : public NameResolver {
public:
    [[nodiscard]] DNSResolution resolve(const std::string& host) override;

    /// What a `getaddrinfo` that returned `code` and `list` means. An entry without a numeric form is passed over;
    /// when no entry is left, the result is neither ok nor an error text.
    [[nodiscard]] static DNSResolution interpret(int code, const addrinfo* list);
};

} // namespace kestrin
