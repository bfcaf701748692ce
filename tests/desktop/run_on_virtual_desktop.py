"""run_on_virtual_desktop.py PROGRAM - starts the program on a desktop of its own, opens the dashboard, says where a
picture of it lies, and stays until Ctrl-C. Nothing stays behind: the desktop, its home and the picture go with it."""

import os
import signal
import sys

from shown_program import ShownProgram
from virtual_desktop import VirtualDesktop


def stop(*_):
    raise KeyboardInterrupt


def main():
    program = os.path.abspath(sys.argv[1])
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, stop)
    try:
        with VirtualDesktop() as desktop:
            kestrin = ShownProgram(desktop, program)
            kestrin.wait_for_button("Quit")
            picture = desktop.screenshot(os.path.join(desktop.root, "screenshot.png"))
            print(f"Kestrin runs on the virtual display {desktop.env['DISPLAY']}; a screenshot lies at {picture} "
                  "until you press Ctrl-C.", flush=True)
            return kestrin.process.wait()
    except KeyboardInterrupt:
        return 0


if __name__ == "__main__":
    sys.exit(main())
