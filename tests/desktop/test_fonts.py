"""The font dialog, opened from the menu and operated with the mouse: changes show and are saved at once."""

import unittest

import harness
from desktopTest import DesktopTest
from harness import TWIPS
from protocol import PING, PING_REPLY

BLACK = (0, 0, 0)
# Twips: the blocks are 1020 apart, starting at 120.
BLOCK = 1020
SERVER_MESSAGE, ERROR_MESSAGE = 3, 4
BAR_LEFT, BAR_WIDTH = 5730, 855
BAR_TOPS = (60, 300, 540)  # red, green, blue


def pixels(twips):
    return round(twips / TWIPS)


def row(purpose, top):
    return pixels(120 + BLOCK * purpose + top)


class Fonts(DesktopTest):

    def open_dialog(self, client):
        connect = client.wait_for_window("Connect")
        connect.click(pixels(1260 + 700), pixels(2460 + 180))
        harness.wait_for(lambda: "Connect" not in client.windows(), "the connect dialog's end")
        return self.open_by_menu(client)

    def open_by_menu(self, client):
        client.choose(70, "Down", "Down", "Return")  # Settings
        return client.wait_for_window("Configure Fonts")

    def drag(self, dialog, start, end):
        """Drags from one pixel of the dialog to another with the left button, through points in between."""
        left, top = dialog.geometry()[:2]
        steps = [(left + start[0] + (end[0] - start[0]) * i // 8, top + start[1] + (end[1] - start[1]) * i // 8)
                 for i in range(9)]
        self.display.xdotool("mousemove", *steps[0], "mousedown", 1)
        for step in steps[1:]:
            self.display.xdotool("mousemove", *step)
        self.display.xdotool("mouseup", 1)

    def drag_bar(self, dialog, purpose, channel, end):
        """Drags along a bar, to this many pixels from its left end."""
        y = row(purpose, BAR_TOPS[channel] + 90)
        self.drag(dialog, (pixels(BAR_LEFT) + 2, y), (pixels(BAR_LEFT) + end, y))

    def saved(self, client, key):
        return client.saved("fonts", key)

    def wait_for_saved(self, client, key, text):
        harness.wait_for(lambda: self.saved(client, key) == text,
                         f"{key}={text}, but {self.saved(client, key)!r}")

    def swatch(self, dialog, purpose):
        left, top = dialog.geometry()[:2]
        return self.display.pixel(left + pixels(4920 + 300), top + row(purpose, 225 + 150))

    def sample(self, dialog, purpose):
        """The rectangle of the sample's letters, in pixels of the dialog, and their brightest colour."""
        left, top = dialog.geometry()[:2]
        picture = self.display.picture()
        ink = {}
        for y in range(row(purpose, 450), row(purpose, 930)):
            for x in range(pixels(180), pixels(4680)):
                colour = picture.pixel(left + x, top + y)
                if colour != BLACK:
                    ink[x, y] = colour
        columns, rows = [x for x, _ in ink], [y for _, y in ink]
        return (min(columns), min(rows), max(columns), max(rows)), max(ink.values(), key=sum)

    def test_window_has_its_size_and_five_blocks(self):
        client = self.start_client()
        dialog = self.open_dialog(client)
        left, top, width, height = dialog.geometry()
        self.assertEqual((width, height), (451, 381))
        colours = [(128, 255, 128), (255, 255, 255), (255, 0, 255), (255, 255, 0), (255, 0, 0)]
        harness.wait_for(lambda: self.swatch(dialog, ERROR_MESSAGE) == colours[ERROR_MESSAGE], "the picture")
        solids = [(255, 0, 0), (0, 255, 0), (0, 0, 255)]
        bar_left = left + pixels(BAR_LEFT)

        def bars():
            picture = self.display.picture()
            return [picture.pixel(bar_left + 28, top + row(purpose, y) + 6) for purpose in range(5) for y in BAR_TOPS]
        harness.wait_for(lambda: bars() == solids * 5, bars)
        picture = self.display.picture()
        for purpose, colour in enumerate(colours):
            with self.subTest(purpose=purpose):
                self.assertEqual(self.swatch(dialog, purpose), colour)
                self.assertEqual(self.sample(dialog, purpose)[1], colour)
                for channel, solid in enumerate(solids):
                    y = top + row(purpose, BAR_TOPS[channel])
                    self.assertNotIn(picture.pixel(bar_left, y), (solid, BLACK))
                    self.assertEqual(picture.pixel(bar_left - 1, y), BLACK)
                    self.assertEqual(picture.pixel(bar_left + 57, y), BLACK)

    def test_bar_reaches_a_hundred_inside_and_more_beyond(self):
        client = self.start_client()
        dialog = self.open_dialog(client)
        # 57 pixels are the bar's 855 twips: its right edge.
        self.drag_bar(dialog, ERROR_MESSAGE, 0, 57)
        self.wait_for_saved(client, "4colorR", "100")
        harness.wait_for(lambda: self.swatch(dialog, ERROR_MESSAGE) == (100, 0, 0), "the swatch")
        harness.wait_for(lambda: self.sample(dialog, ERROR_MESSAGE)[1] == (100, 0, 0), "the sample in its colour")
        # Even far outside the window, the bar gets mouse moves.
        self.drag_bar(dialog, SERVER_MESSAGE, 2, 200)
        self.wait_for_saved(client, "3colorB", "255")
        # 20 * 15 * 100 / 855 = 35.09, and 0 beyond the left end.
        self.drag_bar(dialog, SERVER_MESSAGE, 1, 20)
        self.wait_for_saved(client, "3colorG", "35")
        harness.wait_for(lambda: self.swatch(dialog, SERVER_MESSAGE) == (255, 35, 255), "the swatch")
        self.drag_bar(dialog, SERVER_MESSAGE, 1, -30)
        self.wait_for_saved(client, "3colorG", "0")

    def test_slider_sets_the_size_of_the_sample(self):
        client = self.start_client()
        dialog = self.open_dialog(client)
        harness.wait_for(lambda: self.swatch(dialog, 0) == (128, 255, 128), "the picture")
        small = self.sample(dialog, 0)[0]
        # From the handle at 9, the left end, as far right as possible. It reaches a few pixels to the left and to the
        # right of this on every system.
        y = row(0, 45) + 8
        self.drag(dialog, (pixels(2280) + 10, y), (pixels(2280 + 2400) + 20, y))
        self.wait_for_saved(client, "0size", "16")
        # Painting follows saving.
        def is_large():
            left, _, right, _ = self.sample(dialog, 0)[0]
            return right - left > 1.5 * (small[2] - small[0])
        harness.wait_for(is_large, "the larger sample")
        large = harness.wait_for_rest(lambda: self.sample(dialog, 0)[0], "the sample", looks=2)
        # Nothing of it is cut off at the right or the bottom.
        self.assertLess(large[2], pixels(4680) - 1)
        self.assertLess(large[3], row(0, 930) - 1)
        # With the keys, one step at a time.
        self.display.xdotool("key", "Left")
        self.wait_for_saved(client, "0size", "15")
        self.display.xdotool("key", "Home")
        self.wait_for_saved(client, "0size", "9")
        self.display.xdotool("key", "Page_Up")
        self.wait_for_saved(client, "0size", "10")

    def test_done_closes_it_and_it_reopens_unchanged(self):
        client = self.start_client()
        dialog = self.open_dialog(client)
        self.drag_bar(dialog, SERVER_MESSAGE, 0, 19)
        self.wait_for_saved(client, "3colorR", "33")
        dialog.click(pixels(5130 + 700), pixels(5220 + 180))
        harness.wait_for(lambda: "Configure Fonts" not in client.windows(), "the dialog's end")
        dialog = self.open_by_menu(client)
        harness.wait_for(lambda: self.swatch(dialog, SERVER_MESSAGE) == (33, 255, 0), "the swatch")

    def test_game_continues_beside_it(self):
        client, line = self.log_in()
        dialog = self.open_by_menu(client)
        line.send(PING, 2)
        harness.wait_for(lambda: line.recv_frame()[0] == PING_REPLY, "the answer")
        self.assertTrue(dialog.is_shown())


if __name__ == "__main__":
    unittest.main()
