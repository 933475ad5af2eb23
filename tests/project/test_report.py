"""The table of docs/performance.md has the rows and goals of bench/report.py, and marks what misses its goal."""

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


if __name__ == "__main__":
    unittest.main()
