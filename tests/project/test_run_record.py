"""tests/run_tests.py keeps a record of the tests that have passed, of no others."""

import json
import unittest

from runTest import ALL, ALWAYS, TESTS, RunTest


class Record(RunTest):

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


if __name__ == "__main__":
    unittest.main()
