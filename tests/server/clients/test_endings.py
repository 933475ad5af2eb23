"""The program exits with status 0 whatever is half open when it is told to stop. KELVORA_ENDINGS=0-1999 in the
environment makes two thousand starts. Each number always gives the same start."""

import os
import random
import signal
import socket
import struct
import unittest

from realServer import PATIENCE, Server, connect, login
from protocol import CHAT, frame

FIRST, LAST = (int(number) for number in os.environ.get("KELVORA_ENDINGS", "0-11").split("-"))

HANDSHAKE = (b"GET /play HTTP/1.1\r\nHost: h\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
             b"Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n")


def masked(head, data):
    return bytes([head, 0x80 | len(data)]) + b"\1\2\3\4" + bytes(byte ^ (at % 4 + 1) for at, byte in enumerate(data))


HALF_OPEN = {
    "nothing": b"",
    "a letter": b"G",
    "half a request": b"GET /games/kelvora/ver.txt HTTP/1.1\r\nHost:",
    "a request without a body": b"POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 1000\r\n\r\nx",
    "a kept connection": b"GET / HTTP/1.1\r\nHost: h\r\n\r\n",
    "a kept connection and half a request": b"GET / HTTP/1.1\r\nHost: h\r\n\r\nGET /",
    "an answer that is not read": b"GET /large HTTP/1.1\r\nHost: h\r\n\r\n",
    "a closed answer": b"GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n",
    "half a handshake": HANDSHAKE[:60],
    "a handshake": HANDSHAKE,
    "half a frame of a WebSocket": HANDSHAKE + masked(0x82, login("Half", 1))[:9],
    "a fragment": HANDSHAKE + masked(0x02, login("Part", 2)),
    "a player over WebSocket": HANDSHAKE + masked(0x82, login("Web", 3)),
    "a close handshake": HANDSHAKE + masked(0x88, b"\x03\xe8"),
    "a request in a WebSocket": HANDSHAKE + masked(0x82, b"GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n"),
    "half a game frame": login("Half")[:6],
    "a player": login("Raw"),
    "a player in the middle of a line": login("Mid", 4) + frame(CHAT, "-1", "a word")[:5],
    "garbage": b"\xff\xfe",
}


def leave_as(kind, one):
    """Closes the connection as `kind` says, or leaves it open."""
    if kind == "reset":
        one.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        one.close()
    elif kind == "finish":
        one.shutdown(socket.SHUT_WR)
    elif kind == "close":
        one.close()


class Endings(unittest.TestCase):
    def test_every_kind_of_half_open_connection(self):
        site = os.path.join(os.path.dirname(__file__), "..", "..", "..", "docs", "images")
        for count in range(FIRST, LAST + 1):
            chance = random.Random(count)
            with self.subTest(seed=count):
                options = ["--site", site] if chance.random() < 0.5 else ["--bots", str(chance.randrange(6))]
                server = Server(*options)
                held = []
                try:
                    for host in range(2, 2 + chance.randrange(1, 20)):
                        name = chance.choice(list(HALF_OPEN))
                        one = connect(server.port, host)
                        held.append(one)
                        one.sendall(HALF_OPEN[name].replace(b"/large", b"/start.png"))
                    for one in held:
                        leave_as(chance.choice(("open", "open", "open", "reset", "finish", "close")), one)
                    if chance.random() < 0.8:
                        # The server has now seen everything before.
                        with connect(server.port, 200) as last:
                            last.sendall(b"GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n")
                            last.recv(100)
                    if chance.random() < 0.5:
                        # The second signal stops it at once. Otherwise it waits two seconds for clients who don't
                        # leave.
                        server.process.send_signal(signal.SIGTERM)
                finally:
                    server.end()
                    for one in held:
                        one.close()

    def test_two_signals_at_once(self):
        server = Server()
        for number in (signal.SIGSTOP, signal.SIGINT, signal.SIGTERM, signal.SIGCONT):
            server.process.send_signal(number)
        # A third signal would be one too many.
        self.assertEqual(server.process.wait(PATIENCE), 0)
        server.process.stdout.close()
        server.log_file.close()


if __name__ == "__main__":
    unittest.main()
