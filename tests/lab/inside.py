"""The first process of the namespace: builds the internet, runs the command, and ends with its exit code.

When this process ends the kernel ends everything else in the namespace, so nothing is torn down by hand.
"""

import contextlib
import os
import pathlib
import signal
import socket
import subprocess
import sys
import time

import certificates
import network
import plain_server
import servers
from addresses import HTTPS, PLAIN4, PLAIN6, RESOLVER4
from scenarios import HOSTS

TRUST_STORES = ("/etc/ssl/certs/ca-certificates.crt", "/etc/pki/tls/certs/ca-bundle.crt", "/etc/ssl/ca-bundle.pem")
# Short, so that a name server that says nothing costs a test two seconds instead of ten.
RESOLVER = f"nameserver {RESOLVER4}\noptions timeout:2 attempts:1\n"
LOCAL_NAMES = "127.0.0.1 localhost\n::1 localhost\n"
NAME_SERVICES = "passwd: files\ngroup: files\nshadow: files\nhosts: files dns\n"
# Proxies of the machine outside cannot be reached from here, and its own roots would hide ours.
FOREIGN = ("http_proxy", "https_proxy", "all_proxy", "no_proxy", "ssl_cert_file", "ssl_cert_dir", "sslkeylogfile")


def build(root):
    _run("mount", "-t", "tmpfs", "-o", "mode=0755", "kestrin-lab", root)
    for name in ("log", "certificates", "etc"):
        pathlib.Path(root, name).mkdir()
    # The domain of the machine's own name would be tried as well, after every name that does not exist.
    socket.sethostname("lab")
    network.set_up()
    certificates.make(f"{root}/certificates", sorted(HOSTS), (PLAIN4, PLAIN6))
    servers.start(root)
    _start_nginx(root)
    _cover(root, "/etc/resolv.conf", RESOLVER)
    _cover(root, "/etc/hosts", LOCAL_NAMES)
    _cover(root, "/etc/nsswitch.conf", NAME_SERVICES)
    # An X server started inside does not see which displays are taken outside and would replace their sockets.
    with contextlib.suppress(FileExistsError):
        os.mkdir("/tmp/.X11-unix")
        os.chmod("/tmp/.X11-unix", 0o1777)
    # The C library asks its cache daemon, which lives outside, before it asks our name server. The X servers of all
    # labs have the same number and would write their keyboards to the same file.
    for directory in ("/run/nscd", "/tmp/.X11-unix", "/var/lib/xkb"):
        if os.path.isdir(directory):
            _run("mount", "-t", "tmpfs", "-o", "mode=1777", "kestrin-lab", directory)
    _trust(root)


def _start_nginx(root):
    configuration = pathlib.Path(root, "nginx.conf")
    configuration.write_text(plain_server.configuration(root, HOSTS))
    with open(f"{root}/log/nginx-start.log", "w") as said:
        process = subprocess.Popen(["nginx", "-e", f"{root}/log/nginx-errors.log", "-c", str(configuration)],
                                   stdin=subprocess.DEVNULL, stdout=said, stderr=said, process_group=0)
    for _ in range(500):
        if process.poll() is not None:
            raise RuntimeError("nginx did not start: " + pathlib.Path(root, "log/nginx-start.log").read_text().strip())
        with socket.socket() as attempt:
            if attempt.connect_ex((PLAIN4, HTTPS)) == 0:
                return
        time.sleep(0.01)
    raise RuntimeError("nginx did not answer in five seconds")


def _trust(root):
    authority = pathlib.Path(root, "certificates/authority.pem").read_bytes()
    stores = [store for store in TRUST_STORES if os.path.isfile(store)]
    if not stores:
        raise RuntimeError("no file of trusted roots was found")
    for store in stores:
        _cover(root, store, pathlib.Path(store).read_bytes() + b"\n" + authority)


def _cover(root, path, content):
    """Lays our own file over one of the system's, for this namespace alone."""
    ours = pathlib.Path(root, "etc", path.strip("/").replace("/", "-"))
    ours.write_bytes(content if isinstance(content, bytes) else content.encode())
    _run("mount", "--bind", str(ours), path)


def _run(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(done.stderr.strip() or f"{command[0]} failed")


def run(command, root):
    """Runs the command to its end, collecting the orphans that fall to the first process of a namespace."""
    environment = {key: value for key, value in os.environ.items() if key.lower() not in FOREIGN}
    environment["KESTRIN_LAB"] = root
    process = subprocess.Popen(command, env=environment, close_fds=False)
    for number in (signal.SIGINT, signal.SIGQUIT):
        signal.signal(number, lambda *_: None)  # a key pressed at the terminal is the command's affair
    while True:
        child, status = os.wait()
        if child == process.pid:
            code = os.waitstatus_to_exitcode(status)
            return code if code >= 0 else 128 - code


def main():
    root, command = sys.argv[1], sys.argv[2:]
    try:
        build(root)
    except (RuntimeError, OSError) as error:
        print(f"The private internet could not be set up: {error}", file=sys.stderr)
        return 4
    try:
        return run(command, root)
    except OSError as error:
        print(f"{command[0]}: {error.strerror}", file=sys.stderr)
        return 127


if __name__ == "__main__":
    sys.exit(main())
