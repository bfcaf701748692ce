"""CPU of one website check against a bare TLS handshake and against curl, all with the same server."""

import contextlib
import resource
import subprocess

import rounds
from rows import Result

HOST, ADDRESS, PORT = "www.bench.example", "192.88.99.10", "7443"
SERIES = 100
CURL_SERIES = 10


@contextlib.contextmanager
def running_server(setting, *served):
    """A server that answers with a file or with nothing, and gives the authorities that trust it."""
    bundle = str(setting.scratch / "authorities.pem")
    server = subprocess.Popen([setting.program("tls_server"), ADDRESS, PORT, HOST, bundle, *served],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
    try:
        if server.stdout.readline().strip() != "ready":
            raise RuntimeError("The TLS server did not start.")
        yield bundle
    finally:
        server.kill()
        server.wait()
        server.stdout.close()


class CheckRows:
    def __init__(self, setting):
        self._setting = setting
        self._bundle = None

    def measure(self, wanted):
        if not wanted & {"check", "check-curl"}:
            return
        with running_server(self._setting) as self._bundle:
            samples = rounds.interleaved(
                self._setting.rounds, check=lambda: self._microseconds("check"),
                handshake=lambda: self._microseconds("handshake"), exchange=lambda: self._microseconds("exchange"),
                curl=self._curl)
        check = samples["check"]
        middle = {name: rounds.median(values) for name, values in samples.items()}
        if "check" in wanted:
            yield Result("check", rounds.ratio(check, samples["handshake"]), middle["check"], middle["handshake"], "µs",
                         {"with a request and its answer in the yardstick, times":
                          rounds.ratio(check, samples["exchange"])})
        if "check-curl" in wanted:
            yield Result("check-curl", rounds.ratio(check, samples["curl"]), middle["check"], middle["curl"], "µs")

    def _microseconds(self, what):
        done = subprocess.run([self._setting.program("website_check"), what, HOST, ADDRESS, PORT, self._bundle,
                               str(SERIES)], check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        return float(done.stdout)

    def _curl(self):
        before = children()
        for _ in range(CURL_SERIES):
            subprocess.run(["curl", "-sI", "--cacert", self._bundle, "--resolve", f"{HOST}:{PORT}:{ADDRESS}",
                            f"https://{HOST}:{PORT}/"], check=True, stdin=subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL)
        return (children() - before) / CURL_SERIES * 1e6


def children():
    """CPU of the ended children, in seconds. The server lives on and is not among them."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime
