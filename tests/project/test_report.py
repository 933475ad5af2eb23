"""The table of docs/performance.md has the rows and goals of bench/report.py, and marks what misses its goal."""

import subprocess
import sys
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "bench"))
import report


class Report(unittest.TestCase):

    def test_the_table_has_the_rows_and_goals(self):
        rows = report.TABLE.search(report.DOCUMENT.read_text())[0][len(report.HEAD):].splitlines(keepends=True)
        figures = [(command, figure) for command, figures in report.FIGURES.items() for figure in figures]
        self.assertEqual(len(rows), len(figures))
        for line, (command, figure) in zip(rows, figures):
            today = line.split(" | ")[2].split()[0].rstrip(",")
            self.assertEqual(line, report.row(command, figure, float(today)))

    def test_a_rounded_figure_shows_whether_it_misses_its_goal(self):
        at_least, at_most = (report.AT_LEAST, 4), (report.AT_MOST, 1.5)
        for value, goal, cell in ((4.004, at_least, "4 ms"), (3.996, at_least, "3.996 ms, **missed**"),
                                  (3.994, at_least, "3.99 ms, **missed**"), (1.496, at_most, "1.5 ms"),
                                  (1.5004, at_most, "1.5004 ms, **missed**"), (1.506, at_most, "1.51 ms, **missed**"),
                                  (1000.4, (report.AT_MOST, 1000), "1000.4 ms, **missed**"),
                                  (999.4, None, "999 ms"), (999.6, None, "1000 ms"), (2583.2, None, "2583 ms")):
            with self.subTest(value):
                self.assertEqual(report.row("bench", ("sum", goal, "ms", ""), value).split(" | ")[2], cell)

    def test_a_word_that_no_command_contains_is_refused(self):
        script = PROJECT / "bench" / "report.py"
        done = subprocess.run([sys.executable, "-B", script, "build", "--only", "nosuch_bench"], capture_output=True,
                              text=True, check=False)
        self.assertEqual(done.returncode, 2, done)
        self.assertIn("no command contains nosuch_bench", done.stderr)


if __name__ == "__main__":
    unittest.main()
