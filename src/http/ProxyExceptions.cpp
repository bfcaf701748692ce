#include "http/ProxyExceptions.h"

#include "text/ASCIICase.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace kestrin {

namespace {

struct Address {
    std::array<unsigned char, 16> bytes{};
    unsigned bits = 0;
};

std::optional<Address> addressOf(const std::string& text) {
    Address address;
    if (inet_pton(AF_INET, text.c_str(), address.bytes.data()) == 1) {
        address.bits = 32;
    } else if (inet_pton(AF_INET6, text.c_str(), address.bytes.data()) == 1) {
        address.bits = 128;
    } else {
        return std::nullopt;
    }
    return address;
}

/// "address" or "address/bits".
bool networkHolds(std::string_view entry, const Address& host) {
    const auto slash = entry.find('/');
    const auto network = addressOf(std::string(entry.substr(0, slash)));
    if (!network || network->bits != host.bits) return false;
    unsigned bits = network->bits;
    if (slash != std::string_view::npos) {
        const auto digits = entry.substr(slash + 1);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits);
        if (error != std::errc() || end != digits.data() + digits.size() || bits > network->bits) return false;
    }
    for (unsigned bit = 0; bit < bits; ++bit) {
        const unsigned mask = 0x80U >> (bit % 8);
        if ((network->bytes[bit / 8] & mask) != (host.bytes[bit / 8] & mask)) return false;
    }
    return true;
}

bool domainHolds(std::string_view entry, std::string_view host) {
    if (!host.ends_with(entry)) return false;
    return host.size() == entry.size() || host[host.size() - entry.size() - 1] == '.';
}

std::string normalized(std::string_view host) {
    std::string text = asciiLowercase(host);
    if (text.ends_with('.')) text.pop_back();
    return text;
}

} // namespace

ProxyExceptions::ProxyExceptions(const std::string& list) {
    constexpr std::string_view separators = ", \t";
    for (std::size_t start = 0; start < list.size();) {
        const std::size_t end = std::min(list.find_first_of(separators, start), list.size());
        std::string entry = normalized(list.substr(start, end - start));
        if (entry.starts_with('.')) entry.erase(0, 1);
        if (entry.starts_with('[') && entry.ends_with(']')) entry = entry.substr(1, entry.size() - 2);
        if (!entry.empty()) entries_.push_back(std::move(entry));
        start = end + 1;
    }
}

bool ProxyExceptions::covers(const std::string& host) const {
    if (entries_.size() == 1 && entries_.front() == "*") return true;
    const std::string name = normalized(host);
    const auto address = addressOf(name);
    return std::any_of(entries_.begin(), entries_.end(), [&](const std::string& entry) {
        return address ? networkHolds(entry, *address) : domainHolds(entry, name);
    });
}

} // namespace kestrin
