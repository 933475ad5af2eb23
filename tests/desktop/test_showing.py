"""Compares a screen of X11 with a picture box after each of thousands of frames."""

import os
import subprocess

from desktopTest import DesktopTest


class Showing(DesktopTest):
    def test_the_screen_shows_every_frame_completely(self):
        environment = dict(self.display.environment, KELVORA_TEST_PLATFORM="xcb")
        done = subprocess.run([os.environ["KELVORA_QT_TESTS"], "--gtest_filter=PictureBoxTest.*"], env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120, check=False)
        self.assertEqual(done.returncode, 0, done.stdout[-2000:])
        self.assertIn("OK ] PictureBoxTest.ShowsEveryFrameCompletely", done.stdout)
