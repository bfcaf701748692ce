#include "destinations/AddressTable.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <netinet/in.h>
#include <optional>
#include <sys/socket.h>

namespace kestrin {
namespace {

using IPv4Bytes = std::array<std::uint8_t, 4>;
using IPv6Bytes = std::array<std::uint8_t, 16>;

/// All addresses whose first `prefixBits` bits equal those of `start`.
template <class Bytes> struct AddressRange {
    Bytes start;
    unsigned prefixBits;

    [[nodiscard]] bool contains(const Bytes& address) const {
        const std::size_t wholeBytes = prefixBits / 8;
        const unsigned restBits = prefixBits % 8;
        if (!std::equal(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(wholeBytes), address.begin())) {
            return false;
        }
        return restBits == 0 || (start[wholeBytes] >> (8 - restBits)) == (address[wholeBytes] >> (8 - restBits));
    }
};

// 192.88.99.0/24, the old 6to4 relays, is not listed: it is ordinary address space again.
constexpr std::array<AddressRange<IPv4Bytes>, 13> unreachableIPv4{{
    {{0, 0, 0, 0}, 8},       // this network
    {{10, 0, 0, 0}, 8},      // private
    {{127, 0, 0, 0}, 8},     // loopback
    {{100, 64, 0, 0}, 10},   // shared address space
    {{169, 254, 0, 0}, 16},  // link local
    {{172, 16, 0, 0}, 12},   // private
    {{192, 0, 0, 0}, 24},    // protocol assignments
    {{192, 0, 2, 0}, 24},    // documentation
    {{192, 168, 0, 0}, 16},  // private
    {{198, 18, 0, 0}, 15},   // benchmarking
    {{198, 51, 100, 0}, 24}, // documentation
    {{203, 0, 113, 0}, 24},  // documentation
    {{224, 0, 0, 0}, 3},     // multicast, reserved, broadcast
}};

constexpr std::array<AddressRange<IPv6Bytes>, 6> unreachableIPv6{{
    {{}, 128},                                               // unspecified
    {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, 128}, // loopback
    {{0xFC}, 7},                                             // unique local
    {{0xFF}, 8},                                             // multicast
    {{0xFE, 0x80}, 9},                                       // link local and the old site local
    {{0x20, 0x01, 0x0D, 0xB8}, 32},                          // documentation
}};

constexpr AddressRange<IPv6Bytes> mappedIPv4{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}, 96};

template <class Bytes> std::optional<Bytes> addressBytes(int family, std::string_view text) {
    // inet_pton would stop at the zero byte and praise what stands before it.
    if (text.find('\0') != std::string_view::npos) return std::nullopt;
    Bytes bytes{};
    const std::string terminated(text);
    if (inet_pton(family, terminated.c_str(), bytes.data()) != 1) return std::nullopt;
    return bytes;
}

bool isPublic(const IPv4Bytes& address) {
    return std::ranges::none_of(unreachableIPv4, [&](const auto& range) { return range.contains(address); });
}

bool isPublic(const IPv6Bytes& address) {
    if (std::ranges::any_of(unreachableIPv6, [&](const auto& range) { return range.contains(address); })) {
        return false;
    }
    if (mappedIPv4.contains(address))
        return isPublic(IPv4Bytes{address[12], address[13], address[14], address[15]});
    return true;
}

} // namespace

bool isNumericAddress(std::string_view host) {
    return addressBytes<IPv4Bytes>(AF_INET, host).has_value() ||
           addressBytes<IPv6Bytes>(AF_INET6, host).has_value();
}

bool isPublicAddress(std::string_view text) {
    if (const auto bytes = addressBytes<IPv4Bytes>(AF_INET, text)) return isPublic(*bytes);
    if (const auto bytes = addressBytes<IPv6Bytes>(AF_INET6, text)) return isPublic(*bytes);
    return false;
}

bool allAddressesPublic(bool resolved, std::span<const std::string> addresses) {
    return resolved && !addresses.empty() &&
           std::ranges::all_of(addresses, [](const std::string& address) { return isPublicAddress(address); });
}

} // namespace kestrin
