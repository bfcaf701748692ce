#!/usr/bin/python3 -B
"""A disk that fills while checks are made: one sentence, nothing lost that was written, and the next cycle writes
again when there is room."""

import json
import os
import subprocess

import accessible
import desktop_test
import logs

FULL = "Could not save check history: No space left on device"
PAGE = os.sysconf("SC_PAGE_SIZE")


class AFullDisk(desktop_test.DesktopTest):
    def setUp(self):
        super().setUp()
        self.state.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k,mode=0755", "small-disk", self.state], check=True)
        self.addCleanup(subprocess.run, ["umount", self.state], check=True)
        self.addCleanup(self.end_program)

    def put_sites_file(self, content):
        # Written in place: what lies beside the directory is on another disk.
        (self.state / "sites.json").write_text(content)

    def fill_disk(self):
        with open(self.state / ".ballast", "wb", buffering=0) as ballast:
            try:
                while True:
                    ballast.write(b"\0" * PAGE)
            except OSError as error:
                self.assertEqual(error.strerror, "No space left on device")

    def free_disk(self):
        (self.state / ".ballast").unlink()

    def check(self):
        accessible.press(self.check_now)
        self.wait_for_name(self.check_now, "Checking")

    def wait_for_end(self):
        self.wait_for_name(self.check_now, "Check now")

    def fill_during_a_cycle(self, site):
        """The disk is full when the first records come to be written."""
        host = f"{site}.lab.kestrin-test.example"
        visits = lambda: sum(event["event"] == "request" and event["host"] == host for event in logs.events("requests"))
        before = visits()
        self.check()
        self.wait_until(lambda: visits() > before, f"a visit to {host}")
        self.fill_disk()
        self.wait_for_end()

    def test_it_fills_during_a_cycle_and_the_next_one_writes_again(self):
        sites = self.write_sites("slow-0", "slow-1", "status-200")
        self.start_program()
        self.open_dashboard()
        self.check_now = self.button("Check now")
        self.fill_during_a_cycle("slow-0")
        self.wait_for_text(FULL)
        self.assertEqual([self.history(site) for site in sites], [[], [], []])
        self.assertEqual([path.name for path in self.state.rglob("*") if path.is_file() and path.suffix != ".json"],
                         [".ballast"])

        self.free_disk()
        self.check()
        self.wait_for_end()
        self.wait_for_lines(sites, 1)
        self.assert_history_as_expected("--lines", "1")
        self.wait_until(lambda: FULL not in self.texts(), "the message to go")

    def test_a_line_that_it_cut_is_sealed_and_every_whole_line_stays(self):
        self.write_sites("slow-0")
        self.start_program()
        self.open_dashboard()
        self.check_now = self.button("Check now")
        self.check()
        self.wait_for_end()
        # All but the last 60 bytes of a page: the next line begins in it and needs another.
        (line,) = self.history("slow-0")
        whole = self.lengthen(line, PAGE - 60)
        self.fill_during_a_cycle("slow-0")
        self.wait_for_text(FULL)
        self.assertTrue(self.content().startswith(whole), "what was there is still there")
        self.assertIsNone(self.program.poll())

        self.free_disk()
        self.check()
        self.wait_for_end()
        self.wait_until(lambda: self.content().count(b"\n") > whole.count(b"\n"), "the next line")
        torn, sealed, added = self.content()[len(whole):].partition(b"\n")
        self.assertEqual(len(torn), 60)
        self.assertRaises(ValueError, json.loads, torn)
        self.assertEqual((sealed, json.loads(added)["site_id"], added[-1:]), (b"\n", "slow-0", b"\n"))
        self.assertEqual(added.count(b"\n"), 1)

        # A fresh start reads past the torn line.
        self.program.terminate()
        self.assertEqual(self.exit_code(), 0)
        self.start_program()
        self.open_dashboard()
        self.wait_for_text("HTTP 200")
        self.assertNotIn("Couldn’t Read Monitor Data", self.texts())

    def content(self):
        return (self.state / "data" / "slow-0.jsonl").read_bytes()

    def lengthen(self, line, size):
        """Gives the history whole lines until it has that many bytes, as an old monitor that knew more keys would."""
        record = json.loads(line)
        unknown = {**record, "note": ""}
        rest = size - len(line) - 1 - len(json.dumps(unknown, separators=(",", ":"))) - 1
        unknown["note"] = "x" * rest
        content = f"{line}\n{json.dumps(unknown, separators=(',', ':'))}\n".encode()
        self.assertEqual(len(content), size)
        (self.state / "data" / "slow-0.jsonl").write_bytes(content)
        return content


if __name__ == "__main__":
    desktop_test.main()
