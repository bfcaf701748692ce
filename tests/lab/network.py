"""Sets up the one interface of the namespace and the place where packets vanish."""

import ipaddress
import subprocess

from addresses import DARK4, DARK6, LOCAL, PLAIN4, PLAIN6


def set_up():
    lines = ["link set lo up"]
    for address in LOCAL:
        version = ipaddress.ip_address(address).version
        lines.append(f"address add {address}/32 dev lo" if version == 4
                     else f"address add {address}/{64 if address.startswith('fe80') else 128} dev lo nodad")
    _ip(lines)
    _make_the_dark()


def _make_the_dark():
    """A route that swallows: one that refuses, as the kernel's own black holes do, would fail at once.

    Nobody reads the tun device. Where the device file is not ours to open, a pair of virtual cables does it, by
    sending to a neighbour that nobody is.
    """
    routes = [f"route add {DARK4}/32 dev dark src {PLAIN4}", f"route add {DARK6}/128 dev dark src {PLAIN6}"]
    try:
        _ip(["tuntap add dev dark mode tun", "link set dark up", *routes])
    except RuntimeError as no_tun:
        nobody = "lladdr 02:00:00:00:00:66 dev dark nud permanent"
        try:
            _ip(["link add dark type veth peer name darker", "link set darker up", "link set dark up", *routes,
                 f"neighbour replace {DARK4} {nobody}", f"neighbour replace {DARK6} {nobody}"])
        except RuntimeError as no_veth:
            raise RuntimeError(f"neither a tun device ({no_tun}) nor a veth pair ({no_veth}) can be made") from None


def _ip(lines):
    done = subprocess.run(["ip", "-batch", "-"], input="\n".join(lines), capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(done.stderr.strip().splitlines()[0])
