"""A game recorded by the real program is played again exactly. On Windows, too: its recordings are played on Linux."""

import pathlib
import re
import subprocess
import tempfile
import unittest

import harness
from desktopTest import DesktopTest
from protocol import CHAT, PLAYER_JOINED, POSITION

REPLAY = pathlib.Path(harness.OTHER_CLIENT).with_name("kelvora-replay")


class Recording(DesktopTest):

    def test_replay_shows_the_pictures_of_the_game(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "game.recording"
            client, line = self.log_in(self.start_client(environment={"KELVORA_RECORD": str(file)}))
            line.send(PLAYER_JOINED, 8, 1, "Bob", 50500, 50000, 1, 0)
            client.window.activate()
            client.mouse_to(700, 250)
            client.right_click()
            # Four frames each. Every hundredth picture is compared.
            for step in range(80):
                line.report()
                line.send(POSITION, 8, 50500 + 100 * step, 50000)
            self.display.xdotool("type", "hello")
            self.display.xdotool("key", "Return")
            while line.recv_frame()[0] != CHAT:
                pass
            client.choose(20, "Up", "Return")
            self.assertEqual(client.process.wait(harness.PATIENCE), 0)
            self.assertEqual(client.output(), "")
            done = subprocess.run([REPLAY, "--verify", file], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                  timeout=harness.PATIENCE)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        self.assertGreaterEqual(int(re.search(r"(?m)^all (\d+) comparisons are equal$", done.stdout)[1]), 3)


if __name__ == "__main__":
    unittest.main()
