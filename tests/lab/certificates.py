"""Makes the authority of the private internet and one certificate of each kind that its table names."""

import datetime
import pathlib
import subprocess

# kind -> (signed by; None is itself, valid from, valid to), in days from now
KINDS = {
    "good": ("authority", -1, 30),
    "expired": ("authority", -30, -1),
    "not-yet-valid": ("authority", 2, 30),
    "wrong-host": ("authority", -1, 30),
    "self-signed": (None, -1, 30),
    "unknown-ca": ("stranger", -1, 30),
}

# "openssl ca" alone, of Debian's version, signs for a span of time that does not begin now.
CONFIGURATION = """
[ca]
default_ca = lab
[lab]
dir = {directory}
database = $dir/database
new_certs_dir = $dir
rand_serial = yes
default_md = sha256
policy = anything
unique_subject = no
[anything]
commonName = supplied
[req]
distinguished_name = empty
[empty]
[authority]
basicConstraints = critical,CA:true
keyUsage = critical,keyCertSign,cRLSign
subjectKeyIdentifier = hash
[leaf]
basicConstraints = critical,CA:false
extendedKeyUsage = serverAuth
subjectAltName = {names}
"""


def make(directory, names, addresses):
    """Leaves {kind}.pem and {kind}.key in the directory, and authority.pem, which a client has to trust."""
    directory = pathlib.Path(directory)
    (directory / "database").touch()
    everyone = ",".join([f"DNS:{name}" for name in names] + [f"IP:{address}" for address in addresses])
    _configure(directory, everyone)
    for name in ("authority", "stranger", "leaf"):
        _request(directory, name)
    for name in ("authority", "stranger"):
        _sign(directory, name, name, None, "authority", -400, 400)
    for kind, (signer, valid_from, valid_to) in KINDS.items():
        if kind == "wrong-host":
            continue
        _sign(directory, kind, "leaf", signer, "leaf", valid_from, valid_to)
    _configure(directory, "DNS:somebody-else.example")
    _sign(directory, "wrong-host", "leaf", *KINDS["wrong-host"][:1], "leaf", *KINDS["wrong-host"][1:])


def _configure(directory, names):
    (directory / "openssl.cnf").write_text(CONFIGURATION.format(directory=directory, names=names))


def _request(directory, name):
    _openssl("req", "-new", "-config", directory / "openssl.cnf", "-subj", f"/CN=Kestrin lab {name}", "-nodes",
             "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-keyout", directory / f"{name}.key",
             "-out", directory / f"{name}.csr")


def _sign(directory, name, request, signer, kind, valid_from, valid_to):
    itself = ["-selfsign", "-keyfile", directory / f"{request}.key"]
    other = ["-keyfile", directory / f"{signer}.key", "-cert", directory / f"{signer}.pem"]
    _openssl("ca", "-batch", "-notext", "-config", directory / "openssl.cnf", "-extensions", kind,
             "-startdate", _moment(valid_from), "-enddate", _moment(valid_to), *(other if signer else itself),
             "-in", directory / f"{request}.csr", "-out", directory / f"{name}.pem")


def _moment(days):
    when = datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(days=days)
    return when.strftime("%Y%m%d%H%M%SZ")


def _openssl(*arguments):
    done = subprocess.run(["openssl", *map(str, arguments)], capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"openssl {arguments[0]} failed: {done.stderr.strip()}")
