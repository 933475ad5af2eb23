"""A hostile server that sends as fast as the client reads. KELVORA_HOSTILE_MIB is the length of the endless streams, 64
by default."""

import os
import signal
import unittest

import attacks
from desktopTest import HANG
from hostileTest import MIB, STREAM_MIB, WORLD_MIB, Attack, HostileTest
from protocol import POSITION, START

ENDLESS_MIB = int(os.environ.get("KELVORA_HOSTILE_MIB", "64"))


class HostileFloods(HostileTest):

    def endless(self, head, portion, mebibytes, length=ENDLESS_MIB):
        client, line = self.log_in()
        self.begin_attack(client)
        line.send_bytes(head)
        signal.alarm(HANG + ENDLESS_MIB // 4)
        attack = Attack(line, portion, length * MIB)
        self.assert_answers(line)
        while not attack.is_over(0.2):
            self.assert_answers(line)
        attack.stop()
        print(f"[{attack.sent / MIB:.0f} MiB in {attack.seconds:.1f} s]", end=" ", flush=True)
        self.await_all_read(line)
        self.assert_answers(line)
        self.assert_within(client, mebibytes)
        self.assert_plays_on(client, line)

    def test_endless_frame_starts(self):
        self.endless(b"", bytes([START]) * 65536, STREAM_MIB)

    def test_gigabyte_without_an_end_byte(self):
        self.endless(bytes([START, POSITION]), b"x" * 65536, STREAM_MIB)

    def test_end_bytes_that_repeat_their_frame(self):
        self.endless(b"", attacks.REPEATED_ENDS, WORLD_MIB, ENDLESS_MIB / 64)

    def test_forty_thousand_joins(self):
        client, line = self.log_in()
        self.begin_attack(client)
        attack = Attack(line, attacks.THOUSAND_JOINS, 40 * len(attacks.THOUSAND_JOINS))
        while not attack.is_over():
            self.assert_answers(line)
        attack.stop()
        self.await_all_read(line)
        self.assert_answers(line)
        for messages in attacks.LATE_MESSAGES:
            line.send_bytes(messages)
            self.assert_answers(line)
        self.await_all_read(line)
        self.assert_within(client, WORLD_MIB)
        self.assert_plays_on(client, line)


if __name__ == "__main__":
    unittest.main()
