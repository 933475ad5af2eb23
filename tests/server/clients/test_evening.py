"""A short evening: see bench/evening.py."""

import subprocess
import sys
import unittest

from realServer import PROJECT, SERVER


class Evening(unittest.TestCase):
    def test_two_arenas_are_attacked_moderated_and_updated(self):
        result = subprocess.run([sys.executable, "-B", PROJECT / "bench/evening.py", SERVER, "--arenas", "2",
                                 "--seconds", "4", "--round", "5", "--untimed"], capture_output=True, text=True,
                                check=False)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)


if __name__ == "__main__":
    unittest.main()
