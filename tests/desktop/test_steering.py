"""The mouse steers the ball: velocities, brakes and the world's edges, read from the client's reports and compared with
the rules."""

import unittest

import harness
import rules
from desktopTest import DesktopTest


class Flight(DesktopTest):

    def fly(self, pixel, start=(50000, 50000), count=6, size=None):
        """Returns reports of a client that steers by this pixel of the canvas, and the velocity that the rules give.
        Compares each report with the one before it."""
        client = self.start_client()
        if size:
            client.resize(*size)
        client, line = self.log_in(client, x=start[0], y=start[1])
        client.mouse_to(*pixel)
        client.right_click()
        # The steering is one frame old, so the first report depends on when mouse and button events arrived.
        reported = [line.report() for _ in range(count + 1)]
        self.assertLess(abs(reported[0][0] - start[0]), 1300)
        self.assertLess(abs(reported[0][1] - start[1]), 1300)
        v = rules.velocity(client.canvas_size(), pixel)
        for before, after in zip(reported, reported[1:]):
            self.assertTrue(rules.is_flight(before, after, v), f"after {before}: {reported}")
        return reported, v


class Steering(Flight):

    def test_rules_give_the_values_computed_by_hand(self):
        canvas = (763, 608)
        # 20 pixels right of the centre and 150 up: fx = 293, fy = 2250, a distance of 2269 out of 4560, so s = 149.27;
        # the angle is atan(0.13022) * 55.704 = 7.21, so 7 degrees steer: t = 0.12278, h = 0.5 * t * s = 9.16.
        x, y = rules.velocity(canvas, (401, 154))
        self.assertAlmostEqual(x, 9.16, delta=0.01)
        self.assertAlmostEqual(y, -140.11, delta=0.01)
        # 300 right and 60 down: fx = 4493, fy = -900, beyond the full speed: s = 300; atan(4.9922) * 55.704 = 76.47, so
        # 76: t = tan(31) = 0.60086, h = 1.60086 * 150 = 240.13.
        x, y = rules.velocity(canvas, (681, 364))
        self.assertAlmostEqual(x, 240.13, delta=0.05)
        self.assertAlmostEqual(y, 59.87, delta=0.05)

    def test_first_quadrant(self):
        self.fly((401, 154))

    def test_second_quadrant(self):
        self.fly((120, 60))

    def test_third_quadrant(self):
        self.fly((200, 500))

    def test_fourth_quadrant(self):
        self.fly((681, 364))

    def test_mouse_straight_right(self):
        # Full speed, nearly all of it along x: h = (tan 42 + 1) * 150 = 285.06.
        _, v = self.fly((700, 304))
        self.assertAlmostEqual(v[0], 285.06, delta=0.01)

    def test_mouse_straight_left_flies_to_the_right(self):
        _, v = self.fly((60, 304))
        self.assertAlmostEqual(v[0], 285.06, delta=0.01)

    # A canvas of even width has a column of pixels exactly above and below its centre.
    def test_mouse_straight_above(self):
        (first, second, *_), v = self.fly((382, 50), size=(895, 670))
        self.assertEqual(second[0], first[0])
        # 254 of 304 pixels: s = 250.66, all of it upward.
        self.assertAlmostEqual(v[1], -250.66, delta=0.01)

    def test_mouse_straight_below_flies_upward(self):
        (first, second, *_), v = self.fly((382, 558), size=(895, 670))
        self.assertEqual(second[0], first[0])
        self.assertAlmostEqual(v[1], -250.66, delta=0.01)

    def test_mouse_near_the_middle_is_slow(self):
        # 128 and 90 twips from the centre, 156.5 of 4560: s = 10.29, shared by the axes.
        _, v = self.fly((390, 310), count=4)
        self.assertAlmostEqual(abs(v[0]) + abs(v[1]), 10.29, delta=0.01)

    # These count whole frames. After slow painting, the frames of the next second count for more, so they try again.
    # Each attempt flies on towards the far corner.

    def test_brakes_stop_the_ball_in_steps_of_three(self):
        client, line = self.log_in(y=95000)
        client.mouse_to(401, 154)

        def stop():
            client.right_click()
            line.report()
            first = line.report()
            client.right_click()
            last = line.wait_for_rest()
            # From 9.164 and -140.112: along x 6.164 + 3.164 + 0.164 = 9.49, along y the 46 steps from 137.112 down to
            # 2.112, 46 * (137.112 + 2.112) / 2 = 3202.15. They follow a whole number of frames without brakes.
            free = (first[1] - last[1] - 3202.15) / 140.112
            self.assertAlmostEqual(free, round(free), delta=0.01)
            self.assertAlmostEqual(last[0] - first[0], round(free) * 9.164 + 9.49, delta=0.2)
        harness.wait_until_it_holds(stop)
        # The ball stands still, so there are no more reports.
        self.assertEqual(line.frames_during(0.5), [])

    def test_released_brakes_give_full_control_at_once(self):
        client, line = self.log_in(x=5000, y=95000)
        v = rules.velocity(client.canvas_size(), (120, 60))

        def start_again():
            client.mouse_to(681, 364)
            client.right_click()
            line.report()
            client.right_click()
            line.wait_for_rest()
            client.mouse_to(120, 60)
            start = line.wait_for_paint()
            client.right_click()
            # The report counter continued where it was: the first report comes after one to four frames, the next after
            # four more.
            first, second = line.report(), line.report()
            client.right_click()
            line.wait_for_rest()
            frames = (first[0] - start[0]) / v[0]
            self.assertAlmostEqual(frames, round(frames), delta=0.01)
            self.assertIn(round(frames), (1, 2, 3, 4))
            self.assertTrue(rules.is_flight(first, second, v), (first, second))
        harness.wait_until_it_holds(start_again)


class Edges(Flight):

    def bounce(self, start, pixel, axis, inset):
        reported, _ = self.fly(pixel, start=start, count=8)
        # The ball reached the edge, or would have left the world. It was placed at the inset and reached the edge
        # again.
        drift = rules.velocity((763, 608), pixel)[axis] * 32
        self.assertFalse(0 <= start[axis] + drift <= 100000)
        steps = [after[axis] - before[axis] for before, after in zip(reported, reported[1:])]
        self.assertTrue(any(change * drift < 0 for change in steps), reported)
        self.assertTrue(all(abs(position[axis] - inset) <= 1000 for position in reported), reported)

    def test_left_edge_bounces_to_1000(self):
        self.bounce((700, 50000), (230, 290), 0, 1000)

    def test_right_edge_bounces_to_99000(self):
        self.bounce((99300, 50000), (530, 290), 0, 99000)

    def test_upper_edge_bounces_to_1000(self):
        self.bounce((50000, 700), (400, 160), 1, 1000)

    def test_lower_edge_bounces_to_99000(self):
        self.bounce((50000, 99300), (400, 450), 1, 99000)


if __name__ == "__main__":
    unittest.main()
