"""From the connect dialog to the game and back: what is sent and what the player sees."""

import datetime
import socket
import unittest

import harness
from desktopTest import DesktopTest
from ports import free_port
from protocol import (CHAT, LOGIN, LOGIN_ACCEPTED, LOGIN_DENIED, PING, PING_REPLY, PLAYER_JOINED, POSITION,
                      POSITION_REPORT, frame)
from servers import Line, is_read

DAY = 86400  # seconds
GREEN, RED, GREY = (128, 255, 128), (255, 128, 128), (128, 128, 128)


def time_of_day():
    """Seconds since midnight."""
    now = datetime.datetime.now()
    return (now - now.replace(hour=0, minute=0, second=0, microsecond=0)).total_seconds()


class Session(DesktopTest):

    def test_login_is_one_frame_with_name_password_colour_and_version(self):
        server = self.scripted_server()
        self.start_client().connect(server.port, name="Ann", circle=2)
        # Spelled out, to expect the bytes without the table of messages.
        self.assertEqual(server.accept().recv_bytes(), bytes([128, 135]) + b"Ann" + bytes([130, 130]) + b"2" +
                         bytes([130]) + harness.VERSION.encode() + bytes([129]))

    def test_login_carries_the_password(self):
        server = self.scripted_server()
        self.start_client().connect(server.port, name="Bob", password="open up", circle=5)
        self.assertEqual(server.accept().recv_bytes(), frame(LOGIN, "Bob", "open up", 5, harness.VERSION))

    def test_label_turns_green_when_connected_and_red_when_not(self):
        client = self.start_client()
        client.wait_for_status(RED)
        server = self.scripted_server()
        client.connect(server.port)
        line = server.accept()
        line.recv_frame()
        client.wait_for_status(GREEN)
        line.close()
        client.wait_for_status(RED)

    def test_ping_is_answered_with_the_time_of_day_and_one_report(self):
        client, line = self.log_in(x=1234.5, y=67890)
        before = time_of_day()
        line.send(PING, 99)
        identifier, fields = line.recv_frame()
        self.assertEqual((identifier, len(fields)), (PING_REPLY, 1))
        # A float holds the second of a day to 1/128; midnight may pass.
        self.assertLess((float(fields[0]) - before + 0.01) % DAY, (time_of_day() - before) % DAY + 0.02)
        self.assertEqual(line.recv_frame(), (POSITION_REPORT, [b"1234.5", b"67890"]))
        # The brakes are on and nothing moves, so there is no other report.
        self.assertEqual(line.frames_during(0.5), [])

    def test_ping_before_the_login_is_not_answered(self):
        server = self.scripted_server()
        self.start_client().connect(server.port)
        line = server.accept()
        line.recv_frame()
        line.send(PING, 1)
        self.assertEqual(line.frames_during(0.5), [])

    def send_and_await(self, line, part):
        """Sends part of a frame and waits until the client has read it: it answers a ping sent right before it."""
        line.send_bytes(frame(PING, 1) + part)
        self.assertEqual([line.recv_frame()[0], line.recv_frame()[0]], [PING_REPLY, POSITION_REPORT])

    def assert_answers(self, line, pings):
        """Asserts that exactly this many pings are answered."""
        answers = [line.recv_frame()[0] for _ in range(2 * pings)]
        self.assertEqual(answers, [PING_REPLY, POSITION_REPORT] * pings)
        self.assertEqual(line.frames_during(0.5), [])

    def test_frame_split_inside_its_fields_is_lost(self):
        client, line = self.log_in()
        self.send_and_await(line, bytes([128, PING]) + b"1")
        line.send_bytes(b"2" + bytes([129]))
        harness.wait_for(lambda: is_read(line.socket), "the rest of the frame")
        line.send(PING, 12)
        self.assert_answers(line, 1)

    def test_frame_split_after_its_start_is_whole(self):
        client, line = self.log_in()
        self.send_and_await(line, bytes([128]))
        line.send_bytes(bytes([PING]) + b"12" + bytes([129]))
        self.assert_answers(line, 1)

    def test_two_frames_at_once_are_both_answered(self):
        client, line = self.log_in()
        line.send_bytes(frame(PING, 1) + frame(PING, 2))
        self.assert_answers(line, 2)

    def refused_client(self):
        client = self.start_client()
        client.connect(free_port())
        client.wait_for_status(GREY)
        return client

    def test_refused_connection_shows_the_grey_error(self):
        client = self.refused_client()
        self.assertNotIn("Connect", client.windows())

    def test_disconnect_in_the_menu_clears_the_error(self):
        client = self.refused_client()
        client.choose(20, "Up", "Up", "Return")
        client.wait_for_window("Connect")
        client.wait_for_status(RED)

    def test_dialog_reopens_when_the_server_goes_away(self):
        client, line = self.log_in()
        self.assertNotIn("Connect", client.windows())
        line.close()
        client.wait_for_window("Connect")
        client.wait_for_status(RED)

    def test_denied_login_shows_a_box_and_then_the_dialog(self):
        client = self.start_client()
        server = self.scripted_server()
        client.connect(server.port)
        line = server.accept()
        line.recv_frame()
        harness.wait_for(lambda: "Connect" not in client.windows(), "the dialog's end")
        line.send(LOGIN_DENIED, "the arena is full")
        box = client.wait_for_other_window()
        self.assertNotIn("Connect", client.windows())
        box.activate()
        self.display.xdotool("key", "Return")
        self.assertIsNone(line.recv_frame())
        client.wait_for_window("Connect")

    def test_player_can_reconnect_after_the_server_went_away(self):
        client, line = self.log_in(name="Ann")
        line.close()
        client.wait_for_window("Connect")
        client, line = self.log_in(client, name="Zoe", x=40000, y=30000)
        line.send(PING, 1)
        line.recv_frame()
        self.assertEqual(line.recv_frame(), (POSITION_REPORT, [b"40000", b"30000"]))

    def test_chat_line_is_sent_on_enter(self):
        client, line = self.log_in()
        client.window.activate()
        client.mouse_to(300, 300)
        self.display.xdotool("click", 1, "type", "--delay", "20", "hello there")
        self.display.xdotool("key", "Return")
        self.assertEqual(line.recv_frame(), (CHAT, [b"-1", b"hello there"]))
        # The caret stands behind an older line and the blank that follows it.
        self.display.xdotool("key", "Up", "x", "Return")
        self.assertEqual(line.recv_frame(), (CHAT, [b"-1", b"hello there x"]))

    def test_the_game_runs_on_while_a_menu_is_open(self):
        client, line = self.log_in()
        client.choose(20)
        for _ in range(3):
            line.wait_for_paint()
        # The menu is still there.
        client.display.xdotool("key", "Up", "Return")
        self.assertEqual(client.process.wait(harness.PATIENCE), 0)

    def test_closing_the_window_ends_the_process_at_once_and_sends_nothing(self):
        client, line = self.log_in()
        client.window.activate()
        self.display.xdotool("key", "alt+F4")
        self.assertIsNone(line.recv_frame())
        self.assertEqual(client.process.wait(harness.PATIENCE), 0)


class RealServer(DesktopTest):

    def test_client_is_seen_by_another_player(self):
        server = self.start_server()
        other = Line(socket.create_connection(("127.0.0.1", server.port), harness.PATIENCE))
        self.addCleanup(other.close)
        other.send(LOGIN, "Watcher", "", 1, harness.VERSION)

        def next_of(wanted):
            while True:
                identifier, fields = other.recv_frame()
                if identifier == wanted:
                    return fields
        next_of(LOGIN_ACCEPTED)
        client = self.start_client()
        client.connect(server.port, name="Ann")
        while True:
            joined = next_of(PLAYER_JOINED)
            if joined[2] == b"Ann":
                break
        client.wait_for_status(GREEN)
        # The ball flies off once the brakes are released, and the other player gets its reports.
        client.mouse_to(600, 200)
        client.right_click()
        seen = set()
        while len(seen) < 5:
            node, x, y = next_of(POSITION)[:3]
            if node == joined[0]:
                seen.add((x, y))

    def test_dialog_reopens_when_the_real_server_ends(self):
        server = self.start_server()
        client = self.start_client()
        client.connect(server.port)
        client.wait_for_status(GREEN)
        server.close()
        client.wait_for_window("Connect")


if __name__ == "__main__":
    unittest.main()
