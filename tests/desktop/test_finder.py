"""The game finder's list from the web host, and how it copes with a host that is down, slow, broken or endless."""

import random
import socket
import unittest

import harness
import wine
from finderTest import FINDER
from ports import free_port
from protocol import LOGIN
from webTest import BOX, REFRESH, WebTest, record

MIDDLE, RIGHT = 2, 3  # mouse buttons


class Finder(WebTest):

    def test_second_of_two_listed_servers_is_connected_by_a_double_click(self):
        host, first, second = self.web_host(), self.scripted_server(), self.scripted_server()
        client, finder = self.start_finder(host)
        self.assertEqual(finder.geometry()[2:], (635, 419))
        request = self.list_request(host)
        self.assertTrue(request.head.startswith(
            b"GET /games/kelvora/gethosts.php?version=" + harness.VERSION.encode() +
            b"&password=0&full=0&empty=1 HTTP/1.1\r\n"
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

    def test_other_buttons_on_a_box_fetch_and_change_nothing(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        self.list_request(host)
        self.mouse_elsewhere(finder)
        before = harness.wait_for_rest(lambda: self.box_pixels(finder, "full"), "the box", looks=2)
        for button in (RIGHT, MIDDLE):
            self.click_box(finder, "full", button)
            self.assertIn(b"&full=0&", self.list_request(host).head)
        self.mouse_elsewhere(finder)
        self.assertEqual(harness.wait_for_rest(lambda: self.box_pixels(finder, "full"), "the box", looks=2), before)
        # A host on which another request waits can't be held, so each press has fetched once.
        host.hold()
        self.change_box(finder, "full")
        host.let_in()
        self.assertIn(b"&full=1&", self.list_request(host).head)

    def test_enter_on_a_box_changes_nothing(self):
        host = self.web_host()
        client, finder = self.start_finder(host)
        self.list_request(host)
        self.change_box(finder, "full")
        self.list_request(host)
        finder.activate()
        # Enter belongs to the default button, which the finder lacks. The blank changes the box.
        self.display.xdotool("key", "Return", "key", "space")
        finder.click(*REFRESH)
        self.assertIn(b"&full=0&", self.list_request(host).head)

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


if __name__ == "__main__":
    unittest.main()
