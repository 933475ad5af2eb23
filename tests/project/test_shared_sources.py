"""Scripts and sources that tests share neither name documents nor search for them, so that a test's own text tells
tests/run_tests.py what it reads."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
import run_tests  # noqa: E402  (found by the line above)

PROJECT = run_tests.PROJECT


class SharedSources(unittest.TestCase):
    def test_shared_scripts_and_fakes_name_none(self):
        shared = [*PROJECT.glob("tools/desktop/*.py"), *PROJECT.glob("tests/support/*.*"),
                  PROJECT / "tests/project/tree.h"]
        self.assertGreater(len(shared), 20)
        for path in shared:
            for name in ("docs", "bench", "packaging", *(file.name for file in PROJECT.glob("*.md"))):
                self.assertFalse(run_tests.is_named(name, path.read_text()), f"{path.name} names {name}")

    def test_only_the_projects_own_tests_search_its_tree(self):
        for path in PROJECT.glob("tests/**/*_test.cpp"):
            if path.parent.name != "project":
                self.assertNotIn("tree::files", path.read_text(), path)


if __name__ == "__main__":
    unittest.main()
