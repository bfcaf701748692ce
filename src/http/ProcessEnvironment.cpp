#include "http/ProcessEnvironment.h"

#include <cstdlib>
#include <initializer_list>

namespace kestrin {

void dropTLSVariables() {
    for (const char* name : {"SSLKEYLOGFILE", "SSL_CERT_FILE", "SSL_CERT_DIR", "OPENSSL_CONF"}) {
        unsetenv(name);
    }
}

} // namespace kestrin
