"""Recordings from the page, which the desktop's program plays again."""

import os
import pathlib
import re
import subprocess

from harness import wait_for
from pageTest import PageTest, unittest
from protocol import PLAYER_JOINED, POSITION
from spy import Spy

REPLAY = pathlib.Path(os.environ["KELVORA_CLIENT"]).with_name("kelvora-replay")
NAME = re.compile(r"kelvora-[-0-9T]+\.recording$")


class Recording(PageTest):

    def begin_recording(self, *options):
        """The real server and a page from it that records."""
        server, page = self.begin(*options)
        page.press_button("Cancel", "dialog('Connect')")
        page.choose("Record")
        page.wait_for("by('.menubar button', 'Save recording') && dialog('Connect')", "the page that records")
        return server, page

    def saved(self, press):
        """Presses what saves the recording. Returns the file that the browser has downloaded."""
        folder = pathlib.Path(self.browser.folder.name, self._testMethodName)
        folder.mkdir()
        self.browser.save_downloads(folder)
        press()

        def whole():
            # A browser downloads under another name. Meanwhile an empty file may have the final one.
            files = list(folder.iterdir())
            if len(files) != 1 or not NAME.match(files[0].name):
                return None
            return files[0] if files[0].stat().st_size else None

        return wait_for(whole, lambda: f"the recording alone among {list(folder.iterdir())}")

    def verify(self, file):
        return subprocess.run([REPLAY, "--verify", file], stdin=subprocess.DEVNULL, capture_output=True, text=True)

    def test_a_recorded_match_is_the_same_on_the_desktop(self):
        server, page = self.begin_recording("--bots", "3")
        spy = Spy(server.port, "Spy")
        self.addCleanup(spy.close)
        page.connect()
        node = spy.await_frame(PLAYER_JOINED, lambda fields: fields[2] == b"Ann")[0]
        page.wait_for_status("Connected")
        width, height = page.canvas_size()
        page.release_brakes(width / 2 + 90, height / 2 + 30)
        page.type("hello")
        page.press("Enter")
        page.tap(*page.middle("canvas()"))
        for _ in range(100):
            spy.await_frame(POSITION, lambda fields: fields[0] == node)
        page.choose("File", "Disconnect")
        page.wait_for_status("Closed")
        self.assertEqual(page.complaints(), [])
        done = self.verify(self.saved(lambda: page.choose("Save recording")))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        frames = int(done.stdout.split(" frames in")[0].split()[-1])
        self.assertGreater(frames, 300, done.stdout)
        # The next load is an ordinary one.
        page.reload()
        page.wait_for("by('.menubar button', 'Record') && dialog('Connect')")

    def test_a_game_that_has_ended_can_be_saved(self):
        _, page = self.begin_recording()
        page.press_button("Cancel", "dialog('Connect')")
        page.choose("File", "Exit")
        save = "by('#end .button', 'Save recording')"
        left, _, width, height = page.place(save)
        page.keep("ended")
        # The size of a message box's button: 26 pixels high, at least 80 wide, with 12 beside the text and an edge
        # of 1.
        self.assertEqual(height, 26)
        self.assertGreaterEqual(width, 80)
        text = page.see("((range) => (range.selectNodeContents(" + save + "), range.getBoundingClientRect().toJSON()))"
                        "(document.createRange())")
        self.assertAlmostEqual(text["left"] - left, 13, delta=0.1)
        self.assertAlmostEqual(left + width - text["right"], 13, delta=0.1)
        done = self.verify(self.saved(lambda: page.click_on(save)))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_a_connected_player_is_not_thrown_out(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.choose("Record")
        page.wait_for("box() && words(box()).includes('Disconnect first.')")
        page.press_button("OK", "box()")
        line.ask()


if __name__ == "__main__":
    unittest.main()
