"""A round is recorded by one running server and shown by another."""

import pathlib
import subprocess
import tempfile
import unittest
import urllib.request

from realServer import PATIENCE, SERVER, RawPlayer, Server, connect, frame, protocol, wait_for
from webSocketPlayer import WebSocket, WebSocketPlayer


class Replays(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "rounds"

    def record(self):
        """Two people play a round of eleven seconds. Returns its file."""
        with Server("--record", str(self.folder), "--round-seconds", "11", "--speed-limit", "0",
                    "--no-coach") as server:
            ann = RawPlayer(connect(server.port, 2), "Ann", 0)
            ann.find(protocol.LOGIN_ACCEPTED)
            bob = RawPlayer(connect(server.port, 3), "Bob", 1)
            bob.find(protocol.LOGIN_ACCEPTED)
            ann.find(protocol.PING)  # a second later, so the recording has begun
            ann.send(frame(protocol.POSITION_REPORT, "1234.5", ".5"))
            ann.say("good luck")
            node = ann.find(protocol.PLAYER_JOINED)[0]
            ann.send(frame(protocol.CHAT, node, "(private) a secret"))
            bob.find(protocol.CHAT, lambda fields: "secret" in fields[1])
            bob.find(protocol.ROUND_OVER)
            files = wait_for(lambda: list(self.folder.glob("*.round")), "the recording")
            ann.close()
            bob.close()
        self.assertEqual(len(files), 1)
        return files[0]

    def test_a_round_is_shown_again(self):
        file = self.record()
        with Server("--replay", str(file)) as server:
            with urllib.request.urlopen(f"http://127.0.0.1:{server.port}/games") as answer:
                self.assertNotIn(b" of 6", answer.read(), "it is no game to be listed")
            sue = RawPlayer(connect(server.port, 4), "Sue", 2)
            tom = WebSocketPlayer(WebSocket(f"ws://127.0.0.1:{server.port}/play", 5), "Tom", 3)
            pia = WebSocketPlayer(WebSocket(f"ws://127.0.0.1:{server.port}/watch", 6), "Pia", 4)
            for spectator in (sue, tom, pia):
                spectator.find(protocol.ALIVE_STATE, lambda fields: fields == ["-1", "0"])
                for name in ("Ann", "Bob"):
                    spectator.find(protocol.PLAYER_JOINED, lambda fields, name=name: fields[2] == name)
            sue.find(protocol.POSITION, lambda fields: fields[1:] == ["1234.5", ".5"])
            sue.find(protocol.CHAT, lambda fields: fields[1] == "good luck")
            sue.say("hello")
            tom.find(protocol.SERVER_TEXT, lambda fields: fields == ["[Sue, watching] hello"])
            sue.find(protocol.ROUND_OVER)
            sue.find(protocol.SERVER_TEXT, lambda fields: "It begins again" in fields[0])
            end = len(sue.frames)
            sue.find(protocol.PLAYER_LEFT, start=end)
            sue.find(protocol.PLAYER_JOINED, start=end)
            self.assertFalse(any(b"secret" in text for text in sue.frames), "private lines are not recorded")
            for spectator in (sue, tom, pia):
                spectator.close()

    def test_a_folder_without_access_is_refused(self):
        # Not even root can write there.
        result = subprocess.run([SERVER, "--port", "0", "--record", "/proc/self"], capture_output=True, text=True,
                                timeout=PATIENCE, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("the folder /proc/self for recordings can't be written", result.stderr)

    def test_files_that_are_no_round_are_refused(self):
        self.folder.mkdir()
        for name, contents, reason in (("text.round", b"kelvora", "it holds no recorded round"),
                                       ("newer.round", b"kelvora round\n\2", "its format 2 needs another version"),
                                       ("cut.round", b"kelvora round\n\1x", "it is damaged or too large"),
                                       ("missing.round", None, "there is no such file")):
            path = self.folder / name
            if contents is not None:
                path.write_bytes(contents)
            result = subprocess.run([SERVER, "--port", "0", "--replay", path], capture_output=True, text=True,
                                    timeout=PATIENCE, check=False)
            self.assertEqual(result.returncode, 1)
            self.assertIn(f"the recording {path} can't be shown: {reason}", result.stderr)


if __name__ == "__main__":
    unittest.main()
