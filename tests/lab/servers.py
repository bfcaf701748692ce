"""Runs the name server, the badly behaved servers and the canaries in one process, and the log they share."""

import asyncio
import json
import os
import signal
import time

import name_server
import rude_server
from addresses import CANARIES, RESOLVER4
from scenarios import HOSTS, RAW


class Log:
    """One file a kind of event, one JSON object a line, written at once. `at` counts seconds since the epoch."""

    FILES = {"dns": "dns", "request": "requests", "open": "requests", "close": "requests", "canary": "canaries"}

    def __init__(self, directory):
        self._files = {kind: open(f"{directory}/{name}.jsonl", "a", buffering=1) for kind, name in self.FILES.items()}

    def __call__(self, event, **fields):
        self._files[event].write(json.dumps({"at": time.time(), "event": event, **fields}) + "\n")


def start(root):
    """Forks; comes back when every listener of the child stands, or throws."""
    reader, writer = os.pipe()
    if os.fork() == 0:
        os.close(reader)
        signal.signal(signal.SIGINT, signal.SIG_IGN)
        try:
            asyncio.run(_serve(root, writer))
        except Exception as error:
            os.write(writer, f"{type(error).__name__}: {error}".encode())
        os._exit(1)
    os.close(writer)
    with os.fdopen(reader) as pipe:
        said = pipe.readline().strip()
    if said != "ready":
        raise RuntimeError(f"the servers did not start: {said}")


async def _serve(root, ready):
    log = Log(f"{root}/log")
    names = {name: host.name for name, host in HOSTS.items()}
    standing = [await name_server.serve(RESOLVER4, names, log),
                await rude_server.serve_talks(HOSTS, f"{root}/certificates", log),
                await rude_server.serve_raw(RAW, log), await rude_server.serve_canaries(CANARIES, log)]
    os.write(ready, b"ready\n")
    os.close(ready)
    await asyncio.Event().wait()
    del standing
