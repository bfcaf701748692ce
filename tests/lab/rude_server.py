"""The badly behaved servers: they do the steps of the table, on requests over TLS or as soon as somebody connects.
Beside them the canaries, which only write down that somebody came."""

import asyncio
import contextlib
import itertools
import socket
import ssl
import struct

from addresses import HTTPS, RUDE4, RUDE6
from table import Drip, Flood, Reset, Send, Talk, Wait

_numbers = itertools.count(1)


async def serve_talks(hosts, certificate, log):
    """TLS on the rude addresses; the Host header and the path choose what happens."""
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(f"{certificate}/good.pem", f"{certificate}/leaf.key")
    context.set_alpn_protocols(["http/1.1"])

    async def connected(reader, writer):
        with _logged(log, "rude", writer) as number:
            head = (await reader.readuntil(b"\r\n\r\n")).decode("latin-1").split("\r\n")
            host, target, steps = _chosen(hosts, head)
            log("request", server="rude", connection=number, host=host, target=target,
                head=[line for line in head if line])
            await _act_while_heard(steps, reader, writer)

    return [await asyncio.start_server(connected, address, HTTPS, ssl=context, limit=1 << 20)
            for address in (RUDE4, RUDE6)]


async def serve_raw(by_address, log):
    def listener(steps):
        async def connected(reader, writer):
            with _logged(log, "raw", writer):
                await _act_while_heard(steps, reader, writer)
        return connected

    return [await asyncio.start_server(listener(steps), address, HTTPS) for address, steps in by_address.items()]


async def serve_canaries(places, log):
    async def connected(reader, writer):
        log("canary", address=writer.get_extra_info("sockname")[0], port=writer.get_extra_info("sockname")[1])
        writer.close()

    servers = []
    for address, port in places:
        listener = socket.socket(socket.AF_INET6 if ":" in address else socket.AF_INET)
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        scope = (0, socket.if_nametoindex("lo")) if address.startswith("fe80") else ()
        listener.bind((address, port, *scope))
        servers.append(await asyncio.start_server(connected, sock=listener))
    return servers


@contextlib.contextmanager
def _logged(log, server, writer):
    number = next(_numbers)
    log("open", server=server, connection=number, address=writer.get_extra_info("sockname")[0])
    try:
        with contextlib.suppress(ConnectionError, asyncio.IncompleteReadError, asyncio.LimitOverrunError, ssl.SSLError):
            yield number
    finally:
        writer.close()
        log("close", server=server, connection=number)


def _chosen(hosts, head):
    target = head[0].split(" ")[1]
    lines = {line.lower() for line in head[1:]}
    host = next((line[5:].strip() for line in lines if line.startswith("host:")), "").rstrip(".")
    talks = hosts[host].pages if host in hosts else ()
    for talk in talks:
        if isinstance(talk, Talk) and talk.path == target:
            present = {line.split(":")[0] for line in lines}
            if set(talk.requires) <= lines and not set(talk.forbids) & present:
                return host, target, talk.steps
            return host, target, (Send(b"HTTP/1.1 418 Headers not as expected\r\nContent-Length: 0\r\n\r\n"),)
    return host, target, (Send(b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"),)


async def _act_while_heard(steps, reader, writer):
    """The steps, until they are done or the visitor has gone: the log shall say who is there."""
    acting, gone = asyncio.ensure_future(_act(steps, writer)), asyncio.ensure_future(reader.read())
    try:
        await asyncio.wait({acting, gone}, return_when=asyncio.FIRST_COMPLETED)
    finally:
        acting.cancel()
        gone.cancel()
        await asyncio.gather(acting, gone, return_exceptions=True)


async def _act(steps, writer):
    for step in steps:
        match step:
            case Send(data):
                writer.write(data)
                await writer.drain()
            case Drip(data, pause, forever):
                for byte in itertools.cycle(data) if forever else data:
                    writer.write(bytes((byte,)))
                    await writer.drain()
                    await asyncio.sleep(pause)
            case Flood(data):
                while not writer.is_closing():
                    writer.write(data)
                    await writer.drain()
                    await asyncio.sleep(0)
            case Wait(seconds):
                await asyncio.sleep(seconds)
            case Reset():
                linger = struct.pack("ii", 1, 0)
                writer.get_extra_info("socket").setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, linger)
                writer.transport.abort()
                return
