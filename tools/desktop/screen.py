"""Asks an X server about its windows and for pictures of its screen, over a connection of its own. A program for each
question would take a hundred times as long."""

import socket
import struct

ERROR = 0
ANY_TYPE = 0
VIEWABLE = 2
Z_PIXMAP = 2
BUTTON_PRESS, BUTTON_RELEASE, MOTION, CLIENT_MESSAGE = 4, 5, 6, 33
STRUCTURE_NOTIFY, SUBSTRUCTURE_NOTIFY = 1 << 17, 1 << 19
EVENT_MASK = 1 << 11


class Gone(Exception):
    """The window doesn't exist any more."""


class Screen:

    def __init__(self, display):
        """Connects to a display with this number, whose screen has 32 bits per pixel."""
        self.display = display
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(60)
        self.socket.connect(f"/tmp/.X11-unix/X{display}")
        self.socket.sendall(struct.pack("<BxHHHHxx", ord("l"), 11, 0, 0, 0))
        accepted, words = struct.unpack("<BxxxxxH", self.receive(8))
        assert accepted == 1
        setup = self.receive(4 * words)
        base, mask, vendor, formats = struct.unpack("<4xII4xH3xB", setup[:22])
        self.last_number = base + mask  # of the windows that this connection could make
        at = 32 + (vendor + 3) // 4 * 4 + 8 * formats
        self.root, self.width, self.height = struct.unpack_from("<I16xHH", setup, at)
        self.atoms = {}

    def close(self):
        self.socket.close()

    def receive(self, size):
        data = bytearray(size)
        view = memoryview(data)
        while view:
            received = self.socket.recv_into(view)
            if received == 0:
                raise ConnectionError("the X server has closed the connection")
            view = view[received:]
        return data

    @staticmethod
    def request(code, detail, arguments):
        return struct.pack("<BBH", code, detail, 1 + len(arguments) // 4) + arguments

    def ask(self, code, detail, arguments):
        """Returns the answer to a request, 32 bytes and more."""
        self.socket.sendall(self.request(code, detail, arguments))
        answer = self.receive(32)
        while answer[0] > 1:  # an event, such as that of a new keyboard layout, which every connection gets
            answer = self.receive(32)
        if answer[0] == ERROR:
            raise Gone(f"request {code}: error {answer[1]}")
        return answer + self.receive(4 * struct.unpack_from("<I", answer, 4)[0])

    def pixels(self, left, top, width, height):
        """Four bytes for each pixel, row by row: blue, green, red and nothing."""
        return self.ask(73, Z_PIXMAP, struct.pack("<IhhHHI", self.root, left, top, width, height, 0xFFFFFFFF))[32:]

    def geometry(self, window):
        """Left, top, width and height on the screen, without the window manager's frame."""
        size = struct.unpack_from("<HH", self.ask(14, 0, struct.pack("<I", window)), 16)
        place = struct.unpack_from("<hh", self.ask(40, 0, struct.pack("<IIhh", window, self.root, 0, 0)), 12)
        return place + size

    def is_shown(self, window):
        return self.ask(3, 0, struct.pack("<I", window))[26] == VIEWABLE

    def children(self, window):
        answer = self.ask(15, 0, struct.pack("<I", window))
        return struct.unpack_from(f"<{struct.unpack_from('<H', answer, 16)[0]}I", answer, 32)

    def shown(self, window=None):
        """All windows that are shown, the lowest first."""
        for child in self.children(window or self.root):
            try:
                if self.is_shown(child):
                    yield child
                    yield from self.shown(child)
            except Gone:
                pass

    def atom(self, name):
        if name not in self.atoms:
            self.atoms[name] = struct.unpack_from("<I", self.ask(16, 0, self.text(name)), 8)[0]
        return self.atoms[name]

    @staticmethod
    def text(name):
        return struct.pack("<Hxx", len(name)) + name.encode() + bytes(-len(name) % 4)

    def property(self, window, name):
        """The bytes of a property; none if the window doesn't have it."""
        answer = self.ask(20, 0, struct.pack("<IIIII", window, self.atom(name), ANY_TYPE, 0, 1 << 16))
        width, length = answer[1], struct.unpack_from("<I", answer, 16)[0]
        return bytes(answer[32:32 + width // 8 * length])

    def numbers(self, window, name):
        """The same as numbers of 32 bits."""
        data = self.property(window, name)
        return struct.unpack(f"<{len(data) // 4}I", data)

    def double_click(self, x, y):
        """Double-clicks a point of the screen. The server gets everything at once, so both clicks happen in time."""
        code = self.ask(98, 0, self.text("XTEST"))[9]

        def event(kind, detail):
            return self.request(code, 2, struct.pack("<BBxxII8xhh8x", kind, detail, 0, self.root, x, y))
        click = event(BUTTON_PRESS, 1) + event(BUTTON_RELEASE, 1)
        self.socket.sendall(event(MOTION, 0) + click + click)

    def ping(self, window):
        """Asks a window's program whether it is alive, as window managers do, and waits for the answer. By then, the
        program has handled the window's earlier events."""
        asker = Screen(self.display)
        protocols, ping = self.atom("WM_PROTOCOLS"), self.atom("_NET_WM_PING")
        message = struct.pack("<BBxxIIIII8x", CLIENT_MESSAGE, 32, window, protocols, ping, 0, window)
        # The answer goes to the root window. Qt and Wine address it differently.
        notify = STRUCTURE_NOTIFY | SUBSTRUCTURE_NOTIFY
        asker.socket.sendall(self.request(2, 0, struct.pack("<III", self.root, EVENT_MASK, notify)) +
                             self.request(25, 0, struct.pack("<II", window, 0) + message))
        try:
            while True:
                event = asker.receive(32)
                if event[0] == ERROR:
                    raise Gone(f"window {window}: error {event[1]}")
                addressee, _, protocol, _, pinged = struct.unpack_from("<5I", event, 4)
                if event[0] & 127 == CLIENT_MESSAGE and (addressee, protocol, pinged) == (self.root, ping, window):
                    return
        finally:
            asker.close()
