// libcurl brings GnuTLS along for protocols that the program never speaks. GnuTLS prepares itself when it is
// loaded, which costs 0.8 MB at rest, unless the program defines this function; whoever does use it later prepares
// it then.
extern "C" __attribute__((visibility("default"), used)) int _gnutls_global_init_skip();

int _gnutls_global_init_skip() {
    return 1;
}
