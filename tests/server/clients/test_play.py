"""The script that starts everything, ./play, with the real server and stand-ins for the build and the game."""

import http.server
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import unittest
import urllib.error
import urllib.request

from realServer import PROJECT, SERVER, Server, free_port, wait_for

# Builds at once, but the page only when the file "page" says how.
CMAKE = """#!/bin/bash
case $* in
  --version) echo "cmake version 3.25.1" ;;
  "--preset "*) mkdir -p "build/$2" && echo "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" >"build/$2/CMakeCache.txt" ;;
  *"--preset web "*)
    echo $$ >builder
    until [ -f page ]; do sleep 0.02; done
    mkdir -p build/web/site && cat page >build/web/site/index.html && grep -q '<p>' page ;;
  *"--preset release "* | *"--preset server"*)
    cp "$KELVORA_SERVER" "build/$3/kelvora-server"
    cp game "build/$3/kelvora" ;;
  *) echo "cmake $*" >&2; exit 1 ;;
esac
"""
# Tells its surroundings, and plays until the file "quit" is there.
GAME = """#!/bin/bash
echo $$ >game.number
echo "the words of the game" >&2
printf '%s\\n' "$KELVORA_WEB_HOST" "$KELVORA_FRAME_MS" "$*" >game.told.new && mv game.told.new game.told
until [ -f quit ]; do sleep 0.02; done
exit 3
"""
INSTALLED = """#!/bin/bash
shift 2
printf '%s installed\\n' "$@"
"""
NOBODY = "#!/bin/bash\necho 1000\n"
REFUSES = "#!/bin/bash\nexit 1\n"
ARENA = "To join, start the game"


class Play(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-play-"))
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "tools").mkdir()
        (self.folder / "server/config").mkdir(parents=True)
        for name in ("play", "tools/common.sh", "server/config/optionTable.cpp"):
            shutil.copy(PROJECT / name, self.folder / name)
        self.script("game", GAME)
        self.script("bin/cmake", CMAKE)
        self.script("bin/dpkg-query", INSTALLED)
        self.port = free_port()

    def script(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def write(self, name, text=""):
        (self.folder / name).write_text(text, encoding="utf-8")

    def play(self, *arguments, **environment):
        self.output = open(self.folder / "output", "w+", encoding="utf-8")
        self.addCleanup(self.output.close)
        surroundings = {name: value for name, value in os.environ.items() if name != "KELVORA_WEB_HOST"}
        surroundings.update(PATH=f"{self.folder}/bin:{os.environ['PATH']}", KELVORA_SERVER=SERVER,
                            KELVORA_PORT=str(self.port), DISPLAY=":77", **environment)
        self.process = subprocess.Popen([self.folder / "play", *arguments], stdin=subprocess.DEVNULL, stdout=self.output,
                                        stderr=subprocess.STDOUT, env=surroundings)
        self.addCleanup(self.end)

    def end(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        return self.process.wait(60)

    def said(self):
        return (self.folder / "output").read_text(encoding="utf-8")

    def told(self):
        """The words and variables that the game was started with."""
        path = self.folder / "game.told"
        wait_for(path.exists, f"the game's start\n{self.said()}")
        return path.read_text(encoding="utf-8").splitlines()

    def page(self):
        """The page that a browser gets; nothing without a server."""
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{self.port}/", timeout=60) as answer:
                return answer.read().decode()
        except urllib.error.URLError:
            return None

    def wait_to_hear(self, words):
        wait_for(lambda: words in self.said(), words)

    def kill(self, name, number):
        """Kills a child of the script, which tells of it in its own words."""
        status = pathlib.Path("/proc", number, "status").read_text(encoding="utf-8")
        self.assertIn(f"PPid:\t{self.process.pid}\n", status)
        os.kill(int(number), signal.SIGKILL)
        self.wait_to_hear(f"==> {name} was ended by the signal KILL\n")

    def assert_only_own_words(self):
        self.assertNotRegex(self.said(), r"play: line|Killed|Terminated")

    def server_number(self):
        """The process of the server that the script has started."""
        children = pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children").read_text().split()
        server, = (child for child in children
                   if pathlib.Path("/proc", child, "cmdline").read_bytes().split(b"\0")[0].endswith(b"kelvora-server"))
        return server

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
        self.assertIn(f"its dialog needs your name, the server address 127.0.0.1 and the port {self.port}\n", self.said())

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

    def test_web_starts_a_server_and_no_game(self):
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

    def test_web_tells_of_a_killed_server(self):
        self.write("page", "<p>page</p>")
        self.play("web")
        self.wait_to_hear("Ctrl+C stops the server")
        self.kill("The server", self.server_number())
        self.assertEqual(self.process.wait(60), 128 + signal.SIGKILL)
        self.assert_only_own_words()

    def test_web_passes_options_to_the_server(self):
        self.write("page", "<p>page</p>")
        self.play("web", "--address", "0.0.0.0", "--notes", "for all")
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://127.0.0.1:{self.port}/\n", self.said())
        self.assertRegex(self.said(), rf"From other machines: http://[0-9a-f.:]*:{self.port}/\n")

    def test_web_for_ipv6_tells_links_that_open(self):
        self.write("page", "<p>page</p>")
        self.play("web", "--address", "::")
        self.wait_to_hear("Ctrl+C stops the server")
        self.assertIn(f"Play in a browser: http://127.0.0.1:{self.port}/\n", self.said())
        self.assertIn("From other machines: ", self.said())

    def test_web_shows_the_servers_version(self):
        self.write("page", "<p>page</p>")
        self.play("web", "--version")
        self.assertEqual(self.process.wait(60), 0)
        self.assertIn("kelvora-server ", self.said())

    def test_web_tells_what_is_wrong(self):
        self.write("page", "fault")
        self.play("web")
        self.assertEqual(self.process.wait(60), 1)
        self.assertIn("The page could not be built", self.said())

    def test_web_refuses_a_mistyped_option_before_it_builds(self):
        self.play("web", "--notes", "--address", "--adress=0.0.0.0")
        self.assertEqual(self.process.wait(60), 1)
        self.assertIn("unknown option --adress\n", self.said())
        self.assertFalse((self.folder / "build").exists())

    def test_web_knows_each_option_and_its_value(self):
        help_text = subprocess.run([SERVER, "--help"], capture_output=True, text=True, check=True).stdout
        options = re.findall(r"^  (--(?!help)[a-z-]+) (\S*)", help_text, re.M)
        self.assertGreater(len(options), 39)
        for name, value in options:
            self.play("web", name, *(["--a-value"] if value else []), "--mistyped", "--wrong")
            self.assertEqual(self.process.wait(60), 1, name)
            self.assertIn("unknown option --mistyped\n", self.said())

    def test_web_refuses_a_wrong_value_before_it_builds_the_page(self):
        self.play("web", "--bots", "many")
        self.assertEqual(self.process.wait(60), 1)
        self.assertIn("--bots must be", self.said())
        self.assertFalse((self.folder / "builder").exists())

    def test_web_advises_its_own_command_for_a_taken_port(self):
        with socket.create_server(("127.0.0.1", self.port)):
            self.play("web")
            self.assertEqual(self.process.wait(60), 1)
        self.assertIn(f"Another program uses port {self.port}", self.said())
        self.assertIn("such as KELVORA_PORT=2011 ./play web.\n", self.said())
        self.assertFalse((self.folder / "build").exists())

    def test_web_tells_of_a_running_server(self):
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

    def test_web_says_that_it_updates_what_is_built(self):
        self.write("page", "<p>page</p>")
        for words in ("Building server and page", "Updating server and page"):
            self.play("web")
            self.wait_to_hear("Ctrl+C stops the server")
            self.assertIn(words, self.said())
            self.end()


if __name__ == "__main__":
    unittest.main()
