#include "http/CurlTransport.h"

#include "http/support/TrustedSite.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace kestrin {
namespace {

using test::LoopbackServer;
using test::sentenceOf;
using test::TLSConnection;
using test::TLSServer;
using test::TrustedSite;

/// Carries the request out on a thread of its own and cancels it once `reached` is fulfilled.
std::string cancelledOnce(TrustedSite& site, const HTTPHopRequest& request, std::future<void> reached) {
    std::stop_source stop;
    auto result = std::async(
        std::launch::async, [&] { return sentenceOf(site.transport.perform(request, stop.get_token())); });
    reached.wait();
    stop.request_stop();
    return result.get();
}

TEST(CancellingAHop, contactsNobodyWhenItComesFirst) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), test::answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(sentenceOf(site.transport.perform(site.request(server.port()), stop.get_token())), "cancelled");
    EXPECT_EQ(server.connections(), 0);
}

TEST(CancellingAHop, endsTheHandshake) {
    TrustedSite site;
    std::promise<void> accepted;
    const LoopbackServer server([&accepted](int descriptor) {
        accepted.set_value();
        test::waitForEnd(descriptor);
    });
    EXPECT_EQ(cancelledOnce(site, site.request(server.port()), accepted.get_future()), "cancelled");
}

TEST(CancellingAHop, endsTheWaitForTheHead) {
    TrustedSite site;
    std::promise<void> asked;
    const TLSServer server(site.authority.issue(), [&asked](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        asked.set_value();
        connection.waitForEnd();
    });
    EXPECT_EQ(cancelledOnce(site, site.request(server.port()), asked.get_future()), "cancelled");
}

TEST(CancellingAHop, endsABodyThatNeverStops) {
    TrustedSite site;
    std::promise<void> flowing;
    const TLSServer server(site.authority.issue(), [&flowing](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        connection.write("HTTP/1.1 200 OK\r\n\r\n");
        for (int i = 0; connection.write("some more of it"); ++i) {
            if (i == 100) flowing.set_value();
        }
    });
    auto request = site.request(server.port());
    request.maximumBodyBytes = INT64_MAX;
    EXPECT_EQ(cancelledOnce(site, request, flowing.get_future()), "cancelled");
}

/// A port whose connections are neither accepted nor refused: its short queue is full.
class FullListener {
public:
    FullListener() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::bind(listener_, reinterpret_cast<sockaddr*>(&address_), sizeof address_), 0);
        EXPECT_EQ(::listen(listener_, 0), 0);
        socklen_t length = sizeof address_;
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address_), &length);
        for (int i = 0; i < 4; ++i) {
            fillers_.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            static_cast<void>(::connect(fillers_.back(), reinterpret_cast<sockaddr*>(&address_), sizeof address_));
        }
        waiting_ = waiting();
    }
    ~FullListener() {
        for (const int filler : fillers_) {
            ::close(filler);
        }
        ::close(listener_);
    }
    FullListener(const FullListener&) = delete;
    FullListener& operator=(const FullListener&) = delete;

    [[nodiscard]] std::uint16_t port() const { return ntohs(address_.sin_port); }
    /// Returns when one more than the fillers waits for its connection.
    void awaitAnother() const {
        while (waiting() <= waiting_) {
            std::this_thread::yield();
        }
    }

private:
    /// Connections to the port that the kernel still has in state SYN_SENT, which it writes as 02.
    [[nodiscard]] int waiting() const {
        std::ifstream table("/proc/net/tcp");
        char end[8];
        std::snprintf(end, sizeof end, ":%04X", port());
        int count = 0;
        for (std::string line; std::getline(table, line);) {
            std::istringstream fields(line);
            std::string number, local, remote, state;
            fields >> number >> local >> remote >> state;
            if (remote.ends_with(end) && state == "02") ++count;
        }
        return count;
    }

    int listener_;
    sockaddr_in address_{};
    std::vector<int> fillers_;
    int waiting_ = 0;
};

TEST(CancellingAHop, endsAConnectThatHangs) {
    TrustedSite site;
    const FullListener listener;
    auto reached = std::async(std::launch::async, [&listener] { listener.awaitAnother(); });
    EXPECT_EQ(cancelledOnce(site, site.request(listener.port()), std::move(reached)), "cancelled");
}

TEST(LimitingTime, endsAConnectThatHangs) {
    TrustedSite site;
    const FullListener listener;
    auto request = site.request(listener.port());
    request.totalTimeout = std::chrono::milliseconds(200);
    EXPECT_EQ(sentenceOf(site.perform(request)), "The request timed out.");
}

TEST(CancellingAHop, leavesOtherHopsAlone) {
    TrustedSite site;
    std::promise<void> asked;
    std::promise<void> answer;
    const TLSServer slow(site.authority.issue(), [&](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        asked.set_value();
        answer.get_future().wait();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        connection.waitForEnd();
    });
    std::promise<void> otherAsked;
    const TLSServer mute(site.authority.issue(), [&otherAsked](TLSConnection& connection) {
        static_cast<void>(connection.readHead());
        otherAsked.set_value();
        connection.waitForEnd();
    });
    auto kept = std::async(std::launch::async, [&] { return sentenceOf(site.perform(site.request(slow.port()))); });
    asked.get_future().wait();
    EXPECT_EQ(cancelledOnce(site, site.request(mute.port()), otherAsked.get_future()), "cancelled");
    answer.set_value();
    EXPECT_EQ(kept.get(), "response with status 200");
}

TEST(CarryingOutAHop, runsOnManyThreadsAtOnce) {
    TrustedSite site;
    const TLSServer server(site.authority.issue(), test::answering("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    std::vector<std::future<std::string>> results;
    for (int i = 0; i < 12; ++i) {
        results.push_back(
            std::async(std::launch::async, [&] { return sentenceOf(site.perform(site.request(server.port()))); }));
    }
    for (auto& result : results) {
        EXPECT_EQ(result.get(), "response with status 200");
    }
}

} // namespace
} // namespace kestrin
