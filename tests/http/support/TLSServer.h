#pragma once

#include "http/support/LoopbackServer.h"
#include "http/support/TestAuthority.h"

#include <openssl/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace kestrin::test {

/// One accepted TLS connection, as a server's script sees it. All calls block; they fail once the peer is gone.
class TLSConnection {
public:
    TLSConnection(SSL* session, int descriptor) : session_(session), descriptor_(descriptor) {}

    /// The request's head with its blank line; empty when the peer went first.
    [[nodiscard]] std::string readHead();
    /// Exactly so many bytes, or fewer when the peer went first.
    [[nodiscard]] std::string read(std::size_t count);
    bool write(const std::string& bytes);
    /// Returns when the peer has closed.
    void waitForEnd();
    /// As `waitForEnd`, but for so long at most. True: the peer is still there.
    [[nodiscard]] bool staysOpenFor(std::chrono::milliseconds duration);
    /// The connection will end in a reset instead of a farewell.
    void reset();
    [[nodiscard]] bool isReset() const { return reset_; }

private:
    SSL* session_;
    int descriptor_;
    bool reset_ = false;
};

struct TLSServerOptions {
    std::string protocol = "http/1.1"; ///< the one ALPN answer given
    std::string address = "127.0.0.1";
    std::uint16_t port = 0;
    bool wantsClientCertificate = false;
};

/// A loopback server that speaks TLS before its script begins. A failed handshake runs no script.
class TLSServer {
public:
    using Script = std::function<void(TLSConnection&)>;

    TLSServer(const Identity& identity, Script script, const TLSServerOptions& options = {});

    [[nodiscard]] std::uint16_t port() const { return server_.port(); }
    [[nodiscard]] int connections() const { return server_.connections(); }

private:
    void serve(int descriptor);

    std::string protocols_; ///< in the wire's form
    std::shared_ptr<SSL_CTX> context_;
    Script script_;
    LoopbackServer server_; ///< last: its threads use all of the above
};

/// Answers every request with the same bytes, then waits for the peer to close.
[[nodiscard]] TLSServer::Script answering(std::string response);

} // namespace kestrin::test
