"""The vocabulary of the scenario table: names, hosts, what they answer, and what a monitor must make of it."""

import ipaddress
import urllib.parse
from dataclasses import dataclass, field

from addresses import DOMAIN, HTTPS, PLAIN4, RUDE4


# What the name server says. Without any field set: the name exists and has no address.
@dataclass(frozen=True)
class Name:
    addresses: tuple = ()
    lookups: tuple = ()  # one tuple of addresses a look-up, the last one stays; instead of `addresses`
    alias: str = ""  # a CNAME to this name
    failure: str = ""  # "unknown" (NXDOMAIN), "servfail", "refused" or "silent"
    truncated: bool = False  # over UDP only "ask again over TCP"

    def first(self):
        return self.lookups[0] if self.lookups else self.addresses


# What nginx answers to one path.
@dataclass(frozen=True)
class Page:
    status: int
    location: str = ""
    path: str = "/"
    body: str = ""
    content_type: str = "text/plain"


# What the badly behaved server does after a request for one path: steps in order, then it closes the connection.
@dataclass(frozen=True)
class Talk:
    steps: tuple
    path: str = "/"
    requires: tuple = ()  # header lines, lower case, that the request must have; else it answers 418
    forbids: tuple = ()  # header names, lower case, that it must not have


@dataclass(frozen=True)
class Send:
    data: bytes


@dataclass(frozen=True)
class Drip:  # one byte at a time
    data: bytes
    pause: float
    forever: bool = False


@dataclass(frozen=True)
class Flood:  # as fast as it is read, for ever
    data: bytes


@dataclass(frozen=True)
class Wait:
    seconds: float


@dataclass(frozen=True)
class Reset:  # RST instead of an orderly end
    pass


SILENCE = Wait(3600)


@dataclass(frozen=True)
class Host:
    name: Name
    pages: tuple = ()  # of Page or of Talk, not mixed
    certificate: str = "good"  # a key of certificates.KINDS
    port: int = HTTPS


RESOLVED = "as the name server answers the first look-up"


# A history line without its time stamp. A tuple of errors admits any of them. Bounds are milliseconds, both included.
@dataclass(frozen=True)
class Expected:
    up: bool
    http_status: int | None = None
    error: str | tuple | None = None
    dns_ok: bool = True
    ips: str | tuple = RESOLVED
    at_least_ms: int = 0
    at_most_ms: int = 60000
    in_history: bool = True  # a URL that is refused by its text is not checked in a cycle, only when it is tried out


@dataclass(frozen=True)
class Scenario:
    id: str
    group: str
    url: str
    expected: Expected
    hosts: dict = field(default_factory=dict)  # host name -> Host


def host_of(scenario_id):
    return f"{scenario_id}.{DOMAIN}"


def plain(*pages, addresses=(PLAIN4,), **more):
    """A host on nginx."""
    return Host(Name(addresses), pages or (Page(200),), **more)


def rude(*steps, addresses=(RUDE4,), **more):
    """A host on the badly behaved server that does the steps on every request for "/"."""
    return Host(Name(addresses), (Talk(steps, **more),))


def only_named(*addresses, **more):
    """A host that resolves so and answers nothing of its own."""
    return Host(Name(addresses, **more))


def up(status=200, **more):
    return Expected(True, status, None, **more)


def status_down(status):
    return Expected(False, status, f"HTTP {status}")


def down(error, **more):
    return Expected(False, None, error, **more)


def refused_url(error):
    return Expected(False, None, error, dns_ok=False, ips=(), at_most_ms=500, in_history=False)


def unresolved(error, **more):
    return Expected(False, None, error, dns_ok=False, ips=(), **more)


def ascii_host(url):
    """The host of a URL as it is looked up: lower case, without brackets and final dots, non-ASCII letters encoded."""
    host = (urllib.parse.urlsplit(url).hostname or "").rstrip(".")
    return host if host.isascii() else host.encode("idna").decode()


def is_numeric(host):
    try:
        return bool(ipaddress.ip_address(host))
    except ValueError:
        return False
