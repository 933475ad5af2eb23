"""kelvora-replay with a window: the game's windows, and the player's own."""

import pathlib
import subprocess
import tempfile
import unittest

import harness
from desktopTest import DesktopTest
from display import Window
from harness import wait_for

PROGRAM = pathlib.Path(harness.CLIENT).with_name("kelvora-replay")
RECORDINGS = pathlib.Path(__file__).resolve().parent.parent / "app" / "recordings"


def processes_with(file):
    """The processes with this file among their arguments."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if str(file).encode() in (folder / "cmdline").read_bytes().split(b"\0"):
                found.append(int(folder.name))
        except OSError:
            pass
    return found


class Player(DesktopTest):
    screen = "1366x768"

    def play(self, name):
        self.file = RECORDINGS / name
        self.client = self.start_client(program=str(PROGRAM), arguments=(str(self.file),))
        self.bar = self.client.wait_for_window(f"Replay of {name}")
        self.bar.activate()

    def press(self, *keys):
        self.display.xdotool("key", *keys)

    def go_to(self, time):
        """Jumps to another time, and returns the picture there."""
        before = self.canvas()
        self.press("g")
        self.display.xdotool("type", time)
        self.press("Return")
        wait_for(lambda: self.canvas() != before, "another picture")
        return harness.wait_for_rest(self.canvas, "the picture")

    def canvas(self):
        left, top, _, _ = self.client.window.geometry()
        return self.display.picture((left, top + round(self.client.menu), 762, 500)).pixels()

    def pause_at(self, time):
        self.press("space")
        harness.wait_for_rest(self.canvas, "the picture", looks=15)
        return self.go_to(time)

    def test_a_jump_back_shows_the_same_picture(self):
        self.play("trade")
        early = self.pause_at("0:05")
        self.assertNotEqual(self.go_to("0:09"), early)
        self.assertEqual(self.go_to("0:05"), early)

    def test_a_step_shows_another_frame(self):
        self.play("easy")
        before = self.pause_at("0:08")
        self.press("period")
        wait_for(lambda: self.canvas() != before, "the next frame")

    def test_the_game_takes_no_input(self):
        self.play("easy")
        before = self.pause_at("0:08")
        self.client.window.click(300, 300, button=3)
        self.client.window.click(20, 10)
        self.bar.activate()
        self.press("period")
        wait_for(lambda: self.canvas() != before, "the next frame")
        self.assertEqual(sorted(self.client.windows()), sorted([harness.TITLE, "Replay of easy"]))

    def test_the_windows_are_side_by_side(self):
        self.play("hard")
        game, player = self.client.window.frame(), self.bar.frame()
        self.assertGreaterEqual(min(game[:2] + player[:2]), 0)
        self.assertLessEqual(game[0] + game[2], player[0])
        self.assertLessEqual(player[0] + player[2], 1366)
        self.pause_at("0:05")
        self.assertEqual(self.client.window.frame(), game, "a jump moves no window")
        self.press("question")
        box = wait_for(lambda: [window for window, title in self.display.titles(self.client.process.pid).items()
                                if title == "Kelvora"], "the box of keys")[0]
        left, _, width, _ = Window(self.display, box).frame()
        self.assertLess(left + width, 1366, "it isn't pushed to the screen's edge")

    def test_a_damaged_recording_opens_no_window(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "damaged.recording"
            file.write_bytes((RECORDINGS / "easy").read_bytes()[:20] + b"\0" * 100)
            done = subprocess.run([PROGRAM, file], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                  timeout=harness.PATIENCE)
        self.assertEqual(done.returncode, 2)
        self.assertIn(f"{file}: ", done.stderr)

    def test_closing_the_player_ends_all_its_processes(self):
        self.play("hard")
        self.assertGreater(len(processes_with(self.file)), 1)
        self.press("alt+F4")
        wait_for(lambda: self.client.process.poll() is not None, "the end")
        self.assertEqual(self.client.process.returncode, 0)
        wait_for(lambda: not processes_with(self.file), "the end of the copies")


if __name__ == "__main__":
    unittest.main()
