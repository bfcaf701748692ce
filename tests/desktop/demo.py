"""demo.py PROGRAM PICTURE - inside the private internet: runs the program on a virtual desktop with a few websites,
presses Start, waits for the first cycle, prints the history lines and saves a screenshot."""

import os
import subprocess
import sys

from shown_program import ShownProgram
from virtual_desktop import VirtualDesktop
import accessible

LAB = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "lab")
SITES = ["status-200", "to-www-and-back", "status-503", "expired", "to-http", "mixed", "unknown-name", "refused",
         "early-hint", "endless-body"]


def main():
    program, picture = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    with VirtualDesktop() as desktop:
        state = os.path.join(desktop.env["XDG_DATA_HOME"], "Kestrin")
        subprocess.run([os.path.join(LAB, "write_sites"), state, "--only", *SITES], check=True)
        kestrin = ShownProgram(desktop, program)
        print("Pressing Start...", flush=True)
        accessible.press(kestrin.wait_for_button("Start"))
        histories = [os.path.join(state, "data", name + ".jsonl") for name in SITES]
        kestrin.wait_until(lambda: all(os.path.exists(path) for path in histories), "the first cycle", 90)
        kestrin.wait_for_button("Check now")
        for path in histories:
            with open(path, encoding="utf-8") as file:
                print(file.read(), end="")
        os.makedirs(os.path.dirname(picture), exist_ok=True)
        desktop.screenshot(picture)
        print(f"A screenshot lies at {picture}")


if __name__ == "__main__":
    main()
