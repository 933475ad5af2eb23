"""./play, which starts the game and a server."""

import http.server
import os
import pathlib
import signal
import threading
import unittest

from playScript import INSTALLED, PlayScript
from realServer import Server, wait_for

NOBODY = "#!/bin/bash\necho 1000\n"
REFUSES = "#!/bin/bash\nexit 1\n"
ARENA = "To join, start the game"


class Play(PlayScript):
    def test_the_game_does_not_wait_for_the_page(self):
        self.play("nosound")
        self.assertEqual(self.told(), [f"127.0.0.1:{self.port}", "10", "nosound"])
        self.assertIn("the words of the game\n", self.said())
        self.assertIn(ARENA, self.page())
        self.write("page", "<p>page</p>")
        self.wait_to_hear(f"Play in a browser, too: http://127.0.0.1:{self.port}/")
        self.assertEqual(self.page(), "<p>page</p>")
        self.write("quit")
        self.assertEqual(self.process.wait(60), 3, "the game's own status")
        self.assertIsNone(self.page())

    def test_a_page_that_is_there_is_served_at_once(self):
        (self.folder / "build/web/site").mkdir(parents=True)
        self.write("build/web/site/index.html", "<p>before</p>")
        self.play()
        self.told()
        self.assertIn(f"Play in a browser, too: http://127.0.0.1:{self.port}/", self.said())
        self.assertEqual(self.page(), "<p>before</p>")

    def test_the_dialogs_server_is_told(self):
        self.play()
        self.told()
        self.assertIn(f"its dialog needs your name, the server address 127.0.0.1 and the port {self.port}\n",
                      self.said())

    def test_the_game_outlives_a_killed_server(self):
        self.write("page", "<p>page</p>")
        self.play()
        self.told()
        self.kill("The server", self.server_number())
        self.wait_to_hear("==> Quit the game and run ./play again for a new server\n")
        self.assertIsNone(self.process.poll())
        self.write("quit")
        self.assertEqual(self.process.wait(60), 3, "the game's own status")
        self.assert_only_own_words()

    def test_the_game_outlives_a_stopped_server(self):
        self.play()
        self.told()
        os.kill(int(self.server_number()), signal.SIGTERM)
        self.wait_to_hear("==> The server has ended\n==> Quit the game and run ./play again for a new server\n")
        self.assertIsNone(self.process.poll())
        self.write("quit")
        self.assertEqual(self.process.wait(60), 3, "the game's own status")

    def test_a_killed_game_ends_the_server(self):
        self.play()
        self.told()
        self.kill("The game", (self.folder / "game.number").read_text().strip())
        self.assertEqual(self.process.wait(60), 128 + signal.SIGKILL)
        self.assertIsNone(self.page())
        self.assert_only_own_words()

    def test_the_end_of_the_game_ends_the_building(self):
        self.play()
        wait_for((self.folder / "builder").exists, "the page's building")
        builder = wait_for(lambda: (self.folder / "builder").read_text().strip(), "its number")
        self.write("quit")
        self.assertEqual(self.process.wait(60), 3)
        wait_for(lambda: not pathlib.Path("/proc", builder).exists(), "the building's end")

    def test_a_page_that_cannot_be_built_stops_nobody(self):
        self.write("page", "fault")
        self.play()
        self.wait_to_hear("The page for browsers could not be built; see build/page.log")
        self.assertIsNone(self.process.poll())

    def test_nobody_is_asked_for_a_password(self):
        self.script("bin/dpkg-query", INSTALLED.replace('"$@"', '"${@/emscripten/nothing}"'))
        self.script("bin/id", NOBODY)
        self.script("bin/sudo", REFUSES)
        self.play()
        self.told()
        self.wait_to_hear("run ./play web once")
        self.assertFalse((self.folder / "builder").exists())

    def test_a_running_server_is_joined_with_its_list(self):
        with Server() as server:
            self.port = server.port
            self.play()
            self.assertEqual(self.told()[0], f"127.0.0.1:{self.port}")
            self.assertIn("already running", self.said())
            self.write("quit")
            self.assertEqual(self.process.wait(60), 3)
            self.assertIsNotNone(self.page(), "the server goes on")

    def test_another_program_on_the_port_is_no_server(self):
        class Other(http.server.BaseHTTPRequestHandler):
            def log_message(self, *_):
                pass
        with Server(), http.server.ThreadingHTTPServer(("127.0.0.1", self.port), Other) as other:
            thread = threading.Thread(target=other.serve_forever)
            thread.start()
            try:
                self.play()
                self.assertEqual(self.process.wait(60), 1)
            finally:
                other.shutdown()
                thread.join()
        self.assertIn(f"Another program uses port {self.port}", self.said())
        self.assertIn("such as KELVORA_PORT=2011 ./play, and type it into the connect dialog.", self.said())
        self.assertFalse((self.folder / "game.told").exists())

    def test_help_starts_nothing(self):
        for words in (("--help",), ("web", "--help"), ("web", "--port", "3000", "-h")):
            self.play(*words)
            self.assertEqual(self.process.wait(60), 0)
            self.assertIn("./play web [SERVER OPTIONS]: builds", self.said())
            self.assertFalse((self.folder / "build").exists())

    def test_another_web_host_is_kept(self):
        self.play(KELVORA_WEB_HOST="games.example", KELVORA_FRAME_MS="20")
        self.assertEqual(self.told()[:2], ["games.example", "20"])


if __name__ == "__main__":
    unittest.main()
