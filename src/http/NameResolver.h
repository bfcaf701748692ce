#pragma once

#include "model/DNSResolution.h"

#include <string>

namespace kestrin {

/// Turns a host name into its addresses. Blocks the calling thread for as long as the system takes, without a limit
/// of its own; any number of threads at once.
class NameResolver {
public:
    virtual ~NameResolver() = default;

    [[nodiscard]] virtual DNSResolution resolve(const std::string& host) = 0;
};

} // namespace kestrin
