"""Two real clients in one game: what each sees of the other, who gets a chat line, and a capture on both screens."""

import socket
import threading

import harness
from client import Client
from desktopTest import DesktopTest
from display import Display
from harness import wait_for
from protocol import CHAT, LOGIN, LOGIN_ACCEPTED, PLAYER_JOINED, POSITION, POSITION_REPORT, TAIL_CAPTURE
from servers import Line

LEAST_DOT = 3  # pixels
RADAR = (772, 460, 117, 93)  # left, top, width, height in pixels of the client area
CHAT_BOX = (300, 625)  # a pixel of the client area
CONSOLE = (4, 582, 500, 20)  # the newest line
PUBLIC, PRIVATE_SENT, PRIVATE_RECEIVED, SERVER = (128, 255, 128), (255, 255, 255), (255, 0, 255), (255, 255, 0)
CENTRE_MESSAGE = (150, 270, 500, 30)
BALL = (361, 284, 40, 40)  # the own player's, in the middle of the canvas


def is_red(pixel):
    return pixel[0] > 120 and pixel[1] < 100 and pixel[2] < 100


def is_cyan(pixel):
    return pixel[0] < 110 and pixel[1] > 110 and pixel[2] > 110


def is_green(pixel):
    return pixel[1] > 60 and pixel[0] == 0 and pixel[2] == 0


def count(client, area, test):
    """The number of pixels of a rectangle in the client area that pass the test."""
    picture = client.display.picture((*client.on_screen(*area[:2]), *area[2:]))
    return sum(map(test, picture.pixels()))


class Company(DesktopTest):

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.other_display = Display()
        cls.addClassCleanup(cls.other_display.close)

    def two_clients(self):
        ann = self.start_client()
        bob = Client(self.other_display, program=harness.OTHER_CLIENT)
        self.addCleanup(bob.close)
        return ann, bob

    def expect_on_screen(self, client, area, test, what, least=3):
        wait_for(lambda: count(client, area, test) >= least, what)

    def expect_line(self, client, colour, what):
        self.expect_on_screen(client, CONSOLE, lambda pixel: pixel == colour, what, least=20)

    def radar_dot(self, client, place, test):
        """The number of radar pixels that pass the test where a player at this position has a dot."""
        left, top, width, height = RADAR
        x, y = left + int(place[0] * width / 100000), top + int(place[1] * height / 100000)
        return count(client, (max(left, x - 4), max(top, y - 4), 9, 9), test)

    def expect_radar_dot(self, client, place, test, what):
        wait_for(lambda: self.radar_dot(client, place, test) >= LEAST_DOT, what)


class OnTheRealServer(Company):

    def setUp(self):
        # A coach would push the lines of the test up.
        self.server = self.start_server("--no-coach")
        self.ann, self.bob = self.two_clients()
        self.ann.connect(self.server.port, name="Ann", circle=0)
        self.bob.connect(self.server.port, name="Bob", circle=3)
        # The spy comes last: the server drops those who are silent for long.
        self.spy = Line(socket.create_connection(("127.0.0.1", self.server.port)))
        self.addCleanup(self.spy.close)
        self.spy.send(LOGIN, "Spy", "", 5, harness.VERSION)
        self.assertEqual(self.spy.recv_frame()[0], LOGIN_ACCEPTED)
        self.players = {}
        while self.players.keys() != {"Ann", "Bob"}:
            node, _, name, x, y, *_ = self.await_frame(lambda identifier, fields: identifier == PLAYER_JOINED)
            self.players[name.decode()] = (node, (float(x), float(y)))

    def await_frame(self, wanted):
        while True:
            identifier, fields = self.spy.recv_frame()
            if wanted(identifier, fields):
                return fields

    def test_each_sees_the_other_at_the_reported_position(self):
        self.expect_radar_dot(self.ann, self.players["Bob"][1], is_cyan, "Bob's dot on Ann's radar")
        self.expect_radar_dot(self.bob, self.players["Ann"][1], is_red, "Ann's dot on Bob's radar")
        node, start = self.players["Bob"]
        # Towards the far side of the world, wherever Bob starts.
        self.bob.mouse_to(700 if start[0] < 50000 else 63, 250)
        self.bob.right_click()

        def is_far(identifier, fields):
            return identifier == POSITION and fields[0] == node and abs(float(fields[1]) - start[0]) > 15000
        self.last = self.await_frame(is_far)
        self.bob.right_click()

        def is_where_he_was_last_seen():
            for identifier, fields in self.spy.frames_during(0.1):
                if identifier == POSITION and fields[0] == node:
                    self.last = fields
            place = (float(self.last[1]), float(self.last[2]))
            return self.radar_dot(self.ann, place, is_cyan) >= LEAST_DOT
        wait_for(is_where_he_was_last_seen, "Bob's dot at the new position")

    def test_a_public_line_reaches_everybody(self):
        self.say("hello all")
        fields = self.await_frame(lambda identifier, fields: identifier == CHAT)
        self.assertEqual(fields, [self.players["Ann"][0], b"hello all"])
        self.expect_line(self.ann, PUBLIC, "the line on Ann's screen")
        self.expect_line(self.bob, PUBLIC, "the line on Bob's screen")

    def test_a_private_line_reaches_its_addressee(self):
        self.expect_radar_dot(self.ann, self.players["Bob"][1], is_cyan, "Bob's dot on Ann's radar")
        # Bob is cyan, row 3 of the players' list.
        self.ann.window.click((11580 + 360) // 15 + 20, self.ann.menu + (60 + 300 + 3 * 540) // 15 + 8)
        self.say("psst")
        self.expect_line(self.ann, PRIVATE_SENT, "the echo on Ann's screen")
        self.expect_line(self.bob, PRIVATE_RECEIVED, "the line on Bob's screen")
        # The label beside the chat box switches back to public lines.
        self.ann.window.click(50, CHAT_BOX[1] + self.ann.menu)
        self.say("hello all")
        self.assertEqual(self.await_frame(lambda identifier, fields: identifier == CHAT)[1], b"hello all")

    def say(self, line):
        """Ann says a line."""
        self.ann.window.activate()
        self.ann.window.click(CHAT_BOX[0], CHAT_BOX[1] + self.ann.menu)
        self.display.xdotool("type", "--delay", "5", line)
        self.display.xdotool("key", "Return")


class OnAScriptedServer(Company):
    """A scripted server, which knows both positions and can send both clients anything."""

    def setUp(self):
        self.ann, self.bob = self.two_clients()
        server = self.scripted_server()
        self.lines = []
        for client, name, colour, x in ((self.ann, "Ann", 0, 50000), (self.bob, "Bob", 3, 51500)):
            client.connect(server.port, name=name)
            line = server.accept()
            self.assertEqual(line.recv_frame()[0], LOGIN)
            line.send(LOGIN_ACCEPTED, colour, colour + 1, x, 50000)
            self.lines.append(line)
        self.lines[0].send(PLAYER_JOINED, 4, 3, "Bob", 51500, 50000, 1, 0)
        self.lines[1].send(PLAYER_JOINED, 1, 0, "Ann", 50000, 50000, 1, 0)
        for line in self.lines:
            line.ask()

    def relay_bob(self, stop, reports):
        while not stop.is_set():
            try:
                received = self.lines[1].recv_frame(0.2)
            except AssertionError:
                continue
            if received and received[0] == POSITION_REPORT:
                for line in self.lines:
                    line.send(POSITION, 4, *received[1])
                reports.append((float(received[1][0]), float(received[1][1])))

    def test_the_ball_and_the_tail_are_where_the_reports_were(self):
        # Slowly to the right, with the mouse 6 pixels off, and back long before the ball leaves the view.
        self.steer_bob(1)
        stop, reports = threading.Event(), []
        relay = threading.Thread(target=self.relay_bob, args=(stop, reports))
        relay.start()
        try:
            self.bob.right_click()
            wait_for(lambda: self.sees_tail(reports), "the tail where the reports were")
            self.bob.right_click()
            wait_for(lambda: self.sees_ball(reports), "Bob's ball on Ann's canvas")
        finally:
            stop.set()
            relay.join()

    def steer_bob(self, side):
        self.bob.mouse_to(763 // 2 + 6 * side, 304 - 3 * side)

    def sees_tail(self, reports):
        """True if the tail is seen at several of the last positions. The ball has no pixel in the tail's colours."""
        if reports and abs(reports[-1][0] - 50000) > 2500:
            self.steer_bob(-1 if reports[-1][0] > 50000 else 1)
            return False
        return sum(self.tail_at(place) for place in reports[-60:]) >= 3

    def sees_ball(self, reports):
        x, y = reports[-1]
        left, top = round(763 / 2 + (x - 50000) / 15), round(608 / 2 + (y - 50000) / 15)
        return count(self.ann, (left - 20, top - 20, 40, 40), is_cyan) >= 300

    def tail_at(self, place):
        left, top = round(763 / 2 + (place[0] - 50000) / 15), round(608 / 2 + (place[1] - 50000) / 15)

        def is_tail(pixel):
            return pixel[0] == 0 and pixel[1] == pixel[2] and pixel[1] >= 55
        return count(self.ann, (left - 2, top - 2, 5, 5), is_tail) > 0

    def test_a_capture_plays_out_on_both(self):
        # The words of the login look like those of a capture: green ones that fade, yellow ones that stay.
        consoles = []
        for client, is_own in ((self.ann, is_red), (self.bob, is_cyan)):
            self.expect_on_screen(client, BALL, is_own, "the ball", least=300)
            wait_for(lambda: count(client, CENTRE_MESSAGE, is_green) == 0, "the end of the first message")
            consoles.append(self.console(client))
        for line, client, console, name in zip(self.lines, (self.ann, self.bob), consoles, ("Ann", "Bob")):
            line.send(TAIL_CAPTURE, 4, 1, 1, 1)
            # First what fades.
            self.expect_on_screen(client, CENTRE_MESSAGE, is_green, f"the message in the middle of {name}'s canvas",
                                  least=20)
            wait_for(lambda: self.console(client) != console, f"the words on {name}'s console")
            self.expect_line(client, SERVER, f"the colour of the words on {name}'s console")
            # The winner's strip, row 3, has a red mark in its first cell.
            strip = ((11580 + 660) // 15, (60 + 600 + 3 * 540) // 15, 11, 11)
            self.expect_on_screen(client, strip, is_red, f"the mark in {name}'s list")
        # Ann flies on as a ghost: only a red ring remains of her ball, in the middle of her canvas.
        wait_for(lambda: count(self.ann, BALL, is_red) >= 100 and count(self.ann, (373, 296, 16, 16), is_red) < 10,
                 "Ann's ring")
        self.expect_on_screen(self.bob, BALL, is_cyan, "Bob's ball", least=300)

    def console(self, client):
        return list(client.display.picture((*client.on_screen(*CONSOLE[:2]), *CONSOLE[2:])).pixels())
