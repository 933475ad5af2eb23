"""The page captures a player: the mouse flies a loop, whose tail closes around somebody."""

import math
import threading

from harness import wait_for
from pageTest import PageTest, unittest
from protocol import PING, PING_REPLY, PLAYER_JOINED, POSITION, POSITION_REPORT, TAIL_CAPTURE
from spy import Spy

WORLD = 100000.0
STEPS = 16  # of the mouse in a circle
STEP_MS = 60  # so that a circle takes half the time that a tail lasts
CIRCLE_REPORTS = STEPS * STEP_MS // 40


class Victim(Spy):
    """A player who always moves to the middle of what the next one to join flies."""

    def __init__(self, port):
        super().__init__(port, "Victim")
        self.flyer = None
        self.places = []
        self.captures = []
        threading.Thread(target=self.run, daemon=True).start()

    def run(self):
        try:
            while (received := self.recv_frame()) is not None:
                self.take(*received)
        except OSError:
            pass  # the test has ended

    def take(self, identifier, fields):
        if identifier == PING:
            self.send(PING_REPLY, 1)
        elif identifier == PLAYER_JOINED:
            self.flyer_start = float(fields[3]), float(fields[4])
            self.flyer = fields[0]
        elif identifier == TAIL_CAPTURE:
            self.captures.append(fields[:2])
        elif identifier == POSITION and fields[0] == self.flyer:
            self.places.append((float(fields[1]), float(fields[2])))
            circle = self.places[-CIRCLE_REPORTS:]
            self.send(POSITION_REPORT, *(sum(axis) / len(circle) for axis in zip(*circle)))


class Capture(PageTest):

    def fly_circle(self, page):
        """Moves the mouse around the middle of the canvas once."""
        left, top, width, height = page.place("canvas()")
        turns = [2 * math.pi * step / STEPS for step in range(STEPS)]
        moves = [{"type": "pointerMove", "duration": 0, "x": round(left + width / 2 + 200 * math.cos(turn)),
                  "y": round(top + height / 2 + 200 * math.sin(turn))} for turn in turns]
        page.mouse(*(action for move in moves for action in (move, {"type": "pause", "duration": STEP_MS})))

    def test_a_loop_around_a_player_captures_them(self):
        server, page = self.begin()
        victim = Victim(server.port)
        self.addCleanup(victim.close)
        page.connect()
        wait_for(lambda: victim.flyer, "the page's player")
        page.wait_for_status("Connected")
        page.wait_for("by('.main .label', '10')", "the first ten credits")
        self.assertFalse(page.see("by('.main .label', '1')"), "a capture before the loop")
        # Away from the world's edges, which would bounce the ball.
        width, height = page.canvas_size()
        x, y = victim.flyer_start
        page.release_brakes(width / 2 + (150 if x < WORLD / 2 else -150), height / 2 + (150 if y < WORLD / 2 else -150))
        wait_for(lambda: victim.places and all(WORLD / 5 < axis < WORLD * 4 / 5 for axis in victim.places[-1]),
                 "the flight to the middle")

        def captures():
            self.fly_circle(page)
            return [victim.flyer, victim.node] in victim.captures
        wait_for(captures, "the capture")
        # The number below the own name, and the reward.
        page.wait_for("by('.main .label', '1')", "one capture")
        page.wait_for("by('.main .label', '20')", "ten more credits")
        page.keep("capture")
        self.assertEqual(page.complaints(), [])


if __name__ == "__main__":
    unittest.main()
