#pragma once

#include <string>
#include <vector>

namespace kestrin {

/// The hosts that are reached without a proxy, as the variable `no_proxy` lists them with commas or blanks between:
/// names that also cover their subdomains (with or without a dot in front), addresses, networks such as 10.0.0.0/8,
/// or "*" alone for every host. Any thread.
class ProxyExceptions {
public:
    ProxyExceptions() = default;
    explicit ProxyExceptions(const std::string& list);

    /// `host` without brackets, in any case of letters, with or without a dot at its end.
    [[nodiscard]] bool covers(const std::string& host) const;

private:
    std::vector<std::string> entries_;
};

} // namespace kestrin
