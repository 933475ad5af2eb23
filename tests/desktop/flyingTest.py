"""Shared code of the tests that check that the ball flies where the mouse points."""

import rules
from desktopTest import DesktopTest


class FlyingTest(DesktopTest):

    def assert_flies(self, client, pixel):
        client, line = self.log_in(client)
        self.assert_steers(client, line, pixel)

    def assert_steers(self, client, line, pixel):
        """Releases the brakes with the mouse at a point of the canvas, and expects the ball to fly there."""
        client.mouse_to(*pixel)
        client.right_click()
        line.report()
        before, after = line.report(), line.report()
        self.assertTrue(rules.is_flight(before, after, rules.velocity(client.canvas_size(), pixel)), (before, after))
