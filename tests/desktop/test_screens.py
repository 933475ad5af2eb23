"""All kinds of screens: none, Wayland beside X11, small, two at once, and the window manager's states: full screen,
maximised, minimised."""

import os
import subprocess
import unittest

import harness
import rules
import wine
from desktopTest import DesktopTest
from flyingTest import FlyingTest
from harness import CLIENT, TITLE, TWIPS, wait_for
from protocol import PING, PING_REPLY

IN_WINE = wine.is_for_windows(CLIENT)
MENU_GROUND = (28, 31, 48)
# The store's size, and the centre of its button "Done" as the distance from its lower right corner, in twips: the
# button is 1080 by 480 at 9840, 8250.
STORE = (11370, 9060)
DONE = (STORE[0] - 9840 - 540, STORE[1] - 8250 - 240)


@unittest.skipIf(IN_WINE, "the choice of a window system is the toolkit's of Linux")
class WindowSystem(DesktopTest):

    def answer(self, **environment):
        kept = {name: os.environ[name] for name in ("PATH", "HOME", "LSAN_OPTIONS") if name in os.environ}
        done = subprocess.run([CLIENT], env=dict(kept, **environment), stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=harness.PATIENCE)
        return done.returncode, done.stderr.splitlines()

    def test_without_a_screen_it_says_so_and_ends(self):
        self.assertEqual(self.answer(), (1, ["kelvora: there is no screen to show a window on: neither DISPLAY nor "
                                             "WAYLAND_DISPLAY is set. Start the game from a desktop."]))

    def test_a_screen_that_does_not_answer_is_named(self):
        # Display 59000 doesn't exist.
        status, lines = self.answer(DISPLAY=":59000")
        self.assertEqual(status, 1)
        self.assertIn("no window can be shown", lines[0])
        self.assertIn("DISPLAY=:59000", lines[0])
        self.assertTrue(all(line.startswith("kelvora: ") for line in lines), lines)

    def test_x11_comes_before_wayland(self):
        # A Wayland desktop that also has an X server. The window must be on the X server, because the Wayland desktop
        # is only a name.
        client = self.start_client(environment={"QT_QPA_PLATFORM": None, "WAYLAND_DISPLAY": "wayland-0",
                                                "XDG_SESSION_TYPE": "wayland"})
        self.assertEqual(client.window.geometry()[2], 894)
        self.assertEqual(client.output(), "")


class Small(FlyingTest):
    screen = "640x480"

    def assert_inside(self, window):
        left, top, width, height = window.geometry()
        self.assertGreaterEqual(min(left, top), 0)
        self.assertLessEqual(left + width, 640)
        self.assertLessEqual(top + height, 480)

    def small_client(self):
        client = self.start_client()
        wait_for(lambda: "Connect" in client.windows(), "the dialog")
        # The window doesn't have the designed size, so the menu is measured: a column without text.
        left, top = client.window.geometry()[:2]
        wait_for(lambda: self.display.pixel(left + 250, top) == MENU_GROUND, "the menu")
        picture = self.display.picture()
        client.menu = 0
        while picture.pixel(left + 250, top + client.menu) == MENU_GROUND:
            client.menu += 1
        self.assertIn(client.menu, range(15, 45))
        return client

    def test_windows_open_on_the_screen(self):
        client = self.small_client()
        self.assert_inside(client.window)
        self.assert_inside(client.windows()["Connect"])

    def test_plays_on_the_canvas_that_fits(self):
        self.assert_flies(self.small_client(), (100, 60))

    def test_the_store_can_be_left(self):
        client, line = self.log_in(self.small_client())
        client.window.activate()
        client.mouse_to(200, 100)
        self.display.xdotool("click", 1, "type", "~showstore")
        self.display.xdotool("key", "Return")
        store = client.wait_for_window("Powerups")
        if IN_WINE:
            # The whole store is there, only smaller. The game keeps it 8 pixels below and beside the main window, which
            # may take its frame beyond the screen's edge.
            left, top, width, height = harness.wait_for_rest(store.geometry, "the store", looks=20)
            x, y = left + round(width * (1 - DONE[0] / STORE[0])), top + round(height * (1 - DONE[1] / STORE[1]))
            self.assertLess(y, 480)
            self.display.xdotool("mousemove", x, y, "click", 1)
            return wait_for(lambda: "Powerups" not in client.windows(), "the store's end")
        harness.wait_until_it_holds(lambda: self.assert_inside(store))
        left, top, width, height = store.geometry()
        # Turns the wheel further down and to the right than the area scrolls.
        self.display.xdotool("mousemove", left + width // 2, top + height // 2, *["click", 5] * 10, *["click", 7] * 20)
        # The button is DONE twips from the lower right corner of the store, next to the scroll bars.
        x, y = left + width - 14 - DONE[0] // TWIPS, top + height - 14 - DONE[1] // TWIPS
        self.display.xdotool("mousemove", x, y, "click", 1)
        wait_for(lambda: "Powerups" not in client.windows(), "the store's end")

    def test_a_window_larger_than_the_screen_can_be_moved_and_closed(self):
        client, line = self.log_in(self.small_client())
        client.resize(900, 700)
        self.display.xdotool("windowmove", client.window.identifier, -200, -150)
        wait_for(lambda: client.window.geometry()[0] < -100, "the move")
        line.send(PING, 1)
        self.assertEqual(line.recv_frame()[0], PING_REPLY)
        client.window.activate()
        self.display.xdotool("key", "alt+F4")
        self.assertEqual(client.process.wait(harness.PATIENCE), 0)


class Two(DesktopTest):
    """Two screens side by side."""
    screen = "2560x1024"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.display.run("xrandr", "--setmonitor", "left", "1280/300x1024/240+0+0", "screen")
        cls.display.run("xrandr", "--setmonitor", "right", "1280/300x1024/240+1280+0", "none")

    def dialog_over(self, left):
        """Where the connect dialog opens with the main window at this position: left and right edge."""
        client = self.start_client()
        dialog = client.wait_for_window("Connect")
        dialog.click((1260 + 700) // TWIPS, (2460 + 180) // TWIPS)
        wait_for(lambda: "Connect" not in client.windows(), "the dialog's end")
        self.display.xdotool("windowmove", client.window.identifier, left, 100)
        # The client is told about the move before the click.
        wait_for(lambda: abs(client.window.geometry()[0] - left) < 10, "the move")
        # The button on the title picture.
        self.display.xdotool("mousemove", *client.on_screen(200 // TWIPS + 20, 5200 // TWIPS + 20), "click", 1)
        dialog = client.wait_for_window("Connect")
        edge, _, width, _ = harness.wait_for_rest(dialog.geometry, "the dialog", looks=10)
        client.close()
        return edge, edge + width

    # Wine takes screens from the display's outputs, and the virtual display has one.
    @unittest.skipIf(IN_WINE, "to Wine, both are one screen")
    def test_the_game_opens_on_one_screen(self):
        client = self.start_client()
        left, _, width, _ = client.window.geometry()
        self.assertGreaterEqual(left, 0)
        self.assertLessEqual(left + width, 1280)

    def test_dialogs_open_on_the_games_screen(self):
        # 6435 twips, 429 pixels, right of the window's frame.
        left, right = self.dialog_over(1500)
        self.assertAlmostEqual(left, 1500 + 429, delta=10)

    @unittest.skipIf(IN_WINE, "to Wine, both are one screen")
    def test_dialogs_do_not_straddle_two_screens(self):
        # The game's centre is at 750 + 447 = 1197, on the left screen. The dialog's usual position would be 1179 to
        # 1442.
        left, right = self.dialog_over(750)
        self.assertLessEqual(right, 1280)
        self.assertGreater(left, 750)

    def test_the_mouse_is_kept_in_the_picture_on_the_right_screen(self):
        client, line = self.log_in()
        self.display.xdotool("windowmove", client.window.identifier, 1500, 100)
        wait_for(lambda: client.window.geometry()[0] > 1400, "the move")
        x, y = client.on_screen(1, 300)
        self.display.xdotool("mousemove", x + 200, y, "mousedown", 1, "mousemove", x, y)

        def place():
            return int(self.display.xdotool("getmouselocation").split()[0].split(":")[1])
        wait_for(lambda: place() > x + 20, "the push")
        self.display.xdotool("mouseup", 1)
        # 30 pixels, plus 1/100 of the distance from the left end of both screens.
        mouse = client.window.corner_for_the_game()[0] + 1
        self.assertAlmostEqual(place(), mouse * 916 / 13605 * 15 + 30, delta=1.5)


class States(FlyingTest):

    def change(self, client, change):
        self.display.run("wmctrl", "-i", "-r", hex(client.window.identifier), "-b", change)

    def assert_there_and_back(self, state, largest):
        client, line = self.log_in()
        before = client.window.geometry()
        self.change(client, "add," + state)
        # It is resized and moved one after the other.
        wait_for(lambda: client.window.geometry()[2:] == (1280, largest(client)), "the large window")
        # Only then does the canvas have its new size, and the mouse is in it.
        client.wait_for_status((128, 255, 128))
        # The ball steers relative to the centre of the larger canvas, and the picture fills it.
        self.assert_steers(client, line, (1000, 700))
        self.change(client, "remove," + state)
        wait_for(lambda: client.window.geometry() == before, "the window as it was")
        client.wait_for_status((128, 255, 128))

    def test_full_screen_and_back(self):
        self.assert_there_and_back("fullscreen", lambda client: 1024)

    def test_maximised_and_back(self):
        # The title stays above it.
        self.assert_there_and_back("maximized_vert,maximized_horz", lambda client: 1024 - client.window.geometry()[1])

    def test_the_game_continues_while_minimised(self):
        client, line = self.log_in()
        before = client.window.geometry()
        client.mouse_to(600, 200)
        client.right_click()
        line.report()
        self.display.xdotool("windowminimize", client.window.identifier)
        wait_for(lambda: TITLE not in client.windows(), "the window's absence")
        line.frames_during(0.2)
        first, second = line.report(), line.report()
        self.assertTrue(rules.is_flight(first, second, rules.velocity((763, 608), (600, 200))), (first, second))
        self.display.xdotool("windowactivate", client.window.identifier)
        # The window manager restores it from its icon.
        wait_for(lambda: TITLE in client.windows() and client.window.geometry() == before, "the window as it was")
        client.wait_for_status((128, 255, 128))


if __name__ == "__main__":
    unittest.main()
