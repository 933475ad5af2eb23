"""The screen's contents: the ball in the middle, the world's border, the window's layout at other sizes, and what the
next start remembers."""

import re
import shutil
import tempfile
import unittest

import harness
from desktopTest import DesktopTest
from protocol import LOGIN, PING, PING_REPLY, POSITION_REPORT, frame

BLACK = (0, 0, 0)
# The border's colours while it pulses, pale to pure red.
BORDER = {(255, v, v) for v in (0, 50, 100, 150)}


class Canvas(DesktopTest):

    def middle(self, client):
        """The mean colour in the middle of the canvas."""
        width, height = client.canvas_size()
        x, y = client.on_screen(width // 2, height // 2)
        block = self.display.picture((x - 12, y - 12, 25, 25)).pixels()
        return [sum(pixel[channel] for pixel in block) / len(block) for channel in range(3)]

    def assert_ball(self, client, colour):
        """Asserts that the ball of a primary colour is in the middle: 0 red, 1 green, 2 blue of the pixel."""
        mean = self.middle(client)
        others = [mean[channel] for channel in range(3) if channel != colour]
        self.assertGreater(mean[colour], 60, mean)
        self.assertGreater(mean[colour], 1.2 * max(others), mean)

    def assert_title_picture(self, client):
        red, green, blue = self.middle(client)
        self.assertLess(green, 1.2 * max(red, blue))

    def test_ball_in_its_colour_is_in_the_middle(self):
        for number, channel in ((0, 0), (2, 1), (4, 2)):
            with self.subTest(colour=number):
                client, line = self.log_in(colour=number)
                client.mouse_to(100, 100)
                harness.wait_until_it_holds(lambda: self.assert_ball(client, channel))
                client.close()

    def test_ball_stays_in_the_middle_while_it_flies(self):
        client, line = self.log_in(colour=2)
        client.mouse_to(600, 200)
        client.right_click()
        for _ in range(10):
            line.report()
        self.assert_ball(client, 1)

    def test_ball_is_in_the_middle_of_a_resized_window(self):
        client = self.start_client()
        client.resize(1100, 800)
        client, line = self.log_in(client, colour=2)
        client.mouse_to(100, 100)
        self.assertEqual(client.canvas_size(), (969, 738))
        harness.wait_until_it_holds(lambda: self.assert_ball(client, 1))

    def test_window_that_was_covered_shows_what_happened_meanwhile(self):
        client, line = self.log_in(colour=2)
        client.mouse_to(100, 100)
        harness.wait_until_it_holds(lambda: self.assert_ball(client, 1))
        above = self.start_client()  # opens in the same place
        harness.wait_until_it_holds(lambda: self.assert_title_picture(client))
        line.close()
        client.wait_for_window("Connect")
        above.close()
        harness.wait_until_it_holds(lambda: self.assert_title_picture(client))

    def test_border_comes_into_view(self):
        # 2000 from the right edge: c.x + 2000 = 7722 twips, pixel 515 of the canvas.
        client, line = self.log_in(x=98000, y=50000)
        client.mouse_to(100, 100)
        harness.wait_until_it_holds(lambda: self.assert_border(client))

    def assert_border(self, client):
        picture = self.display.picture()
        # Away from the texts and the row of icons.
        rows = [*range(100, 250, 10), *range(320, 450, 10)]
        for row in rows:
            self.assertIn(picture.pixel(*client.on_screen(515, row)), BORDER, row)
        # Beyond it everything is black.
        outside = [picture.pixel(*client.on_screen(x, row)) for row in rows for x in (530, 560, 600)]
        self.assertEqual(set(outside), {BLACK})

    def test_border_is_not_in_view_in_the_middle_of_the_world(self):
        client, line = self.log_in()
        client.mouse_to(100, 100)
        harness.wait_until_it_holds(lambda: self.assert_ball(client, 0))
        picture = self.display.picture()
        for column in (100, 248, 515, 700):
            pixels = [picture.pixel(*client.on_screen(column, row)) for row in range(150, 450, 10)]
            self.assertLess(sum(pixel in BORDER for pixel in pixels), 5, column)


class Layout(DesktopTest):

    def test_window_has_its_title_and_size(self):
        client = self.start_client()
        _, _, width, height = client.window.geometry()
        self.assertEqual(width, 894)
        # The menu above the designed area is one row of text.
        self.assertIn(height - 670, range(15, 45))

    def test_connect_dialog_is_open_at_the_start(self):
        client = self.start_client()
        dialog = client.wait_for_window("Connect")
        # 3945 by 2925 twips.
        self.assertEqual(dialog.geometry()[2:], (263, 195))

    def test_status_bar_and_panel_follow_the_window(self):
        client = self.start_client()
        # Moves the dialog away, so that it covers nothing.
        dialog = client.wait_for_window("Connect")
        dialog.click((1260 + 700) // harness.TWIPS, (2460 + 180) // harness.TWIPS)
        harness.wait_for(lambda: "Connect" not in client.windows(), "the dialog's end")
        client.wait_for_status((255, 128, 128))
        client.resize(1150, 820)
        self.assertEqual(client.canvas_size(), (1019, 758))
        client.wait_for_status((255, 128, 128))
        # The chat box (64, 0, 64) has moved down with the canvas: 105 twips below it, 1440 from the left, 360 high.
        x, y = client.on_screen(1440 // 15 + 20, 758 + 105 // 15 + 360 // 15 // 2)
        harness.wait_for(lambda: self.display.pixel(x, y) == (64, 0, 64), "the chat's box")
        # Its old position, 9225 twips from the top, now belongs to the canvas.
        x, y = client.on_screen(1440 // 15 + 20, 9225 // 15 + 12)
        harness.wait_for(lambda: self.display.pixel(x, y) != (64, 0, 64), "the canvas")

    def test_window_too_small_for_the_canvas_does_no_harm(self):
        client, line = self.log_in()
        client.resize(120, 60)
        line.send(PING, 1)
        self.assertEqual(line.recv_frame()[0], PING_REPLY)
        client.resize(894, 670)
        line.send(PING, 2)
        self.assertEqual(line.recv_frame()[0], POSITION_REPORT)


class Icon(DesktopTest):
    def test_q308_the_window_shows_the_games_icon(self):
        client = self.start_client()

        def pixels():
            """Width, height and then one number per pixel, with alpha in its top byte."""
            text = self.display.run("xprop", "-id", client.window.identifier, "-notype", "32c", "_NET_WM_ICON")
            return [int(number) for number in re.findall(r"\d+", text.partition("=")[2])]

        harness.wait_until_it_holds(lambda: self.assertTrue(pixels(), "the icon comes with the first events"))
        width, height, *colours = pixels()
        self.assertEqual(width, height)
        self.assertTrue(any(colour >> 24 for colour in colours[:width * height]), "it is not blank")


class Settings(DesktopTest):

    def test_login_is_restored_at_the_next_start(self):
        config = tempfile.mkdtemp(prefix="kelvora-settings-")
        self.addCleanup(shutil.rmtree, config, ignore_errors=True)
        server = self.scripted_server()
        client = self.start_client(config=config)
        client.connect(server.port, name="Zoe", password="hush", circle=3)
        server.accept().recv_frame()
        client.close()
        client = self.start_client(config=config)
        client.wait_for_window("Connect").activate()
        self.display.xdotool("key", "Return")
        self.assertEqual(server.accept().recv_bytes(), frame(LOGIN, "Zoe", "hush", 3, harness.VERSION))

    def test_first_start_offers_this_machine_and_port_2010(self):
        client = self.start_client()
        # A box refuses an empty name, and the dialog stays open.
        client.wait_for_window("Connect").activate()
        self.display.xdotool("key", "Return")
        box = client.wait_for_other_window()
        box.activate()
        self.display.xdotool("key", "Return")
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the box's end")


if __name__ == "__main__":
    unittest.main()
