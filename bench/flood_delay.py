#!/usr/bin/env python3
"""Measures how long a position takes to reach another player while hostile clients flood the server.

    bench/flood_delay.py build/release/kelvora-server [--reports 200]

Real processes on real loopback sockets. A separate process floods. It replaces connections that the server drops, each
from another address."""

import argparse
import multiprocessing
import os
import select
import statistics
import subprocess
import tempfile
import time

from arena_load import Player, Server, load_protocol, play
from listener_load import from_host
from streams import HANDSHAKE, web_frame

PAGE = b"GET / HTTP/1.1\r\nHost: h\r\n\r\n"
DOWNLOAD = b"GET /large HTTP/1.1\r\nHost: h\r\n\r\n"


def floods(protocol, version):
    """Pairs of a name and the crowds that flood: how many, what each sends first, and what it repeats."""
    frame = protocol.frame
    login = frame(protocol.LOGIN, "Flood", "", "0", version)
    start = bytes([protocol.START])
    messages = b"".join((frame(protocol.POSITION_REPORT, "50000", "50000"), frame(protocol.CHAT, "-1", "buy my stuff"),
                         frame(protocol.SPAWN_REQUEST), frame(protocol.BUY_REQUEST, "1"),
                         frame(protocol.ACTIVATE_REQUEST, "1"), frame(protocol.PING_REPLY, "1")))
    tiny = frame(protocol.CHAT)
    games = f"/games/kelvora/gethosts.php?version={version}&password=1&full=1&empty=1".encode()
    return (
        ("none", ()),
        ("messages of 4 players", ((4, login, messages * 100),)),
        ("tiny frames from 60 clients", ((60, b"", tiny * 1000),)),
        ("tiny frames from 60 WebSockets", ((60, HANDSHAKE, web_frame(tiny) * 1000),)),
        ("streams without an end", ((60, start, b"x" * 65536),)),
        ("half frames", ((60, start + b"\x87half", b"x"),)),
        ("4 players who read nothing", ((4, login, frame(protocol.CHAT, "-1", "x" * 4000)),)),
        ("connections that end at once", ((60, b"\xff", b"\xff"),)),
        ("requests over kept connections", ((60, PAGE, PAGE * 100),)),
        ("lists and handshakes", ((30, b"", b"GET " + games + b" HTTP/1.0\r\n\r\n"),
                                  (30, b"", HANDSHAKE + b"\x88\x80\0\0\0\0"))),
        ("60 downloads of 20 MiB", ((60, DOWNLOAD, DOWNLOAD),)),
        ("slow requests, endless bodies and heads",
         ((30, b"GET / HTTP/1.1\r\n", b"a"), (30, b"GET / HTTP/1.1\r\n", b"a: b\r\n" * 1000),
          (30, b"POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n", b"1\r\nx\r\n" * 100))),
        ("empty fragments and pongs", ((30, HANDSHAKE + b"\x02\x81\0\0\0\0\x80", b"\0\x80\0\0\0\0" * 1000),
                                       (30, HANDSHAKE, b"\x8a\x80\0\0\0\0" * 1000))),
    )


class Attacker:
    """One connection at a time, which sends whatever the server takes and reads whatever comes."""

    count = 0

    def __init__(self, port, first, portion, reads):
        self.port, self.first, self.portion, self.reads = port, first, portion, reads
        self.connection = None

    def act(self):
        try:
            if self.connection is None:
                Attacker.count += 1
                self.connection = from_host(self.port, Attacker.count)
                self.connection.setblocking(False)
                self.connection.send(self.first)
            if self.reads and not self.connection.recv(65536):
                raise ConnectionResetError
        except BlockingIOError:
            pass
        except OSError:
            self.leave()
            return
        try:
            self.connection.send(self.portion)
        except BlockingIOError:
            pass
        except OSError:
            self.leave()

    def leave(self):
        if self.connection is not None:
            self.connection.close()
        self.connection = None


def flood(port, crowds, reads, ready):
    attackers = [Attacker(port, first, portion, reads) for count, first, portion in crowds for _ in range(count)]
    while True:
        for attacker in attackers:
            attacker.act()
        ready.set()
        time.sleep(0.002)


def delays(watcher, flyer, count):
    """The times from a report to the other player. Each report has a place of its own."""
    times = []
    for step in range(count):
        x, y = flyer.centre
        place = protocol.frame(protocol.POSITION_REPORT, f"{x + step:.0f}", f"{y:.0f}")
        sought = place[place.index(f"{x + step:.0f}".encode()):]
        watcher.read()
        flyer.read()
        heard = b""
        start = time.monotonic()
        flyer.send(place)
        while sought not in heard:
            if not select.select([watcher.socket], [], [], 60)[0]:
                raise SystemExit("A report was lost.")
            heard += watcher.socket.recv(65536)
        times.append(time.monotonic() - start)
        watcher.rest = b""
        time.sleep(0.04)
    return times


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("program")
    arguments.add_argument("--reports", type=int, default=200)
    chosen = arguments.parse_args()
    global protocol
    protocol = load_protocol(chosen.program)
    version = subprocess.run([chosen.program, "--version"], capture_output=True, text=True,
                             check=True).stdout.split()[-1]
    with tempfile.TemporaryDirectory() as site:
        with open(os.path.join(site, "large"), "wb") as file:
            file.truncate(20 << 20)
        for name, crowds in floods(protocol, version):
            server = Server(chosen.program, "--site", site)
            players = [Player(server.port, number, version) for number in range(2)]
            play(players, 1)
            ready = multiprocessing.Event()
            attack = multiprocessing.Process(target=flood,
                                             args=(server.port, crowds, "read nothing" not in name, ready))
            attack.start()
            ready.wait()
            used, begin = server.seconds(), time.monotonic()
            times = delays(*players, chosen.reports)
            share = (server.seconds() - used) / (time.monotonic() - begin)
            attack.kill()
            attack.join()
            print(f"{name}: {1000 * statistics.median(times):.2f} ms at the median, {1000 * max(times):.2f} ms at "
                  f"most; the server takes {100 * share:.0f} % of a core", flush=True)
            server.end()


if __name__ == "__main__":
    main()
