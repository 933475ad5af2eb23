"""The people of bench/evening.py: each has an address of their own, flies, answers pings, agrees to votes, and follows
its arena to another server when the server says that it stops."""

import collections
import math
import re
import select
import socket
import time

from streams import RawStream, WebStream

FAREWELL = "The server is shutting down."
TICK = 0.04  # seconds


def address(number):
    return f"127.{2 + number // 50_000}.{number // 250 % 200}.{1 + number % 250}"


def find_arena(list_port, version, name, source):
    """The port of the arena with that name in its notes; None if it isn't in the list."""
    with socket.create_connection(("127.0.0.1", list_port), 60, (source, 0)) as one:
        one.sendall(f"GET /games/kelvora/gethosts.php?version={version} HTTP/1.0\r\n\r\n".encode())
        answer = b""
        while piece := one.recv(65536):
            answer += piece
    for record in answer.decode("latin-1").partition("\r\n\r\n")[2].split("[")[1:]:
        fields = record.split("]")[0].split("|")
        if fields[3] == name:
            return int(fields[1])
    return None


class Person:
    """Behaves well. `dropped` has the losses of a connection that no server announced."""

    def __init__(self, evening, arena, number, is_web=False, is_watching=False, name=None):
        self.evening, self.arena, self.number = evening, arena, number
        self.is_web, self.is_watching = is_web, is_watching
        self.name = name or f"Guest {number}"
        self.sent = collections.Counter()  # frames by port and message
        self.heard = collections.Counter()
        self.said = collections.deque(maxlen=50)  # lines of the server
        self.dropped, self.moves = [], 0
        self.port = self.socket = self.stopped_port = None
        self.is_gone = self.is_in = self.leaves = False
        self.waits_until = 0.0
        self.angle = float(number)

    def join(self, port=None):
        """Finds the arena and logs in. Tries again a second later, in `act`, if there is none."""
        source = address(self.number)
        self.waits_until = time.monotonic() + 1
        try:
            port = port or find_arena(self.evening.list_port, self.evening.version, f"arena {self.arena}", source)
            if port is None or port == self.stopped_port:
                return
            self.socket = socket.create_connection(("127.0.0.1", port), 60, (source, 0))
            self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            self.rest = b""
            self.centre, self.leaves, self.is_in, self.port = None, False, False, port
            self.stream = (WebStream if self.is_web else RawStream)(
                self.socket, b"/watch" if self.is_watching else b"/play")
            protocol = self.evening.protocol
            self.tell(protocol.LOGIN, self.name, "", str(self.number % 6), self.evening.version)
            self.socket.setblocking(False)
        except OSError:
            self.leave()

    def quit(self):
        """Leaves for good."""
        self.is_gone = True
        self.leave()

    def leave(self):
        if self.socket:
            self.socket.close()
        if self.leaves:
            self.stopped_port = self.port
        self.socket, self.is_in = None, False

    def tell(self, message, *fields):
        data = self.evening.protocol.frame(message, *fields)
        self.sent[self.port, message] += 1
        self.stream.send(data)

    def say(self, text):
        self.tell(self.evening.protocol.CHAT, "-1", text)

    def lose(self, why):
        # Until the login is answered, a server that is full or stops may refuse anybody.
        if self.is_in and not self.leaves:
            self.dropped.append(f"{self.name} in arena {self.arena}: {why}")
        self.leave()

    def read(self):
        """Takes in what has come. Returns the raw bytes of the frames."""
        data = b""
        try:
            while self.socket and (piece := self.socket.recv(65536)):
                data += self.stream.take(piece)
            if self.socket:
                self.take(data)
                self.lose("the server hung up")
                return data
        except BlockingIOError:
            pass
        except OSError as error:
            self.take(data)
            self.lose(str(error))
            return data
        self.take(data)
        return data

    def take(self, data):
        protocol = self.evening.protocol
        *whole, self.rest = (self.rest + data).split(bytes([protocol.END]))
        for text in whole:
            message = text[1]
            self.heard[self.port, message] += 1
            if message == protocol.POSITION:
                continue
            fields = text[2:].decode("latin-1").split(chr(protocol.SEPARATOR))
            if message == protocol.PING:
                self.answer(protocol.PING_REPLY, f"{time.time() % 86400:.3f}")
            elif message == protocol.LOGIN_ACCEPTED:
                self.is_in = True
                self.moves += 1
                x, y = (float(field) for field in fields[2:])
                self.centre = (x - 2000 * math.cos(self.angle), y - 2000 * math.sin(self.angle))
            elif message == protocol.LOGIN_DENIED:
                self.said.append(fields[0])
            elif message == protocol.SERVER_TEXT:
                self.said.append(fields[0])
                self.leaves = self.leaves or fields[0] == FAREWELL
                is_named = re.search(rf"\b{self.name}\b", fields[0])
                if "Type !vote yes" in fields[0] and not is_named and not self.is_watching:
                    self.answer(protocol.CHAT, "-1", "!vote yes")

    def answer(self, message, *fields):
        try:
            self.tell(message, *fields)
        except OSError:
            pass  # the next read finds out why

    def has_heard(self, text):
        return any(text in line for line in self.said)

    def report(self):
        if not self.is_in or self.centre is None or self.leaves:
            return
        self.angle += 0.3  # half the full speed
        x, y = self.centre[0] + 2000 * math.cos(self.angle), self.centre[1] + 2000 * math.sin(self.angle)
        self.answer(self.evening.protocol.POSITION_REPORT, f"{x:.3f}", f"{y:.3f}")

    def act(self, is_flying=True):
        if self.is_gone:
            return
        if self.socket:
            self.read()
        if self.socket and self.leaves:
            self.leave()
        if not self.socket and time.monotonic() > self.waits_until:
            self.join()
        if self.socket and is_flying:
            self.report()

    def wait_for(self, text, patience=60):
        """Reads until the server says that, or hangs up."""
        deadline = time.monotonic() + patience
        while not self.has_heard(text):
            if not self.socket or time.monotonic() > deadline:
                return False
            select.select([self.socket], [], [], 0.1)
            self.read()
        return True


def probe(flyer, watcher, step):
    """The time from a report of one to its arrival at the other; None if either leaves in between."""
    if not all(one.is_in and one.centre and not one.leaves for one in (flyer, watcher)) or flyer.port != watcher.port:
        return None
    x, y = flyer.centre
    place = (f"{x + step % 997:.0f}", f"{y + step % 13:.0f}")
    sought = chr(flyer.evening.protocol.SEPARATOR).join(place).encode("latin-1")
    watcher.read()
    start = time.monotonic()
    flyer.answer(flyer.evening.protocol.POSITION_REPORT, *place)
    heard = b""
    while sought not in heard:
        if not (watcher.socket and flyer.socket) or watcher.leaves:
            return None
        if time.monotonic() > start + 60:
            raise SystemExit(f"arena {flyer.arena}: a report was lost")
        select.select([watcher.socket], [], [], 1)
        heard += watcher.read()
    return time.monotonic() - start
