"""The arguments of tests/run_tests.py, and what it says without tests."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

from runTest import SCRIPT


class Arguments(unittest.TestCase):
    USAGE = "usage: tests/run_tests.py [-h] [--all] BUILD_FOLDER JOBS"

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kelvora-run-")
        self.addCleanup(folder.cleanup)
        self.build = pathlib.Path(folder.name)
        self.define('add_test(one "/bin/true")\n')

    def define(self, tests):
        (self.build / "CTestTestfile.cmake").write_text(tests)

    def said_with(self, status, *words):
        """The words of the script, which ends with this status."""
        done = subprocess.run([sys.executable, "-B", SCRIPT, *words], check=False, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT)
        self.assertEqual(done.returncode, status, done.stdout)
        self.assertNotIn("Traceback", done.stdout)
        return done.stdout

    def test_wrong_ones_are_named_before_anything_runs(self):
        here, away = self.build, self.build / "away"
        for words, complaint in (((), "BUILD_FOLDER, JOBS"), ((here,), "required: JOBS"),
                                 ((here, "many"), "invalid int"), ((here, "0"), "JOBS must be at least 1"),
                                 ((here, "2", "--every"), "--every"), ((away, "2"), f"there is no folder {away}"),
                                 ((here / "CTestTestfile.cmake", "2"), "there is no folder")):
            with self.subTest(words):
                said = self.said_with(2, *words)
                self.assertIn(self.USAGE, said)
                self.assertIn(complaint, said)
        self.assertEqual(list(here.iterdir()), [here / "CTestTestfile.cmake"])
        self.said_with(0, here, "2")
        self.assertTrue((here / "passed.json").exists())

    def test_help(self):
        for word in ("-h", "--help"):
            self.assertIn(self.USAGE, self.said_with(0, word))

    def test_a_build_without_tests_fails(self):
        self.said_with(0, self.build, "2")
        self.define("")
        self.assertIn(f"{self.build} has no tests. Configure the build with -DKELVORA_TESTS=ON",
                      self.said_with(1, self.build, "2"))
        self.assertFalse((self.build / "tests.xml").exists())  # these would be the results of the run before

    def test_a_build_whose_tests_cannot_be_read_fails(self):
        self.said_with(0, self.build, "2")
        self.define("add_test(")
        said = self.said_with(1, self.build, "2")
        self.assertIn("CTestTestfile.cmake", said)
        self.assertIn(f"could not list the tests of {self.build}", said)
        self.assertFalse((self.build / "tests.xml").exists())


if __name__ == "__main__":
    unittest.main()
