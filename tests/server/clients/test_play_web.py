"""./play web, which starts a server and the page."""

import re
import signal
import socket
import subprocess
import unittest

from playScript import PlayScript
from realServer import SERVER, Server, free_port


class PlayWeb(PlayScript):
    def test_starts_a_server_and_no_game(self):
        self.write("page", "<p>page</p>")
        self.play("web")
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://127.0.0.1:{self.port}/\n", self.said())
        self.assertEqual(self.page(), "<p>page</p>")
        self.assertFalse((self.folder / "game.told").exists())
        self.assertFalse((self.folder / "build/release").exists())
        self.process.send_signal(signal.SIGINT)
        self.assertEqual(self.process.wait(60), 130)
        self.assertIsNone(self.page())

    def test_tells_of_a_killed_server(self):
        self.write("page", "<p>page</p>")
        self.play("web")
        self.wait_to_hear("Ctrl+C stops the server")
        self.kill("The server", self.server_number())
        self.assertEqual(self.process.wait(60), 128 + signal.SIGKILL)
        self.assert_only_own_words()

    def test_passes_options_to_the_server(self):
        self.write("page", "<p>page</p>")
        self.play("web", "--address", "0.0.0.0", "--notes", "for all")
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://127.0.0.1:{self.port}/\n", self.said())
        self.assertRegex(self.said(), rf"From other machines: http://[0-9a-f.:]*:{self.port}/\n")

    def test_for_ipv6_tells_links_that_open(self):
        self.write("page", "<p>page</p>")
        self.play("web", "--address", "::")
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://127.0.0.1:{self.port}/\n", self.said())
        self.assertIn("From other machines: ", self.said())

    def test_of_a_name_with_two_addresses_tells_the_first(self):
        self.write("page", "<p>page</p>")
        self.script("server-of-two", '#!/bin/sh\ncase $* in *--version*) exit ;; esac\n'
                    f'echo "listening on [::1]:{self.port}, 127.0.0.1:{self.port}"\nexec sleep 3600\n')
        self.play("web", "--address", "localhost", KELVORA_SERVER=str(self.folder / "server-of-two"))
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://[::1]:{self.port}/\n", self.said())

    def test_without_a_network_tells_one_link(self):
        self.write("page", "<p>page</p>")
        self.script("bin/hostname", "#!/bin/sh\n")
        self.play("web", "--address", "0.0.0.0")
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://127.0.0.1:{self.port}/\n", self.said())
        self.assertNotIn("From other machines", self.said())

    def test_shows_the_servers_version(self):
        self.write("page", "<p>page</p>")
        self.play("web", "--version")
        self.assertEqual(self.process.wait(60), 0)
        self.assertIn("kelvora-server ", self.said())

    def test_tells_what_is_wrong(self):
        self.write("page", "fault")
        self.play("web")
        self.assertEqual(self.process.wait(60), 1)
        self.assertIn("The page could not be built", self.said())

    def test_refuses_a_mistyped_option_before_it_builds(self):
        self.play("web", "--notes", "--address", "--adress=0.0.0.0")
        self.assertEqual(self.process.wait(60), 1)
        self.assertIn("unknown option --adress\n", self.said())
        self.assertFalse((self.folder / "build").exists())

    def test_knows_each_option_and_its_value(self):
        help_text = subprocess.run([SERVER, "--help"], capture_output=True, text=True, check=True).stdout
        options = re.findall(r"^  (--(?!help)[a-z-]+) (\S*)", help_text, re.M)
        rows = re.findall(r'^    Option\{"(?!help)', (self.folder / "server/config/optionTable.cpp").read_text(), re.M)
        self.assertEqual(len(options), len(rows))
        for name, value in options:
            self.play("web", name, *(["--a-value"] if value else []), "--mistyped", "--wrong")
            self.assertEqual(self.process.wait(60), 1, name)
            self.assertIn("unknown option --mistyped\n", self.said())

    def test_refuses_a_wrong_value_before_it_builds_the_page(self):
        self.play("web", "--bots", "many")
        self.assertEqual(self.process.wait(60), 1)
        self.assertIn("--bots must be", self.said())
        self.assertFalse((self.folder / "builder").exists())

    def test_advises_its_own_command_for_a_taken_port(self):
        with socket.create_server(("127.0.0.1", self.port)):
            self.play("web")
            self.assertEqual(self.process.wait(60), 1)
        self.assertIn(f"Another program uses port {self.port}", self.said())
        self.assertIn("such as KELVORA_PORT=2011 ./play web.\n", self.said())
        self.assertFalse((self.folder / "build").exists())

    def test_tells_of_a_running_server(self):
        self.write("page", "<p>page</p>")
        with Server() as server:
            self.port = server.port
            self.play("web")
            self.assertEqual(self.process.wait(60), 0)
            self.assertIn(f"A server is already running: http://127.0.0.1:{self.port}/\n", self.said())
            self.assertTrue((self.folder / "build/web/site/index.html").exists(), "the server serves it now")
            self.play("web", "--notes", "for all")
            self.assertEqual(self.process.wait(60), 1)
            self.assertIn(f"A server is already running: http://127.0.0.1:{self.port}/\n", self.said())
            self.assertIn("Your options don't apply to it.", self.said())
            self.play("web", "--port", str(free_port()))
            self.wait_to_hear("Ctrl+C stops the server")
            self.assertEqual(self.end(), 143)

    def test_says_that_it_updates_what_is_built(self):
        self.write("page", "<p>page</p>")
        for words in ("Building server and page", "Updating server and page"):
            self.play("web")
            self.wait_to_hear("Ctrl+C stops the server")
            self.assertIn(words, self.said())
            self.end()


if __name__ == "__main__":
    unittest.main()
