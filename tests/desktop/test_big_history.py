#!/usr/bin/python3 -B
"""A history of years: it is loaded beside a program that goes on answering, in little memory, and giving up on it is
prompt.

HISTORY_MEGABYTES is the size of the file. script/load takes one of 5 GB.
"""

import json
import os
import shutil
import sys
import time

import accessible
import desktop_test
import logs
from desktop_test import PATIENCE, name_of

MEGABYTE = 10**6
SIZE = int(os.environ.get("HISTORY_MEGABYTES", 300)) * MEGABYTE
# To have time to look at a load, the same file stands under as many names as make this much to read. Its lines are none
# that are recognised without being parsed.
TO_READ = max(SIZE, 6000 * MEGABYTE)
LOADING = "Loading monitor history…"
# A read is given up after the chunk of 64 KB that is being read; the rest is the end of a process.
AT_ONCE = 5
# A user notices a pause of a second, and the machine may be building.
ANSWERED = 2
# Two readers hold a chunk of 64 KB each and one line of at most 8 MiB between them, with what its parser needs for it.
MEMORY = 32 << 20


def line(number, status=200, **further):
    """As a monitor writes it, every five minutes; with further keys only the parser can tell what it says."""
    moment = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(1_600_000_000 + 300 * number))
    up = 200 <= status <= 399
    record = {"timestamp": moment, "site_id": "status-200", "url": "https://status-200.lab.kestrin-test.example/",
              "dns_ok": True, "ips": ["192.88.99.10", "3ffe:c058:63::10"], "http_status": status,
              "elapsed_ms": 40 + number % 90, "up": up, **({} if up else {"error": f"HTTP {status}"}),
              **further}
    return json.dumps(record, separators=(",", ":")).encode() + b"\n"


class BigHistory(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        (self.state / "data").mkdir(parents=True)
        # Not only with the whole desktop, or every test's file would be there at once.
        self.addCleanup(shutil.rmtree, self.data)

    def history_path(self, site):
        return self.state / "data" / f"{site}.jsonl"

    def put_big_history(self, last, **further):
        """A day's lines again and again, now and then one of a failure, and at the end the line given."""
        block = b"".join(line(number, 503 if number % 97 == 0 else 200, **further) for number in range(5000))
        with open(self.history_path("status-200"), "wb", buffering=0) as file:
            for _ in range(SIZE // len(block) + 1):
                file.write(block)
            file.write(last)

    def put_long_load(self):
        """Sites with one big history under all their names."""
        self.put_big_history(line(0), note="not of this program")
        count = TO_READ // SIZE
        sites = [{"id": f"site-{number}", "name": f"Site {number}", "url": "https://status-200.lab.kestrin-test.example/"}
                 for number in range(count)]
        for site in sites:
            os.link(self.history_path("status-200"), self.history_path(site["id"]))
        self.put_sites_file(json.dumps({"sites": sites}))
        self.names = [site["name"] for site in sites]

    def start_loading(self):
        self.start_program(wait=False)
        self.wait_until(self.icon_is_there, "the icon")
        self.open_dashboard()
        return self.wait_for_text(LOADING)

    def peak(self):
        """The most memory the program has ever held."""
        with open(f"/proc/{self.program.pid}/status", encoding="ascii") as file:
            return next(int(text.split()[1]) * 1024 for text in file if text.startswith("VmHWM"))

    def peak_without_history(self):
        self.start_program()
        self.open_dashboard()
        self.wait_for_text("Shop")
        peak = self.peak()
        self.program.terminate()
        self.assertEqual(self.exit_code(), 0)
        return peak

    def read_to_the_end(self, peak_without_history):
        start = time.monotonic()
        self.start_program()
        self.open_dashboard()
        self.wait_for_text("HTTP 599", 10 * PATIENCE)
        more = self.peak() - peak_without_history
        print(f"shown {time.monotonic() - start:.1f} s after the start, with {more / 2**20:.1f} MiB more at the peak",
              file=sys.stderr)
        self.assertIn("DOWN", self.texts())
        self.assertLess(more, MEMORY)

    def end_while_loading(self, end):
        """Somebody ends it while it loads."""
        label = self.start_loading()
        self.assertEqual(name_of(label), LOADING)
        start = time.monotonic()
        end()
        self.assertEqual(self.exit_code(AT_ONCE), 0)
        print(f"ended within {time.monotonic() - start:.2f} s", file=sys.stderr)


class Loading(BigHistory):
    def test_it_is_read_to_its_last_line_in_little_memory_and_the_next_check_is_added(self):
        self.write_sites("status-200", names={"status-200": "Shop"})
        before = self.peak_without_history()
        self.put_big_history(line(10**6, 599))
        size = self.history_path("status-200").stat().st_size
        self.read_to_the_end(before)
        self.press("Check now")
        self.wait_for_text("HTTP 200")
        with open(self.history_path("status-200"), "rb") as file:
            file.seek(size)
            (added,) = file.read().splitlines()
        self.assertEqual(json.loads(added)["http_status"], 200)

    def test_a_hole_of_nothing_is_one_line_too_long_to_be_read(self):
        self.write_sites("status-200", names={"status-200": "Shop"})
        before = self.peak_without_history()
        with open(self.history_path("status-200"), "wb") as file:
            file.write(line(1))
            file.seek(SIZE, os.SEEK_CUR)
            file.write(b"\n" + line(2, 599))
        self.read_to_the_end(before)

    def test_controls_answer_meanwhile_and_so_do_start_and_stop(self):
        self.put_long_load()
        before = len(logs.events("nginx"))
        label = self.start_loading()
        buttons = [self.button(name) for name in ("Start", "Check now", "Quit")]
        for label_before, label_after in (("Start", "Stop"), ("Stop", "Start")):
            self.icon().choose(label_before)
            self.wait_until(lambda: label_after in self.icon().menu().values(), f"the entry {label_after!r}")
        longest, asked = 0, 0
        while self.still_loads(label):
            start = time.monotonic()
            for button in buttons:
                self.assertTrue(name_of(button))
            longest = max(longest, time.monotonic() - start)
            asked += 1
        print(f"asked {asked} times during the load, answered in {longest:.3f} s at most", file=sys.stderr)
        self.assertLess(longest, ANSWERED)
        self.assertGreater(asked, 10, "there was no load to look at")
        self.wait_for_text(self.names[-1])
        self.assertEqual([text for text in self.texts() if text in self.names], self.names)
        self.assertEqual(set(self.texts()) & {"UP", "DOWN", "NO DATA"}, {"UP"})
        self.assertIn("Monitoring paused", self.texts())
        self.assertEqual(len(logs.events("nginx")), before, "stopped before the load ended, it checked all the same")

    @staticmethod
    def still_loads(label):
        return name_of(label) == LOADING and accessible.is_showing(label)


class GivingUp(BigHistory):
    def setUp(self):
        super().setUp()
        self.put_long_load()

    def test_a_signal_ends_the_program_at_once(self):
        self.end_while_loading(lambda: self.program.terminate())

    def test_quit_ends_the_program_at_once(self):
        self.end_while_loading(lambda: accessible.press(self.button("Quit")))


if __name__ == "__main__":
    desktop_test.main()
