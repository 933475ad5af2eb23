"""Third-party programs with the configurations of docs/server.md."""

import os
import re
import shutil
import ssl
import subprocess
import tempfile

from realServer import PATIENCE, PROJECT, connect, free_port, wait_for


class Nginx:
    """A real nginx with the configuration of docs/server.md: only its addresses and certificate are replaced, and a
    temporary folder holds its files."""

    program = shutil.which("nginx", path="/usr/sbin:/usr/bin:/usr/local/sbin")

    def __init__(self, server):
        self.folder = tempfile.mkdtemp(prefix="kelvora-nginx-")
        self.certificate = os.path.join(self.folder, "cert.pem")
        self.key = os.path.join(self.folder, "key.pem")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                        "-nodes", "-keyout", self.key, "-out", self.certificate, "-days", "2", "-subj", "/CN=localhost",
                        "-addext", "subjectAltName=IP:127.0.0.1"], check=True, capture_output=True)
        self.https_port, self.stream_port = free_port(), free_port()
        text = documented("nginx")
        for old, new in (("listen 443 ssl", f"listen 127.0.0.1:{self.https_port} ssl"),
                         ("listen 2011", f"listen 127.0.0.1:{self.stream_port}"),
                         ("    listen [::]:443 ssl;\n", ""),  # not every machine has IPv6
                         ("    listen [::]:2011;\n", ""),
                         ("http://127.0.0.1:2010", f"http://127.0.0.1:{server.port}"),
                         ("proxy_pass 127.0.0.1:2010", f"proxy_pass 127.0.0.1:{server.port}"),
                         ("/etc/ssl/games.pem", self.certificate), ("/etc/ssl/games.key", self.key)):
            assert text.count(old) == 1, f"{old} in docs/server.md"
            text = text.replace(old, new)
        folders = "".join(f"{kind}_temp_path {self.folder}; "
                          for kind in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
        text = text.replace("http {", "http {\n  access_log off; " + folders)
        module = "/usr/lib/nginx/modules/ngx_stream_module.so"
        config = os.path.join(self.folder, "nginx.conf")
        with open(config, "w", encoding="utf-8") as file:
            file.write(f"load_module {module};\ndaemon off; pid {self.folder}/pid; events {{}}\n" + text)
        self.log_file = os.path.join(self.folder, "log")
        self.process = subprocess.Popen([self.program, "-p", self.folder, "-e", self.log_file, "-c", config],
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for(self.answers, "nginx")

    def answers(self):
        if self.process.poll() is not None:
            with open(self.log_file, encoding="utf-8") as file:
                raise AssertionError(f"nginx does not start: {file.read()}")
        try:
            connect(self.https_port, 250).close()
            return True
        except ConnectionRefusedError:
            return False

    def context(self):
        return ssl.create_default_context(cafile=self.certificate)

    def end(self):
        self.process.terminate()
        self.process.wait(PATIENCE)
        shutil.rmtree(self.folder, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()


def documented(program):
    """That proxy's configuration in docs/server.md: the fenced block after "For <program>:"."""
    text = (PROJECT / "docs/server.md").read_text(encoding="utf-8")
    return re.search(rf"[Ff]or {program}:\n\n```\n(.*?)```", text, re.DOTALL)[1]
