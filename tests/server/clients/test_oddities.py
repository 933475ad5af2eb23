"""Everyday programs and odd requests: curl, wget, HTTP of other versions, and slow clients."""

import os
import random
import shutil
import socket
import subprocess
import tempfile
import threading
import time
import unittest

from realServer import PATIENCE, VERSION, RawPlayer, Server, connect, login, read_to_end
from protocol import CHAT, LOGIN_ACCEPTED, POSITION_REPORT, frame
from test_endings import HALF_OPEN, HANDSHAKE, masked

STORM_WORDS = int(os.environ.get("KELVORA_STORM_WORDS", "15"))
UPDATE_FILE = f"tvqver:{VERSION}\n".encode()
UPDATE = "/games/kelvora/ver.txt"


class Site(unittest.TestCase):
    """A server with a few files."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="kelvora-site-")
        self.addCleanup(shutil.rmtree, self.folder)
        with open(os.path.join(self.folder, "index.html"), "w", encoding="utf-8") as file:
            file.write("<p>the game</p>")
        with open(os.path.join(self.folder, "large.bin"), "wb") as file:
            file.write(bytes(range(256)) * 8192)
        self.server = Server("--site", self.folder)
        self.addCleanup(self.server.end)
        self.url = f"http://127.0.0.1:{self.server.port}"

    def run_program(self, *words):
        result = subprocess.run(words, capture_output=True, timeout=PATIENCE)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def ask(self, request, host=1):
        with connect(self.server.port, host) as one:
            one.sendall(request)
            return read_to_end(one)


class EverydayPrograms(Site):
    def test_curl(self):
        for words in ((), ("--http1.0",), ("--http2",), ("--compressed",), ("-H", "Expect: 100-continue"),
                      ("-H", "Connection: keep-alive"), ("-r", "0-3"), ("--path-as-is",), ("-H", "Host;")):
            with self.subTest(words=words):
                self.assertEqual(self.run_program("curl", "-sS", *words, self.url + UPDATE), UPDATE_FILE)
        self.assertEqual(self.run_program("curl", "-sS", self.url + "/", self.url + "/"), b"<p>the game</p>" * 2)
        self.assertEqual(self.run_program("curl", "-sS", self.url + "/large.bin"), bytes(range(256)) * 8192)
        head = self.run_program("curl", "-sSI", self.url + "/large.bin")
        self.assertTrue(head.startswith(b"HTTP/1.1 200 OK\r\n"), head)
        self.assertIn(b"Content-Length: 2097152\r\n", head)
        tag = next(line.split(b": ")[1].strip() for line in head.splitlines() if line.startswith(b"ETag"))
        self.assertEqual(self.run_program("curl", "-sS", "-o", "-", "-w", "%{http_code}", "-H",
                                          f"If-None-Match: {tag.decode()}", self.url + "/large.bin"), b"304")
        for method, status in (("POST", b"405"), ("OPTIONS", b"405"), ("TRACE", b"405")):
            self.assertEqual(self.run_program("curl", "-sS", "-o", "/dev/null", "-w", "%{http_code}", "-X", method,
                                              "-d", "x" * 5000, self.url + "/"), status)
        self.assertEqual(self.run_program("curl", "-sS", "--proxy", self.url, "http://elsewhere.example" + UPDATE),
                         UPDATE_FILE, "an absolute address")

    def test_curl_with_an_http_2_preface_is_refused(self):
        result = subprocess.run(["curl", "-sS", "--http2-prior-knowledge", self.url + UPDATE], capture_output=True,
                                timeout=PATIENCE)
        self.assertNotEqual(result.returncode, 0)
        self.assertEqual(self.run_program("curl", "-sS", self.url + UPDATE), UPDATE_FILE)

    def test_wget(self):
        self.assertEqual(self.run_program("wget", "-q", "-O", "-", self.url + UPDATE), UPDATE_FILE)
        self.assertEqual(self.run_program("wget", "-q", "-O", "-", self.url + "/", self.url + "/large.bin"),
                         b"<p>the game</p>" + bytes(range(256)) * 8192)

    def test_a_request_in_a_websocket_that_ends_at_once(self):
        request = masked(0x82, f"GET {UPDATE} HTTP/1.0\r\n\r\n".encode())
        answer = self.ask(HANDSHAKE + request + masked(0x88, b"\x03\xe8"))
        self.assertTrue(answer.startswith(b"HTTP/1.1 101 "), answer)
        self.assertIn(UPDATE_FILE, answer)


class OddRequests(Site):
    def test_what_http_allows(self):
        page, update = b"<p>the game</p>", UPDATE_FILE
        for host, (request, ends) in enumerate((
                (b"GET / HTTP/1.0\r\n\r\n", page),
                (b"GET http://a.example/ HTTP/1.0\r\n\r\n", page),
                (b"GET http://a.example HTTP/1.0\r\n\r\n", page),
                (b"GET / HTTP/1.1\r\nhost:h\r\nconnection:CLOSE\r\n\r\n", page),
                (b"GET / HTTP/1.1\r\nHost: h\r\nExpect: 100-continue\r\nConnection: close\r\n\r\n", page),
                (b"GET / HTTP/1.1\r\nHost: h\r\nRange: bytes=0-2,5-9\r\nConnection: close\r\n\r\n", page),
                (b"HEAD / HTTP/1.0\r\n\r\n", b"\r\n\r\n"),
                (b"GET / HTTP/1.1\r\nHost: h\r\n\r\n" * 5 + f"GET {UPDATE} HTTP/1.0\r\n\r\n".encode(), update),
                (b"GET /?a=b#c HTTP/1.0\r\n\r\n", page)), 2):
            with self.subTest(request=request):
                answer = self.ask(request, host)
                self.assertTrue(answer.startswith(b"HTTP/1.1 200 OK\r\n"), answer)
                self.assertTrue(answer.endswith(ends), answer[-100:])

    def test_what_is_refused_is_answered_or_closed(self):
        for host, request in enumerate((
                b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n\0\0\0\4\0\0\0\0\0",
                b"GET / HTTP/3.0\r\n\r\n", b"GET /\r\n\r\n", b"GET  / HTTP/1.0\r\n\r\n", b"GET / HTTP/1.0\n\n\r\n\r\n",
                b"CONNECT a.example:443 HTTP/1.1\r\nHost: a\r\n\r\n", b"GET /%2e%2e/etc/passwd HTTP/1.0\r\n\r\n",
                b"GET /../CMakeLists.txt HTTP/1.0\r\n\r\n", b"GET / HTTP/1.1\r\nA\r\n\r\n",
                b"GET / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n",
                b"GET / HTTP/1.1\r\nA: \0\r\n\r\n", b"GET / HTTP/1.1\r\n A: b\r\n\r\n",
                b"\x16\x03\x01\x00\xa5\x01\x00\x00\xa1\x03\x03", b"SSH-2.0-OpenSSH_9.2\r\n\r\n\r\n",
                b"\r\n\r\n", b"\0"), 2):
            with self.subTest(request=request):
                answer = self.ask(request, host)
                self.assertNotIn(b" 200 ", answer.split(b"\r\n")[0])
                self.assertNotIn(b"cmake", answer)
        self.assertTrue(self.ask(b"GET / HTTP/1.0\r\n\r\n", 200).endswith(b"<p>the game</p>"))


class Storm(Site):
    """Slow, incomplete, broken and hasty clients all at once, beside two players whose chat must arrive throughout."""

    def test_the_players_play_on(self):
        players = [RawPlayer(connect(self.server.port, 240 + number), f"P{number}", number) for number in range(2)]
        for player in players:
            self.addCleanup(player.close)
            player.find(LOGIN_ACCEPTED)
        over = threading.Event()
        for number in range(4):
            storm = threading.Thread(target=self.storm, args=(number, over))
            storm.start()
            self.addCleanup(storm.join)
        self.addCleanup(over.set)
        for number in range(STORM_WORDS):
            word = f"word {number}"
            players[0].say(word)
            for player in players:
                player.find(CHAT, lambda fields: fields[-1] == word, max(0, len(player.frames) - 1))
                del player.frames[:-1]
            time.sleep(0.2)  # ten lines per second are allowed

    def storm(self, number, over):
        chance = random.Random(number)
        held = []
        kinds = list(HALF_OPEN.values()) + [
            b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", b"GET / HTTP/1.1\r\nHost: h\r\n\r\n" * 20,
            b"GET / HTTP/1.1\r\nA: " + b"a" * 5000, b"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nF\r\n",
            HANDSHAKE + masked(0x89, b"") * 50, HANDSHAKE + masked(0x00, b"x"), HANDSHAKE + b"\x82\xff" + b"\x7f" * 8,
            HANDSHAKE + masked(0x02, login("Loop", 5)) + masked(0x00, frame(CHAT, "-1", "x")) * 30,
            b"GET /large.bin HTTP/1.1\r\nHost: h\r\n\r\n" * 3, login("Fast", 4) + frame(POSITION_REPORT, "1", "2") * 50]
        while not over.is_set():
            try:
                one = connect(self.server.port, 2 + number * 50 + chance.randrange(50))
                one.settimeout(0.2)
                held.append(one)
                data = chance.choice(kinds)
                if chance.random() < 0.5:  # slowly, piece by piece
                    one.send(data[:chance.randrange(len(data) + 1)])
                else:
                    one.sendall(data)
                for other in chance.sample(held, min(len(held), 5)):
                    action = chance.randrange(6)
                    if action == 0:
                        other.send(bytes([chance.randrange(256)]))
                    elif action == 1:
                        other.recv(65536)
                    elif action == 2:
                        other.shutdown(socket.SHUT_WR)
                    elif action == 3:
                        other.send(chance.choice(kinds))
                    elif action == 4:
                        held.remove(other)
                        other.close()
            except OSError:
                pass  # refused, reset or full, according to the limits
            if len(held) > 60:
                held.pop(0).close()
            time.sleep(0.002)
        for one in held:
            one.close()


if __name__ == "__main__":
    unittest.main()
