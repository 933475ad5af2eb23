"""tests/run_tests.py leaves out exactly the tests whose inputs are the same."""

import unittest

from runTest import ALL, ALWAYS, EVERYTHING, TESTS, RunTest


class RunTests(RunTest):

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


if __name__ == "__main__":
    unittest.main()
