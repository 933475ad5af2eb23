#!/usr/bin/env python3
"""tests/failed_tests.py BUILD_FOLDER: names the failed tests of the last run and the commands that run each alone.

Reads tests.xml, which ctest writes with --output-junit. Names at most eight. Without the file, names the whole run.
"""
import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

MAXIMUM = 8


def names_of(output):
    """The tests that failed inside one test program, or the one that was running when it ended."""
    failed = re.findall(r"^\[  FAILED  \] ([\w./]+)(?:, where .*)? \(\d+ ms\)$", output, re.M)
    begun = re.findall(r"^\[ RUN      \] (\S+)$", output, re.M)
    ended = re.findall(r"^\[ +(?:OK|FAILED|SKIPPED) +\] ([\w./]+)", output, re.M)
    return failed + [name for name in begun if name not in ended]


def failed_cases(results):
    """The failed tests. If there are none, those that could not begin because their programs are missing."""
    cases = list(ElementTree.parse(results).iter("testcase"))
    return ([case for case in cases if case.get("status") == "fail"] or
            [case for case in cases if case.get("status") == "notrun"])


def commands(folder):
    results = folder / "tests.xml"
    if not results.exists():
        yield f"ctest --test-dir {folder}"
        return
    for case in failed_cases(results):
        test = case.get("name")
        part = re.fullmatch(r"(\w+)\.\d+", test)  # of a test program that runs in parts
        names = names_of(case.findtext("system-out") or "") if part else []
        for name in names:
            yield f"{folder}/tests/kelvora_{part[1]}_tests --gtest_filter='{name}'"
        if not names:
            yield f"ctest --test-dir {folder} -R '^{re.escape(test)}$' -V"


def main():
    failed = list(commands(Path(sys.argv[1])))
    for command in failed[:MAXIMUM]:
        print("  " + command)
    if len(failed) > MAXIMUM:
        print(f"  and {len(failed) - MAXIMUM} more")


if __name__ == "__main__":
    main()
