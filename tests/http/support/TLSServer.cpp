#include "http/support/TLSServer.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>

#include <array>

namespace kestrin::test {

std::string TLSConnection::readHead() {
    std::string head;
    while (!head.ends_with("\r\n\r\n")) {
        const std::string byte = read(1);
        if (byte.empty()) return {};
        head += byte;
    }
    return head;
}

std::string TLSConnection::read(std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t got = 0;
    while (got < count) {
        std::size_t now = 0;
        if (SSL_read_ex(session_, bytes.data() + got, count - got, &now) != 1) break;
        got += now;
    }
    bytes.resize(got);
    return bytes;
}

bool TLSConnection::write(const std::string& bytes) {
    std::size_t written = 0;
    return SSL_write_ex(session_, bytes.data(), bytes.size(), &written) == 1 && written == bytes.size();
}

void TLSConnection::waitForEnd() {
    while (!read(1).empty()) {
    }
}

bool TLSConnection::staysOpenFor(std::chrono::milliseconds duration) {
    pollfd watched{descriptor_, POLLIN, 0};
    return ::poll(&watched, 1, static_cast<int>(duration.count())) == 0;
}

void TLSConnection::reset() {
    reset_ = true;
    resetOnClose(descriptor_);
}

namespace {

/// `protocols` is the one answer to give, in the wire's form; it must outlive the context.
std::shared_ptr<SSL_CTX> contextFor(
    const Identity& identity, const TLSServerOptions& options, std::string& protocols) {
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    SSL_CTX_use_certificate(context.get(), identity.certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), identity.key.get());
    if (options.wantsClientCertificate) {
        SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    }
    SSL_CTX_set_alpn_select_cb(
        context.get(),
        [](SSL*, const unsigned char** out, unsigned char* outSize, const unsigned char* in, unsigned int inSize,
            void* argument) {
            const auto& own = *static_cast<std::string*>(argument);
            unsigned char* chosen = nullptr;
            const int found =
                SSL_select_next_proto(&chosen, outSize, reinterpret_cast<const unsigned char*>(own.data()),
                    static_cast<unsigned int>(own.size()), in, inSize);
            *out = chosen;
            return found == OPENSSL_NPN_NEGOTIATED ? SSL_TLSEXT_ERR_OK : SSL_TLSEXT_ERR_NOACK;
        },
        &protocols);
    return context;
}

} // namespace

TLSServer::TLSServer(const Identity& identity, Script script, const TLSServerOptions& options)
    : protocols_(static_cast<char>(options.protocol.size()) + options.protocol),
      context_(contextFor(identity, options, protocols_)), script_(std::move(script)),
      server_([this](int descriptor) { serve(descriptor); }, options.address, options.port) {}

void TLSServer::serve(int descriptor) {
    const std::unique_ptr<SSL, decltype(&SSL_free)> session(SSL_new(context_.get()), SSL_free);
    SSL_set_fd(session.get(), descriptor);
    if (SSL_accept(session.get()) == 1) {
        TLSConnection connection(session.get(), descriptor);
        script_(connection);
        if (!connection.isReset()) SSL_shutdown(session.get());
    } else {
        // Closing on bytes that nobody read would reset the connection and could overtake the alert.
        kestrin::test::waitForEnd(descriptor);
    }
    ERR_clear_error();
}

TLSServer::Script answering(std::string response) {
    return [response = std::move(response)](TLSConnection& connection) {
        if (connection.readHead().empty()) return;
        connection.write(response);
        connection.waitForEnd();
    };
}

} // namespace kestrin::test
