"""Play against bots: what a player starts brings a server with bots, and takes it away again."""

import os
import pathlib
import tempfile
import unittest

import harness
import wine
from client import Client
from finderTest import FinderTest

GREEN = (128, 255, 128)


class LaunchedClient(Client):
    """A client that another program starts. Its windows are the only ones of the display."""

    def titles(self):
        return self.display.titles()


class PlayAgainstBots(FinderTest):

    def launcher(self):
        """The program that a player starts, beside the client and the server of this build."""
        build = pathlib.Path(harness.CLIENT).resolve().parent
        if wine.is_for_windows(harness.CLIENT):
            return str(build / "Play against bots.exe")
        # An installation has all three in one folder.
        folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-bots-"))
        self.addCleanup(lambda: [file.unlink() for file in folder.iterdir()] and folder.rmdir())
        for program in (harness.CLIENT, harness.SERVER, str(harness.PROJECT / "packaging" / "client" / "kelvora-bots")):
            program = pathlib.Path(program).resolve()
            (folder / program.name).symlink_to(program)
        return str(folder / "kelvora-bots")

    def start(self):
        client = LaunchedClient(self.display, program=self.launcher(), web_host=None, frame_ms=None)
        self.addCleanup(client.close)
        harness.wait_for(lambda: self.servers(client), "the server")
        return client

    def servers(self, client):
        """The running servers that this client's start brought: they have its folder for settings."""
        found = []
        for process in filter(str.isdigit, os.listdir("/proc")):
            try:
                line = pathlib.Path(f"/proc/{process}/cmdline").read_bytes()
                environment = pathlib.Path(f"/proc/{process}/environ").read_bytes()
            except OSError:
                continue  # it has ended, or belongs to somebody else
            if b"kelvora-server" in line and client.config.encode() in environment:
                found.append(int(process))
        return found

    def test_finder_shows_a_game_with_bots_to_join(self):
        client = self.start()
        finder = self.open_finder(client)
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        client.wait_for_status(GREEN)

    def test_server_ends_with_the_game(self):
        client = self.start()
        client.wait_for_window("Connect")
        client.window.activate()
        self.display.xdotool("key", "alt+F4")
        self.assertEqual(client.process.wait(harness.PATIENCE), 0)
        harness.wait_for(lambda: not self.servers(client), "the server's end")

    def test_server_ends_when_the_start_is_broken_off(self):
        client = self.start()
        client.process.terminate()
        client.process.wait(harness.PATIENCE)
        harness.wait_for(lambda: not self.servers(client), "the server's end")


if __name__ == "__main__":
    unittest.main()
