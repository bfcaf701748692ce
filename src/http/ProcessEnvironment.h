#pragma once

namespace kestrin {

/// Takes out of the environment what would let whoever started the program log its TLS keys or choose whom it
/// trusts: `SSLKEYLOGFILE`, `SSL_CERT_FILE`, `SSL_CERT_DIR`, `OPENSSL_CONF`. Call it first thing in `main`, before
/// there is a second thread and before OpenSSL is touched.
void dropTLSVariables();

} // namespace kestrin
