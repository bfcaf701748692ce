"""Reading status feeds against plain parsing, and the CPU of one service check against curl."""

import subprocess

import rounds
import status_feeds
from checks import ADDRESS, CURL_SERIES, HOST, PORT, SERIES, children, running_server
from rows import Result

READINGS = 300


class FeedRows:
    def __init__(self, setting):
        self._setting = setting

    def measure(self, wanted):
        grown = []
        for name, (adapter, make) in status_feeds.FEEDS.items():
            if not wanted & {f"feed-{name}", "feed-memory"}:
                continue
            file = self._setting.scratch / f"{name}.json"
            file.write_bytes(make())
            samples = rounds.interleaved(self._setting.rounds, adapter=lambda: self._read(adapter, file),
                                         plain=lambda: self._read("nlohmann", file))
            cpu = (lambda sample: sample[0])
            grown.append(rounds.median(samples["adapter"], lambda sample: sample[1]) / 1024)
            if f"feed-{name}" in wanted:
                ours, plain = samples["adapter"], samples["plain"]
                yield Result(f"feed-{name}", rounds.ratio(ours, plain, cpu), rounds.median(ours, cpu),
                             rounds.median(plain, cpu), "µs")
        if "feed-memory" in wanted:
            yield Result("feed-memory", max(grown))
        if "service-check" in wanted:
            yield self._service_check()

    def _read(self, reader, file):
        done = subprocess.run([self._setting.program("feed_reading"), reader, str(file), str(READINGS)], check=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        microseconds, kilobytes = done.stdout.split()
        return float(microseconds), float(kilobytes)

    def _service_check(self):
        file = self._setting.scratch / "served.json"
        file.write_bytes(status_feeds.statuspage())
        with running_server(self._setting, str(file)) as bundle:
            samples = rounds.interleaved(self._setting.rounds, check=lambda: self._check(bundle),
                                         curl=lambda: self._curl(bundle))
        middle = {name: rounds.median(values) for name, values in samples.items()}
        return Result("service-check", rounds.ratio(samples["check"], samples["curl"]), middle["check"],
                      middle["curl"], "µs")

    def _check(self, bundle):
        done = subprocess.run([self._setting.program("service_check"), HOST, ADDRESS, PORT, bundle, str(SERIES)],
                              check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        return float(done.stdout)

    def _curl(self, bundle):
        before = children()
        for _ in range(CURL_SERIES):
            subprocess.run(["curl", "-s", "--cacert", bundle, "--resolve", f"{HOST}:{PORT}:{ADDRESS}",
                            f"https://{HOST}:{PORT}/api/v2/status.json"], check=True, stdin=subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL)
        return (children() - before) / CURL_SERIES * 1e6
