"""A real match on the real server against its bots: a script steers the client's mouse as a beginner would, captures,
is captured, buys and fires a powerup, and lives through the end of a round."""

import math
import os
import socket
import threading
import time

import harness
from harness import TWIPS, wait_for
from test_store import BUY, DONE, StoreWindow

REPORT, POSITION, LOGIN_ACCEPTED = harness.POSITION_REPORT, harness.POSITION, harness.LOGIN_ACCEPTED
JOINED, LEFT, TAIL_CAPTURE, ROUND_OVER = 138, 140, 141, 142
BUY_ACCEPTED, RESPAWN, ACTIVATE_REQUEST, POWERUP_ON, ALIVE = 151, 154, 155, 156, 157
TURBO = 1
STRIP = ((11580 + 660) // TWIPS, (60 + 600) // TWIPS, 66, 11)  # the marks of whom the red player has captured
CENTRE_MESSAGE = (150, 270, 500, 30)


class Relay:
    """Stands between the client and the server and reads what both say."""

    def __init__(self, port):
        self.listener = harness.listener()
        self.port = self.listener.getsockname()[1]
        self.server_port = port
        self.lock = threading.Condition()
        self.node = None
        self.place = None
        self.players = {}  # place and life of the others, by node
        self.is_alive = True
        self.frames = []  # what the server has said, with the time, but for positions
        self.reports = []
        self.sockets = [self.listener]
        threading.Thread(target=self.run, daemon=True).start()

    def close(self):
        for one in self.sockets:
            try:
                one.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
            one.close()

    def run(self):
        try:
            client = self.listener.accept()[0]
            server = socket.create_connection(("127.0.0.1", self.server_port))
        except OSError:
            return
        self.sockets += [client, server]
        for one in (client, server):
            one.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        threading.Thread(target=self.pump, args=(client, server, self.heard_client), daemon=True).start()
        self.pump(server, client, self.heard_server)

    def pump(self, source, target, heard):
        rest = b""
        while True:
            try:
                data = source.recv(65536)
                if not data:
                    break
                target.sendall(data)
            except OSError:
                break
            *whole, rest = (rest + data).split(bytes([harness.END]))
            with self.lock:
                for text in whole:
                    heard(text[1], text[2:].split(bytes([harness.SEPARATOR])))
                self.lock.notify_all()
        try:
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass

    def heard_client(self, identifier, fields):
        if identifier == REPORT:
            self.place = (float(fields[0]), float(fields[1]))
            self.reports.append((time.monotonic(), *self.place))

    def heard_server(self, identifier, fields):
        if identifier == POSITION:
            if fields[0] in self.players:
                self.players[fields[0]][0] = (float(fields[1]), float(fields[2]))
            return
        self.frames.append((identifier, fields))
        if identifier == LOGIN_ACCEPTED:
            self.node, self.place = fields[1], (float(fields[2]), float(fields[3]))
        elif identifier == JOINED:
            self.players[fields[0]] = [(float(fields[3]), float(fields[4])), fields[5] == b"1"]
        elif identifier == LEFT:
            self.players.pop(fields[0], None)
        elif identifier == TAIL_CAPTURE:
            self.live(fields[1], False)
        elif identifier == RESPAWN:
            self.live(fields[0], True)
        elif identifier == ROUND_OVER:
            for node in (self.node, *self.players):
                self.live(node, False)

    def live(self, node, is_alive):
        if node == self.node:
            self.is_alive = is_alive
        elif node in self.players:
            self.players[node][1] = is_alive

    def said(self, identifier, condition=lambda fields: True):
        with self.lock:
            return [fields for one, fields in self.frames if one == identifier and condition(fields)]

    def wait_for_news(self):
        """Until either side says something, or a moment has gone by in which nobody did."""
        with self.lock:
            self.lock.wait(0.1)

    def opponents(self):
        with self.lock:
            return [place for place, is_alive in self.players.values() if is_alive]


class Match(harness.DesktopTest):

    def begin(self, *options):
        """A client in the game, red, with its brakes on, and a relay that reads along."""
        server = self.start_server(*options)
        relay = Relay(server.port)
        self.addCleanup(relay.close)
        client = self.start_client()
        client.connect(relay.port, name="Ann", circle=0)
        wait_for(lambda: relay.node, "the login")
        wait_for(lambda: relay.opponents() or not relay.is_alive, "company", 15)
        self.steered = time.monotonic()
        return client, relay

    def steer(self, client, angle, throttle=1.0):
        """Points the mouse so that the ball flies in this direction: both axes' shares of the speed come from it."""
        x, y = math.cos(angle), math.sin(angle)
        share = abs(x) / (abs(x) + abs(y))
        bearing = math.degrees(math.atan(2 * share)) if share < 0.5 else 45 + math.degrees(math.atan(2 * share - 1))
        bearing = min(max(bearing, 1.0), 87.0) / 350 * 2 * math.pi
        width, height = client.canvas
        reach = throttle * height / 2 * 0.98
        client.mouse_to(round(width / 2 + math.copysign(math.sin(bearing) * reach, x)),
                        round(height / 2 + math.copysign(math.cos(bearing) * reach, y)))

    def circle_nearest(self, client, relay, radius=2800.0):
        """One step of a beginner, who flies in circles round the nearest opponent."""
        here = relay.place
        others = relay.opponents()
        if not others:
            return self.steer(client, time.monotonic() % (2 * math.pi), 0.3)
        there = min(others, key=lambda place: math.dist(here, place))
        arm = math.atan2(here[1] - there[1], here[0] - there[0])
        error = (math.dist(here, there) - radius) / radius
        self.steer(client, arm + math.pi / 2 + 0.15 + min(max(error, -0.8), math.pi / 2 - 0.15), 0.85)

    def press_spawn(self, client):
        width, _ = client.canvas_size()
        left, top = client.on_screen(width + 225 // TWIPS + 54, 5760 // TWIPS + 25)
        client.display.xdotool("mousemove", left, top, "click", 1)

    def play_until(self, client, relay, condition, what, seconds=70):
        """Flies, and after each death asks for the next life and releases the brakes, until the condition holds."""
        client.canvas = client.canvas_size()
        origin = client.on_screen(0, 0)
        client.on_screen = lambda x, y: (origin[0] + x, origin[1] + y)  # the window stays; asking takes long
        deadline = time.monotonic() + seconds
        has_brakes = True
        asked = 0.0
        while not condition():
            self.assertLess(time.monotonic(), deadline, what)
            if not relay.is_alive:
                has_brakes = True
                if time.monotonic() - asked > 4:
                    asked = time.monotonic()
                    self.press_spawn(client)
            elif has_brakes:
                self.steer(client, 0.8, 0.5)
                client.right_click()
                has_brakes = False
                freed = time.monotonic()
            else:
                self.circle_nearest(client, relay)
                with relay.lock:
                    silent = not relay.reports or time.monotonic() - relay.reports[-1][0] > 1.0
                # A respawn puts the brakes on when the client learns of it, which may be after the release.
                has_brakes = silent and time.monotonic() - freed > 1.5
            relay.wait_for_news()

    def pixels(self, client, area):
        picture = self.display.picture()
        left, top = client.on_screen(area[0], area[1])
        return [picture.pixel(left + x, top + y) for y in range(area[3]) for x in range(area[2])]

    def keep(self, name):
        """A picture of the screen for whoever wants to look, if KELVORA_PICTURES names a folder."""
        folder = os.environ.get("KELVORA_PICTURES")
        if folder:
            self.display.picture().save(os.path.join(folder, name + ".ppm"))

    def test_captures_an_easy_bot(self):
        client, relay = self.begin("--bots", "3", "--skill", "easy")
        before = self.pixels(client, STRIP)
        self.play_until(client, relay, lambda: relay.said(TAIL_CAPTURE, lambda fields: fields[0] == relay.node),
                        "an easy bot captured")
        self.keep("capture")
        # It lands when the vertex ends; the winner's strip then shows the loser's mark.
        deadline = time.monotonic() + 6
        while self.pixels(client, STRIP) == before and time.monotonic() < deadline:
            self.circle_nearest(client, relay)
            relay.wait_for_news()
        self.keep("captured")
        self.assertNotEqual(self.pixels(client, STRIP), before, "no mark in the strip")

    def test_is_captured_by_a_hard_bot(self):
        client, relay = self.begin("--bots", "3", "--skill", "hard")
        def is_captured():
            return relay.said(TAIL_CAPTURE, lambda fields: fields[1] == relay.node and fields[0] != relay.node)
        self.play_until(client, relay, is_captured, "captured by a hard bot")

        def is_told():
            return sum(g > 60 and r == 0 and b == 0 for r, g, b in self.pixels(client, CENTRE_MESSAGE)) >= 20
        wait_for(is_told, "'You have been captured!'", 8)
        self.keep("loss")

    def test_buys_and_fires_a_turbo(self):
        client, relay = self.begin("--bots", "1", "--skill", "easy")
        store = StoreWindow(client)
        store.click(BUY, TURBO)
        wait_for(lambda: relay.said(BUY_ACCEPTED, lambda fields: fields == [b"1", b"1", b"0"]), "the purchase")
        store.click(DONE)
        store.wait_for_end()
        client.window.activate()
        # Towards the middle of the world: its edge would throw the ball back.
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
            # The mouse is a good two thirds of the way to full speed: 4 frames x 300 x .77 x 3 = 2770 a report.
            return any(abs(b[1] - a[1]) + abs(b[2] - a[2]) > 1800 for a, b in zip(last, last[1:]))
        wait_for(is_fast, "the turbo's speed", 5)

    def test_round_ends_and_the_next_begins(self):
        client, relay = self.begin("--bots", "2", "--skill", "easy", "--round-seconds", "6", "--intermission", "3",
                                   "--respawn-wait", "1")
        wait_for(lambda: relay.said(ROUND_OVER), "the end of the round", 20)
        self.assertFalse(relay.is_alive)
        self.keep("end")
        self.assertTrue(relay.said(ALIVE, lambda fields: fields == [relay.node, b"0"]))
        self.press_spawn(client)
        wait_for(lambda: relay.said(harness.SERVER_TEXT, lambda fields: fields[0].startswith(b"You will be respawned in")),
                 "the answer to an early request")
        wait_for(lambda: relay.said(RESPAWN, lambda fields: fields[0] == relay.node), "the next round's life", 10)
        client.mouse_to(500, 100)
        wait_for(lambda: relay.opponents(), "the bots' next lives", 15)
        with relay.lock:
            reported = len(relay.reports)
        client.right_click()
        wait_for(lambda: len(relay.reports) > reported + 10, "the flight in the next round")
        self.keep("next")
