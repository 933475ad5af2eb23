"""A hostile server against the page: whatever it sends, the page answers keys, its memory stays bounded, and afterwards
it can join and play a game. The guide to reliability states the limits."""

import os
import threading

import attacks
from harness import wait_for
from pageTest import HANG, PageTest, unittest
from protocol import CHAT, END, LOGIN_DENIED, PING, PING_REPLY, PLAYER_JOINED, POSITION, SPAWN_DENIED, START
from spy import Spy

ENDLESS_MIB = int(os.environ.get("KELVORA_HOSTILE_MIB", "64"))
MIB = 1 << 20
# How far the program's memory may grow, in MiB: for a stream without messages, and for what the world keeps of
# messages. It grows by a fifth at a time and never shrinks.
STREAM_MIB, WORLD_MIB = 32, 128
MAX_BOXES = 16


class Hostile(PageTest):

    def begin_attack(self):
        server, page = self.begin()
        self.real_port = server.port
        line = self.log_in(page)
        page.click_on("canvas()")
        self.before = self.memory(page)
        return page, line

    def memory(self, page):
        """The bytes of the program's memory, and of what waits for it."""
        return page.evaluate("HEAPU8.length + "
                             "pendingEvents.reduce((sum, event) => sum + (event.length || event.bytes.length), 0)")

    def send(self, line, portion, total):
        def run():
            for _ in range(max(total // len(portion), 1)):
                line.send_bytes(portion)
        thread = threading.Thread(target=run, daemon=True)
        thread.start()
        return thread

    def assert_answers(self, page, line):
        """A key sends its line."""
        page.press("x", "Enter")
        while (received := line.recv_frame())[0] != CHAT:
            pass
        self.assertEqual(received[1][1], b"x")

    def await_all_read(self, line):
        """Waits until the page has handled everything sent: it answers a ping again. One that is split between two
        reads is lost."""
        def answers():
            line.send(PING, 1)
            return PING_REPLY in [identifier for identifier, _ in line.frames_during(0.5)]
        wait_for(answers, "the answer to a ping", seconds=HANG)

    def assert_within(self, page, mebibytes):
        self.assertLess((self.memory(page) - self.before) / MIB, mebibytes)
        self.assertEqual(page.complaints(), [])

    def assert_plays_on(self, page, line):
        """The same page joins a game of the real server, is seen flying there, and its chat arrives."""
        line.close()
        spy = Spy(self.real_port)
        self.addCleanup(spy.close)
        page.connect("After", port=self.real_port)
        node = spy.await_frame(PLAYER_JOINED, lambda fields: fields[2] == b"After")[0]
        page.wait_for_status("Connected")
        width, height = page.canvas_size()
        page.release_brakes(width / 2 + 100, height / 2 - 60)
        places = set()
        while len(places) < 5:
            places.add(tuple(spy.await_frame(POSITION, lambda fields: fields[0] == node)[1:3]))
        page.click_on("canvas()")
        page.type("h")
        page.press("Enter")
        self.assertEqual(spy.await_frame(CHAT, lambda fields: fields[0] == node)[1], b"h")

    def attack(self, portions, mebibytes):
        """Sends one portion after the other. The page answers after each of them."""
        page, line = self.begin_attack()
        for portion in portions:
            line.send_bytes(portion)
            self.assert_answers(page, line)
        self.await_all_read(line)
        self.assert_within(page, mebibytes)
        self.assert_plays_on(page, line)

    def endless(self, head, portion, total, mebibytes):
        page, line = self.begin_attack()
        line.send_bytes(head)
        sending = self.send(line, portion, total)
        while sending.is_alive():
            self.assert_answers(page, line)
            sending.join(0.2)  # a quick player's pause between keys
        line.send_bytes(bytes([END]))
        self.await_all_read(line)
        self.assert_answers(page, line)
        self.assert_within(page, mebibytes)
        self.assert_plays_on(page, line)

    def test_a_stream_of_starts(self):
        self.endless(b"", bytes([START]) * 65536, ENDLESS_MIB * MIB, STREAM_MIB)

    def test_a_frame_without_an_end(self):
        self.endless(bytes([START, CHAT]), b"x" * 65536, ENDLESS_MIB * MIB, STREAM_MIB)

    def test_end_bytes_that_repeat_their_frame(self):
        self.endless(b"", attacks.REPEATED_ENDS, ENDLESS_MIB * MIB // 64, WORLD_MIB)

    def test_forty_thousand_joins(self):
        self.attack([attacks.THOUSAND_JOINS * 10] * 4 + attacks.LATE_MESSAGES, WORLD_MIB)

    def test_nodes_and_colours_out_of_range(self):
        self.attack([attacks.nodes_and_colours(), *attacks.odd_logins(), attacks.nodes_and_colours()], WORLD_MIB)

    def test_invalid_and_extreme_numbers_in_every_field(self):
        self.attack([attacks.BOB, *(b"".join(frames) for _, _, frames in attacks.extreme_numbers())], WORLD_MIB)

    def test_texts_of_maximum_length(self):
        self.attack(attacks.long_texts(), WORLD_MIB)

    def test_captures_of_unknown_players(self):
        self.attack([attacks.captures(), attacks.BOB, attacks.captures_at_a_vertex() * 20], WORLD_MIB)

    def test_a_flood_while_a_box_is_open(self):
        page, line = self.begin_attack()
        line.send(SPAWN_DENIED)
        page.wait_for("box()")
        self.send(line, attacks.BOX_FLOOD, 8 * MIB).join()
        self.await_all_read(line)
        boxes = "document.querySelectorAll('dialog[open]').length"
        self.assertLessEqual(page.see(boxes), MAX_BOXES)
        while open_boxes := page.see(boxes):
            page.press("Enter")
            page.wait_for(f"{boxes} < {open_boxes}", "the end of a box")
        page.click_on("canvas()")
        self.assert_answers(page, line)
        self.assert_within(page, WORLD_MIB)
        self.assert_plays_on(page, line)

    def test_the_longest_box_fits_in_the_page(self):
        _, page = self.begin()
        for reason in attacks.LONG_TEXTS:
            server, bridge = self.scripted_server()
            page.connect(port=bridge)
            line = server.accept()
            line.recv_frame()
            line.send(LOGIN_DENIED, reason)
            left, top, width, height = page.place("box()")
            self.assertGreaterEqual(min(left, top), 0)
            self.assertTrue(page.see(f"{left + width} <= innerWidth && {top + height} <= innerHeight"))
            page.press("Enter")
            page.wait_for("!box()")

    def test_closing_in_the_middle_of_a_frame(self):
        server, page = self.begin()
        self.real_port = server.port
        self.before = self.memory(page)
        for cut in (1, 2, 3, len(attacks.BOB) - 1):
            line = self.log_in(page)
            line.send_bytes(attacks.BOB[:cut])
            line.close()
            page.wait_for("dialog('Connect')")
        # The missing part comes from the next server, and is simply lost.
        line = self.log_in(page)
        line.send_bytes(attacks.BOB[-1:] + attacks.BOB[2:])
        page.click_on("canvas()")
        self.assert_answers(page, line)
        self.assert_within(page, STREAM_MIB)
        self.assert_plays_on(page, line)

    def test_a_silent_server_can_be_left_for_another(self):
        server, page = self.begin()
        self.real_port = server.port
        self.before = self.memory(page)
        silent, bridge = self.scripted_server()
        page.connect(port=bridge)
        line = silent.accept()
        line.recv_frame()
        page.wait_for_status("Connected")
        page.choose("File", "Disconnect")
        self.assertIsNone(line.recv_frame())
        self.assert_within(page, STREAM_MIB)
        self.assert_plays_on(page, line)


if __name__ == "__main__":
    unittest.main()
