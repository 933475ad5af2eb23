"""The zip and the installer for Windows, which tools/package.sh makes with packaging/windows: what is in them, that the
installed game starts, and that nothing is left of it in the end."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest
import zipfile

import harness
import wine
from desktopTest import DesktopTest
from display import Window

PACKAGES = harness.PROJECT / "build" / "windows" / "packages"
SETUP = PACKAGES / f"kelvora-{harness.VERSION}-setup.exe"
ZIP = PACKAGES / f"kelvora-{harness.VERSION}-windows.zip"
MAX_SIZE = 12_000_000  # bytes
PROGRAMS = ("kelvora.exe", "kelvora-server.exe", "Play against bots.exe")


def data_files():
    """Pictures and sounds of the project that the game loads, relative to its folder."""
    assets, sounds = harness.PROJECT / "assets", harness.PROJECT / "sounds"
    pictures = {f"assets/{file.name}" for file in assets.glob("*.png") if not file.name.startswith("icon-")}
    return pictures | {f"sounds/{file.name}" for file in sounds.iterdir() if file.suffix in (".wav", ".mp3")} | {
        "kelvora.jpg"}


class Packages(unittest.TestCase):

    def test_both_are_small(self):
        for package in (SETUP, ZIP):
            self.assertLess(package.stat().st_size, MAX_SIZE, package.name)

    def test_zip_has_the_programs_and_their_data(self):
        with zipfile.ZipFile(ZIP) as packed:
            names = {name.removeprefix("Kelvora/") for name in packed.namelist() if not name.endswith("/")}
        self.assertEqual(names, data_files() | set(PROGRAMS) | {"LICENSE.txt"})

    def test_programs_tell_their_version(self):
        for name in PROGRAMS:
            program = (PACKAGES / "Kelvora" / name).read_bytes()
            for key, value in (("FileVersion", harness.VERSION), ("OriginalFilename", name)):
                # Each key and its value are padded to whole words of four bytes.
                place = program.find((key + "\0").encode("utf-16le"))
                self.assertGreater(place, 0, f"{name}: {key}")
                found = program[place:place + 200].decode("utf-16le", "replace").split("\0")
                self.assertEqual(next(filter(None, found[1:])), value, name)


class Installer(DesktopTest):

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="kelvora-installer-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.prefix = pathlib.Path(wine.prefix_in(self.folder))
        self.addCleanup(wine.end, str(self.prefix))

    def start_windows(self, program, *arguments, output=subprocess.DEVNULL):
        environment = dict(self.display.environment, WINEPREFIX=str(self.prefix), KELVORA_WEB_HOST=harness.CLOSED_PORT)
        process = subprocess.Popen(wine.command(str(program), *arguments), env=environment, stdin=subprocess.DEVNULL,
                                   stdout=output, stderr=subprocess.DEVNULL)
        self.addCleanup(harness.stop, process)
        return process

    def run_windows(self, program, *arguments, status=0):
        self.assertEqual(self.start_windows(program, *arguments).wait(harness.PATIENCE * 4), status)

    def installed(self):
        """The folder of the installed game."""
        [folder] = (self.prefix / "drive_c" / "users").glob("*/AppData/Local/Programs/Kelvora")
        return folder

    def files(self):
        """The user's files. The uninstaller runs from a copy of itself in the folder for temporary files, which Windows
        clears when it starts."""
        users = self.prefix / "drive_c" / "users"
        return {str(file.relative_to(users)) for file in users.rglob("*") if "Temp" not in file.parts}

    def registry(self):
        """The names of the user's registry that belong to the game."""
        wine.end(str(self.prefix))
        text = (self.prefix / "user.reg").read_text(errors="replace")
        return [line for line in text.splitlines() if line.startswith("[") and "kelvora" in line.lower()]

    def test_installed_game_starts_and_is_removed_without_a_trace(self):
        self.run_windows("cmd.exe", "/c", "exit")  # creates what every user has
        wine.end(str(self.prefix))
        before = self.files()
        self.run_windows(SETUP, "/S")
        installed = self.installed()
        present = {str(file.relative_to(installed)) for file in installed.rglob("*") if file.is_file()}
        self.assertEqual(present, data_files() | set(PROGRAMS) | {"LICENSE.txt", "Uninstall.exe"})
        links = {file.name for file in (self.prefix / "drive_c" / "users").rglob("*.lnk") if "Kelvora" in str(file)}
        self.assertEqual(links, {"Kelvora.lnk", "Play against bots.lnk"})

        game = self.start_windows(installed / "kelvora.exe", "nosound", "nomusic")

        def window(title):
            return self.display.xdotool("search", "--onlyvisible", "--name", title).split()
        harness.wait_for(lambda: window("Connect"), "the connect dialog, the last window of the start")
        Window(self.display, int(window(harness.TITLE)[0])).activate()
        self.display.xdotool("key", "alt+F4")
        self.assertEqual(game.wait(harness.PATIENCE), 0)
        # A setting, as the game saves them.
        self.run_windows("reg.exe", "add", r"HKCU\Software\kelvora\last login", "/v", "user name", "/d", "Ann", "/f")
        self.assertIn("Software\\\\kelvora\\\\last login", " ".join(self.registry()))

        self.run_windows(installed / "Uninstall.exe", "/S")
        harness.wait_for(lambda: self.files() <= before, lambda: f"the removal of {self.files() - before}")
        self.assertEqual(self.files(), before)
        self.assertEqual(self.registry(), [])

    def test_running_server_is_neither_replaced_nor_removed(self):
        self.run_windows(SETUP, "/S")
        installed = self.installed()
        (installed / "LICENSE.txt").write_text("of an older version")
        before = {file: file.stat().st_mtime_ns for file in installed.rglob("*")}
        server = self.start_windows(installed / "kelvora-server.exe", "--port", "0", output=subprocess.PIPE)
        self.assertIn(b"listening on", server.stdout.readline())
        aborted = 2
        # The option lets the uninstaller run where it is.
        here = "_?=C:\\" + str(installed.relative_to(self.prefix / "drive_c")).replace("/", "\\")
        for command in ((SETUP, "/S"), (installed / "Uninstall.exe", "/S", here)):
            self.run_windows(*command, status=aborted)
            self.assertEqual({file: file.stat().st_mtime_ns for file in installed.rglob("*")}, before)
        harness.stop(server)
        server.stdout.close()
        self.run_windows(SETUP, "/S")
        self.assertNotEqual((installed / "LICENSE.txt").read_text(), "of an older version")


if __name__ == "__main__":
    unittest.main()
