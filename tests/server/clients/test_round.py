"""Rounds among bots, played over TCP and over WebSocket at once: both must see the same world."""

import math
import time
import unittest

from realServer import PATIENCE, RawPlayer, Server, connect, fields_of
from protocol import (ACTIVATE_REQUEST, BUY_ACCEPTED, BUY_REQUEST, CHAT, FUNDS, LOGIN_ACCEPTED, PLAYER_JOINED,
                      PLAYER_LEFT, POSITION, POSITION_REPORT, POWERUP_OFF, POWERUP_ON, RESPAWN, ROUND_OVER,
                      SPAWN_REQUEST, TAIL_CAPTURE, frame)
from webSocketPlayer import WebSocket, WebSocketPlayer

# Messages that everybody gets. The rest is for one player: pings, answers of the store, refusals.
PUBLIC = (POSITION, PLAYER_JOINED, PLAYER_LEFT, TAIL_CAPTURE, ROUND_OVER, CHAT, FUNDS, RESPAWN, POWERUP_ON, POWERUP_OFF)
TURBO = 1
REPORT_INTERVAL = 0.02  # seconds; the server accepts a hundred reports per second


def by_kind(texts):
    """The fields of the public frames among these, by id."""
    return {kind: [fields_of(text) for text in texts if text[0] == kind] for kind in PUBLIC}


class Round(unittest.TestCase):
    def setUp(self):
        # The speed is unlimited, so the script circles the other player within a moment.
        self.server = Server("--bots", "2", "--skill", "easy", "--captures-to-win", "2", "--respawn-wait", "1",
                             "--intermission", "2", "--speed-limit", "0")
        self.addCleanup(self.server.end)
        self.raw = RawPlayer(connect(self.server.port), "Raw")
        self.addCleanup(self.raw.close)
        _, self.raw_node, *_ = self.raw.find(LOGIN_ACCEPTED)
        self.web = WebSocketPlayer(WebSocket(f"ws://127.0.0.1:{self.server.port}/play", 2), "Web", 1)
        self.addCleanup(self.web.close)
        _, self.web_node, x, y = self.web.find(LOGIN_ACCEPTED)
        self.place = float(x), float(y)

    def report(self, player, x, y):
        fields = f"{x:.2f}", f"{y:.2f}"
        player.send(frame(POSITION_REPORT, *fields))
        return fields

    def circle(self):
        """Lets the raw player circle the other one, who fidgets. Returns the latter's reports."""
        x, y = self.place
        reported = []
        for step in range(14):
            angle = step * math.pi / 6
            self.report(self.raw, x + 1500 * math.cos(angle), y + 1500 * math.sin(angle))
            reported.append(self.report(self.web, x + step % 2, y))
            time.sleep(REPORT_INTERVAL)
        return reported

    def meet(self, text):
        """Waits until everything public up to this chat line has reached both. Returns each player's number of
        frames."""
        self.raw.say(text)
        line = [self.raw_node, text]
        for player in (self.raw, self.web):
            player.find(CHAT, lambda fields: fields == line)
        return [self.index_of(player, line) for player in (self.raw, self.web)]

    @staticmethod
    def index_of(player, line):
        return next(at for at, text in enumerate(player.frames) if text[0] == CHAT and fields_of(text) == line)

    def missing(self, texts):
        """The events that must be seen but aren't in these frames yet. The bots play at random: they can win a round,
        or be out for a while."""
        kinds = by_kind(texts)
        return [what for what, is_seen in (
            ("a turbo", [self.web_node, str(TURBO)] in kinds[POWERUP_ON]),
            ("a capture", [self.raw_node, self.web_node] in [fields[:2] for fields in kinds[TAIL_CAPTURE]]),
            ("a respawn", [self.web_node] in kinds[RESPAWN]),
            ("the end of a round", kinds[ROUND_OVER]),
            ("moves of all four", len({node for node, *_ in kinds[POSITION]}) == 4)) if not is_seen]

    @staticmethod
    def roster(player, own):
        """Name and colour of all other players, by node."""
        others = {}
        for text in player.frames:
            node, *rest = fields_of(text)
            if text[0] == PLAYER_JOINED and node != own:
                others[node] = (rest[1], rest[0])
            elif text[0] == PLAYER_LEFT:
                del others[node]
        return others

    def test_both_see_the_same_world(self):
        self.web.send(frame(BUY_REQUEST, TURBO))
        self.web.find(BUY_ACCEPTED)
        for player, own in ((self.raw, self.raw_node), (self.web, self.web_node)):
            while len(self.roster(player, own)) < 3:  # the other player and two bots
                player.read()
        begin = self.meet("begin")
        of_raw, of_web = self.roster(self.raw, self.raw_node), self.roster(self.web, self.web_node)
        self.assertEqual(of_raw.pop(self.web_node), ("Web", "1"))
        self.assertEqual(of_web.pop(self.raw_node), ("Raw", "0"))
        self.assertEqual(of_raw, of_web)
        self.assertEqual(len(of_raw), 2, "bots")

        # A WebSocket message may be split anywhere.
        line = frame(CHAT, -1, "over the web")
        self.web.send([line[:1], line[1:5], line[5:]])
        self.raw.find(CHAT, lambda fields: fields == [self.web_node, "over the web"])

        reported = []
        deadline = time.monotonic() + PATIENCE
        while missing := self.missing(self.raw.frames[begin[0]:]):
            self.assertLess(time.monotonic(), deadline, missing)
            self.web.send(frame(ACTIVATE_REQUEST, TURBO))  # refused while dead
            reported += self.circle()
            for player in (self.raw, self.web):
                player.send(frame(SPAWN_REQUEST))  # refused while alive
            self.meet(f"circle {len(reported)}")
        end = self.meet("end")

        of_raw, of_web = ([text for text in player.frames[first:last] if text[0] in PUBLIC]
                          for player, first, last in zip((self.raw, self.web), begin, end))
        self.assertEqual(of_raw, of_web)
        self.assertEqual(self.missing(of_web), [])
        positions = [(float(x), float(y)) for node, x, y in by_kind(of_web)[POSITION] if node == self.web_node]
        self.assertTrue(positions)
        sent = iter((float(x), float(y)) for x, y in reported)
        self.assertTrue(all(place in sent for place in positions), "in the order in which they were reported")


if __name__ == "__main__":
    unittest.main()
