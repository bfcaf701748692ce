"""What every measurement is given."""

import pathlib
from dataclasses import dataclass


@dataclass(frozen=True)
class Setting:
    build: pathlib.Path  # of the preset release
    scratch: pathlib.Path  # gone after the run
    rounds: int
    quick: bool

    def program(self, name):
        return str(self.build / "bench" / name)

    @property
    def kestrin(self):
        return str(self.build / "kestrin")
