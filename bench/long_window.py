#!/usr/bin/env python3
"""Measures the real window in a long match on its own virtual display.

    bench/long_window.py build/release [--minutes 30] [--seconds 60]

The client plays at the game's pace (10 ms per pass) against five bots of the real server. A script steers the mouse
like a beginner, requests a new life after each capture, buys and fires turbos, and chats. Every minute, or every
`--seconds`, it prints for client and server their memory, open files, threads and processor time, and for the pace the
times between the position reports, one every four passes. It ends by itself and stops everything it has started.
"""

import argparse
import os
import statistics
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tools" / "desktop"))
sys.dont_write_bytecode = True
import harness  # noqa: E402  (found by the line above)
from client import Client  # noqa: E402
from display import on_display  # noqa: E402
from process_figures import memory, processor_seconds  # noqa: E402
from match import TURBO, Pilot, Relay  # noqa: E402
from servers import Server  # noqa: E402
from storeWindow import BUY, DONE, StoreWindow  # noqa: E402


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path, help="the folder of a release build")
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("--seconds", type=float, default=60, help="from one line to the next")
    return parser.parse_args()


OPTIONS = arguments()
harness.use_build(OPTIONS.build)

BREAK = 1.0  # seconds without a report that have other causes: the player is dead, or the brakes are on


class Process:
    """A process's resources, and its use since the last query."""

    def __init__(self, process):
        self.process = process
        self.cpu, self.asked = processor_seconds(process.pid), time.monotonic()

    def figures(self):
        """Megabytes in memory, open files, threads, percent of a core."""
        if self.process.poll() is not None:
            raise AssertionError(f"a program ended with {self.process.returncode}")
        status = dict(line.split(":", 1) for line in Path(f"/proc/{self.process.pid}/status").read_text().splitlines())
        cpu, now = processor_seconds(self.process.pid), time.monotonic()
        share = (cpu - self.cpu) / (now - self.asked) * 100
        self.cpu, self.asked = cpu, now
        return (memory(self.process.pid)[0] / 1024, len(os.listdir(f"/proc/{self.process.pid}/fd")),
                int(status["Threads"]), share)


class Watch:
    """Occasionally does what a player does besides steering, and prints lines on time."""

    def __init__(self, display, client, server, relay):
        self.display, self.client, self.relay = display, client, relay
        self.processes = [Process(client.process), Process(server.process)]
        self.begin = time.monotonic()
        self.lines = 0
        self.turns = 0
        print(f"{'minute':>6} | {'client MB':>9} {'files':>5} {'threads':>7} {'% core':>6} | "
              f"{'server MB':>9} {'files':>5} {'threads':>7} {'% core':>6} | "
              f"{'reports':>7} {'median ms':>9} {'99th ms':>7} | {'deaths':>6} {'kills':>5} {'rounds':>6}", flush=True)

    def is_over(self):
        passed = time.monotonic() - self.begin
        if passed >= (self.lines + 1) * OPTIONS.seconds:
            self.lines += 1
            self.print_line(passed)
        if passed >= (self.turns + 1) * 20:
            self.turns += 1
            (self.chat, self.buy, self.fire)[self.turns % 3]()
        return passed >= OPTIONS.minutes * 60

    def print_line(self, passed):
        relay = self.relay
        with relay.lock:
            times = [report[0] for report in relay.reports]
            said, relay.reports, relay.frames = relay.frames, relay.reports[-1:], []
        gaps = sorted(gap for gap in (b - a for a, b in zip(times, times[1:])) if gap < BREAK)
        captures = [fields for one, fields in said if one == harness.protocol.TAIL_CAPTURE]
        row = [figure for process in self.processes for figure in process.figures()]
        print("{:6.1f} | {:9.1f} {:5} {:7} {:6.1f} | {:9.1f} {:5} {:7} {:6.2f} | ".format(passed / 60, *row) +
              "{:7} {:9.1f} {:7.1f} | ".format(len(gaps), statistics.median(gaps or [0]) * 1000,
                                              gaps[len(gaps) * 99 // 100] * 1000 if gaps else 0) +
              "{:6} {:5} {:6}".format(sum(fields[1] == relay.node for fields in captures),
                                      sum(fields[0] == relay.node != fields[1] for fields in captures),
                                      sum(one == harness.protocol.ROUND_OVER for one, _ in said)), flush=True)

    def chat(self):
        self.display.xdotool("click", 1, "type", "--delay", "10", "still here")  # on the canvas
        self.display.xdotool("key", "Return")

    def buy(self):
        try:
            store = StoreWindow(self.client)
            store.click(BUY, TURBO)
            store.click(DONE)
            store.wait_for_end()
        except (AssertionError, TypeError):
            pass  # a respawn has closed the store, or it didn't open; the figures reveal a client that has ended
        self.client.window.activate()

    def fire(self):
        self.display.xdotool("key", "F2")


def play(display):
    server = Server("--bots", "5", "--skill", "mixed")
    relay = Relay(server.port)
    client = Client(display, arguments=())
    client.connect(relay.port, circle=0)
    harness.wait_for(lambda: relay.node, "the login")
    harness.wait_for(lambda: relay.opponents() or not relay.is_alive, "company", 15)
    watch = Watch(display, client, server, relay)
    try:
        Pilot(client, relay).play_until(watch.is_over, "the end", OPTIONS.minutes * 60 + 60)
    finally:
        client.close()
        relay.close()
        server.close()


if __name__ == "__main__":
    on_display(play)
