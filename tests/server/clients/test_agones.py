"""Reports to Agones: the real server beside a scripted sidecar, which may be late, absent, broken or silent."""

import http.server
import json
import os
import signal
import threading
import unittest
from unittest import mock

from realServer import PATIENCE, RawPlayer, Server, VERSION, connect, free_port, protocol, read_to_end, wait_for


class Sidecar:
    """Answers as Agones documents it. `statuses` has the answers to some calls instead of 200. A call in `silent` gets
    none until `release`."""

    def __init__(self, port):
        self.port = port
        self.calls = []  # pairs of path and body
        self.statuses = {}
        self.silent = set()
        self.description = {"object_meta": {"name": "kelvora-x7k"}, "status": {"state": "Ready"}}
        self.released = threading.Event()
        self.http = None

    def start(self):
        sidecar = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def answer(self):
                body = self.rfile.read(int(self.headers["Content-Length"] or 0)) or b"{}"
                call = f"{self.command} {self.path}"
                sidecar.calls.append((call, json.loads(body), self.headers["Content-Type"]))
                if call in sidecar.silent:
                    sidecar.released.wait(PATIENCE)
                    return
                self.send_response(sidecar.statuses.get(call, 200))
                self.end_headers()
                self.wfile.write(json.dumps(sidecar.description if call == PLACE else {}).encode())

            do_POST = do_PATCH = do_GET = answer

            def log_message(self, *_):
                pass

        http.server.ThreadingHTTPServer.allow_reuse_address = True
        self.http = http.server.ThreadingHTTPServer(("127.0.0.1", self.port), Handler)
        self.http.daemon_threads = True
        threading.Thread(target=self.http.serve_forever, daemon=True).start()
        return self

    def stop(self):
        self.released.set()
        if self.http:
            self.http.shutdown()
            self.http.server_close()
            self.http = None

    def names(self):
        return [call for call, _, _ in self.calls]

    def count(self, call):
        return self.names().count(call)

    def players(self):
        """The numbers of players so far."""
        return [body["count"] for call, body, _ in self.calls if call == COUNTER]


READY, HEALTH, ALLOCATE, SHUTDOWN = "POST /ready", "POST /health", "POST /allocate", "POST /shutdown"
PLACE = "GET /gameserver"
COUNTER = "PATCH /v1beta1/counters/players"


class Agones(unittest.TestCase):
    def setUp(self):
        self.sidecar = Sidecar(free_port())
        self.addCleanup(self.sidecar.stop)

    def server(self, *options):
        # A proxy has no business between the two.
        environment = {"AGONES_SDK_HTTP_PORT": str(self.sidecar.port), "http_proxy": "http://127.0.0.1:9"}
        with mock.patch.dict(os.environ, environment):
            server = Server(*options)
        self.addCleanup(server.process.kill)
        return server

    def wait(self, condition, what):
        wait_for(condition, f"{what}; there were {self.sidecar.calls}")

    def player(self, server, name, colour=0):
        player = RawPlayer(connect(server.port), name, colour)
        self.addCleanup(player.close)
        player.find(protocol.LOGIN_ACCEPTED)
        return player

    def test_a_server_is_ready_healthy_allocated_and_over(self):
        self.sidecar.start()
        with self.server("--bots", "2") as server:
            self.wait(lambda: self.sidecar.count(HEALTH) >= 2, "two health calls")
            self.assertEqual(self.sidecar.names()[0], READY)
            self.assertEqual(self.sidecar.count(READY), 1)
            self.assertEqual(self.sidecar.count(ALLOCATE), 0)
            ann = self.player(server, "Ann")
            self.wait(lambda: self.sidecar.count(ALLOCATE) == 1 and "1" in self.sidecar.players(), "an allocation")
            bob = self.player(server, "Bob", 1)
            self.wait(lambda: self.sidecar.players()[-1] == "2", "two players")
            bob.close()
            self.wait(lambda: self.sidecar.players()[-1] == "1", "one player")
            self.assertEqual(self.sidecar.count(READY), 1, "somebody is still there")
            ann.close()
            self.wait(lambda: self.sidecar.count(READY) == 2 and self.sidecar.players()[-1] == "0", "an empty server")
            self.assertEqual(self.sidecar.count(SHUTDOWN), 0)
        self.wait(lambda: self.sidecar.names()[-1] == SHUTDOWN, "the last call")
        self.assertEqual({kind for call, _, kind in self.sidecar.calls if call != PLACE}, {"application/json"})
        self.assertEqual({json.dumps(body) for call, body, _ in self.sidecar.calls if call != COUNTER}, {"{}"})

    def test_the_sidecar_may_come_later(self):
        with self.server() as server:
            wait_for(lambda: "cannot tell Agones /ready" in server.log(), "a line in the log")
            self.player(server, "Ann")
            self.sidecar.start()
            self.wait(lambda: self.sidecar.count(ALLOCATE) == 1, "an allocation")
            self.assertEqual(self.sidecar.names()[0], READY)
            self.assertEqual(server.log().count("cannot tell Agones /ready"), 1, "the same reason is logged once")

    def test_calls_that_fail_are_repeated(self):
        self.sidecar.statuses = {READY: 500, ALLOCATE: 503, COUNTER: 500}
        self.sidecar.start()
        with self.server() as server:
            self.wait(lambda: self.sidecar.count(READY) >= 2, "two calls")
            self.assertEqual(set(self.sidecar.names()), {READY})
            del self.sidecar.statuses[READY]
            self.player(server, "Ann")
            self.wait(lambda: self.sidecar.count(ALLOCATE) >= 2 and self.sidecar.count(COUNTER) >= 2, "repetitions")
            self.sidecar.statuses.clear()
            wait_for(lambda: "Agones keeps this server for its players" in server.log(), "a line in the log")
            self.assertIn("cannot tell Agones /allocate: status 503", server.log())

    def test_a_restarted_sidecar_is_told_on(self):
        self.sidecar.start()
        with self.server() as server:
            self.wait(lambda: HEALTH in self.sidecar.names(), "a health call")
            self.sidecar.stop()
            wait_for(lambda: "cannot tell Agones /health" in server.log(), "a line in the log")
            self.sidecar.calls.clear()
            self.sidecar.start()
            self.wait(lambda: HEALTH in self.sidecar.names(), "a health call")
            self.assertNotIn(READY, self.sidecar.names(), "Agones knows, and may have allocated the server since")

    def test_without_a_counter_the_players_are_not_told(self):
        self.sidecar.statuses = {COUNTER: 404}
        self.sidecar.start()
        with self.server() as server:
            self.wait(lambda: self.sidecar.count(COUNTER) == 1, "the call")
            self.player(server, "Ann")
            self.wait(lambda: ALLOCATE in self.sidecar.names(), "an allocation")
            health = self.sidecar.count(HEALTH)
            self.wait(lambda: self.sidecar.count(HEALTH) >= health + 2, "health calls")
            self.assertEqual(self.sidecar.count(COUNTER), 1)

    def test_lists_learn_where_players_reach_the_server(self):
        self.sidecar.start()
        with Server() as games, mock.patch.dict(os.environ, {"no_proxy": "*"}):
            with self.server("--publish", f"http://127.0.0.1:{games.port}", "--notes", "in a cluster") as server:
                self.wait(lambda: self.sidecar.count(PLACE) >= 2, "repeated questions")
                self.assertNotIn("announced", server.log())
                self.sidecar.description["status"].update(address="192.0.2.7", ports=[{"name": "game", "port": 7123}])
                wait_for(lambda: "announced to" in server.log(), "an announcement")
                with connect(games.port) as connection:
                    connection.sendall(b"GET /games/kelvora/gethosts.php?version=" + VERSION.encode() +
                                       b" HTTP/1.0\r\n\r\n")
                    self.assertIn(b"[192.0.2.7|7123|0|in a cluster|0|6]", read_to_end(connection))

    def test_a_silent_sidecar_delays_nobody(self):
        self.sidecar.silent = {READY}
        self.sidecar.start()
        with self.server() as server:
            self.wait(lambda: READY in self.sidecar.names(), "the call")
            self.player(server, "Ann")
            self.wait(lambda: self.sidecar.count(READY) >= 2, "a repetition")
            self.sidecar.silent.clear()
            self.wait(lambda: ALLOCATE in self.sidecar.names(), "an allocation")

    def test_a_silent_sidecar_does_not_keep_the_server_from_stopping(self):
        self.sidecar.silent = {SHUTDOWN}
        self.sidecar.start()
        with self.server():
            self.wait(lambda: HEALTH in self.sidecar.names(), "a health call")
        self.wait(lambda: SHUTDOWN in self.sidecar.names(), "the last call")

    def test_a_drained_server_is_over(self):
        self.sidecar.start()
        with self.server("--drain", "3600", "--round-seconds", "86400") as server:
            ann = self.player(server, "Ann")
            self.wait(lambda: ALLOCATE in self.sidecar.names(), "an allocation")
            server.process.send_signal(signal.SIGTERM)
            ann.find(protocol.SERVER_TEXT, lambda fields: fields[0] == "The server stops when this round is over.")
            health = self.sidecar.count(HEALTH)
            self.wait(lambda: self.sidecar.count(HEALTH) > health, "a health call while people play on")
            self.assertNotIn(SHUTDOWN, self.sidecar.names())
            ann.close()
            self.assertEqual(server.process.wait(PATIENCE), 0)
            self.wait(lambda: self.sidecar.names()[-1] == SHUTDOWN, "the last call")

    def test_an_impossible_port_is_refused(self):
        for port in ("", "0", "65536", "http"):
            with mock.patch.dict(os.environ, {"AGONES_SDK_HTTP_PORT": port}):
                with self.assertRaisesRegex(AssertionError, "AGONES_SDK_HTTP_PORT must be a port"):
                    Server()


if __name__ == "__main__":
    unittest.main()
