"""A page that came over https plays over wss, through a proxy that does the encryption."""

import pathlib
import subprocess
import tempfile

import harness
from harness import wait_for
from pageTest import PageTest, unittest
from ports import free_port
from protocol import PLAYER_JOINED
from spy import Spy


class Proxy:
    """Ends the encryption of connections and passes their bytes on to a port of this machine."""

    def __init__(self, target, port=None):
        self.folder = tempfile.TemporaryDirectory()
        self.port = port or free_port()
        key, certificate = (pathlib.Path(self.folder.name, name) for name in ("key.pem", "certificate.pem"))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                        "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                        "-keyout", key, "-out", certificate], check=True, capture_output=True)
        configuration = pathlib.Path(self.folder.name, "nginx.conf")
        configuration.write_text(f"""
            load_module /usr/lib/nginx/modules/ngx_stream_module.so;
            daemon off; pid {self.folder.name}/pid; error_log {self.folder.name}/log;
            events {{}}
            stream {{ server {{ listen 127.0.0.1:{self.port} ssl; proxy_pass 127.0.0.1:{target};
                                ssl_certificate {certificate}; ssl_certificate_key {key}; }} }}""")
        self.process = subprocess.Popen(["nginx", "-p", self.folder.name, "-c", configuration],
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for(lambda: pathlib.Path(self.folder.name, "pid").exists(), "the proxy")

    def close(self):
        harness.stop(self.process)
        self.folder.cleanup()


class Secure(PageTest):

    def test_the_game_runs_over_wss(self):
        server = self.start_server()
        proxy = Proxy(server.port)
        self.addCleanup(proxy.close)
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        page = self.open(proxy.port, scheme="https")
        page.wait_for("dialog('Connect')")
        self.assertEqual(page.see("location.protocol"), "https:")
        self.assertEqual(page.see("named('Server Port:').value"), str(proxy.port))
        page.connect()
        self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"Ann")
        page.wait_for_status("Connected")


class UsualPort(PageTest):
    """The proxy seems to be at port 443."""

    proxy_port = free_port()
    browser_options = (f"host-resolver-rules=MAP 127.0.0.1:443 127.0.0.1:{proxy_port}",)
    browser_preferences = {"network.socket.forcePort": f"443={proxy_port}"}

    def test_the_list_comes_from_the_page_s_server(self):
        server = self.start_server("--notes", "the only one")
        proxy = Proxy(server.port, self.proxy_port)
        self.addCleanup(proxy.close)
        page = self.open(443, scheme="https")
        page.wait_for("dialog('Connect')")
        self.assertEqual(page.see("location.port"), "")
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("by('td', 'the only one')", "the server in the list")


if __name__ == "__main__":
    unittest.main()
