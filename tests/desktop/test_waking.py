#!/usr/bin/python3 -B
"""A program that is held for several intervals, as machine sleep holds it, checks once when it goes on. It takes five
minutes, for the shortest interval is one; script/load runs it.
"""

import datetime
import json
import signal
import time

import desktop_test
from desktop_test import PATIENCE

INTERVAL = 60
ASLEEP = 200


class Waking(desktop_test.DesktopTest):
    def moment(self, number):
        return datetime.datetime.fromisoformat(json.loads(self.history("status-200")[number])["timestamp"])

    def test_one_cycle_follows_and_the_next_one_a_whole_interval_later(self):
        sites = self.write_sites("status-200", interval=INTERVAL)
        self.start_program()
        self.icon().choose("Start")
        self.wait_for_lines(sites, 1)
        self.program.send_signal(signal.SIGSTOP)
        time.sleep(ASLEEP)
        awake = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        self.program.send_signal(signal.SIGCONT)
        self.wait_for_lines(sites, 2)
        self.assertGreaterEqual(self.moment(1), awake)
        self.wait_for_lines(sites, 3, INTERVAL + PATIENCE)
        # Both are told in whole seconds.
        self.assertGreaterEqual((self.moment(2) - self.moment(1)).total_seconds(), INTERVAL - 1)
        self.assert_history_as_expected("--lines", "3")


if __name__ == "__main__":
    desktop_test.main()
