"""tests/failed_tests.py after real runs of ctest: it names what failed and the commands that run it alone."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[1] / "failed_tests.py"
OUTPUT = """[ RUN      ] Sums.Add
[       OK ] Sums.Add (0 ms)
[ RUN      ] Sums.Carry/3
[  FAILED  ] Sums.Carry/3, where GetParam() = 3 (1 ms)
[ RUN      ] Sums.Crash
"""


class FailedTests(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build = pathlib.Path(folder.name)
        (self.build / "output").write_text(OUTPUT)

    def run_tests(self, **tests):
        lines = [f'add_test("{name.replace("_", ".")}" {command})\n' for name, command in tests.items()]
        (self.build / "CTestTestfile.cmake").write_text("".join(lines))
        subprocess.run(["ctest", "--test-dir", self.build, "--output-junit", "tests.xml"], capture_output=True)

    def named(self):
        """The lines of the script, without their indent and with "build" for the folder."""
        done = subprocess.run([sys.executable, SCRIPT, self.build], check=True, capture_output=True, text=True)
        return [line.removeprefix("  ").replace(str(self.build), "build") for line in done.stdout.splitlines()]

    def test_a_failed_test_is_named_but_none_that_passed(self):
        self.run_tests(good="/bin/true", Page_firefox="/bin/false")
        self.assertEqual(self.named(), [r"ctest --test-dir build -R '^Page\.firefox$' -V"])

    def test_of_a_part_the_single_tests_are_named(self):
        self.run_tests(sums_2=f'/bin/sh -c "cat {self.build}/output; exit 1"')
        program = "build/tests/kelvora_sums_tests --gtest_filter="
        self.assertEqual(self.named(), [f"{program}'Sums.Carry/3'", f"{program}'Sums.Crash'"])

    def test_a_missing_program_is_named_if_nothing_failed(self):
        self.run_tests(good="/bin/true", absent="/nowhere/program")
        self.assertEqual(self.named(), ["ctest --test-dir build -R '^absent$' -V"])
        self.run_tests(bad="/bin/false", absent="/nowhere/program")
        self.assertEqual(self.named(), ["ctest --test-dir build -R '^bad$' -V"])

    def test_at_most_eight_are_named(self):
        self.run_tests(**{f"bad{number}": "/bin/false" for number in range(10)})
        named = self.named()
        self.assertEqual(named[7:], ["ctest --test-dir build -R '^bad7$' -V", "and 2 more"])

    def test_without_results_the_run_is_named(self):
        self.assertEqual(self.named(), ["ctest --test-dir build"])


if __name__ == "__main__":
    unittest.main()
