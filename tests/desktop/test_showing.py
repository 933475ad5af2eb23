"""Compares a screen of X11 with a picture box after each of thousands of frames, and with those of the game in play."""

import os
import subprocess
import time

from desktopTest import DesktopTest
from harness import wait_for


GREEN = (128, 255, 128)


class Showing(DesktopTest):
    def test_the_screen_shows_every_frame_completely(self):
        environment = dict(self.display.environment, KELVORA_TEST_PLATFORM="xcb")
        done = subprocess.run([os.environ["KELVORA_QT_TESTS"], "--gtest_filter=PictureBoxTest.*"], env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120, check=False)
        self.assertEqual(done.returncode, 0, done.stdout[-2000:])
        self.assertIn("OK ] PictureBoxTest.ShowsEveryFrameCompletely", done.stdout)

    def test_the_screen_shows_canvas_and_radar_of_a_game_completely(self):
        server = self.start_server("--bots", "5")
        client = self.start_client(program=os.environ["KELVORA_WATCHED_GAME"], frame_ms="3")
        client.connect(server.port)
        client.wait_for_status(GREEN)
        client.window.activate()
        client.right_click()
        self.display.xdotool("type", "hello")
        self.display.xdotool("key", "Return")

        def has_compared(what):
            client.mouse_to(*places[int(time.monotonic() * 2) % len(places)])
            return what in client.output()
        places = [(600, 200), (500, 500), (200, 450), (250, 150)]
        for what in (*(f"canvas: {count}" for count in range(100, 2001, 100)), "radar: 500"):
            wait_for(lambda: has_compared(f"{what} pictures"), client.output, pause=0.2)
        self.assertNotIn("stale", client.output())
