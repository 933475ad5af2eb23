"""A hostile server against the page: whatever it sends, the page answers keys and its memory stays bounded."""

import os
import threading

from pageTest import PageTest, unittest
from protocol import CHAT, END, START

ENDLESS_MIB = int(os.environ.get("KELVORA_HOSTILE_MIB", "64"))
MIB = 1 << 20
# How far the program's memory may grow, in MiB. It grows by a fifth at a time and never shrinks.
STREAM_MIB = 32


class Hostile(PageTest):

    def begin_attack(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("canvas()")
        self.before = self.memory(page)
        return page, line

    def memory(self, page):
        """The bytes of the program's memory, and of what waits for it."""
        return page.evaluate("HEAPU8.length + pendingEvents.reduce((sum, event) => sum + (event.length || event.bytes.length), 0)")

    def send(self, line, portion, total):
        def run():
            for _ in range(total // len(portion)):
                line.send_bytes(portion)
        thread = threading.Thread(target=run, daemon=True)
        thread.start()
        return thread

    def assert_survives(self, page, line):
        """A key sends its line, and the memory has grown by less than the limit."""
        page.type("x")
        page.press("Enter")
        while (received := line.recv_frame())[0] != CHAT:
            pass
        self.assertEqual(received[1][1], b"x")
        self.assertLess((self.memory(page) - self.before) / MIB, STREAM_MIB)
        self.assertEqual(page.complaints(), [])

    def test_a_stream_of_starts(self):
        page, line = self.begin_attack()
        self.send(line, bytes([START]) * 65536, ENDLESS_MIB * MIB).join()
        line.send_bytes(bytes([END]))
        self.assert_survives(page, line)

    def test_a_frame_without_an_end(self):
        page, line = self.begin_attack()
        line.send_bytes(bytes([START, CHAT]))
        self.send(line, b"x" * 65536, ENDLESS_MIB * MIB).join()
        line.send_bytes(bytes([END]))
        self.assert_survives(page, line)


if __name__ == "__main__":
    unittest.main()
