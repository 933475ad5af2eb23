"""A scripted match on the real server: the script reads what client and server send, and steers the mouse like a
beginner."""

import math
import socket
import threading
import time

import harness
from harness import TWIPS
from servers import listener

TURBO = 1


class Relay:
    """A proxy between client and server that reads what both send."""

    def __init__(self, port):
        self.listener = listener()
        self.port = self.listener.getsockname()[1]
        self.server_port = port
        self.lock = threading.Condition()
        self.node = None
        self.place = None
        self.players = {}  # position and life of the others, by node
        self.is_alive = True
        self.frames = []  # what the server has sent, with the time, without positions
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
            *whole, rest = (rest + data).split(bytes([harness.protocol.END]))
            with self.lock:
                for text in whole:
                    heard(text[1], text[2:].split(bytes([harness.protocol.SEPARATOR])))
                self.lock.notify_all()
        try:
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass

    def heard_client(self, identifier, fields):
        if identifier == harness.protocol.POSITION_REPORT:
            self.place = (float(fields[0]), float(fields[1]))
            self.reports.append((time.monotonic(), *self.place))

    def heard_server(self, identifier, fields):
        if identifier == harness.protocol.POSITION:
            if fields[0] in self.players:
                self.players[fields[0]][0] = (float(fields[1]), float(fields[2]))
            return
        self.frames.append((identifier, fields))
        if identifier == harness.protocol.LOGIN_ACCEPTED:
            self.node, self.place = fields[1], (float(fields[2]), float(fields[3]))
        elif identifier == harness.protocol.PLAYER_JOINED:
            self.players[fields[0]] = [(float(fields[3]), float(fields[4])), fields[5] == b"1"]
        elif identifier == harness.protocol.PLAYER_LEFT:
            self.players.pop(fields[0], None)
        elif identifier == harness.protocol.TAIL_CAPTURE:
            self.live(fields[1], False)
        elif identifier == harness.protocol.RESPAWN:
            self.live(fields[0], True)
        elif identifier == harness.protocol.ROUND_OVER:
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
        """Waits until either side sends something, or a moment has passed."""
        with self.lock:
            self.lock.wait(0.1)

    def opponents(self):
        with self.lock:
            return [place for place, is_alive in self.players.values() if is_alive]


class Pilot:
    """Flies the ball of a client whose connection runs through a relay."""

    def __init__(self, client, relay):
        self.client, self.relay = client, relay

    def steer(self, angle, throttle=1.0):
        """Points the mouse so that the ball flies in this direction. The direction determines both axes' shares of the
        speed."""
        x, y = math.cos(angle), math.sin(angle)
        share = abs(x) / (abs(x) + abs(y))
        bearing = math.degrees(math.atan(2 * share)) if share < 0.5 else 45 + math.degrees(math.atan(2 * share - 1))
        bearing = min(max(bearing, 1.0), 87.0) / 350 * 2 * math.pi
        width, height = self.client.canvas
        reach = throttle * height / 2 * 0.98
        self.client.mouse_to(round(width / 2 + math.copysign(math.sin(bearing) * reach, x)),
                             round(height / 2 + math.copysign(math.cos(bearing) * reach, y)))

    def circle_nearest(self, radius=2800.0):
        """One step of a beginner, who circles the nearest opponent."""
        here = self.relay.place
        others = self.relay.opponents()
        if not others:
            return self.steer(time.monotonic() % (2 * math.pi), 0.3)
        there = min(others, key=lambda place: math.dist(here, place))
        arm = math.atan2(here[1] - there[1], here[0] - there[0])
        error = (math.dist(here, there) - radius) / radius
        self.steer(arm + math.pi / 2 + 0.15 + min(max(error, -0.8), math.pi / 2 - 0.15), 0.85)

    def press_spawn(self):
        width, _ = self.client.canvas_size()
        left, top = self.client.on_screen(width + 225 // TWIPS + 54, 5760 // TWIPS + 25)
        self.client.display.xdotool("mousemove", left, top, "click", 1)

    def play_until(self, condition, what, seconds=200):
        """Flies until the condition holds. After each death it requests a new life and releases the brakes."""
        self.client.canvas = self.client.canvas_size()
        deadline = time.monotonic() + seconds
        has_brakes = True
        asked = 0.0
        while not condition():
            if time.monotonic() > deadline:
                raise AssertionError(f"not within {seconds} s: {what}")
            if not self.relay.is_alive:
                has_brakes = True
                if time.monotonic() - asked > 4:
                    asked = time.monotonic()
                    self.press_spawn()
            elif has_brakes:
                self.steer(0.8, 0.5)
                self.client.right_click()
                has_brakes = False
                freed = time.monotonic()
            else:
                self.circle_nearest()
                with self.relay.lock:
                    silent = not self.relay.reports or time.monotonic() - self.relay.reports[-1][0] > 1.0
                # The client puts the brakes on when it learns of the respawn, which may be after they were released.
                has_brakes = silent and time.monotonic() - freed > 1.5
            self.relay.wait_for_news()
