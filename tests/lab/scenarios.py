"""The sites of the private internet and what a monitor must write about each of them.

Everything is made from this table and from that of services.py: the zone of the name server, the certificates, both
web servers, "sites.json" and the expected history lines. To add a site, add a line here.
"""

import dataclasses
import itertools

import services
from addresses import *
from sentences import *
from table import *

OK = b"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"
FOUND = b"HTTP/1.1 302 Found\r\nContent-Length: 0\r\n"


def site(group, id, expected, host=None, *, url=None, twin=None, **others):
    """One scenario: its own host, perhaps its "www." twin, and hosts below its own name by their first label."""
    name = host_of(id)
    hosts = {name: host, f"www.{name}": twin, **{f"{label}.{name}": other for label, other in others.items()}}
    return Scenario(id, group, url or f"https://{name}/", expected, {key: h for key, h in hosts.items() if h})


def statuses():
    for status in (200, 204, 299, 300, 304, 399):
        yield site("statuses", f"status-{status}", up(status), plain(Page(status)))
    for status in (400, 404, 499, 500, 503):
        yield site("statuses", f"status-{status}", status_down(status), plain(Page(status)))


def addressing():
    def one(id, *rest, **more):
        return site("addressing", id, *rest, **more)

    yield one("http-site", refused_url("Website URLs must use HTTPS."), plain(),
              url=f"http://{host_of('http-site')}/")
    yield one("http-private", refused_url("Website URLs must use HTTPS."), url="http://10.0.0.1/")
    yield one("capitals", up(), plain(), url=f"HTTPS://{host_of('capitals').upper()}/")
    yield one("final-dot", up(), plain(), url=f"https://{host_of('final-dot')}./")
    yield one("own-port", up(), plain(port=OTHER_HTTPS), url=f"https://{host_of('own-port')}:{OTHER_HTTPS}/")
    yield one("port-443", up(), plain(), url=f"https://{host_of('port-443')}:443/")
    yield one("international", up(), url=f"https://bücher.{host_of('international')}/",
              **{"xn--bcher-kva": plain()})
    yield one("path-and-query", up(), Host(Name((RUDE4,)), (Talk((Send(OK),), "/%C3%A4/x?a[]=1&b=%20"),)),
              url=f"https://{host_of('path-and-query')}/ä/x?a[]=1&b=%20#part")
    yield one("headers", up(), rude(Send(OK), requires=(
        "user-agent: kestrin-macos/2.0", "cache-control: no-cache, no-store, max-age=0", "pragma: no-cache"),
        forbids=("accept-encoding", "cookie", "authorization", "referer", "if-modified-since", "if-none-match")))
    yield one("public-number-4", up(), url=f"https://{PLAIN4}/")
    yield one("public-number-6", up(), url=f"https://[{PLAIN6}]/")


def privacy():
    def one(id, *rest, **more):
        return site("privacy", id, *rest, **more)

    def refused(id, url, error=PRIVATE_URL):
        return one(id, refused_url(error), url=url)

    for number, address in enumerate((*PRIVATE, *LOOPBACK, "0.0.0.0", "::ffff:10.0.0.1")):
        url = f"https://[{address}]/" if ":" in address else f"https://{address}/"
        yield refused(f"private-number-{number}", url)
        yield one(f"private-name-{number}", down(BLOCKED), only_named(address))
    yield refused("localhost", "https://localhost/")
    yield refused("dot-local", "https://printer.local./")
    yield refused("credentials", f"https://user:pw@{host_of('credentials')}/",
                  "Website URLs cannot contain embedded credentials.")
    # getaddrinfo understands these, so they are judged by the address that comes out.
    for id, host in (("127-1", "127.1"), ("decimal", "2130706433"), ("hexadecimal", "0x7f000001"),
                     ("octal", "0177.0.0.1")):
        yield one(f"odd-number-{id}", down(BLOCKED, ips=("127.0.0.1",)), url=f"https://{host}/")
    yield one("mixed", down(BLOCKED), only_named(PLAIN4, "10.0.0.1"))
    yield one("mixed-families", down(BLOCKED), only_named(PLAIN4, "fc00::1"))
    yield one("alias-private", down(BLOCKED), only_named(alias=f"inner.{host_of('alias-private')}"),
              inner=only_named("10.0.0.1"))
    # One check looks a name up once before the request and once for it; whatever looks a third time meets a canary.
    name = host_of("rebind-second")
    yield one("rebind-second", down(f"{BLOCKED}: {name}"), only_named(lookups=((PLAIN4,), ("10.0.0.1",))))
    yield one("rebind-third", up(), Host(Name(lookups=((PLAIN4,), (PLAIN4,), ("127.0.0.1",))), (Page(200),)))


def redirects():
    def one(id, *rest, **more):
        return site("redirects", id, *rest, **more)

    def to(id, location, expected, *pages, **more):
        return one(id, expected, plain(Page(302, location), *pages), **more)

    def host_blocked(id, location, host):
        return to(id, location, down(f"Redirect blocked: destination host {host}"))

    landed = Page(200, path="/landed")
    name = host_of("to-www-and-back")
    yield to("to-www-and-back", f"https://www.{name}/", up(), landed,
             twin=plain(Page(302, f"https://{name}/landed")))
    name = f"www.{host_of('from-www')}"
    yield one("from-www", up(), plain(landed), url=f"https://{name}/",
              twin=plain(Page(301, f"https://{host_of('from-www')}/landed")))
    yield to("relative", "/landed", up(), landed)
    yield to("relative-to-directory", "landed", up(), landed)
    yield to("scheme-relative", f"//{host_of('scheme-relative')}/landed", up(), landed)
    yield to("to-capitals", f"https://{host_of('to-capitals').upper()}/landed", up(), landed)
    yield to("to-final-dot", f"https://{host_of('to-final-dot')}./landed", up(), landed)
    yield to("to-port-443", f"https://{host_of('to-port-443')}:443/landed", up(), landed)
    for status in (301, 303, 307, 308):
        yield one(f"moved-{status}", up(), plain(Page(status, "/landed"), landed))
    yield one("moved-300", up(300), rude(
        Send(b"HTTP/1.1 300 Multiple Choices\r\nLocation: /landed\r\nContent-Length: 0\r\n\r\n")))
    yield to("to-an-error", "/gone", status_down(410), Page(410, path="/gone"))

    for count, expected in ((5, up()), (6, down("Redirect blocked: too many redirects"))):
        steps = [Page(302, f"/{n + 1}", f"/{n}" if n else "/") for n in range(count)]
        yield one(f"chain-{count}", expected, plain(*steps, Page(200, path=f"/{count}")))
    yield to("loop", "/", down("Redirect blocked: too many redirects"))

    yield to("to-http", f"http://{host_of('to-http')}/landed", down("Redirect blocked: HTTPS downgrade"), landed)
    yield to("to-http-elsewhere", "http://10.0.0.1/", down("Redirect blocked: HTTPS downgrade"))
    yield to("to-port", f"https://{host_of('to-port')}:{FORBIDDEN_PORT}/",
             down(f"Redirect blocked: destination port {FORBIDDEN_PORT}"))
    yield one("port-to-443", down("Redirect blocked: destination port 443"),
              plain(Page(302, f"https://{host_of('port-to-443')}/"), port=OTHER_HTTPS),
              url=f"https://{host_of('port-to-443')}:{OTHER_HTTPS}/")
    yield one("port-to-itself", up(), plain(Page(302, "/landed"), landed, port=OTHER_HTTPS),
              url=f"https://{host_of('port-to-itself')}:{OTHER_HTTPS}/")
    name = host_of("to-credentials")
    yield to("to-credentials", f"https://user:pw@{name}/landed",
             down(f"Invalid or disallowed destination: https://user:pw@{name}/landed"), landed)
    name = host_of("to-ftp")
    yield to("to-ftp", f"ftp://{name}/landed", down(f"Invalid or disallowed destination: ftp://{name}/landed"))

    name = f"api.{host_of('to-subdomain')}"
    yield to("to-subdomain", f"https://{name}/", down(f"Redirect blocked: destination host {name}"),
             api=only_named(FORBIDDEN4))
    name = f"inner.{host_of('to-private-name')}"
    yield to("to-private-name", f"https://{name}/", down(f"Redirect blocked: destination host {name}"),
             inner=only_named("10.0.0.1"))
    for number, address in enumerate((*PRIVATE, *LOOPBACK, "127.1", "2130706433", "0x7f000001", "0177.0.0.1",
                                      "::ffff:10.0.0.1")):
        written = f"[{address}]" if ":" in address else address
        yield host_blocked(f"to-private-number-{number}", f"https://{written}/", address)
    yield host_blocked("to-localhost", "https://localhost/", "localhost")

    for id, twin in (("to-private-twin", Name(("10.0.0.1",))), ("to-mixed-twin", Name((PLAIN4, "10.0.0.1"))),
                     ("to-loopback-twin", Name(("127.0.0.1",))), ("to-unknown-twin", Name(failure="unknown"))):
        name = f"www.{host_of(id)}"
        yield to(id, f"https://{name}/", down(f"{BLOCKED}: {name}"), twin=Host(twin))
    name = host_of("rebind-redirect")
    yield one("rebind-redirect", down(f"{BLOCKED}: {name}"), Host(
        Name(lookups=((PLAIN4,), (PLAIN4,), ("10.0.0.1",))), (Page(302, "/landed"), landed)))

    yield one("no-location", up(302), rude(Send(FOUND + b"\r\n")))
    yield one("empty-location", up(302), rude(Send(FOUND + b"Location: \r\n\r\n")))
    yield one("same-location-twice", up(), Host(Name((RUDE4,)), (
        Talk((Send(FOUND + b"Location: /landed\r\nLocation: /landed\r\n\r\n"),)), Talk((Send(OK),), "/landed"))))
    yield one("two-locations", down(MISSING), Host(Name((RUDE4,)), (
        Talk((Send(FOUND + b"Location: /landed\r\nLocation: /other\r\n\r\n"),)),
        Talk((Send(OK),), "/landed"), Talk((Send(OK),), "/other"))))
    yield one("location-is-no-url", down(MISSING), rude(Send(FOUND + b"Location: https://[nonsense/\r\n\r\n")))


def names():
    def one(id, *rest, **more):
        return site("names", id, *rest, **more)

    yield one("unknown-name", unresolved(UNKNOWN_NAME), only_named(failure="unknown"))
    yield one("no-address", unresolved("DNS: No address associated with hostname"), only_named())
    yield one("servfail", unresolved(TRY_AGAIN), only_named(failure="servfail"))
    yield one("name-refused", unresolved(TRY_AGAIN), only_named(failure="refused"))
    yield one("name-silent", unresolved(TRY_AGAIN, at_least_ms=1500), only_named(failure="silent"))
    yield one("alias", up(), Host(Name(alias=f"target.{host_of('alias')}"), (Page(200),)), target=only_named(PLAIN4))
    yield one("truncated", up(), Host(Name((PLAIN4, LAST4), truncated=True), (Page(200),)))
    yield one("only-v6", up(), plain(addresses=(PLAIN6,)))
    yield one("both-families", up(), plain(addresses=(PLAIN4, PLAIN6)))
    yield one("v6-refused", up(at_most_ms=8000), plain(addresses=(PLAIN4, REFUSED6)))
    yield one("v6-dark", up(at_most_ms=8000), plain(addresses=(PLAIN4, DARK6)))
    yield one("v6-routeless", up(at_most_ms=8000), plain(addresses=(PLAIN4, ROUTELESS6)))
    yield one("v4-dark", up(at_most_ms=8000), plain(addresses=(DARK4, PLAIN6)))
    yield one("fourteen-refused", up(at_most_ms=8000), plain(addresses=(*CROWD4, LAST4)))
    yield one("first-dark", up(at_most_ms=16000), plain(addresses=(DARK4, LAST4)))


def certificates():
    for id, error in (("expired", EXPIRED),
                      ("not-yet-valid", "The server certificate is not valid yet."),
                      ("wrong-host", "The server certificate is for another host."),
                      ("self-signed", "The server certificate is not trusted."),
                      ("unknown-ca", "The server certificate is not trusted.")):
        yield site("certificates", id, down(error), plain(certificate=id))


def transport():
    def one(id, *rest, **more):
        return site("transport", id, *rest, **more)

    inactive = dict(at_least_ms=14500, at_most_ms=18500)
    head = b"HTTP/1.1 200 OK\r\n"
    yield one("refused", down("The connection was refused."), only_named(REFUSED4))
    yield one("routeless", down("The network is unreachable."), only_named(ROUTELESS4))
    yield one("dark", down(TIMED_OUT, **inactive), only_named(DARK4))
    yield one("garbage", down(INSECURE), only_named(GARBAGE4))
    yield one("cleartext", down(INSECURE), only_named(CLEARTEXT4))
    yield one("handshake-silent", down(TIMED_OUT, **inactive), only_named(MUTE4))
    yield one("handshake-reset", down((LOST, INSECURE)), only_named(RESETTING4))
    yield one("request-reset", down(LOST), rude(Reset()))
    yield one("no-answer", down(LOST), rude())
    yield one("head-cut", down((LOST, INVALID, NO_HTTP)), rude(Send(head + b"Server: lab\r\nX-Cut")))
    yield one("silent", down(TIMED_OUT, **inactive), rude(SILENCE))
    yield one("head-stalls", down(TIMED_OUT, **inactive), rude(Send(head), SILENCE))
    yield one("head-drips", down(TIMED_OUT, at_least_ms=16500, at_most_ms=19500),
              rude(Send(head + b"X-Drip: "), Drip(b"a", 1.0, forever=True)))
    yield one("lines-drip", down(TIMED_OUT, at_least_ms=16500, at_most_ms=19500),
              rude(Send(head), *(Send(b"X-Drip: a\r\n"), Wait(1.0)) * 60))
    yield one("drips-in-time", up(at_least_ms=3000), rude(Drip(OK, 0.1)))
    yield one("endless-line", down(INVALID, at_most_ms=14000), rude(Send(head + b"X-Long: "), Flood(b"a" * 4096)))
    yield one("endless-head", down(INVALID, at_most_ms=14000), rude(Send(head), Flood(b"X-Line: abcdefgh\r\n" * 256)))
    yield one("early-hint", up(), rude(
        Send(b"HTTP/1.1 103 Early Hints\r\nLink: </style.css>; rel=preload\r\n\r\n"), Wait(0.2), Send(OK)))
    yield one("endless-body", up(at_most_ms=8000), rude(
        Send(head + b"Transfer-Encoding: chunked\r\n\r\n"), Flood(b"1000\r\n" + b"a" * 4096 + b"\r\n")))
    yield one("body-never-comes", up(at_most_ms=8000), rude(
        Send(head + b"Content-Length: 9000000000\r\n\r\n"), SILENCE))
    yield one("http-0-9", down(NO_HTTP), rude(Send(b"<html>The page itself, without any head</html>\n")))


def crowd():
    """Sites that take a second each, to see how many requests are made at once."""
    for number in range(12):
        yield site("crowd", f"slow-{number}", up(at_least_ms=1000), rude(Wait(1.0), Send(OK)))


GROUPS = (statuses, addressing, privacy, redirects, names, certificates, transport, crowd)
SCENARIOS = tuple(scenario for group in GROUPS for scenario in group())
SITE_HOSTS = {name: host for scenario in SCENARIOS for name, host in scenario.hosts.items()}
HOSTS = {**SITE_HOSTS, **services.HOSTS}

# What listeners without TLS do, by address.
RAW = {
    RESETTING4: (Reset(),),
    GARBAGE4: (Send(b"\x16garbage instead of a handshake\r\n" * 4),),
    MUTE4: (SILENCE,),
    CLEARTEXT4: (Wait(0.1), Send(b"HTTP/1.1 400 Bad Request\r\nConnection: close\r\n\r\n")),
}


def addresses_of(name):
    """What a first look-up of the name gives, sorted as a monitor stores it."""
    if is_numeric(name):
        return (name,)
    entry = HOSTS[name].name
    return addresses_of(entry.alias) if entry.alias else tuple(sorted(set(entry.first())))


def expected_ips(scenario):
    if scenario.expected.ips != RESOLVED:
        return scenario.expected.ips
    return addresses_of(ascii_host(scenario.url))


def selected(patterns):
    """The scenarios whose identifier or group is named by one of the shell patterns; all without patterns."""
    from fnmatch import fnmatchcase

    return [scenario for scenario in SCENARIOS if not patterns or any(
        fnmatchcase(scenario.id, pattern) or fnmatchcase(scenario.group, pattern) for pattern in patterns)]


# The same website once more has this between the identifier and a number.
COPY = "__"
# A check of these waits for a time limit of its own.
PATIENT_MS = 14000


def copied(scenario, number):
    """The same website under another identifier: the servers cannot tell the two apart."""
    return dataclasses.replace(scenario, id=f"{scenario.id}{COPY}{number}", hosts={})


def can_be_copied(scenario):
    """Names whose addresses change from one look-up to the next have one visitor only."""
    return not any(host.name.lookups for host in scenario.hosts.values())


def of_site(identifier):
    """The scenario of a site of "sites.json", perhaps a copy; None for a stranger."""
    original, _, number = identifier.partition(COPY)
    scenario = next((scenario for scenario in SCENARIOS if scenario.id == original), None)
    return copied(scenario, number) if scenario and number else scenario


def everything_at_once(count, patient):
    """`count` sites: the whole table, then copies of it, the worst behaved first. Of those whose check waits for a
    time limit at most `patient`."""
    troubles_first = sorted(SCENARIOS, key=lambda scenario: scenario.group not in ("transport", "names", "certificates"))
    copies = (copied(scenario, number) for number in itertools.count(2) for scenario in troubles_first
              if can_be_copied(scenario))
    chosen, waiting = [], 0
    for scenario in itertools.chain(SCENARIOS, copies):
        if len(chosen) == count:
            return chosen
        waits = scenario.expected.at_least_ms >= PATIENT_MS
        if not waits or waiting < patient:
            chosen.append(scenario)
            waiting += waits
