#!/usr/bin/env python3
"""Measures what spectators cost players: the time that a position takes to reach the others, without and with them.

    bench/spectator_load.py build/release/kelvora-server [--spectators 32] [--seconds 10] [--turns 4]

One real server on real loopback sockets, with six players who report 25 positions a second. In turns, nobody watches
and everybody watches, from a separate process of low priority, since spectators have machines of their own."""

import argparse
import multiprocessing
import os
import select
import statistics
import subprocess
import time
import urllib.request

from arena_load import Player, Server, load_protocol, play
from listener_load import from_host


class Spectator(Player):
    """Reads everything it gets."""

    def __init__(self, port, number, version):
        self.number = number
        super().__init__(port, number, version)

    def connect(self, port):
        return from_host(port, self.number)  # 16 may come from one address


def watch(port, count, version, ready, end):
    os.nice(19)
    spectators = [Spectator(port, number, version) for number in range(count)]
    poller = select.poll()
    for spectator in spectators:
        poller.register(spectator.socket, select.POLLIN)
    while not end.is_set():
        poller.poll(100)
        for spectator in spectators:
            spectator.read()
        if all(spectator.frames > 0 for spectator in spectators):
            ready.set()


class TimedPlayer(Player):
    """Notes when each of its reports has left, and how long those of the others have taken."""

    sent = {}
    delays = []

    def report(self):
        super().report()
        if self.centre is not None:
            TimedPlayer.sent[self.place] = time.monotonic()

    def send(self, data):
        if data[1] == protocol.POSITION_REPORT:
            self.place = data[2:]
        super().send(data)

    def hear(self, text):
        if text[1] != protocol.POSITION:
            return
        sender, place = text[2:].split(bytes([protocol.SEPARATOR]), 1)
        begin = TimedPlayer.sent.get(place + bytes([protocol.END]))
        if begin is not None:
            TimedPlayer.delays.append(time.monotonic() - begin)


def fly(players, seconds):
    """All report 25 times a second, spread evenly, and read at once what arrives. Returns the delays in ms."""
    TimedPlayer.sent.clear()
    TimedPlayer.delays.clear()
    poller = select.poll()
    sockets = {player.socket.fileno(): player for player in players}
    for number in sockets:
        poller.register(number, select.POLLIN)
    begin = time.monotonic()
    for step in range(int(seconds * 25 * len(players))):
        players[step % len(players)].report()
        due = begin + (step + 1) * 0.04 / len(players)
        while (left := due - time.monotonic()) > 0:
            for number, _ in poller.poll(left * 1000):
                sockets[number].read()
    return sorted(1000 * delay for delay in TimedPlayer.delays)


def tick_figures(port):
    """Number and total seconds of the server's ticks."""
    page = urllib.request.urlopen(f"http://127.0.0.1:{port}/metrics", timeout=60).read().decode()
    figures = dict(line.rsplit(" ", 1) for line in page.splitlines() if not line.startswith("#"))
    return [float(figures["kelvora_tick_seconds_" + part]) for part in ("count", "sum")]


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("program")
    arguments.add_argument("--spectators", type=int, default=32)
    arguments.add_argument("--seconds", type=float, default=10)
    arguments.add_argument("--turns", type=int, default=4)
    chosen = arguments.parse_args()
    global protocol
    protocol = load_protocol(chosen.program)
    version = subprocess.run([chosen.program, "--version"], capture_output=True, text=True,
                             check=True).stdout.split()[-1]
    server = Server(chosen.program, "--spectators", str(chosen.spectators))
    try:
        players = [TimedPlayer(server.port, number, version) for number in range(6)]
        play(players, 2)
        results = {0: [], chosen.spectators: []}
        for turn in range(2 * chosen.turns):
            count = chosen.spectators * (turn % 2)
            ready, end = multiprocessing.Event(), multiprocessing.Event()
            crowd = multiprocessing.Process(target=watch, args=(server.spectator_port, count, version, ready, end))
            crowd.start()
            if count:
                ready.wait(60)
            used, begin, before = server.seconds(), time.monotonic(), tick_figures(server.port)
            delays = fly(players, chosen.seconds)
            taken = time.monotonic() - begin
            ticks, seconds = (after - start for after, start in zip(tick_figures(server.port), before))
            results[count].append((statistics.median(delays), delays[int(0.99 * len(delays))], 1e6 * seconds / ticks,
                                   100 * (server.seconds() - used) / taken))
            end.set()
            crowd.join()
        means = {count: [statistics.mean(values) for values in zip(*rows)] for count, rows in results.items()}
        for count, (median, late, tick, share) in means.items():
            print(f"{count} spectators: {median:.3f} ms at the median, {late:.3f} ms at the 99th percentile; "
                  f"a tick takes {tick:.0f} us, the server {share:.2f} % of a core")
        print("ratios: " + ", ".join(f"{b / a:.2f}" for a, b in zip(means[0], means[chosen.spectators])))
    finally:
        server.end()


if __name__ == "__main__":
    main()
