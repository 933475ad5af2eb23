"""Shared code of the tests of what the client requests from the web host."""

import socket

import harness
from finderTest import FinderTest
from harness import TWIPS
from protocol import LOGIN
from servers import is_read

BOX = "Kelvora"
UPDATE_FILE = b"HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\ntvqver:%s\r\n"
# Positions in the finder's client area, in pixels.
REFRESH = ((5340 + 700) // TWIPS, (120 + 127) // TWIPS)
BOXES = {name: (6840 // TWIPS + 8, (top + 127) // TWIPS) for name, top in
         (("password", 120), ("empty", 420), ("full", 720))}


def record(port, address="127.0.0.1", flag="0", notes="friendly game", players="3|8"):
    return f"[{address}|{port}|{flag}|{notes}|{players}]".encode()


class Request:
    """One connection from the client, with the head of its request."""

    def __init__(self, connection):
        self.connection = connection
        connection.settimeout(harness.PATIENCE)
        self.head = b""
        while not self.head.endswith(b"\r\n\r\n"):
            data = connection.recv(4096)
            if not data:
                break
            self.head += data

    def send(self, data):
        self.connection.sendall(data)

    def close(self):
        self.connection.close()

    def await_all_read(self):
        """Waits until the client has read everything sent."""
        harness.wait_for(lambda: is_read(self.connection), "the reading", pause=0.001)

    def end(self):
        """Ends the answer and waits until the client has closed the connection, too."""
        self.connection.shutdown(socket.SHUT_WR)
        assert self.is_closed()

    def is_closed(self):
        try:
            return self.connection.recv(1) == b""
        except ConnectionResetError:
            return True

    def send_for_ever(self, portion):
        """Sends until the client closes the connection. Returns the number of bytes."""
        sent = 0
        try:
            while True:
                self.send(portion)
                sent += len(portion)
        except OSError:
            return sent


class WebHost:
    """A web host scripted by the test."""

    def __init__(self, port=0):
        self.listener = socket.create_server(("127.0.0.1", port))
        self.port = self.listener.getsockname()[1]
        self.name = f"127.0.0.1:{self.port}"
        self.requests = []

    def hold(self):
        """From here on, connections have to wait, because our own connection fills the queue."""
        self.listener.listen(0)
        self.plug = socket.create_connection(("127.0.0.1", self.port), harness.PATIENCE)

    def let_in(self):
        self.listener.listen()
        for end in (self.listener.accept()[0], self.plug):
            end.close()

    def request_for(self, path, seconds=harness.PATIENCE):
        """The next request for the path. Others are left unanswered."""
        self.listener.settimeout(seconds)
        while True:
            request = Request(self.listener.accept()[0])
            self.requests.append(request)
            if path in request.head:
                return request

    def close(self):
        for request in self.requests:
            request.close()
        self.listener.close()


class WebTest(FinderTest):

    def web_host(self, port=0):
        host = WebHost(port)
        self.addCleanup(host.close)
        return host

    def list_request(self, host):
        return host.request_for(b"gethosts.php")

    def start_finder(self, host):
        client = self.start_client(web_host=host.name)
        return client, self.open_finder(client)

    def click_box(self, finder, name, button=1):
        finder.click(*BOXES[name], button)

    def mouse_elsewhere(self, finder):
        """Moves the mouse to the finder's corner, where it highlights nothing."""
        self.display.xdotool("mousemove", *finder.geometry()[:2])

    def assert_alive(self, client, finder, host):
        """Asserts that the finder still works: a new fetch, and a double-click that connects."""
        server = self.scripted_server()
        finder.click(*REFRESH)
        self.list_request(host).send(record(server.port) + b"-END-")
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        self.assertEqual(server.accept().recv_frame()[0], LOGIN)

    def box_pixels(self, finder, name):
        left, top = finder.geometry()[:2]
        x, y = BOXES[name]
        return self.display.picture((left + x - 8, top + y - 8, 16, 16)).pixels()

    def change_box(self, finder, name):
        """Changes a box. Returns once it shows its new value with the mouse elsewhere."""
        self.mouse_elsewhere(finder)
        before = harness.wait_for_rest(lambda: self.box_pixels(finder, name), "the box", looks=2)
        self.click_box(finder, name)
        self.mouse_elsewhere(finder)
        harness.wait_for(lambda: self.box_pixels(finder, name) != before, f"the box '{name}' changed")
        harness.wait_for_rest(lambda: self.box_pixels(finder, name), "the box", looks=2)

    def assert_no_box(self, client):
        """Asserts that no message box is open: the connect dialog can be closed."""
        dialog = client.wait_for_window("Connect")
        dialog.click((1260 + 700) // TWIPS, (2460 + 180) // TWIPS)
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE}, "the dialog's end")
        self.assertIsNone(client.process.poll())

    def answer_box(self, box):
        box.activate()
        self.display.xdotool("key", "Return")
