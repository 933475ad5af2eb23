"""Shared code of the tests of hostile servers against the real window. Whatever they send, the window responds, the
process stays within its memory limits, and afterwards the same process can join and play a game. The guide to
reliability states the limits."""

import contextlib
import re
import socket
import threading
import time

import harness
from desktopTest import HANG, DesktopTest
from protocol import CHAT, LOGIN, LOGIN_ACCEPTED, PING, PING_REPLY, PLAYER_JOINED, POSITION
from servers import Line

MIB = 1 << 20
# How far the process's memory may exceed that of the game before, in MiB: for a stream without messages, the socket's
# read buffer and the queue's limit; for messages, what the world may keep of them.
STREAM_MIB, WORLD_MIB = 16, 128
# Processor seconds that the client may take from a key to the chat line that it sends.
ANSWER = 10.0
GREEN = (128, 255, 128)


class Attack:
    """Sends a portion repeatedly on its own thread, as fast as the client reads."""

    def __init__(self, line, portion, total=None):
        self.portion, self.total = portion, total
        self.sent, self.seconds = 0, 0.0
        self.stopping = False
        self.error = None
        # A separate socket object, because the reader keeps changing the timeout of its own.
        self.socket = line.socket.dup()
        self.socket.settimeout(HANG)
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def run(self):
        begin = time.monotonic()
        try:
            while not self.stopping and (self.total is None or self.sent < self.total):
                self.socket.sendall(self.portion)
                self.sent += len(self.portion)
        except OSError as error:
            self.error = error
        self.seconds = time.monotonic() - begin

    def is_over(self, seconds=0.0):
        """Waits this long for its end."""
        self.thread.join(seconds)
        return not self.thread.is_alive()

    def stop_at_its_end(self):
        self.thread.join()
        self.stop()

    def stop(self):
        self.stopping = True
        self.thread.join(harness.PATIENCE)
        self.socket.close()
        if self.error:
            raise self.error


class HostileTest(DesktopTest):

    def setUp(self):
        self.longest = 0.0

    def peak(self, client):
        """The process's peak memory since `begin_attack`, in MiB."""
        with open(f"/proc/{client.process.pid}/status") as file:
            return int(re.search(r"VmHWM:\s+(\d+)", file.read())[1]) / 1024

    def begin_attack(self, client):
        with open(f"/proc/{client.process.pid}/clear_refs", "w") as file:
            file.write("5")
        self.client = client
        self.before = self.peak(client)
        self.take_keys(client)

    def take_keys(self, client):
        """Gives the keyboard focus to the chat line."""
        client.window.activate()
        client.mouse_to(300, 300)
        self.display.xdotool("click", 1)

    def assert_answers(self, line):
        """Asserts that a key pressed now sends its line in time. Returns the ids of the frames that arrived with it."""
        identifiers = []
        with self.answer_in_time():
            self.display.xdotool("key", "x", "Return")
            while CHAT not in identifiers:
                received = line.recv_frame(HANG)  # the processor time counts
                self.assertIsNotNone(received, "the client has closed the line")
                identifiers.append(received[0])
        return identifiers

    @contextlib.contextmanager
    def answer_in_time(self):
        """Within this scope, the client must respond to a key. Other programs' time is not counted."""
        begin, cpu = time.monotonic(), self.client.cpu_seconds()
        yield
        self.longest = max(self.longest, time.monotonic() - begin)
        self.assertLess(self.client.cpu_seconds() - cpu, ANSWER)

    def await_all_read(self, line, answers=None):
        """Waits until the client has handled everything sent: it answers a ping again. A ping that is split between two
        reads is lost, so several are sent. Keys must be answered meanwhile."""
        answers = answers or self.assert_answers
        line.send(PING, 1)
        while PING_REPLY not in answers(line):
            line.send(PING, 1)
        line.frames_during(0.5)

    def assert_within(self, client, mebibytes):
        peak = self.peak(client)
        self.figure = f"{peak - self.before:.1f} MiB more, keys answered within {self.longest:.2f} s"
        print(f"[{self._testMethodName}: {self.figure}]", end=" ", flush=True)
        self.assertLess(peak - self.before, mebibytes)
        self.assertIsNone(client.process.poll())

    def assert_plays_on(self, client, line=None):
        """Asserts that the same process joins a game of the real server, is seen flying there, and its chat arrives."""
        if line:
            line.close()
        server = self.start_server()
        client.connect(server.port, name="After")
        # The watcher comes last: the server drops those who are silent for long.
        watcher = Line(socket.create_connection(("127.0.0.1", server.port), harness.PATIENCE))
        self.addCleanup(watcher.close)
        watcher.send(LOGIN, "Watcher", "", 1, harness.VERSION)

        def next_of(wanted):
            while True:
                received = watcher.recv_frame()
                self.assertIsNotNone(received)
                if received[0] == wanted:
                    return received[1]
        next_of(LOGIN_ACCEPTED)
        joined = next_of(PLAYER_JOINED)
        while joined[2] != b"After":
            joined = next_of(PLAYER_JOINED)
        client.wait_for_status(GREEN)
        client.mouse_to(600, 200)
        client.right_click()
        places = set()
        while len(places) < 5:
            node, *place = next_of(POSITION)[:3]
            if node == joined[0]:
                places.add(tuple(place))
        client.window.activate()
        self.display.xdotool("click", 1, "key", "h", "Return")
        while (chat := next_of(CHAT))[0] != joined[0]:
            pass
        self.assertEqual(chat[1], b"h")
