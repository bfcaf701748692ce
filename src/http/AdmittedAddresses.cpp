#include "http/AdmittedAddresses.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>

namespace kestrin {

AdmittedAddresses::AdmittedAddresses(const std::vector<std::string>& numericAddresses, std::uint16_t port)
    : port_(port) {
    for (const std::string& text : numericAddresses) {
        Address address;
        if (inet_pton(AF_INET, text.c_str(), address.bytes.data()) == 1) {
            address.family = AF_INET;
            texts_.push_back(text);
        } else if (inet_pton(AF_INET6, text.c_str(), address.bytes.data()) == 1) {
            address.family = AF_INET6;
            texts_.push_back("[" + text + "]");
        } else {
            continue;
        }
        addresses_.push_back(address);
    }
}

bool AdmittedAddresses::admits(const sockaddr& address, std::size_t length) const {
    Address wanted;
    wanted.family = address.sa_family;
    in_port_t port = 0;
    if (address.sa_family == AF_INET && length >= sizeof(sockaddr_in)) {
        sockaddr_in v4{};
        std::memcpy(&v4, &address, sizeof v4);
        std::memcpy(wanted.bytes.data(), &v4.sin_addr, sizeof v4.sin_addr);
        port = v4.sin_port;
    } else if (address.sa_family == AF_INET6 && length >= sizeof(sockaddr_in6)) {
        sockaddr_in6 v6{};
        std::memcpy(&v6, &address, sizeof v6);
        std::memcpy(wanted.bytes.data(), &v6.sin6_addr, sizeof v6.sin6_addr);
        port = v6.sin6_port;
    } else {
        return false;
    }
    return port == htons(port_) && std::find(addresses_.begin(), addresses_.end(), wanted) != addresses_.end();
}

int AdmittedAddresses::openSocket(const sockaddr& address, std::size_t length, int type, int protocol) {
    if (!admits(address, length)) {
        ++refused_;
        return -1;
    }
    ++admitted_;
    return ::socket(address.sa_family, type | SOCK_CLOEXEC, protocol);
}

std::string AdmittedAddresses::pinned() const {
    std::string list;
    for (const std::string& text : texts_) {
        if (!list.empty()) list += ',';
        list += text;
    }
    return list;
}

} // namespace kestrin
