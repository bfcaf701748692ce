"""run_on_virtual_desktop.py PROGRAM - starts the program on a desktop of its own, opens the dashboard, says where a
picture of it lies, and stays until Ctrl-C. Nothing stays behind: the desktop, its home and the picture go with it."""

import os
import signal
import sys

from virtual_desktop import VirtualDesktop, wait_until
import accessible


def stop(*_):
    raise KeyboardInterrupt


def main():
    program = os.path.abspath(sys.argv[1])
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, stop)
    try:
        with VirtualDesktop() as desktop:
            desktop.start_panel()
            desktop.spawn(["dunst"])
            kestrin = desktop.spawn([program], "kestrin")
            wait_until(lambda: "StatusNotifierItem" in desktop.tray_items(), what="the icon in the panel")
            desktop.run([program])  # a second start opens the dashboard of the first
            accessible.connect(desktop.env)
            accessible.wait_for(accessible.wait_for_application(), "Quit", "push button")
            picture = desktop.screenshot(os.path.join(desktop.root, "screenshot.png"))
            print(f"Kestrin runs on the virtual display {desktop.env['DISPLAY']}; a screenshot lies at {picture} "
                  "until you press Ctrl-C.", flush=True)
            return kestrin.wait()
    except KeyboardInterrupt:
        return 0


if __name__ == "__main__":
    sys.exit(main())
