"""The page for browsers: where the server finds it, how it is switched off, and how a new one takes the old one's
place."""

import gzip
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest
import urllib.error
import urllib.request

from realServer import PROJECT, SERVER, Server

ARENA = "To join, start the game"


def get(server, path="/", **headers):
    request = urllib.request.Request(f"http://127.0.0.1:{server.port}{path}", headers=headers)
    with urllib.request.urlopen(request, timeout=60) as answer:
        return answer.read()


class Folders(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-site-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, path, text):
        path = self.folder / path
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def start(self, *options, program=SERVER):
        server = Server(*options, program=program)
        self.addCleanup(server.end)
        return server

    def refusal(self, *options):
        """The server's words when it does not start."""
        done = subprocess.run([SERVER, "--port", "0", *options], stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=60)
        self.assertNotEqual(done.returncode, 0)
        self.assertEqual(done.stdout, "")
        return done.returncode, done.stderr


class Choices(Folders):
    def install(self, place):
        """A program of its own, with a page at that place beside it."""
        program = self.folder / "usr/games/kelvora-server"
        program.parent.mkdir(parents=True)
        shutil.copy(SERVER, program)
        self.write(f"usr/games/{place}/index.html", "<p>page</p>")
        return program

    def test_the_page_beside_the_program_is_served(self):
        program = self.install("site")
        server = self.start(program=program)
        self.assertEqual(get(server), b"<p>page</p>")
        self.assertIn(f"the page for browsers is in {self.folder.resolve()}/usr/games/site", server.log())

    def test_the_installed_page_is_served(self):
        self.assertEqual(get(self.start(program=self.install("../share/kelvora-server/site"))), b"<p>page</p>")

    def test_another_folder_and_none(self):
        program = self.install("../share/kelvora-server/site")
        self.write("own/index.html", "<p>own</p>")
        self.write("none.conf", "site =\n")
        self.write("own.conf", f"site = {self.folder}/own\n")
        own = self.folder / "own"
        for options, expected in ((("--site", own), "<p>own</p>"),
                                  (("--config", self.folder / "own.conf"), "<p>own</p>"),
                                  (("--no-site",), ARENA),
                                  (("--site", ""), ARENA),
                                  (("--config", self.folder / "none.conf"), ARENA),
                                  (("--no-site", "--config", self.folder / "own.conf"), ARENA),
                                  (("--config", self.folder / "none.conf", "--site", own), "<p>own</p>")):
            with self.subTest(options=options):
                self.assertIn(expected, get(self.start(*map(str, options), program=program)).decode())

    def test_a_folder_that_cannot_be_read_is_an_error(self):
        self.write("file", "text")
        for place in (self.folder / "nowhere", self.folder / "file"):
            status, words = self.refusal("--site", str(place))
            self.assertEqual(status, 1)
            self.assertIn(f"the site's folder {place} can't be read: ", words)
        self.assertEqual(self.refusal("--no-site=yes"), (
            2, "kelvora-server: --no-site takes no value\nkelvora-server --help lists the options.\n"))

    def test_an_empty_folder_shows_the_arena_until_the_page_is_there(self):
        (self.folder / "site").mkdir()
        server = self.start("--site", str(self.folder / "site"))
        self.assertIn(ARENA, get(server).decode())
        self.write("site/index.html", "<p>later</p>")
        self.assertEqual(get(server), b"<p>later</p>")
        shutil.rmtree(self.folder / "site")
        self.assertIn(ARENA, get(server).decode())


class Publishing(Folders):
    def setUp(self):
        super().setUp()
        self.write("new/index.html", "<p>one</p>")
        self.write("new/game.js", "a" * 5000)
        self.write("new/sounds/old.txt", "b" * 5000)
        self.site = self.folder / "site"
        self.publish()

    def publish(self):
        subprocess.run([PROJECT / "tools/publish_site.sh", self.folder / "new", self.site], check=True)

    def files(self):
        return sorted(str(path.relative_to(self.site)) for path in self.site.rglob("*") if path.is_file())

    def test_files_have_compressed_copies_where_that_helps(self):
        self.assertEqual(self.files(), ["game.js", "game.js.gz", "index.html", "sounds/old.txt", "sounds/old.txt.gz"])
        server = self.start("--site", str(self.site))
        self.assertEqual(get(server, "/game.js"), b"a" * 5000)
        packed = get(server, "/game.js", **{"Accept-Encoding": "gzip"})
        self.assertLess(len(packed), 100)
        self.assertEqual(gzip.decompress(packed), b"a" * 5000)

    def test_a_new_page_takes_the_old_ones_place(self):
        before = {name: os.stat(self.site / name) for name in self.files()}
        server = self.start("--site", str(self.site))
        self.write("new/index.html", "<p>two</p>")
        self.write("new/extra.css", "p{}")
        (self.folder / "new/sounds/old.txt").unlink()
        self.publish()
        self.assertEqual(self.files(), ["extra.css", "game.js", "game.js.gz", "index.html"])
        self.assertFalse((self.site / "sounds").exists())
        self.assertEqual(get(server), b"<p>two</p>")
        self.assertEqual(os.stat(self.site / "game.js").st_ino, before["game.js"].st_ino, "it is the same file")
        self.assertNotEqual(os.stat(self.site / "index.html").st_ino, before["index.html"].st_ino)
        with self.assertRaises(urllib.error.HTTPError) as caught:
            get(server, "/sounds/old.txt")
        self.assertEqual(caught.exception.code, 404)
        caught.exception.close()


if __name__ == "__main__":
    unittest.main()
