"""Screens on which a pixel of the window covers several of the screen's."""

import unittest

import harness
from flyingTest import FlyingTest
from harness import TWIPS, wait_for
from protocol import LOGIN, LOGIN_ACCEPTED, POSITION_REPORT, SPAWN_REQUEST, frame


class Scaled(FlyingTest):
    screen = "2200x1700"

    def scaled_client(self, scale, **environment):
        return self.start_client(scale=scale, environment=environment or {"QT_SCALE_FACTOR": str(scale)})

    def test_the_window_grows_with_the_scale(self):
        for scale in (1.25, 1.5, 2):
            with self.subTest(scale=scale):
                client = self.scaled_client(scale)
                self.assertAlmostEqual(client.window.geometry()[2], 894 * scale, delta=1)
                self.assertAlmostEqual(client.wait_for_window("Connect").geometry()[2], 263 * scale, delta=1)
                client.close()

    def test_the_desktops_setting_is_respected(self):
        # The desktop's setting for twice as many pixels.
        self.display.run("xprop", "-root", "-format", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER",
                         "Xft.dpi:\t192\n")
        self.addCleanup(self.display.run, "xprop", "-root", "-remove", "RESOURCE_MANAGER")
        client = self.scaled_client(2, QT_SCALE_FACTOR=None)
        self.assertEqual(client.window.geometry()[2], 2 * 894)

    def title_picture(self, client):
        """The pixels of the canvas in rows, once nothing covers it."""
        dialog = client.wait_for_window("Connect")
        dialog_left, dialog_top, width, height = dialog.geometry()
        # The dialog's background, left of the texts and right of the boxes.
        edges = [(x, dialog_top + height * share // 8) for x in (dialog_left + 2, dialog_left + width - 3)
                 for share in (1, 4, 7)]

        def grounds_of_the_dialog():
            picture = self.display.picture()
            found = [picture.pixel(*edge) for edge in edges]
            return found if len(set(found)) == 1 else None
        grounds = wait_for(grounds_of_the_dialog, "the dialog on the screen")
        dialog.click((1260 + 700) // TWIPS, (2460 + 180) // TWIPS)
        wait_for(lambda: "Connect" not in client.windows(), "the dialog's end")

        def is_uncovered():
            picture = self.display.picture()
            return all(picture.pixel(*edge) != ground for edge, ground in zip(edges, grounds))
        wait_for(is_uncovered, "the picture behind the dialog")
        left, top = client.on_screen(0, 0)
        right, bottom = client.on_screen(*client.canvas_size())

        def rows():
            picture = self.display.picture()
            return [picture.bytes[(y * picture.width + left) * 3:(y * picture.width + right) * 3]
                    for y in range(top, bottom)]
        shown = harness.wait_for_rest(rows, "the picture", looks=2)
        client.close()
        return shown

    def test_each_pixel_of_the_picture_is_four_at_scale_two(self):
        single = self.title_picture(self.scaled_client(1))
        double = self.title_picture(self.scaled_client(2))
        self.assertEqual(len(double), 2 * len(single))
        for y, row in enumerate(double):
            pixels = (single[y // 2][x:x + 3] for x in range(0, len(single[0]), 3))
            self.assertEqual(row, b"".join(pixel + pixel for pixel in pixels), y)

    def test_the_mouse_steers_at_scale_two(self):
        self.assert_flies(self.scaled_client(2), (401, 154))

    def test_the_mouse_steers_at_scale_one_and_a_half(self):
        # Whole pixels of the screen.
        self.assert_flies(self.scaled_client(1.5), (120, 60))

    def test_the_pointer_is_placed_by_the_rules(self):
        for scale in (1, 1.5, 2):
            with self.subTest(scale=scale):
                client, line = self.log_in(self.scaled_client(scale))
                # The corner of the frame and the mouse on it, both in window pixels. The mouse is 15 twips from the
                # left edge of the canvas, so it is pushed 30 pixels to the right, and vertically by the difference
                # between the fixed conversion from twips to pixels and the real one.
                corner = [place / scale for place in client.window.corner_for_the_game()]
                mouse = (1, 300)
                x, y = client.on_screen(*mouse)
                self.display.xdotool("mousemove", x + round(200 * scale), y, "mousedown", 1, "mousemove", x, y)
                expected = (round((corner[0] + mouse[0]) * 15) * 916 / 13605 + 30,
                            round((corner[1] + mouse[1]) * 15) * 916 / 13605 + 45)

                def place():
                    words = self.display.xdotool("getmouselocation").split()
                    return [int(word.split(":")[1]) for word in words[:2]]
                wait_for(lambda: place()[0] > x + 20 * scale, "the push")
                line.wait_for_paint()
                self.display.xdotool("mouseup", 1)
                # Rounded to window pixels, each of which is `scale` screen pixels.
                for axis in range(2):
                    self.assertAlmostEqual(place()[axis], expected[axis] * scale, delta=1.5 * scale)
                client.close()

    def test_clicks_hit_their_target(self):
        client = self.scaled_client(2)
        server = self.scripted_server()
        client.connect(server.port, name="Zoe", circle=4)
        line = server.accept()
        self.assertEqual(line.recv_bytes(), frame(LOGIN, "Zoe", "", 4, harness.VERSION))
        line.send(LOGIN_ACCEPTED, 4, 7, 50000, 50000)
        # The lower right corner of the spawn button: at 11700 and 5760 twips, 1620 by 765.
        left, top = client.on_screen((11700 + 1620) // TWIPS - 2, (5760 + 765) // TWIPS - 2)
        self.display.xdotool("mousemove", left, top, "click", 1)
        while (received := line.recv_frame())[0] == POSITION_REPORT:
            pass
        self.assertEqual(received, (SPAWN_REQUEST, [b""]))


if __name__ == "__main__":
    unittest.main()
