"""tests/run_tests.py with a small made-up project: it leaves out exactly the tests whose inputs are the same."""

import json
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


class RunTests(unittest.TestCase):

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
        """The names of the tests that ran. What the script said and its status are kept."""
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

    def test_a_second_run_leaves_out_what_has_passed(self):
        self.expect_again(set())
        self.define(TESTS.replace(" LABELS random", ""))
        self.assertEqual(self.run_tests(), ALWAYS)
        self.assertEqual(self.run_tests(), set())
        self.assertEqual(self.status, 0)

    def test_all_runs_all(self):
        self.assertEqual(self.run_tests("--all"), ALL | ALWAYS)

    def test_a_test_program(self):
        self.change("build/made/tests/moves")
        self.expect_again({"moves"})
        self.change("build/made/tests/bounds.wasm")
        self.expect_again({"bounds"})

    def test_a_program_and_those_beside_it(self):
        self.change("build/made/kelvora")
        self.expect_again({"flight", "store"})
        self.change("build/made/kelvora-server")
        self.expect_again({"store"})
        self.change("build/made/kelvora-replay")
        self.expect_again({"store"})
        self.change("build/made/kelvora_bench")
        self.expect_again(set())

    def test_what_programs_load(self):
        self.change("build/made/lib/sound/module.so")
        self.expect_again({"flight", "store"})
        self.change("build/made/generated/protocol.py")
        self.expect_again({"flight", "store"})

    def test_a_folder_of_the_build(self):
        self.change("build/made/site/game/game.js")
        self.expect_again({"flight"})
        self.write("build/made/site/new.js", "")
        self.expect_again({"flight"})

    def test_a_script_and_those_that_it_names(self):
        self.change("tests/desktop/test_store.py")
        self.expect_again({"store"} | EVERYTHING)
        self.change("tests/desktop/screen.py")
        self.expect_again({"flight"} | EVERYTHING)
        self.change("tests/project/rules.py")
        self.expect_again(EVERYTHING)

    def test_a_folder_of_sources(self):
        for name, readers in (("docs/guide.md", {"bounds"}), ("packaging/unit.service", {"store"}),
                              ("packaging/run.sh", {"moves", "store"}), ("tools/harness.py", {"flight"}),
                              ("platform/web/page.js", set()), ("CHANGELOG.md", set()),
                              ("simulation/move.cpp", set()), ("bench/frames.h", set())):
            with self.subTest(name):
                self.change(name)
                self.expect_again(readers | EVERYTHING)
        self.write("docs/new.md", "")
        self.expect_again({"bounds"} | EVERYTHING)

    def test_what_nobody_reads(self):
        self.change("tests/network/__pycache__/old.pyc", ".git/index", "build/made/CTestTestfile.cmake")
        self.write("build/other/docs/guide.md", "")
        self.expect_again(set())

    def test_a_name_in_the_sources_of_a_program(self):
        source = "tests/simulation/move_test.cpp"
        self.write(source, '#include "docs/guide.md"\n// redocs and docs-new\n')
        self.expect_again(EVERYTHING)
        self.change("docs/guide.md")
        self.expect_again({"bounds"} | EVERYTHING)
        self.write(source, "// docs\n")
        self.expect_again({"moves"} | EVERYTHING)
        self.change("docs/guide.md")
        self.expect_again({"moves", "bounds"} | EVERYTHING)

    def test_files_that_all_read(self):
        for name in ("tests/golden/ball.png", "assets/sheet.png", "sounds/bounce.wav", "kelvora.jpg"):
            with self.subTest(name):
                self.change(name)
                self.expect_again(ALL)

    def test_packages(self):
        self.change("packages")
        self.expect_again(ALL)
        (self.project / "packages").unlink()
        self.expect_again(ALL)

    def test_variables(self):
        self.expect_again(ALL, KELVORA_WINDOW_STEPS="5")
        self.assertEqual(self.run_tests(UNRELATED="5"), ALL | ALWAYS)
        self.expect_again(set(), UNRELATED="7")

    def test_commands_and_variables_of_a_test(self):
        self.define(TESTS.replace('"5"', '"6"'))
        self.expect_again({"bounds"})
        self.define(TESTS.replace('"5"', '"6"').replace("PYTHONPATH", "FASTER=yes;PYTHONPATH"))
        self.expect_again({"flight"})
        self.define(TESTS.replace('"5"', '"6"').replace("PYTHONPATH", "FASTER=no;PYTHONPATH"))
        self.expect_again({"flight"})

    def test_a_failed_test(self):
        self.write_program("tests/moves", "exit 1")
        self.assertEqual(self.run_tests(), {"moves"} | ALWAYS)
        self.assertNotEqual(self.status, 0)
        self.assertEqual(self.run_tests(), {"moves"} | ALWAYS)
        self.assertNotEqual(self.status, 0)
        self.write_program("tests/moves", "exit 0")  # as it has been before
        self.expect_again({"moves"})

    def test_a_test_that_has_not_been_built(self):
        program = self.build / "tests" / "moves"
        program.rename(program.with_name("away"))
        for _ in range(2):
            self.assertEqual(self.run_tests(), {"moves"} | ALWAYS)
            self.assertNotEqual(self.status, 0)
        program.with_name("away").rename(program)
        self.expect_again({"moves"})

    def test_a_stopped_run_forgets_what_is_out_of_date(self):
        self.change("build/made/tests/moves")
        self.write_program("tests/moves", "kill $(ps -o ppid= $PPID)")
        self.run_tests()
        self.write_program("tests/moves", "exit 0")
        self.expect_again({"moves"})

    def test_a_new_test(self):
        self.define(TESTS + 'add_test(more "/bin/true")\n')
        self.assertEqual(self.run_tests(), {"more"} | ALWAYS)

    def test_a_damaged_record(self):
        for text in ("", "{", "[]", "5", '{"moves": 5}', '{"mutations": null}', "\0"):
            with self.subTest(text):
                self.write("build/made/passed.json", text)
                self.expect_again(ALL)
        (self.build / "passed.json").unlink()
        self.expect_again(ALL)

    def test_a_hash_of_another_test(self):
        record = self.build / "passed.json"
        hashes = json.loads(record.read_text())
        self.assertEqual(set(hashes), ALL)
        record.write_text(json.dumps(dict(hashes, moves=hashes["bounds"])))
        self.expect_again({"moves"})


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
        """What the script says that ends with this status."""
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
        self.define("")
        self.assertIn(f"{self.build} has no tests. Configure the build with -DKELVORA_TESTS=ON",
                      self.said_with(1, self.build, "2"))

    def test_a_build_whose_tests_cannot_be_read_fails(self):
        self.define("add_test(")
        said = self.said_with(1, self.build, "2")
        self.assertIn("CTestTestfile.cmake", said)
        self.assertIn(f"could not list the tests of {self.build}", said)


if __name__ == "__main__":
    unittest.main()
