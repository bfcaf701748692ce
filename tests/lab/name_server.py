"""The name server of the private internet, UDP and TCP. It answers from the scenario table and knows nothing else."""

import asyncio
import ipaddress
import struct
import time

from addresses import DOMAIN
from table import Name

A, CNAME, AAAA = 1, 5, 28
RCODES = {"servfail": 2, "unknown": 3, "refused": 5}
# Asking for this name starts every count of look-ups afresh, and so does leaving a name alone for a while.
FORGET = f"forget.{DOMAIN}"
FORGOTTEN_AFTER = 20.0


class Zone:
    """Answers questions; counts the look-ups of names whose addresses change. One thread."""

    def __init__(self, names):
        self._names = {**names, FORGET: Name(("192.88.99.10",))}
        self._counts = {}  # name -> (look-ups so far, time of the last)

    def addresses(self, name, kind):
        """The addresses of one family. A look-up asks for both families, so only questions for A are counted."""
        entry = self._names[name]
        if name == FORGET:
            self._counts.clear()
        if not entry.lookups:
            return self._of_family(entry.addresses, kind)
        count, last = self._counts.get(name, (0, 0.0))
        now = time.monotonic()
        if now - last > FORGOTTEN_AFTER:
            count = 0
        answer = entry.lookups[min(count, len(entry.lookups) - 1)]
        if kind == A:
            self._counts[name] = (count + 1, now)
        return self._of_family(answer, kind)

    def entry(self, name):
        return self._names.get(name, Name(failure="unknown"))

    @staticmethod
    def _of_family(addresses, kind):
        version = {A: 4, AAAA: 6}.get(kind)
        return [address for address in map(ipaddress.ip_address, addresses) if address.version == version]


def answer(zone, query, over_tcp, log):
    """The reply to one query as it stands on the wire, or None where the table wants silence."""
    identity, flags = struct.unpack("!HH", query[:4])
    name, offset = _read_name(query, 12)
    (kind,) = struct.unpack("!H", query[offset:offset + 2])
    question = query[12:offset + 4]
    entry = zone.entry(name)
    log("dns", name=name, kind=kind, tcp=over_tcp)
    if entry.failure == "silent":
        return None
    records, truncated = [], entry.truncated and not over_tcp
    if not truncated and not entry.failure:
        owner = b"\xc0\x0c"
        while entry.alias:
            target = _write_name(entry.alias)
            records.append(owner + struct.pack("!HHIH", CNAME, 1, 0, len(target)) + target)
            owner, name, entry = target, entry.alias, zone.entry(entry.alias)
        records += [owner + struct.pack("!HHIH", kind, 1, 0, len(address.packed)) + address.packed
                    for address in zone.addresses(name, kind)]
    flags = 0x8480 | (flags & 0x0100) | (0x0200 if truncated else 0) | RCODES.get(entry.failure, 0)
    return struct.pack("!HHHHHH", identity, flags, 1, len(records), 0, 0) + question + b"".join(records)


def _read_name(message, offset):
    labels = []
    while message[offset]:
        labels.append(message[offset + 1:offset + 1 + message[offset]].decode("latin-1").lower())
        offset += 1 + message[offset]
    return ".".join(labels), offset + 1


def _write_name(name):
    return b"".join(bytes((len(label),)) + label.encode() for label in name.split(".")) + b"\0"


class _Datagrams(asyncio.DatagramProtocol):
    def __init__(self, zone, log):
        self._zone, self._log = zone, log

    def connection_made(self, transport):
        self._transport = transport

    def datagram_received(self, data, peer):
        reply = answer(self._zone, data, False, self._log)
        if reply is not None:
            self._transport.sendto(reply, peer)


async def serve(address, names, log):
    zone = Zone(names)

    async def stream(reader, writer):
        try:
            while True:
                (length,) = struct.unpack("!H", await reader.readexactly(2))
                reply = answer(zone, await reader.readexactly(length), True, log)
                if reply is not None:
                    writer.write(struct.pack("!H", len(reply)) + reply)
        except (asyncio.IncompleteReadError, ConnectionError):
            writer.close()

    await asyncio.get_running_loop().create_datagram_endpoint(lambda: _Datagrams(zone, log), (address, 53))
    return await asyncio.start_server(stream, address, 53)
