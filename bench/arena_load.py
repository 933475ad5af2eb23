#!/usr/bin/env python3
"""Measures the load of whole servers: real processes on real loopback sockets.

    bench/arena_load.py build/release/kelvora-server [--seconds 20] [--arenas 100] [--bots 5]

First one arena with six clients, each reporting 25 positions per second and answering every ping. Then as many arenas
as --arenas says, each a process with bots and one such client. Processor time is that of the server processes, as
counted by the system, in percent of one core. Memory is their resident set (RSS) and their proportional share of it
(PSS). The script ends by itself and stops its servers.
"""

import argparse
import math
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from process_figures import memory, processor_seconds
from streams import RawStream


def load_protocol(program):
    """Loads the message ids, which the build writes beside its programs."""
    global protocol
    sys.path.insert(0, str(Path(program).resolve().parent / "generated"))
    sys.dont_write_bytecode = True
    import protocol
    return protocol


class Player:
    """Flies circles at the game's normal speed and reads everything it gets."""

    Stream = RawStream

    def __init__(self, port, number, version):
        self.socket = self.connect(port)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.stream = self.Stream(self.socket)
        self.send(protocol.frame(protocol.LOGIN, f"Load{number}", "", str(number % 6), version))
        self.socket.setblocking(False)
        self.rest = b""
        self.frames = self.pings = self.reports = 0
        self.centre = None
        self.angle = number

    def connect(self, port):
        return socket.create_connection(("127.0.0.1", port))

    def hear(self, text):
        """Called with each frame, without its end."""

    def send(self, data):
        self.stream.send(data)

    def read(self):
        try:
            while data := self.socket.recv(65536):
                self.rest += self.stream.take(data)
        except BlockingIOError:
            pass
        *whole, self.rest = self.rest.split(bytes([protocol.END]))
        for text in whole:
            self.frames += 1
            self.hear(text)
            if text[1] == protocol.PING:
                self.pings += 1
                self.send(protocol.frame(protocol.PING_REPLY, f"{time.time() % 86400:.3f}"))
            elif text[1] == protocol.LOGIN_ACCEPTED:
                x, y = (float(field) for field in text.split(bytes([protocol.SEPARATOR]))[2:])
                self.centre = (x - 2000 * math.cos(self.angle), y - 2000 * math.sin(self.angle))

    def report(self):
        if self.centre is None:
            return
        self.angle += 0.3  # 600 units in 40 ms, half the full speed
        self.reports += 1
        x, y = (self.centre[0] + 2000 * math.cos(self.angle), self.centre[1] + 2000 * math.sin(self.angle))
        self.send(protocol.frame(protocol.POSITION_REPORT, f"{x:.3f}", f"{y:.3f}"))


class Server:
    def __init__(self, program, *options):
        words = [program, "--port", "0", *options]
        log = tempfile.TemporaryFile("w+")
        self.process = subprocess.Popen(words, stdout=subprocess.PIPE, stderr=log, text=True)
        ports = {}
        while "listening" not in ports:
            if not (line := self.process.stdout.readline()):
                log.seek(0)
                raise SystemExit(f"The server doesn't start: {log.read()}")
            what, _, endpoint = line.split()
            ports[what] = int(endpoint.rsplit(":", 1)[1])
        self.port = ports["listening"]
        self.spectator_port = ports.get("spectators")

    def seconds(self):
        """Processor time since the server's start, in seconds."""
        return processor_seconds(self.process.pid)

    def memory(self):
        """RSS and PSS in KiB."""
        return memory(self.process.pid)

    def end(self):
        self.process.terminate()
        self.process.wait(10)


def play(players, seconds):
    """Lets all players report 25 times a second, spread evenly over each 40 ms."""
    begin = time.monotonic()
    step = 0
    while (now := time.monotonic()) < begin + seconds:
        player = players[step % len(players)]
        player.read()
        player.report()
        step += 1
        due = begin + step * 0.04 / len(players)
        if due > now:
            time.sleep(due - now)
    return time.monotonic() - begin


def measure(program, arenas, people, bots, seconds):
    version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.split()[-1]
    servers = []
    try:
        for _ in range(arenas):
            servers.append(Server(program, *(["--bots", str(bots)] if bots else [])))
        players = [Player(server.port, number, version) for server in servers for number in range(people)]
        play(players, 10)  # until all bots are in
        for player in players:
            player.frames = player.reports = player.pings = 0
        before = [server.seconds() for server in servers]
        taken = play(players, seconds)
        used = [server.seconds() - start for server, start in zip(servers, before)]
        memory = [server.memory() for server in servers]
        rate = sum(player.reports for player in players) / len(players) / taken
        heard = sum(player.frames for player in players) / len(players) / taken
        pings = sum(player.pings for player in players) / len(players) / taken * 60
        print(f"{arenas} arena(s) of {people} client(s) and {bots} bot(s), {taken:.1f} s: "
              f"{rate:.1f} reports per second, {pings:.1f} pings per minute and {heard:.1f} messages per second "
              "and client")
        print(f"  processor: {100 * sum(used) / taken:.2f} % of a core in total, "
              f"{100 * max(used) / taken:.2f} % for the busiest")
        print(f"  memory: {sum(rss for rss, _ in memory) / 1024:.1f} MiB in total (RSS), "
              f"{sum(pss for _, pss in memory) / 1024:.1f} MiB without counting shared pages twice (PSS), "
              f"{max(rss for rss, _ in memory) / 1024:.1f} MiB for the largest (RSS)")
    finally:
        for server in servers:
            server.end()


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("program")
    arguments.add_argument("--seconds", type=float, default=20)
    arguments.add_argument("--arenas", type=int, default=100)
    arguments.add_argument("--bots", type=int, default=5)
    chosen = arguments.parse_args()
    load_protocol(chosen.program)
    measure(chosen.program, 1, 6, 0, chosen.seconds)
    measure(chosen.program, chosen.arenas, 1, chosen.bots, chosen.seconds)


if __name__ == "__main__":
    main()
