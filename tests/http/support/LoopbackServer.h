#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace kestrin::test {

/// Listens on a loopback address and gives every connection to a script on a thread of its own. When the server
/// goes, open connections are shut down, which ends any read or write of a script, and all threads are joined.
class LoopbackServer {
public:
    /// The script does not own the descriptor.
    using Script = std::function<void(int descriptor)>;

    /// Port 0 takes a free one.
    explicit LoopbackServer(Script script, const std::string& address = "127.0.0.1", std::uint16_t port = 0);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    [[nodiscard]] std::uint16_t port() const { return port_; }
    /// Connections accepted so far.
    [[nodiscard]] int connections() const { return connections_; }

private:
    void accept();
    void serve(int descriptor);

    Script script_;
    int listener_ = -1;
    int stop_ = -1;
    std::uint16_t port_ = 0;
    std::atomic<int> connections_{0};
    std::mutex mutex_;
    std::set<int> open_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

/// Reads until the blank line of a request; empty when the peer went first.
[[nodiscard]] std::string readHead(int descriptor);
[[nodiscard]] bool writeAll(int descriptor, const std::string& bytes);
/// Returns when the peer has closed.
void waitForEnd(int descriptor);
/// Makes the close of the descriptor a reset.
void resetOnClose(int descriptor);

/// A connected socket to a loopback port; the caller closes it.
[[nodiscard]] int connectTo(std::uint16_t port);

} // namespace kestrin::test
