"""A real match on the real server against its bots: a script steers the mouse like a beginner, captures, is captured,
buys and fires a powerup, and plays through the end of a round."""

import os
import pathlib
import time

from desktopTest import DesktopTest
from harness import PATIENCE, TWIPS, wait_for, wait_for_rest
from match import TURBO, Pilot, Relay
from protocol import ALIVE_STATE, BUY_ACCEPTED, POWERUP_ON, RESPAWN, ROUND_OVER, SERVER_TEXT, TAIL_CAPTURE
from storeWindow import BUY, DONE, StoreWindow

SPAWN = ((11700 + 270) // TWIPS, (5760 + 200) // TWIPS, 72, 24)  # the face of the button, without its border
STRIP = ((11580 + 660) // TWIPS, (60 + 600) // TWIPS, 66, 11)  # the red player's capture marks
GREEN = (128, 255, 128)
CENTRE_MESSAGE = (150, 270, 500, 30)


class Match(DesktopTest):

    def begin(self, *options):
        """Starts a red client with its brakes on, a relay that reads along, and a pilot."""
        server = self.start_server(*options)
        relay = Relay(server.port)
        self.addCleanup(relay.close)
        client = self.start_client()
        client.connect(relay.port, name="Ann", circle=0)
        wait_for(lambda: relay.node, "the login")
        return client, relay, Pilot(client, relay)

    def begin_in_company(self, *options):
        client, relay, pilot = self.begin(*options)
        wait_for(lambda: relay.opponents() or not relay.is_alive, "company")
        return client, relay, pilot

    def pixels(self, client, area):
        return self.display.picture((*client.on_screen(*area[:2]), *area[2:])).pixels()

    def has_grey_button(self, client):
        return all(red == green == blue for red, green, blue in self.pixels(client, SPAWN))

    def keep(self, name):
        """Saves a picture of the screen for inspection, if KELVORA_PICTURES names a folder."""
        folder = os.environ.get("KELVORA_PICTURES")
        if folder:
            pathlib.Path(folder, name + ".ppm").write_bytes(self.display.picture().ppm())

    def test_captures_an_easy_bot(self):
        client, relay, pilot = self.begin_in_company("--bots", "3", "--skill", "easy")
        client.wait_for_status(GREEN)
        before = wait_for_rest(lambda: self.pixels(client, STRIP), "the strip")
        pilot.play_until(lambda: relay.said(TAIL_CAPTURE, lambda fields: fields[0] == relay.node),
                        "an easy bot captured")
        self.keep("capture")
        # It lands when the vertex expires. Then the winner's strip shows the loser's mark.
        deadline = time.monotonic() + PATIENCE
        while self.pixels(client, STRIP) == before and time.monotonic() < deadline:
            pilot.circle_nearest()
            relay.wait_for_news()
        self.keep("captured")
        self.assertNotEqual(self.pixels(client, STRIP), before, "no mark in the strip")

    def test_is_captured_by_a_hard_bot(self):
        client, relay, pilot = self.begin_in_company("--bots", "3", "--skill", "hard")

        def is_captured():
            return relay.said(TAIL_CAPTURE, lambda fields: fields[1] == relay.node and fields[0] != relay.node)

        def is_told():
            return sum(g > 60 and r == 0 and b == 0 for r, g, b in self.pixels(client, CENTRE_MESSAGE)) >= 20
        # The words fade within two seconds. A client that misses them is captured again.
        pilot.play_until(lambda: is_captured() and not relay.is_alive and is_told(), "'You have been captured!'")
        self.keep("loss")

    def test_buys_and_fires_a_turbo(self):
        client, relay, _ = self.begin("--income", "0")  # alone, so that nobody captures the buyer
        store = StoreWindow(client)
        store.click(BUY, TURBO)
        wait_for(lambda: relay.said(BUY_ACCEPTED, lambda fields: fields == [b"1", b"1", b"0"]), "the purchase")
        store.click(DONE)
        store.wait_for_end()
        client.window.activate()
        # Towards the middle of the world, because its edge would bounce the ball.
        x, y = relay.place
        client.mouse_to(500 if x < 50000 else 262, 508 if y < 50000 else 100)
        client.right_click()
        wait_for(lambda: len(relay.reports) > 10, "the flight")
        with relay.lock:
            slow = len(relay.reports)
        self.display.xdotool("key", "F2")
        wait_for(lambda: relay.said(POWERUP_ON, lambda fields: fields == [relay.node, b"1"]), "the turbo")
        self.keep("turbo")

        def is_fast():
            with relay.lock:
                last = relay.reports[slow:]
            # The mouse selects .77 of full speed: 4 frames x 300 x .77 x 3 = 2770 per report.
            return any(abs(b[1] - a[1]) + abs(b[2] - a[2]) > 1800 for a, b in zip(last, last[1:]))
        wait_for(is_fast, "the turbo's speed")

    def test_round_ends_and_the_next_begins(self):
        client, relay, pilot = self.begin_in_company("--bots", "2", "--skill", "easy", "--round-seconds", "6",
                                                     "--intermission", "20", "--respawn-wait", "1")
        wait_for(lambda: relay.said(ROUND_OVER), "the end of the round")
        self.assertFalse(relay.is_alive)
        self.keep("end")
        wait_for(lambda: relay.said(ALIVE_STATE, lambda fields: fields == [relay.node, b"0"]),
                 "the message that nobody is alive")
        wait_for(lambda: not self.has_grey_button(client), "the button in its colours")
        pilot.press_spawn()
        wait_for(lambda: relay.said(SERVER_TEXT, lambda fields: fields[0].startswith(b"You will be respawned in")),
                 "the answer to an early request")
        wait_for(lambda: relay.said(RESPAWN, lambda fields: fields[0] == relay.node), "the next round's life")
        client.mouse_to(500, 100)
        # When the client learns of its new life, it puts the brakes on and greys the button.
        wait_for(lambda: self.has_grey_button(client), "the grey button")
        with relay.lock:
            reported = len(relay.reports)
        client.right_click()
        wait_for(lambda: len(relay.reports) > reported + 10, "the flight in the next round")
        wait_for(lambda: relay.opponents(), "the bots' next lives")
        self.keep("next")
