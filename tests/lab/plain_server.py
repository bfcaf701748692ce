"""Writes the configuration of nginx for every host of the table with plain pages."""

from addresses import HTTPS, LAST4, OTHER_HTTPS, PLAIN4, PLAIN6
from table import Page

MAIN = """
user root;
daemon off;
master_process off;
pid {root}/nginx.pid;
error_log {root}/log/nginx-errors.log warn;
events {{ worker_connections 512; }}
http {{
    log_format lab escape=json '{{"server": "nginx", "connection": "$connection", "ended": $msec, '
        '"took": $request_time, "host": "$host", "target": "$request_uri", "status": $status, '
        '"protocol": "$server_protocol", "agent": "$http_user_agent"}}';
    access_log {root}/log/nginx.jsonl lab;
    client_body_temp_path {root}/nginx-body;
    proxy_temp_path {root}/nginx-proxy;
    fastcgi_temp_path {root}/nginx-fastcgi;
    uwsgi_temp_path {root}/nginx-uwsgi;
    scgi_temp_path {root}/nginx-scgi;
    server_names_hash_max_size 4096;
    server_names_hash_bucket_size 256;
    absolute_redirect off;
    server_tokens off;
    ssl_certificate_key {root}/certificates/leaf.key;
{servers}
}}
"""

SERVER = """
    server {{
{listen}
        server_name {name};
        ssl_certificate {root}/certificates/{certificate}.pem;
{pages}
    }}
"""


def configuration(root, hosts):
    servers = [_server(root, "_", "good", (Page(200),), HTTPS, " default_server"),
               _server(root, "_", "good", (Page(200),), OTHER_HTTPS, " default_server")]
    servers += [_server(root, name, host.certificate, host.pages, host.port)
                for name, host in hosts.items() if host.pages and isinstance(host.pages[0], Page)]
    return MAIN.format(root=root, servers="".join(servers))


def _server(root, name, certificate, pages, port, suffix=""):
    listen = [f"listen {PLAIN4}:{port} ssl http2{suffix};", f"listen [{PLAIN6}]:{port} ssl http2{suffix};"]
    if port == HTTPS:
        listen.append(f"listen {LAST4}:{port} ssl{suffix};")
    return SERVER.format(root=root, name=name, certificate=certificate, listen=_indented(listen),
                         pages=_indented(map(_location, pages)))


def _location(page):
    # Without a text nginx answers a status of its own choice to some of these, with one it sends the number as it is.
    text = page.location or page.body or ("" if page.status in (204, 304) else "lab")
    kind = _quoted(page.content_type)
    return f"location = {page.path} {{ default_type {kind}; return {page.status} {_quoted(text)}; }}"


def _quoted(text):
    # nginx takes no word longer than its buffer, and a dollar sign for the name of a variable.
    if "$" in text or len(text) > 4000:
        raise ValueError(f"nginx cannot be told to answer {text[:40]!r}")
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def _indented(lines):
    return "\n".join(f"        {line}" for line in lines)
