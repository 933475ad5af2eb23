"""What the client requests from the web host, the list of servers and the newest version, and how it copes with a host
that is down, slow, broken or endless."""

import random
import socket
import unittest
import urllib.request

import harness
import wine
from finderTest import FINDER, FinderTest
from harness import TWIPS
from ports import free_port
from protocol import LOGIN, LOGIN_ACCEPTED, PLAYER_JOINED
from servers import Line, is_read

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
        self.plug = socket.create_connection(("127.0.0.1", self.port))

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

    def click_box(self, finder, name):
        left, top = finder.geometry()[:2]
        x, y = BOXES[name]
        self.display.xdotool("mousemove", left + x, top + y, "click", 1)

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
        self.display.xdotool("mousemove", *finder.geometry()[:2])
        before = harness.wait_for_rest(lambda: self.box_pixels(finder, name), "the box", looks=2)
        self.click_box(finder, name)
        self.display.xdotool("mousemove", *finder.geometry()[:2])
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


class Finder(WebTest):

    def test_second_of_two_listed_servers_is_connected_by_a_double_click(self):
        host, first, second = self.web_host(), self.scripted_server(), self.scripted_server()
        client, finder = self.start_finder(host)
        self.assertEqual(finder.geometry()[2:], (635, 419))
        request = self.list_request(host)
        self.assertTrue(request.head.startswith(
            b"GET /games/kelvora/gethosts.php?version=" + harness.VERSION.encode() + b"&password=0&full=0&empty=1 HTTP/1.1\r\n"
            b"Host: " + host.name.encode() + b"\r\nUser-Agent: Mozilla/5.0 "), request.head)
        request.send(b"HTTP/1.1 200 OK\r\n\r\n" + record(first.port) + record(second.port, flag="1") + b"-END-")
        self.assertTrue(request.is_closed())
        self.wait_for_row(finder, 1)
        self.double_click(finder, 1)
        identifier, fields = second.accept().recv_frame()
        self.assertEqual((identifier, fields[0]), (LOGIN, b"Ann"))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE}, "the end of both dialogs")

    def test_real_server_is_joined_from_the_list(self):
        host, server = self.web_host(), self.start_server()
        client, finder = self.start_finder(host)
        self.list_request(host).send(record(server.port) + b"-END-")
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        client.wait_for_status((128, 255, 128))

    def test_every_box_fetches_again_with_its_new_value(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        self.list_request(host)
        flags = {"password": 0, "full": 0, "empty": 1}
        for name in ("password", "empty", "full", "password"):
            flags[name] = 1 - flags[name]
            # The host may answer at any time: here after the button has been released.
            host.hold()
            self.change_box(finder, name)
            host.let_in()
            query = "password={password}&full={full}&empty={empty} HTTP/1.1".format(**flags).encode()
            self.assertIn(query, self.list_request(host).head)

    def test_unreachable_host_can_be_retried(self):
        port = free_port()
        client = self.start_client(web_host=f"127.0.0.1:{port}")
        finder = self.open_finder(client)
        self.change_box(finder, "full")  # so both the first request and the box's have failed
        self.assert_alive(client, finder, self.web_host(port))

    def test_slow_host_is_waited_for(self):
        host, server = self.web_host(), self.scripted_server()
        client, finder = self.start_finder(host)
        request = self.list_request(host)
        request.connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        for byte in record(server.port) + b"-END-":
            request.send(bytes([byte]))
            request.await_all_read()
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        self.assertEqual(server.accept().recv_frame()[0], LOGIN)

    def test_host_that_closes_early_can_be_retried(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        request = self.list_request(host)
        request.send(record(2010))
        request.end()
        self.assert_alive(client, finder, host)

    def test_garbage_does_no_harm(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        request = self.list_request(host)
        request.send(random.Random(1).randbytes(300_000))
        request.await_all_read()
        self.assert_alive(client, finder, host)

    def test_endless_answer_is_cut_off(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        before = client.memory()
        sent = self.list_request(host).send_for_ever(b"[" * 65536)
        # A mebibyte, plus what the systems' buffers hold on both sides.
        self.assertLess(sent, 24 * 1024 * 1024)
        self.assertLess(client.memory() - before, 32 * 1024 * 1024)
        self.assert_alive(client, finder, host)

    def test_bad_records_end_the_program_with_a_box(self):
        for bad in (record(2010, flag=""), record(2010, flag="yes"), record(70000), b"[" * 32768):
            with self.subTest(bad=bad[:60]):
                host = self.web_host()
                client, finder = self.start_finder(host)
                self.list_request(host).send(bad + b"-END-")
                self.answer_box(client.wait_for_window(BOX))
                self.assertEqual(client.process.wait(harness.PATIENCE), 1)
                self.assertIn("Run-time error", client.output())
                client.close()

    def test_double_click_on_an_empty_list_is_refused_and_closes_the_finder(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        request = self.list_request(host)
        request.send(b"-END-")
        self.assertTrue(request.is_closed())
        self.double_click(finder, 0)
        box = client.wait_for_window(BOX)
        self.assertIn(FINDER, client.windows())
        self.answer_box(box)
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the finder's end")

    # In Wine, no window has the keyboard after one that closes before the window manager has heard of its focus.
    @unittest.skipIf(wine.is_for_windows(harness.CLIENT), "Wine loses the focus")
    def test_the_dialog_has_the_keyboard_after_a_refused_name(self):
        host = self.web_host()
        client = self.start_client(web_host=host.name)
        dialog = client.wait_for_window("Connect")
        dialog.activate()
        self.display.xdotool("key", "Escape")
        finder = client.wait_for_window(FINDER)
        self.list_request(host).send(record(1) + b"-END-")
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        self.answer_box(client.wait_for_window(BOX))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the finder's end")
        harness.wait_for(lambda: self.display.xdotool("getwindowfocus").strip() == str(dialog.identifier),
                         "the dialog's focus")

    def test_closing_the_finder_aborts_the_fetch(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        request = self.list_request(host)
        finder.activate()
        self.display.xdotool("key", "alt+F4")
        self.assertTrue(request.is_closed())
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the finder's end")


class Updates(WebTest):

    def start_check(self):
        host = self.web_host()
        client = self.start_client(web_host=host.name)
        return host, client, host.request_for(b"ver.txt")

    def test_another_version_is_announced(self):
        host, client, request = self.start_check()
        self.assertEqual(request.head, f"GET http://{host.name}/games/kelvora/ver.txt HTTP/1.0\r\n\r\n".encode())
        request.send(UPDATE_FILE % b"7.3.0")
        request.await_all_read()
        self.assert_no_box(client)  # until the host closes
        request.close()
        self.answer_box(client.wait_for_window(BOX))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE}, "the box's end")

    def test_same_version_is_not_announced(self):
        host, client, request = self.start_check()
        request.send(UPDATE_FILE % harness.VERSION.encode())
        request.end()
        self.assert_no_box(client)

    def test_slow_host_is_waited_for(self):
        host, client, request = self.start_check()
        for byte in UPDATE_FILE % b"7.3.0":
            request.send(bytes([byte]))
            request.await_all_read()
        request.close()
        client.wait_for_window(BOX)

    def test_answer_without_a_version_is_ignored(self):
        for answer in (b"", b"HTTP/1.0 404 Not Found\r\n\r\n", random.Random(2).randbytes(300_000)):
            with self.subTest(answer=answer[:20]):
                host, client, request = self.start_check()
                request.send(answer)
                request.end()
                self.assert_no_box(client)
                client.close()

    def test_endless_answer_is_cut_off(self):
        host, client, request = self.start_check()
        before = client.memory()
        self.assertLess(request.send_for_ever(b"tvqver:7.3.0\r\n" * 5000), 24 * 1024 * 1024)
        self.assertLess(client.memory() - before, 32 * 1024 * 1024)
        self.assert_no_box(client)

    def test_game_continues_while_the_host_is_silent(self):
        host, client, request = self.start_check()
        self.log_in(client)


class OwnWebHost(WebTest):
    """The real server's own web host."""

    def change_box_and_refresh(self, finder, name):
        """Changes a box and refreshes: a local host answers between press and release and gets the old value, then the
        new one."""
        self.change_box(finder, name)
        finder.click(*REFRESH)

    def servers_listed(self, server):
        query = f"gethosts.php?version={harness.VERSION}&password=1&full=1&empty=1"
        with urllib.request.urlopen(f"http://{server.web_host}/games/kelvora/{query}", timeout=harness.PATIENCE) as answer:
            return answer.read().count(b"[")

    def test_server_lists_itself_and_is_joined(self):
        server = self.start_server("--web-port", "0", "--notes", "friendly game")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        self.wait_for_row(finder, 0)
        self.assertFalse(self.has_row(finder, 1))
        self.assertNotIn(BOX, client.windows())  # the same version
        self.double_click(finder, 0)
        client.wait_for_status((128, 255, 128))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE}, "the end of both dialogs")

    def test_second_server_of_its_list_is_joined(self):
        server = self.start_server("--web-port", "0")
        other = self.start_server("--publish", f"http://{server.web_host}")
        harness.wait_for(lambda: self.servers_listed(server) == 2, "the other server in the list")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        self.wait_for_row(finder, 1)
        self.double_click(finder, 1)
        client.wait_for_status((128, 255, 128))
        with socket.create_connection(("127.0.0.1", other.port)) as connection:
            player = Line(connection)
            player.send(LOGIN, "Bob", "", 5, harness.VERSION)
            self.assertEqual(player.recv_frame()[0], LOGIN_ACCEPTED)
            identifier, fields = player.recv_frame()
            self.assertEqual((identifier, fields[2]), (PLAYER_JOINED, b"Ann"))

    def test_empty_server_is_hidden_until_somebody_plays(self):
        server = self.start_server("--web-port", "0")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        self.wait_for_row(finder, 0)
        self.change_box_and_refresh(finder, "empty")
        self.wait_for_no_row(finder, 0)
        with socket.create_connection(("127.0.0.1", server.port)) as connection:
            player = Line(connection)
            player.send(LOGIN, "Bob", "", 0, harness.VERSION)
            self.assertEqual(player.recv_frame()[0], LOGIN_ACCEPTED)
            finder.click(*REFRESH)
            self.wait_for_row(finder, 0)

    def test_server_with_a_password_is_hidden_by_default_and_gets_no_prompt(self):
        server = self.start_server("--web-port", "0", "--password", "open up")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        finder.activate()
        self.wait_for_row(finder, -1)  # the heading, the only row of an empty list
        self.assertFalse(self.has_row(finder, 0))
        self.change_box_and_refresh(finder, "password")
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        # The connect dialog's empty password is refused.
        self.answer_box(client.wait_for_window(BOX))
        client.wait_for_status((255, 128, 128))

    def update_answer(self, host, server):
        """Forwards the client's request to the server. Returns the request and the server's whole answer."""
        request = host.request_for(b"ver.txt")
        name, port = server.web_host.split(":")
        with socket.create_connection((name, int(port)), harness.PATIENCE) as upstream:
            upstream.sendall(request.head)
            answer = b""
            while data := upstream.recv(4096):
                answer += data
        self.assertTrue(answer.endswith(f"\r\n\r\ntvqver:{harness.VERSION}\n".encode()), answer)
        return request, answer

    def test_its_version_is_the_clients(self):
        host, server = self.web_host(), self.start_server("--web-port", "0")
        client = self.start_client(web_host=host.name)
        request, answer = self.update_answer(host, server)
        request.send(answer)
        request.end()
        self.assert_no_box(client)

    def test_another_version_in_its_answer_is_announced(self):
        host, server = self.web_host(), self.start_server("--web-port", "0")
        client = self.start_client(web_host=host.name)
        request, answer = self.update_answer(host, server)
        request.send(answer.replace(harness.VERSION.encode(), b"7.2.2"))
        request.close()
        self.answer_box(client.wait_for_window(BOX))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the box's end")


if __name__ == "__main__":
    unittest.main()
