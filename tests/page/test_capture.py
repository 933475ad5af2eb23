"""The page captures a player: it flies loops, whose tail closes around somebody."""

import threading
import time

from harness import wait_for
from pageTest import HANG, PageTest, unittest
from protocol import PING, PING_REPLY, PLAYER_JOINED, POSITION, POSITION_REPORT, TAIL_CAPTURE
from spy import Spy

WORLD = 100000.0
CIRCLE_SECONDS = 1.0  # half the time that a tail lasts
# Moves the mouse around the middle of the view, by the page's own clock. However slowly the page and this script run, a
# circle takes the same time.
CIRCLE = """(() => {
  const place = canvas().getBoundingClientRect();
  const move = () => {
    const turn = performance.now() / %d * 2 * Math.PI;
    canvas().dispatchEvent(new PointerEvent('pointermove', {pointerType: 'mouse', button: -1,
      clientX: place.left + place.width / 2 + 200 * Math.cos(turn),
      clientY: place.top + place.height / 2 + 200 * Math.sin(turn)}));
  };
  return setInterval(move, 20);
})()""" % (CIRCLE_SECONDS * 1000)


class Victim(Spy):
    """A player who rests in the middle of the circle that the next one to join has flown last."""

    def __init__(self, port):
        super().__init__(port, "Victim")
        self.flyer = None
        self.places = []  # of the flyer, with their times
        self.rest = None
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
            self.places.append((time.monotonic(), float(fields[1]), float(fields[2])))
            self.follow()

    def follow(self):
        """Moves once the circle has: by more than a quarter of its size."""
        now = self.places[-1][0]
        _, *axes = zip(*(place for place in self.places if place[0] > now - CIRCLE_SECONDS))
        middle = [sum(axis) / len(axis) for axis in axes]
        size = max(max(axis) - min(axis) for axis in axes)
        if not self.rest or max(abs(new - old) for new, old in zip(middle, self.rest)) > size / 4:
            self.rest = middle
        self.send(POSITION_REPORT, *self.rest)


class Capture(PageTest):

    def test_a_loop_around_a_player_captures_them(self):
        server, page = self.begin("--income", "0")
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
        wait_for(lambda: victim.places and all(WORLD / 5 < axis < WORLD * 4 / 5 for axis in victim.places[-1][1:]),
                 "the flight to the middle", seconds=HANG)
        page.see(CIRCLE)
        wait_for(lambda: [victim.flyer, victim.node] in victim.captures, "the capture", seconds=HANG)
        # The number below the own name, and the reward.
        page.wait_for("by('.main .label', '1')", "one capture")
        page.wait_for("by('.main .label', '20')", "ten more credits")
        page.keep("capture")
        self.assertEqual(page.complaints(), [])


if __name__ == "__main__":
    unittest.main()
