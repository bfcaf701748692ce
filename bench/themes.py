"""The program at rest beside a bare Qt program in the sessions of desktops that bring a platform theme for Qt. A bare
program loads the theme, as nearly every Qt program does."""

import rounds
from desktops import desktop_with_panel, few_sites, one_start
from platformthemes import THEMES
from registrations import Registrations
from rows import Result


class ThemeRows:
    def __init__(self, setting):
        self._setting = setting

    def measure(self, wanted):
        for row, theme in THEMES.items():
            if row in wanted:
                yield self._memory(row, theme)

    def _memory(self, row, theme):
        state = few_sites(self._setting.scratch / "few")
        with desktop_with_panel() as desktop:
            desktop.env.update(theme.session)
            registrations = Registrations(desktop.env["DBUS_SESSION_BUS_ADDRESS"])
            samples = rounds.interleaved(self._setting.rounds, **{
                side: lambda program=program: one_start(desktop, registrations, [program], state)["Rss"]
                for side, program in (("subject", self._setting.kestrin),
                                      ("yardstick", self._setting.program("bare_tray")))})
        subject, yardstick = samples["subject"], samples["yardstick"]
        return Result(row, rounds.ratio(subject, yardstick), rounds.median(subject), rounds.median(yardstick), "MB")
