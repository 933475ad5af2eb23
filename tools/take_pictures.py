#!/usr/bin/python3
"""Takes the pictures of docs/images by playing the real program against the real server on a virtual screen. See
README.md beside this file."""

import argparse
import contextlib
import io
import math
import os
import pathlib
import random
import re
import socket
import subprocess
import sys
import threading
import time

from PIL import Image

sys.dont_write_bytecode = True  # no bytecode in the source tree
ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools" / "desktop"))
import harness  # noqa: E402  (found by the line above)
import wine  # noqa: E402
from client import Client  # noqa: E402
from display import Display  # noqa: E402
from ports import free_port  # noqa: E402
from servers import Line, Server, listener  # noqa: E402

CANVAS = (763, 608)  # pixels, as designed
EDGE = 9000  # world units; the pictures show no edge
ITEMS = {"shield": 0, "charged": 2, "laser": 4}
WANTED_FUNDS = 75  # credits, for one of each


class Tap:
    """A proxy between client and server: forwards everything frame by frame and tracks all positions."""

    def __init__(self, server_port):
        self.server_port = server_port
        self.listener = listener()
        self.port = self.listener.getsockname()[1]
        self.me, self.alive, self.funds = None, True, 10.0
        self.others = {}  # by node: x, y, alive
        threading.Thread(target=self.run, daemon=True).start()

    def run(self):
        client = self.listener.accept()[0]
        server = socket.create_connection(("127.0.0.1", self.server_port))
        threading.Thread(target=self.copy, args=(server, client, self.from_server), daemon=True).start()
        self.copy(client, server, self.from_client)

    def copy(self, source, target, watch):
        kept = b""
        with contextlib.suppress(OSError):  # either side may end first
            while data := source.recv(65536):
                whole, end, kept = (kept + data).rpartition(bytes([harness.protocol.END]))
                for piece in whole.split(bytes([harness.protocol.END])):
                    if len(piece) > 1:
                        watch(piece[1], piece[2:].split(bytes([harness.protocol.SEPARATOR])))
                target.sendall(whole + end)
        target.close()

    def from_client(self, identifier, fields):
        if identifier == harness.protocol.POSITION_REPORT:
            self.me = float(fields[0]), float(fields[1])

    def from_server(self, identifier, fields):
        if identifier == harness.protocol.LOGIN_ACCEPTED:
            self.node, self.me = fields[1], (float(fields[2]), float(fields[3]))
        elif identifier == harness.protocol.PLAYER_JOINED:
            self.others[fields[0]] = [float(fields[3]), float(fields[4]), fields[5] == b"1"]
        elif identifier == harness.protocol.POSITION and fields[0] in self.others:
            self.others[fields[0]][:2] = float(fields[1]), float(fields[2])
        elif identifier == harness.protocol.FUNDS and fields[0] == self.node:
            self.funds = float(fields[1])
        elif identifier in (harness.protocol.TAIL_CAPTURE, harness.protocol.RESPAWN):
            node, lives = (fields[1], False) if identifier == harness.protocol.TAIL_CAPTURE else (fields[0], True)
            if node == self.node:
                self.alive = lives
            elif node in self.others:
                self.others[node][2] = lives

    def in_sight(self):
        """Living opponents whose balls are well inside the canvas."""
        return sum(alive and abs(x - self.me[0]) < 5000 and abs(y - self.me[1]) < 3800
                   for x, y, alive in list(self.others.values()))


class Pilot(threading.Thread):
    """Flies to a player and draws loops next to them."""

    PACE, INTERVAL = 18.0, 0.04  # world units per ms, seconds between two reports

    def __init__(self, port, name, colour, tap, words):
        super().__init__(daemon=True)
        self.tap, self.words, self.turn = tap, words, random.choice((-1, 1))
        self.side, self.radius = colour * 1.26, 900 + 90 * colour
        self.line = Line(socket.create_connection(("127.0.0.1", port)))
        self.line.send(harness.protocol.LOGIN, name, "", colour, harness.VERSION)
        identifier, fields = self.line.recv_frame()
        assert identifier == harness.protocol.LOGIN_ACCEPTED, fields
        self.x, self.y = float(fields[2]), float(fields[3])
        self.heading = 0.0
        self.start()

    def run(self):
        with contextlib.suppress(OSError):  # until the server ends
            self.fly()

    def fly(self):
        began = asked = time.monotonic()
        while True:
            if time.monotonic() - asked > 2:  # respawns if dead
                self.line.send(harness.protocol.SPAWN_REQUEST, "")
                asked = time.monotonic()
            for identifier, _ in self.line.frames_during(self.INTERVAL):
                if identifier == harness.protocol.PING:
                    self.line.send(harness.protocol.PING_REPLY, f"{time.time() % 86400:.2f}")
            # Circles a point next to the player: turns towards it from afar, and follows the circle nearby.
            cx = self.tap.me[0] + 3500 * math.cos(self.side) - self.x
            cy = self.tap.me[1] + 2800 * math.sin(self.side) - self.y
            way = math.hypot(cx, cy)
            lean = math.pi / 2 * min(1.0, self.radius / max(way, 1.0)) ** 2
            wanted = math.atan2(cy, cx) + self.turn * lean
            off = (wanted - self.heading + math.pi) % (2 * math.pi) - math.pi
            self.heading += max(-0.35, min(0.35, off))
            step = self.PACE * self.INTERVAL * 1000
            self.x = min(max(self.x + step * math.cos(self.heading), 500), 99500)
            self.y = min(max(self.y + step * math.sin(self.heading), 500), 99500)
            self.line.send(harness.protocol.POSITION_REPORT, f"{self.x:.2f}", f"{self.y:.2f}")
            if self.words and time.monotonic() - began > 9:
                self.line.send(harness.protocol.CHAT, -1, self.words)
                self.words = ""


class Camera:
    def __init__(self, display, client, output):
        self.display, self.client, self.output = display, client, output

    def shot(self):
        """The main window with its frame and everything on it."""
        whole = Image.open(io.BytesIO(self.display.picture().ppm())).convert("RGB")
        left, top, width, height = self.client.window.frame()
        return whole.crop((left, top, left + width, top + height))

    def keep(self, name, picture):
        picture.save(self.output / f"{name}.png", optimize=True)
        print(self.output / f"{name}.png")


def bots(count):
    """The options that fill a server with players."""
    text = subprocess.run(wine.command(harness.SERVER, "--help"), capture_output=True, text=True).stdout
    return ["--bots", str(count), "--skill", "easy"] if re.search(r"^\s*--bots\b", text, re.M) else []


def shop(client, camera, wanted):
    """Buys a few powerups, takes a picture of the open store and closes it."""
    display = camera.display
    left, top = client.on_screen(CANVAS[0] + 15 + 49, 320 + 20)
    display.xdotool("mousemove", left, top, "click", 1)
    store = client.wait_for_window("Powerups")
    time.sleep(0.5)
    for item in ITEMS.values():
        store.click(256, 119 + 76 * item)
        time.sleep(0.4)
    display.xdotool("mousemove", left, 5)
    time.sleep(0.4)
    if "store" in wanted:
        camera.keep("store", camera.shot())
    store.click(692, 566)


def liveliness(picture):
    """The share of the canvas in strong colours: tails, balls, lightning and explosions."""
    saturation, value = picture.crop((0, 60, CANVAS[0], CANVAS[1])).convert("HSV").split()[1:]
    pairs = zip(saturation.getdata(), value.getdata())
    return sum(s > 90 and v > 90 for s, v in pairs) / 4000


class Flight:
    """Steers the player: to the nearest opponent when far away, in loops when near."""

    def __init__(self, client, tap):
        self.client, self.tap, self.display = client, tap, client.display
        self.began = time.monotonic()
        self.asked = self.moved = self.stood = 0.0
        self.place = tap.me
        self.middle = CANVAS[0] // 2, CANVAS[1] // 2
        client.mouse_to(self.middle[0] + 60, self.middle[1])
        client.right_click()

    def is_inside(self):
        return all(EDGE < coordinate < 100000 - EDGE for coordinate in self.tap.me)

    def turn(self):
        """One move of the mouse; returns the seconds since the start."""
        tap, now = self.tap, time.monotonic() - self.began
        near = min(((x - tap.me[0], y - tap.me[1]) for x, y, alive in list(tap.others.values()) if alive),
                   key=lambda way: math.hypot(*way), default=(1.0, 0.0))
        if not self.is_inside():
            near = 50000 - tap.me[0], 50000 - tap.me[1]
        far = math.hypot(*near)
        angle = math.atan2(near[1], near[0]) if far > 6500 else now * 2.6
        reach = 180 if far > 6500 else 88
        self.client.mouse_to(self.middle[0] + int(reach * math.cos(angle)),
                             self.middle[1] + int(reach * math.sin(angle)))
        if not tap.alive and now - self.asked > 1.5:  # btnSpawn
            left, top = self.client.on_screen(CANVAS[0] + 15 + 49, 384 + 20)
            self.display.xdotool("mousemove", left, top, "click", 1)
            self.asked = now
        if tap.me != self.place:
            self.place, self.moved = tap.me, now
        elif tap.alive and now - self.moved > 1:  # a respawn has put the brakes on
            self.client.right_click()
            self.moved = self.stood = now
        if now - self.moved > 0.4 or not tap.alive:
            self.stood = now
        return now


def earn(client, tap):
    """Flies around until there are enough credits."""
    flight = Flight(client, tap)
    while tap.funds < WANTED_FUNDS and flight.turn() < 60:
        time.sleep(0.08)


def fight(client, camera, tap):
    """Flies loops for a minute and keeps the liveliest picture."""
    display, best, best_score = camera.display, None, -1.0
    flight = Flight(client, tap)
    fired = dict.fromkeys(ITEMS, -99.0)  # seconds
    while (now := flight.turn()) < 60:
        seen = tap.in_sight()
        if seen >= 1 and tap.alive and now - flight.stood > 0.8:
            # The laser lasts for a second, so it waits for a target.
            for name, item in ITEMS.items():
                if fired[name] < 0 and now > 4 and seen >= (3 if name == "laser" and now < 40 else 2):
                    display.xdotool("key", f"F{item + 1}")
                    fired[name] = now
            picture = camera.shot()
            score = seen + 2 * flight.is_inside() + liveliness(picture)
            score += (0.1 < now - fired["laser"] < 1.1) + (now - fired["charged"] < 4.5) + (now - fired["shield"] < 14)
            if now > 4 and score > best_score:
                best, best_score = picture, score
        time.sleep(0.05)
    if best is None:
        sys.exit("nobody came near; try once more")
    camera.keep("fight", best)


def play(display, output, wanted):
    # Three of the server's bots, and two pilots who stay nearby.
    crew = bots(3)
    # One long round, with credits early enough for a visit to the store.
    server = Server("--income", "200", "--captures-to-win", "0", "--round-seconds", "600", *crew)
    tap = Tap(server.port)
    client = Client(display)
    camera = Camera(display, client, output)
    try:
        dialog = client.wait_for_window("Connect")
        dialog.activate()
        dialog.click(1740 // 15 + 20, 180 // 15 + 9)
        display.xdotool("type", "--delay", "5", "Ann")
        time.sleep(0.5)
        if "start" in wanted:
            camera.keep("start", camera.shot())
        if wanted & {"fight", "store"}:
            client.connect(tap.port, name="Ann", circle=3)
            harness.wait_for(lambda: tap.me, "the login")
            crowd = (("Bea", 1, "nice loop!"), ("Carl", 5, "got you next time"), ("Dora", 2, ""), ("Emil", 4, ""),
                     ("Finn", 0, ""))
            for name, colour, words in crowd[:2 if crew else 5]:
                Pilot(server.port, name, colour, tap, words)
            earn(client, tap)
            shop(client, camera, wanted)
            if "fight" in wanted:
                fight(client, camera, tap)
    finally:
        client.close()
        server.close()


class HostList:
    """A web host with the records of several servers, each as announced by its server."""

    def __init__(self, ports):
        self.ports = ports
        self.listener = listener()
        self.address = "127.0.0.1:%d" % self.listener.getsockname()[1]
        threading.Thread(target=self.run, daemon=True).start()

    def record(self, port, request):
        with socket.create_connection(("127.0.0.1", port)) as line:
            line.sendall(request)
            answer = b""
            while data := line.recv(4096):
                answer += data
        return b"".join(re.findall(rb"\[[^\]]*\]", answer))

    def run(self):
        while True:
            line = self.listener.accept()[0]
            with line:
                request = line.recv(4096)
                if b"gethosts" not in request:
                    continue
                records = b"".join(self.record(port, request) for port in self.ports)
                line.sendall(b"HTTP/1.1 200 OK\r\n\r\n" + records + b"-END-")
                time.sleep(0.3)


class Guest(threading.Thread):
    """A player who is logged in and does nothing, to be counted in a list."""

    def __init__(self, port, colour):
        super().__init__(daemon=True)
        self.line = Line(socket.create_connection(("127.0.0.1", port)))
        self.line.send(harness.protocol.LOGIN, f"Guest{colour}", "", colour, harness.VERSION)
        self.start()

    def run(self):
        with contextlib.suppress(OSError):  # until the server ends
            while frame := self.line.recv_frame(60):
                if frame[0] == harness.protocol.PING:
                    self.line.send(harness.protocol.PING_REPLY, f"{time.time() % 86400:.2f}")


def find(display, output):
    servers, web_ports = [], []
    for notes, address, guests, options in (
            ("Friendly game, everybody welcome", "192.0.2.7", 4, []),
            ("Long tails only", "198.51.100.23", 2, []),
            ("Our club, ask for the word", "198.51.100.140", 0, ["--password", "loop"]),
            ("Practice against bots, be kind to beginners", "203.0.113.80", 1, bots(3))):
        web_ports.append(free_port())
        servers.append(Server("--web-port", str(web_ports[-1]), "--notes", notes, "--public-address", address,
                                      *options))
        for colour in range(guests):
            Guest(servers[-1].port, colour)
    time.sleep(2)
    client = Client(display, web_host=HostList(web_ports).address)
    camera = Camera(display, client, output)
    try:
        client.wait_for_window("Connect").activate()
        display.xdotool("key", "Escape")
        finder = client.wait_for_window("Game Finder")
        finder.click(6840 // 15 + 8, 120 // 15 + 8)  # chkPassword
        time.sleep(2.5)
        camera.keep("finder", camera.shot())
    finally:
        client.close()
        for server in servers:
            server.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "release", help="where the programs are")
    parser.add_argument("--output", type=pathlib.Path, default=ROOT / "docs" / "images")
    parser.add_argument("--only", default="start,fight,store,finder", help="names of pictures, with commas")
    options = parser.parse_args()
    harness.use_build(options.build)
    os.environ["KELVORA_DATA"] = str(ROOT)
    options.output.mkdir(parents=True, exist_ok=True)
    wanted = set(options.only.split(","))
    display = Display()
    try:
        if wanted & {"start", "fight", "store"}:
            play(display, options.output, wanted)
        if "finder" in wanted:
            find(display, options.output)
    finally:
        display.close()


if __name__ == "__main__":
    main()
