#!/usr/bin/python3 -B
"""Stop during a cycle: nothing is written any more, whatever still comes back."""

import accessible
import desktop_test
import logs


def visits(event):
    return sum(entry["event"] == event for entry in logs.events("requests"))


class StoppingDuringACycle(desktop_test.DesktopTest):
    def test_nothing_is_written_after_stop(self):
        self.write_sites("crowd")
        self.start_program()
        self.open_dashboard()
        check_now = self.button("Check now")
        visited = visits("request")
        start_stop = self.press("Start")
        # Some have answered by now, and two are being asked.
        self.wait_until(lambda: visits("request") >= visited + 5, "some visits")
        self.wait_for_name(start_stop, "Stop")
        accessible.press(start_stop)
        self.wait_for_name(start_stop, "Start")
        self.wait_for_name(check_now, "Check now")

        self.wait_until(lambda: visits("open") == visits("close"), "the servers to be left alone")
        self.icon().wait_until_heard()
        self.assertEqual(self.history_sizes(), {})
        self.assertLess(visits("request") - visited, 12, "the cycle went on to its end")
        self.assertIn("Monitoring paused", self.texts())

        # The next cycle is a whole one and writes one line of each: none of the first comes late.
        accessible.press(check_now)
        sites = [f"slow-{number}" for number in range(12)]
        self.wait_for_lines(sites, 1)
        self.wait_for_name(check_now, "Check now")
        self.assert_history_as_expected("--lines", "1")

    def test_stop_and_start_at_once_leave_one_whole_cycle(self):
        sites = self.write_sites("slow-0", "slow-1", "slow-2", "slow-3")
        self.start_program()
        self.open_dashboard()
        check_now = self.button("Check now")
        start_stop = self.press("Start")
        self.wait_for_name(check_now, "Checking")
        for name in ("Stop", "Start"):
            self.wait_for_name(start_stop, name)
            accessible.press(start_stop)
        self.wait_for_name(start_stop, "Stop")
        self.wait_for_lines(sites, 1)
        self.wait_for_name(check_now, "Check now")
        self.wait_until(lambda: visits("open") == visits("close"), "the servers to be left alone")
        self.icon().wait_until_heard()
        self.assert_history_as_expected("--lines", "1")


if __name__ == "__main__":
    desktop_test.main()
