"""The private internet's addresses: who lives where.

192.88.99.0/24 and 3ffe::/16 are public by any address table, yet nobody is reached there any more: should a packet
ever escape, it meets no stranger.
"""

DOMAIN = "lab.kestrin-test.example"

PLAIN4, PLAIN6 = "192.88.99.10", "3ffe:c058:63::10"  # nginx: TLS, HTTP/2 and HTTP/1.1
RUDE4, RUDE6 = "192.88.99.11", "3ffe:c058:63::11"  # the badly behaved TLS server
RESOLVER4 = "192.88.99.12"  # the name server
REFUSED4, REFUSED6 = "192.88.99.13", "3ffe:c058:63::13"  # here nobody listens
FORBIDDEN4 = "192.88.99.14"  # public, but no request may ever arrive
RESETTING4 = "192.88.99.15"  # resets a connection as soon as it is accepted
GARBAGE4 = "192.88.99.16"  # speaks, but no TLS
MUTE4 = "192.88.99.17"  # accepts and says nothing
CLEARTEXT4 = "192.88.99.18"  # speaks HTTP without TLS on the port of HTTPS
CROWD4 = tuple(f"192.88.99.{n}" for n in range(21, 35))  # fourteen where nobody listens
LAST4 = "192.88.99.40"  # nginx again, HTTP/1.1 only
DARK4, DARK6 = "192.88.99.66", "3ffe:c058:63::66"  # packets vanish
ROUTELESS4, ROUTELESS6 = "192.88.99.77", "3ffe:c058:63::77"  # no route leads there

LOOPBACK = ("127.0.0.1", "::1")  # there without our doing
PRIVATE = ("10.0.0.1", "172.16.0.1", "192.168.1.1", "169.254.169.254", "100.64.0.1", "fc00::1", "fe80::1")
LOCAL = (PLAIN4, PLAIN6, RUDE4, RUDE6, RESOLVER4, REFUSED4, REFUSED6, FORBIDDEN4, RESETTING4, GARBAGE4, MUTE4,
         CLEARTEXT4, *CROWD4, LAST4, *PRIVATE)

HTTPS = 443
OTHER_HTTPS = 8443  # nginx, for sites on a port of their own
FORBIDDEN_PORT = 9443

# Where a connection means that a rule was broken: (address, port).
CANARIES = tuple((address, port) for address in (*LOOPBACK, *PRIVATE, FORBIDDEN4) for port in (80, HTTPS, OTHER_HTTPS)
                 ) + tuple((address, port) for address in (PLAIN4, RUDE4) for port in (80, FORBIDDEN_PORT))
