"""The script that starts everything, ./play, with the real server and stand-ins for the build and the game."""

import contextlib
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest
import urllib.error
import urllib.request

from realServer import PROJECT, SERVER, free_port, wait_for

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


class PlayScript(unittest.TestCase):
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
        """Nobody finds the file before its text."""
        new = self.folder / f"{name}.new"
        new.write_text(text, encoding="utf-8")
        new.rename(self.folder / name)

    def play(self, *arguments, **environment):
        self.output = open(self.folder / "output", "w+", encoding="utf-8")
        self.addCleanup(self.output.close)
        surroundings = {name: value for name, value in os.environ.items() if name != "KELVORA_WEB_HOST"}
        surroundings.update({"PATH": f"{self.folder}/bin:{os.environ['PATH']}", "KELVORA_SERVER": SERVER,
                             "KELVORA_PORT": str(self.port), "DISPLAY": ":77", **environment})
        self.process = subprocess.Popen([self.folder / "play", *arguments], stdin=subprocess.DEVNULL,
                                        stdout=self.output, stderr=subprocess.STDOUT, env=surroundings)
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
        def find():
            children = pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children").read_text().split()
            for child in children:
                with contextlib.suppress(OSError):  # the child has ended
                    words = pathlib.Path("/proc", child, "cmdline").read_bytes().split(b"\0")
                    if words[0].endswith(b"kelvora-server"):
                        return child
        return wait_for(find, "the server's process")
