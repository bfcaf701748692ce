#include "http/SystemNameResolver.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>

#include <deque>
#include <string>

namespace kestrin {
namespace {

/// A list as `getaddrinfo` gives it, made by hand.
class AddressList {
public:
    void add(const std::string& text) {
        sockaddr_in6& slot = sockets_.emplace_back();
        auto* v4 = reinterpret_cast<sockaddr_in*>(&slot);
        if (inet_pton(AF_INET, text.c_str(), &v4->sin_addr) == 1) {
            v4->sin_family = AF_INET;
            append(&slot, sizeof(sockaddr_in));
        } else {
            EXPECT_EQ(inet_pton(AF_INET6, text.c_str(), &slot.sin6_addr), 1);
            slot.sin6_family = AF_INET6;
            append(&slot, sizeof(sockaddr_in6));
        }
    }
    /// An entry that has no numeric form.
    void addUnprintable() {
        sockaddr_in6& slot = sockets_.emplace_back();
        slot.sin6_family = 12345;
        append(&slot, sizeof(sockaddr_in6));
    }
    [[nodiscard]] const addrinfo* get() const { return entries_.empty() ? nullptr : &entries_.front(); }

private:
    void append(sockaddr_in6* socket, socklen_t length) {
        addrinfo entry{};
        entry.ai_addr = reinterpret_cast<sockaddr*>(socket);
        entry.ai_addrlen = length;
        entries_.push_back(entry);
        if (entries_.size() > 1) entries_[entries_.size() - 2].ai_next = &entries_.back();
    }

    std::deque<sockaddr_in6> sockets_;
    std::deque<addrinfo> entries_;
};

TEST(ResolvingANameBySystem, sortsAddressesAsTextWithoutDuplicates) {
    AddressList list;
    for (const char* text : {"9.9.9.9", "2001:4860::8844", "10.0.0.1", "9.9.9.9", "10.0.0.2"}) {
        list.add(text);
    }
    const auto resolution = SystemNameResolver::interpret(0, list.get());
    EXPECT_EQ(
        resolution, (DNSResolution{true, {"10.0.0.1", "10.0.0.2", "2001:4860::8844", "9.9.9.9"}, std::nullopt}));
}

TEST(ResolvingANameBySystem, passesOverEntriesWithoutANumericForm) {
    AddressList list;
    list.addUnprintable();
    list.add("9.9.9.9");
    EXPECT_EQ(SystemNameResolver::interpret(0, list.get()), (DNSResolution{true, {"9.9.9.9"}, std::nullopt}));
    AddressList unprintable;
    unprintable.addUnprintable();
    EXPECT_EQ(SystemNameResolver::interpret(0, unprintable.get()), (DNSResolution{false, {}, std::nullopt}));
}

TEST(ResolvingANameBySystem, tellsFailuresInTheSystemsWords) {
    EXPECT_EQ(SystemNameResolver::interpret(EAI_NONAME, nullptr),
        (DNSResolution{false, {}, "DNS: Name or service not known"}));
    EXPECT_EQ(SystemNameResolver::interpret(EAI_AGAIN, nullptr),
        (DNSResolution{false, {}, "DNS: Temporary failure in name resolution"}));
    EXPECT_EQ(SystemNameResolver::interpret(0, nullptr),
        (DNSResolution{false, {}, std::string("DNS: ") + gai_strerror(0)}));
}

TEST(ResolvingANameBySystem, resolvesNumericTextsToThemselves) {
    SystemNameResolver resolver;
    EXPECT_EQ(resolver.resolve("127.0.0.1"), (DNSResolution{true, {"127.0.0.1"}, std::nullopt}));
    EXPECT_EQ(resolver.resolve("2130706433"), (DNSResolution{true, {"127.0.0.1"}, std::nullopt}));
}

TEST(ResolvingANameBySystem, refusesNamesThatCannotExist) {
    SystemNameResolver resolver;
    for (const std::string& name : {std::string(""), std::string(300, 'x'), std::string("127.0.0.1\0.test", 15)}) {
        const auto resolution = resolver.resolve(name);
        EXPECT_FALSE(resolution.ok);
        EXPECT_TRUE(resolution.ips.empty());
        ASSERT_TRUE(resolution.error);
        EXPECT_TRUE(resolution.error->starts_with("DNS: ")) << *resolution.error;
    }
}

} // namespace
} // namespace kestrin
