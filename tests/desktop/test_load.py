#!/usr/bin/python3 -B
"""Three hundred sites that misbehave in every way of the table at once, checked again and again: what is written,
what the servers see, and what the program holds.

LOAD_CYCLES says how many cycles there are, LOAD_PATIENT how many of the sites may wait for a time limit. script/load
makes the long run.
"""

import os
import socket
import sys
import time

import accessible
import desktop_test
import logs
import scenarios
from name_server import FORGET

SITES = 300
CYCLES = int(os.environ.get("LOAD_CYCLES", 4))
PATIENT = int(os.environ.get("LOAD_PATIENT", 2))
# A check takes 20 seconds at most, and two are made at a time.
LONGEST_CYCLE = SITES / 2 * 20
# By the third cycle every thread, trust store and buffer that will be needed has been there.
SETTLED = 3
# Of each site the last thirty checks are kept, so until then a cycle adds one record a site: seven texts and as
# many numbers. What the allocator keeps beyond that varies with the order in which threads come and go.
KEPT_PER_CHECK = 1024
ALLOCATOR = 4 << 20


class ThreeHundredSitesInTrouble(desktop_test.DesktopTest):
    def test_every_cycle_is_as_the_table_says_and_nothing_grows(self):
        self.sites = self.write_scenarios(scenarios.everything_at_once(SITES, PATIENT))
        self.assertEqual(len(set(self.sites)), SITES)
        self.start_program()
        self.open_dashboard()
        self.wait_for_text(self.sites[0])
        self.check_now = self.button("Check now")
        self.threads = self.held()[0]
        held = [self.cycle(number) for number in range(1, CYCLES + 1)]

        self.assert_history_as_expected("--lines", str(CYCLES))
        self.assertEqual(logs.canary_calls(), [], "somebody reached a private address")
        self.assertEqual(logs.most_visitors(), 2)
        memory = [resident for resident, _ in held[SETTLED - 1:]]
        for more, resident in enumerate(memory):
            self.assertLessEqual(resident - memory[0], ALLOCATOR + more * SITES * KEPT_PER_CHECK, f"memory: {memory}")
        descriptors = [count for _, count in held[SETTLED - 1:]]
        self.assertLessEqual(max(descriptors), descriptors[0], f"descriptors: {descriptors}")

    def cycle(self, number):
        """One round by the button; what the program holds when it is over and the threads it borrowed have ended."""
        socket.getaddrinfo(FORGET, None)
        # Records are written in the order of their identifiers.
        last = max(site for site in self.sites if scenarios.of_site(site).expected.in_history)
        start = time.monotonic()
        accessible.press(self.check_now)
        self.wait_until(lambda: self.size(last) > 0 and len(self.history(last)) >= number,
                        f"line {number} of {last}", LONGEST_CYCLE)
        self.wait_for_name(self.check_now, "Check now")
        took = time.monotonic() - start
        descriptors = self.at_rest(self.threads)[1]
        resident = self.resident()
        print(f"cycle {number}: {took:.1f} s, {resident / 2**20:.1f} MiB, {descriptors} descriptors", file=sys.stderr)
        return resident, descriptors

    def size(self, site):
        path = self.state / "data" / f"{site}.jsonl"
        return path.stat().st_size if path.exists() else 0

    def resident(self):
        with open(f"/proc/{self.program.pid}/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


if __name__ == "__main__":
    desktop_test.main()
