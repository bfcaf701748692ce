#include "http/AdmittedAddresses.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace kestrin {
namespace {

sockaddr_storage socketAddress(const std::string& text, std::uint16_t port) {
    sockaddr_storage storage{};
    sockaddr_in v4{};
    sockaddr_in6 v6{};
    if (inet_pton(AF_INET, text.c_str(), &v4.sin_addr) == 1) {
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        std::memcpy(&storage, &v4, sizeof v4);
    } else {
        EXPECT_EQ(inet_pton(AF_INET6, text.c_str(), &v6.sin6_addr), 1) << text;
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(port);
        std::memcpy(&storage, &v6, sizeof v6);
    }
    return storage;
}

bool admits(const AdmittedAddresses& addresses, const std::string& text, std::uint16_t port) {
    const auto storage = socketAddress(text, port);
    return addresses.admits(reinterpret_cast<const sockaddr&>(storage), sizeof storage);
}

TEST(AdmittingAddresses, admitsTheListedOnesAtTheirPortOnly) {
    const AdmittedAddresses addresses({"8.8.8.8", "2001:4860:0::8888"}, 443);
    EXPECT_TRUE(admits(addresses, "8.8.8.8", 443));
    EXPECT_TRUE(admits(addresses, "2001:4860::8888", 443));
    EXPECT_FALSE(admits(addresses, "8.8.8.8", 80));
    EXPECT_FALSE(admits(addresses, "8.8.8.9", 443));
    EXPECT_FALSE(admits(addresses, "::ffff:8.8.8.8", 443));
    EXPECT_FALSE(admits(addresses, "::", 443));
}

TEST(AdmittingAddresses, admitsNoOtherFamilyAndNoCutOffAddress) {
    const AdmittedAddresses addresses({"8.8.8.8"}, 443);
    auto storage = socketAddress("8.8.8.8", 443);
    EXPECT_FALSE(addresses.admits(reinterpret_cast<const sockaddr&>(storage), 4));
    storage.ss_family = AF_UNIX;
    EXPECT_FALSE(addresses.admits(reinterpret_cast<const sockaddr&>(storage), sizeof storage));
}

TEST(AdmittingAddresses, leavesOutWhatIsNoNumericAddress) {
    const AdmittedAddresses addresses({"site.test", "127.1", "fe80::1%lo", "", "[::1]"}, 443);
    EXPECT_TRUE(addresses.empty());
    EXPECT_EQ(AdmittedAddresses({"1.2.3.4", "x", "::1"}, 443).pinned(), "1.2.3.4,[::1]");
}

TEST(AdmittingAddresses, opensSocketsThatNoChildProcessInherits) {
    AdmittedAddresses addresses({"127.0.0.1"}, 443);
    const auto wanted = socketAddress("127.0.0.1", 443);
    const int descriptor =
        addresses.openSocket(reinterpret_cast<const sockaddr&>(wanted), sizeof wanted, SOCK_STREAM, IPPROTO_TCP);
    ASSERT_GE(descriptor, 0);
    EXPECT_TRUE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    ::close(descriptor);
    EXPECT_FALSE(addresses.refusedAll());
}

TEST(AdmittingAddresses, knowsThatItRefusedAll) {
    AdmittedAddresses addresses({"127.0.0.1"}, 443);
    EXPECT_FALSE(addresses.refusedAll());
    const auto other = socketAddress("127.0.0.2", 443);
    EXPECT_EQ(
        addresses.openSocket(reinterpret_cast<const sockaddr&>(other), sizeof other, SOCK_STREAM, IPPROTO_TCP), -1);
    EXPECT_TRUE(addresses.refusedAll());
}

} // namespace
} // namespace kestrin
