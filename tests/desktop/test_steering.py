"""The mouse steers the ball: velocities, brakes and the edges of the world, read from the reports that the client sends and
compared with what the rules give."""

import unittest

import harness
import rules


class Steering(harness.DesktopTest):

    def fly(self, pixel, start=(50000, 50000), count=6, size=None):
        """Reports of a client that steers by this pixel of the canvas; the expected ones stand beside them."""
        client = self.start_client()
        if size:
            client.resize(*size)
        client, line = self.log_in(client, x=start[0], y=start[1])
        canvas = client.canvas_size()
        client.mouse_to(*pixel)
        client.right_click()
        reported = [line.report() for _ in range(count)]
        expected = rules.reports(start, rules.velocity(canvas, pixel), count)
        return reported, expected

    def assert_same(self, flown):
        reported, expected = flown
        for number, (got, wanted) in enumerate(zip(reported, expected, strict=True)):
            for axis in range(2):
                # Seven digits are reported, hundredths here, and each frame rounds.
                self.assertAlmostEqual(got[axis], wanted[axis], delta=0.3, msg=f"report {number} of {flown}")

    def test_rules_give_the_values_that_were_worked_out_by_hand(self):
        canvas = (763, 608)
        # 20 pixels right of the middle and 150 up: fx = 293, fy = 2250, 2269 away of 4560, so s = 149.27; the angle is
        # atan(0.13022) * 55.704 = 7.21, so 7 degrees steer: t = 0.12278, h = 0.5 * t * s = 9.16.
        x, y = rules.velocity(canvas, (401, 154))
        self.assertAlmostEqual(x, 9.16, delta=0.01)
        self.assertAlmostEqual(y, -140.11, delta=0.01)
        # 300 right and 60 down: fx = 4493, fy = -900, beyond the full speed: s = 300; atan(4.9922) * 55.704 = 76.47, so
        # 76: t = tan(31) = 0.60086, h = 1.60086 * 150 = 240.13.
        x, y = rules.velocity(canvas, (681, 364))
        self.assertAlmostEqual(x, 240.13, delta=0.05)
        self.assertAlmostEqual(y, 59.87, delta=0.05)

    def test_first_quadrant(self):
        self.assert_same(self.fly((401, 154)))

    def test_second_quadrant(self):
        self.assert_same(self.fly((120, 60)))

    def test_third_quadrant(self):
        self.assert_same(self.fly((200, 500)))

    def test_fourth_quadrant(self):
        self.assert_same(self.fly((681, 364)))

    def test_mouse_straight_right(self):
        reported, expected = flown = self.fly((700, 304))
        self.assert_same(flown)
        # Full speed, nearly all of it along x: h = (tan 42 + 1) * 150 = 285.06.
        self.assertAlmostEqual(reported[0][0], 50000 + 4 * 285.06, delta=0.5)

    def test_mouse_straight_left_drives_to_the_right(self):
        reported, expected = flown = self.fly((60, 304))
        self.assert_same(flown)
        self.assertGreater(reported[0][0], 51000)

    # A canvas of an even width has a column of pixels exactly above and below its middle.
    def test_mouse_straight_above(self):
        reported, expected = flown = self.fly((382, 50), size=(895, 670))
        self.assert_same(flown)
        self.assertEqual(reported[-1][0], 50000)
        # 254 pixels of 304: s = 250.66, all of it upward.
        self.assertAlmostEqual(reported[0][1], 50000 - 4 * 250.66, delta=0.1)

    def test_mouse_straight_below_drives_upward(self):
        reported, expected = flown = self.fly((382, 558), size=(895, 670))
        self.assert_same(flown)
        self.assertLess(reported[0][1], 49100)

    def test_mouse_near_the_middle_is_slow(self):
        self.assert_same(self.fly((390, 310), count=4))

    def test_brakes_stop_the_ball_in_steps_of_three(self):
        client, line = self.log_in()
        pixel = (401, 154)  # worth 9.16 along x and 140.11 along y
        client.mouse_to(*pixel)
        client.right_click()
        first = line.report()
        client.right_click()
        # y takes 47 frames to stop: 140.11 - 3, - 6 and so on down to 2.11 sum up to 3251.1, x runs 6.16 + 3.16 + 0.16.
        rest = [fields for _, fields in line.frames_during(2.0)]
        last = tuple(float(field) for field in rest[-1])
        # Free frames before the brakes took hold, a whole number of them.
        y = rules.velocity(client.canvas_size(), pixel)[1]
        free = (first[1] - last[1] - 3251.1) / -y
        # The last report is up to three frames short of the stop, which are worth at most 2.11 + 5.11 + 8.11.
        self.assertLess(abs(free - round(free)), 0.15)
        # Standing still: no more reports.
        self.assertEqual(line.frames_during(0.5), [])

    def test_released_brakes_give_full_control_at_once(self):
        client, line = self.log_in()
        client.mouse_to(681, 364)
        client.right_click()
        line.report()
        client.right_click()
        line.frames_during(2.5)
        client.mouse_to(120, 60)
        line.frames_during(0.2)
        line.send(harness.PING, 1)
        start = line.report()
        client.right_click()
        v = rules.velocity(client.canvas_size(), (120, 60))
        # The counter of reports went on where it was: the first report comes after one to four frames, the next after
        # four more.
        first, second = line.report(), line.report()
        frames = (first[0] - start[0]) / v[0]
        self.assertAlmostEqual(frames, round(frames), delta=0.01)
        self.assertIn(round(frames), (1, 2, 3, 4))
        for axis in range(2):
            self.assertAlmostEqual(second[axis] - first[axis], 4 * v[axis], delta=0.3)


class Edges(Steering):

    def bounce(self, start, pixel, axis, inset):
        reported, expected = flown = self.fly(pixel, start=start, count=8)
        self.assert_same(flown)
        # The wall was met: without it the ball would have left the world.
        drift = rules.velocity((763, 608), pixel)[axis] * 32
        self.assertFalse(0 <= start[axis] + drift <= 100000)
        self.assertLess(min(abs(position[axis] - inset) for position in reported), 1200)

    def test_left_edge_throws_back_to_1000(self):
        self.bounce((700, 50000), (60, 280), 0, 1000)

    def test_right_edge_throws_back_to_99000(self):
        self.bounce((99300, 50000), (700, 280), 0, 99000)

    def test_upper_edge_throws_back_to_1000(self):
        self.bounce((50000, 700), (400, 20), 1, 1000)

    def test_lower_edge_throws_back_to_99000(self):
        self.bounce((50000, 99300), (400, 590), 1, 99000)


if __name__ == "__main__":
    unittest.main()
