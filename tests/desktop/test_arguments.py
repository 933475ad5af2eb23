"""The program's answers to informational options, and the places of its files."""

import os
import pathlib
import shutil
import tempfile
import unittest

import wine

CLIENT = pathlib.Path(os.environ["KELVORA_CLIENT"])
IN_WINE = wine.is_for_windows(CLIENT.name)
PROJECT = pathlib.Path(__file__).resolve().parents[2]


def answer(client, *arguments, **environment):
    # Without a display, because printing needs none.
    kept = {name: os.environ[name] for name in ("PATH", "HOME", "LSAN_OPTIONS") if name in os.environ}
    status, output, _ = wine.run(str(client), *arguments, environment=dict(kept, **environment))
    return status, output.splitlines()


def named(path):
    """A path as the client prints it."""
    return "Z:" + str(path).replace("/", "\\") if IN_WINE else str(path)


def sound_module(client):
    """Where a client finds the module, or None."""
    found = answer(client, "--version")[1][3].removeprefix("sound module: ")
    return None if found == "missing" else pathlib.Path(found)


class Arguments(unittest.TestCase):

    def test_version_prints_version_and_folders(self):
        status, lines = answer(CLIENT, "--version", XDG_CONFIG_HOME="/tmp/settings of mine")
        self.assertEqual(status, 0)
        self.assertRegex(lines[0], r"^kelvora \d+\.\d+\.\d+$")
        # The folder of the build tree, which the compiler of Linux has named.
        self.assertEqual(lines[1], f"pictures and sounds: {PROJECT}")
        if IN_WINE:
            self.assertEqual(lines[2:], [r"settings: HKEY_CURRENT_USER\Software\kelvora"])
            return
        self.assertEqual(lines[2], "settings: /tmp/settings of mine/kelvora/kelvora.ini")
        self.assertEqual(lines[3], f"sound module: {sound_module(CLIENT)}")
        self.assertTrue(sound_module(CLIENT).is_file())

    def test_help_lists_every_variable_of_the_readme(self):
        status, lines = answer(CLIENT, "--help")
        self.assertEqual(status, 0)
        readme = (PROJECT / "README.md").read_text()
        for variable in ("KELVORA_FRAME_MS", "KELVORA_DATA", "KELVORA_WEB_HOST"):
            self.assertIn(f"`{variable}`", readme)
            self.assertTrue(any(variable in line for line in lines), variable)


class Places(unittest.TestCase):
    """The program finds its files: beside it, in an installed tree, in a moved one, or where it is told."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora places "))
        self.addCleanup(shutil.rmtree, self.folder)

    def found(self, client, **environment):
        return answer(client, "--version", **environment)[1][1].removeprefix("pictures and sounds: ")

    def test_beside_the_program(self):
        shutil.copy(CLIENT, self.folder)
        (self.folder / "assets").mkdir()
        self.assertEqual(self.found(self.folder / CLIENT.name), named(self.folder))

    def test_in_an_installed_tree_even_after_a_move(self):
        tree = self.folder / "tree"
        for folder in ("games", "share/kelvora/assets"):
            (tree / folder).mkdir(parents=True)
        shutil.copy(CLIENT, tree / "games")
        self.assertEqual(self.found(tree / "games" / CLIENT.name), named(tree / "share/kelvora"))
        moved = tree.rename(self.folder / "moved tree")
        self.assertEqual(self.found(moved / "games" / CLIENT.name), named(moved / "share/kelvora"))

    @unittest.skipIf(IN_WINE, "Windows has a mixer, so there is no module")
    def test_the_sound_module_is_found_as_well(self):
        module = sound_module(CLIENT)
        place = module.relative_to(CLIENT.parent)  # "lib/...", as in an installation
        tree = self.folder / "tree"
        for folder in ("games", place.parent):
            (tree / folder).mkdir(parents=True)
        shutil.copy(CLIENT, tree / "games")
        self.assertIsNone(sound_module(tree / "games/kelvora"))
        shutil.copy(module, tree / place)
        self.assertEqual(sound_module(tree / "games/kelvora"), tree / place)
        moved = tree.rename(self.folder / "moved tree")
        self.assertEqual(sound_module(moved / "games/kelvora"), moved / place)

    def test_where_the_environment_says(self):
        self.assertEqual(self.found(CLIENT, KELVORA_DATA=str(self.folder)), str(self.folder))


if __name__ == "__main__":
    unittest.main()
