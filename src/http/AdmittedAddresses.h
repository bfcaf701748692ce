#pragma once

#include <sys/socket.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrin {

/// The only addresses that a hop may contact, all at one port. The sockets of a hop are opened here and nowhere
/// else, so that an answer of the name service that came later can lead nowhere. One thread.
class AdmittedAddresses {
public:
    /// Texts that are no numeric address are left out.
    AdmittedAddresses(const std::vector<std::string>& numericAddresses, std::uint16_t port);

    [[nodiscard]] bool empty() const { return addresses_.empty(); }
    [[nodiscard]] bool admits(const sockaddr& address, std::size_t length) const;

    /// A socket for an admitted address, -1 for any other or when the system has none to give.
    [[nodiscard]] int openSocket(const sockaddr& address, std::size_t length, int type, int protocol);
    /// Some address was turned away and none was let through.
    [[nodiscard]] bool refusedAll() const { return refused_ > 0 && admitted_ == 0; }

    /// "address,address", IPv6 in brackets: how libcurl wants a name pinned.
    [[nodiscard]] std::string pinned() const;

private:
    struct Address {
        int family = AF_UNSPEC;
        std::array<unsigned char, 16> bytes{};

        bool operator==(const Address&) const = default;
    };

    std::vector<Address> addresses_;
    std::vector<std::string> texts_;
    std::uint16_t port_;
    int refused_ = 0;
    int admitted_ = 0;
};

} // namespace kestrin
