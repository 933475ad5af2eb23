"""The pace and what it costs. Other work on the machine disturbs these, so that each may try three times: what is
required is that the program can keep the pace, and no disturbance makes a program faster or cheaper than it is."""

import time
import unittest

import harness
from desktopTest import DesktopTest


def one_of_three(measure):
    """Runs a measurement until it holds, three times at most; the last failure stands."""
    for attempt in range(3):
        try:
            return measure()
        except AssertionError:
            if attempt == 2:
                raise


class Pace(DesktopTest):

    def test_hundred_frames_a_second_for_a_third_of_a_core(self):
        client, line = self.log_in()
        # In a small circle the ball never meets an edge: the mouse is near the middle.
        client.mouse_to(386, 308)
        client.right_click()

        def measure():
            line.frames_during(0.5)
            line.report()
            cpu, begin = client.cpu_seconds(), time.monotonic()
            for _ in range(100):
                line.report()
            seconds, cpu = time.monotonic() - begin, client.cpu_seconds() - cpu
            # A report every fourth frame, so that 100 of them are 400 frames, 4 s at 10 ms each.
            self.assertAlmostEqual(seconds, 4.0, delta=0.08)
            self.assertLess(cpu / seconds, 1 / 3)
        one_of_three(measure)

    def test_unpaced_loop_is_faster_than_the_paced_one(self):
        client, line = self.log_in(self.start_client(frame_ms=None))
        client.mouse_to(386, 308)
        client.right_click()

        def measure():
            line.frames_during(0.5)
            line.report()
            begin = time.monotonic()
            for _ in range(100):
                line.report()
            self.assertLess(time.monotonic() - begin, 3.5)
        one_of_three(measure)

    def assert_idle(self, frame_ms):
        client = self.start_client(frame_ms=frame_ms)
        client.wait_for_window("Connect")

        harness.wait_for_rest(client.cpu_seconds, "the start", looks=20)

        def measure():
            cpu = client.cpu_seconds()
            time.sleep(3)  # what is measured
            self.assertLess(client.cpu_seconds() - cpu, 0.1)
        one_of_three(measure)

    def test_paced_client_without_a_connection_costs_next_to_nothing(self):
        self.assert_idle("10")

    def test_unpaced_client_without_a_connection_costs_next_to_nothing(self):
        self.assert_idle(None)


if __name__ == "__main__":
    unittest.main()
