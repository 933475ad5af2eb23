"""Shared code of the tests of tests/run_tests.py: a small made-up project with tests."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

SCRIPT = pathlib.Path(__file__).resolve().parents[1] / "run_tests.py"
RUN = "import pathlib, run_tests, sys; run_tests.PACKAGES = pathlib.Path('packages'); sys.exit(run_tests.main())"

FILES = {
    # Read by all, by none, and by those that name it.
    "tests/golden/ball.png": "", "assets/sheet.png": "", "sounds/bounce.wav": "", "kelvora.jpg": "",
    "CHANGELOG.md": "", "simulation/move.cpp": "", "tests/simulation/move_test.cpp": "// nothing\n",
    "docs/guide.md": "", "packaging/unit.service": "", "tools/harness.py": "",
    "tests/network/__pycache__/old.pyc": "", ".git/index": "",
    "packaging/run.sh": "#!/bin/sh\nexec \"$@\"\n",
    "platform/web/page.js": "", "bench/frames.h": "",
    "tests/network/bounds_test.cpp": '#include "bench/frames.h"\n// As docs/guide.md says.\n',
    "tests/network/tools.txt": "",
    "tests/desktop/test_flight.py": "import window\n",
    "tests/desktop/test_store.py":
        "print('packaging/unit.service', 'kelvora-replay', 'bench-mark', 'undocs', 'passed')\n",
    "tests/desktop/window.py": "from  screen import size\n",
    "tests/desktop/screen.py": "size = 5\n",
    "tests/project/rules_test.cpp": "", "tests/project/rules.py": "",
}
PROGRAMS = ("kelvora", "kelvora-server", "kelvora-replay", "kelvora_bench", "tests/moves", "tests/bounds",
            "tests/rules")
BUILT = {
    "CMakeCache.txt": "", "site/index.html": "", "site/game/game.js": "", "lib/sound/module.so": "",
    "generated/protocol.py": "", "tests/bounds.wasm": "",
}
TESTS = """
add_test(moves "{project}/packaging/run.sh" "{build}/tests/moves")
set_tests_properties(moves PROPERTIES WORKING_DIRECTORY "{build}/tests/simulation")
add_test(bounds "{build}/tests/bounds" "--seed" "5")
set_tests_properties(bounds PROPERTIES WORKING_DIRECTORY "{build}/tests/network")
add_test(flight "/bin/true" "test_flight")
set_tests_properties(flight PROPERTIES WORKING_DIRECTORY "{project}/tests/desktop"
  ENVIRONMENT "CLIENT={build}/kelvora;SITE={build}/site;PYTHONPATH={project}/tools")
add_test(store "/bin/true" "test_store")
set_tests_properties(store PROPERTIES WORKING_DIRECTORY "{project}/tests/desktop" ENVIRONMENT "CLIENT={build}/kelvora"
  REQUIRED_FILES "{build}/kelvora-server")
add_test(rules "{build}/tests/rules")
set_tests_properties(rules PROPERTIES WORKING_DIRECTORY "{build}/tests/project" LABELS project)
add_test(homeless "/bin/true" "docs")
set_tests_properties(homeless PROPERTIES WORKING_DIRECTORY "/tmp")
add_test(mutations "/bin/true")
set_tests_properties(mutations PROPERTIES WORKING_DIRECTORY "{build}/tests/network" LABELS random)
add_test(begin "/bin/true")
set_tests_properties(begin PROPERTIES FIXTURES_SETUP screen)
set_tests_properties(flight PROPERTIES FIXTURES_REQUIRED screen)
"""
ALL = {"moves", "bounds", "flight", "store", "rules", "homeless"}
EVERYTHING = {"rules", "homeless"}  # these read the whole project
ALWAYS = {"mutations"}


class RunTest(unittest.TestCase):

    def setUp(self):
        self.project = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-run-"))
        self.addCleanup(shutil.rmtree, self.project)
        self.build = self.project / "build" / "made"
        for name, text in FILES.items():
            self.write(name, text)
        for name, text in BUILT.items():
            self.write(f"build/made/{name}", text)
        for name in ("simulation", "network", "project"):
            (self.build / "tests" / name).mkdir(parents=True)
        (self.project / "tests/network/frame.bin").write_bytes(b"\xff\0")
        for name in PROGRAMS:
            self.write_program(name, "exit 0")
        (self.project / "packaging/run.sh").chmod(0o755)
        self.write("packages", "cmake 3.25\n")
        self.define(TESTS)
        shutil.copy(SCRIPT, self.project / "tests")
        self.assertEqual(self.run_tests(), ALL | ALWAYS)
        self.assertEqual(self.status, 0)

    def write(self, name, text):
        path = self.project / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def change(self, *names):
        for name in names:
            self.write(name, (self.project / name).read_text() + "\n# changed\n")

    def write_program(self, name, line):
        self.write(f"build/made/{name}", f"#!/bin/sh\n{line}\n")
        (self.build / name).chmod(0o755)

    def define(self, tests):
        self.write("build/made/CTestTestfile.cmake", tests.format(build=self.build, project=self.project))

    def run_tests(self, *options, **variables):
        """The names of the tests that ran. Keeps the script's words and status."""
        environment = dict(os.environ, PYTHONPATH=str(self.project / "tests"), **variables)
        done = subprocess.run([sys.executable, "-B", "-c", RUN, self.build, "2", *options], env=environment,
                              cwd=self.project, stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
        self.assertNotIn("Traceback", done.stderr)
        self.said, self.status = done.stdout, done.returncode
        results = self.build / "tests.xml"
        cases = ElementTree.parse(results).iter("testcase") if results.exists() else ()
        return {case.get("name") for case in cases} - {"begin"}

    def expect_again(self, names, *options, **variables):
        """These tests run, besides those that always do, and afterwards none does."""
        self.assertEqual(self.run_tests(*options, **variables), names | ALWAYS)
        self.assertIn(f"{len(ALL - names)} of {len(ALL | ALWAYS)} tests have passed", self.said)
        self.assertEqual(self.run_tests(**variables), ALWAYS)
