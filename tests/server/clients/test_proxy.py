"""A real proxy in front of the server: nginx, and Caddy if it is installed. Both use the configuration in
docs/server.md."""

import os
import shutil
import subprocess
import tempfile
import unittest

from operatorsGuide import Nginx, documented
from realServer import PATIENCE, START, VERSION, RawPlayer, Server, connect, free_port, read_to_end, wait_for
from protocol import CHAT, LOGIN_ACCEPTED
from test_endings import HANDSHAKE, masked
from webSocketPlayer import WebSocket, WebSocketPlayer

BURST = 32  # new connections of one address
AT_A_TIME = 16  # connections of one address
UPDATE = b"GET /games/kelvora/ver.txt HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"


class BehindNginx(unittest.TestCase):
    def setUp(self):
        self.server = Server("--trusted-proxy", "127.0.0.1")
        self.addCleanup(self.server.end)
        self.nginx = Nginx(self.server)
        self.addCleanup(self.nginx.end)

    def tls(self, host):
        return self.nginx.context().wrap_socket(connect(self.nginx.https_port, host), server_hostname="127.0.0.1")

    def https(self, host, request):
        with self.tls(host) as one:
            one.sendall(request)
            return read_to_end(one)

    def expect_held(self, host):
        """Expects that both ways in refuse further connections of this client and accept another client's. A connection
        counts once it has sent the first byte of the game."""
        wait_for(lambda: self.server.log().count(f"connected from 127.0.0.{host}\n") == AT_A_TIME, "all connections")
        self.assertEqual(read_to_end(self.streamed(host, b"X-Forwarded-For: 192.0.2.2\r\n")), b"")
        self.assertEqual(self.status(host), b"429")
        self.assertEqual(self.status(host, b"X-Forwarded-For: 192.0.2.1\r\n" * 3), b"429", "forged by the client")
        self.assertEqual(self.status(host + 1), b"200", "another client of the same proxy")
        self.assertTrue(read_to_end(self.streamed(host + 1)).startswith(b"HTTP/1.1 200 OK"))

    def status(self, host, more=b""):
        return self.https(host, UPDATE + more + b"\r\n").split(b" ", 2)[1]

    def test_players_over_tls_and_over_the_raw_stream_share_the_arena(self):
        raw = RawPlayer(connect(self.nginx.stream_port, 7), "Raw")
        self.addCleanup(raw.close)
        raw.find(LOGIN_ACCEPTED)
        web = WebSocketPlayer(WebSocket(f"wss://127.0.0.1:{self.nginx.https_port}/play", 8, ssl=self.nginx.context()),
                              "Web")
        self.addCleanup(web.close)
        web.find(LOGIN_ACCEPTED)
        web.connection.ping()
        for one, other in ((raw, web), (web, raw)):
            one.say("hello")
            for player in (one, other):
                player.find(CHAT, lambda fields: fields[-1].endswith("hello"), start=len(player.frames))
        addresses = [line.rsplit(" ", 1)[1] for line in self.server.log().splitlines() if " connected from " in line]
        self.assertEqual(addresses, ["127.0.0.7", "127.0.0.8"])

    def test_the_web_files_come_over_tls(self):
        answer = self.https(7, UPDATE + b"\r\n")
        self.assertTrue(answer.startswith(b"HTTP/1.1 200 OK\r\n"), answer)
        self.assertTrue(answer.endswith(f"\r\n\r\ntvqver:{VERSION}\n".encode()), answer)

    def test_tls_passes_sixteen_connections_per_address(self):
        for _ in range(AT_A_TIME):
            one = self.tls(7)
            self.addCleanup(one.close)
            one.sendall(HANDSHAKE + masked(0x82, START))
        self.expect_held(7)

    def test_a_visitor_may_load_the_page_twice_and_play(self):
        for _ in range(2 * BURST):
            self.assertEqual(self.https(7, UPDATE.replace(b"/games/kelvora/ver.txt", b"/") + b"\r\n").split(b" ", 2)[1],
                             b"200")
        web = WebSocketPlayer(WebSocket(f"wss://127.0.0.1:{self.nginx.https_port}/play", 7, ssl=self.nginx.context()),
                              "Web")
        self.addCleanup(web.close)
        web.find(LOGIN_ACCEPTED)

    def streamed(self, host, more=b""):
        """Sends a request over the raw stream."""
        connection = connect(self.nginx.stream_port, host)
        self.addCleanup(connection.close)
        connection.sendall(UPDATE + more + b"\r\n")
        return connection

    def test_the_stream_passes_sixteen_connections_per_address(self):
        for _ in range(AT_A_TIME):
            one = connect(self.nginx.stream_port, 9)
            self.addCleanup(one.close)
            one.sendall(START)
        self.expect_held(9)


class BehindCaddy(unittest.TestCase):
    def setUp(self):
        self.server = Server("--trusted-proxy", "127.0.0.1")
        self.addCleanup(self.server.end)
        self.folder = tempfile.mkdtemp(prefix="kelvora-caddy-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = dict(os.environ, HOME=self.folder, XDG_DATA_HOME=self.folder, XDG_CONFIG_HOME=self.folder)
        self.port = free_port()

    def test_the_documented_configuration_is_valid_and_works(self):
        text = documented("Caddy")
        for old, new in (("games.example", f"http://127.0.0.1:{self.port}"),  # without a public certificate
                         ("127.0.0.1:2010", f"127.0.0.1:{self.server.port}")):
            self.assertEqual(text.count(old), 1, old)
            text = text.replace(old, new)
        for name, content in (("asDocumented", documented("Caddy")),
                              ("Caddyfile", "{\n  admin off\n  auto_https off\n}\n" + text)):
            with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
                file.write(content)
            subprocess.run(["caddy", "adapt", "--validate", "--adapter", "caddyfile", "--config", name],
                           cwd=self.folder, env=self.environment, check=True, capture_output=True)
        caddy = subprocess.Popen(["caddy", "run", "--adapter", "caddyfile", "--config", "Caddyfile"], cwd=self.folder,
                                 env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(caddy.wait, PATIENCE)
        self.addCleanup(caddy.terminate)
        wait_for(self.answers, "Caddy")
        web = WebSocketPlayer(WebSocket(f"ws://127.0.0.1:{self.port}/play", 8), "Web")
        self.addCleanup(web.close)
        web.find(LOGIN_ACCEPTED)
        self.assertEqual(self.server.address_of(r"\d+"), "127.0.0.8")
        # Caddy keeps its connections to the server and reuses them for different clients.
        for host in range(20, 20 + 2 * BURST):
            with connect(self.port, host) as one:
                one.sendall(UPDATE.replace(b"/games/kelvora/ver.txt", b"/") + b"X-Forwarded-For: 192.0.2.1\r\n\r\n")
                self.assertTrue(read_to_end(one).startswith(b"HTTP/1.1 200 OK"), host)

    def answers(self):
        try:
            connect(self.port, 250).close()
            return True
        except ConnectionRefusedError:
            return False


if __name__ == "__main__":
    unittest.main()
