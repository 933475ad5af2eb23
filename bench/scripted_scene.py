"""Scenes that a scripted server shows a real client."""

import math
import threading
import time

from client import Client
from harness import protocol
from servers import ScriptedServer

REPORTS_A_SECOND = 25
OWN_NODE, PLACE = 7, 50000
EXTRA_LONG_TAIL = 3


def log_in(display, **options):
    client = Client(display, **options)
    server = ScriptedServer()
    client.connect(server.port)
    line = server.accept()
    line.recv_frame()
    line.send(protocol.LOGIN_ACCEPTED, 0, OWN_NODE, PLACE, PLACE)
    line.send(protocol.PING, 1)
    line.report()
    return client, server, line


class LongTails:
    """Six opponents who fly round the middle of the canvas at the design pace. Each has an Extra Long Tail for five of
    seven seconds, so that their tails have 50 to 175 vertices."""

    cycle = 7  # seconds

    def __init__(self, line):
        self.line = line
        self.over = threading.Event()
        self.thread = threading.Thread(target=self.fly)
        self.thread.start()

    def fly(self):
        nodes = range(OWN_NODE + 1, OWN_NODE + 7)
        for node in nodes:
            self.line.send(protocol.PLAYER_JOINED, node, node % 6, f"P{node}", PLACE, PLACE, 1, 0)
        begin, step = time.monotonic(), 0
        while not self.over.wait(max(begin + step / REPORTS_A_SECOND - time.monotonic(), 0)):
            for node in nodes:
                if step % (self.cycle * REPORTS_A_SECOND) == 0:
                    self.line.send(protocol.POWERUP_ON, node, EXTRA_LONG_TAIL)
                # About 250 units a step, within a canvas of 11,400 by 9,100.
                x, y = math.sin(0.05 * step + node), math.sin(0.07 * step + 2.5 * node)
                self.line.send(protocol.POSITION, node, round(PLACE + 4000 * x), round(PLACE + 3000 * y))
            step += 1

    def close(self):
        self.over.set()
        self.thread.join()
