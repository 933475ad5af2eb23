#!/usr/bin/env python3
"""tests/run_tests.py BUILD_FOLDER JOBS [--all]: runs the tests of a build with ctest, except those that have passed and
whose inputs are the same since. --all runs these, too. Those with the label "random" always run.

A test's inputs are its command and environment, the programs, files and folders that these name, the project's files
that are not compiled, and the installed packages. Scripts in tests are inputs of the tests in their folder. Those in
tests/project read everything.
BUILD_FOLDER/passed.json has a hash of each passed test's inputs. ctest writes its results to tests.xml.
"""
import functools
import hashlib
import json
import os
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
PACKAGES = Path("/var/lib/dpkg/status")
COMPILED = (".cpp", ".h")


@functools.cache
def hash_of(path):
    """The hash of a file."""
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def hash_of_all(files):
    text = "\n".join(f"{path} {hash_of(path)}" for path in sorted(files))
    return hashlib.sha256(text.encode()).hexdigest()


def files_below(folder):
    return [Path(place, name) for place, _, names in os.walk(folder) for name in names if not name.endswith(".pyc")]


@functools.cache
def project_files(with_sources, script_folder):
    """The hash of the project's files. Of the scripts in tests, only those in one folder."""
    def is_read(path):
        if path.suffix == ".py" and path.is_relative_to(PROJECT / "tests"):
            return with_sources or path.parent == script_folder
        return with_sources or path.suffix not in COMPILED

    files = []
    for place, folders, names in os.walk(PROJECT):
        folders[:] = [name for name in folders if not name.startswith(("build", ".git", "__pycache__"))]
        files += [path for path in (Path(place, name) for name in names) if is_read(path) and path.is_file()]
    return hash_of_all(files)


@functools.cache
def programs_beside(folder):
    """The hash of the programs in a build's folder, of the modules that they load, and of their message ids for Python.
    A script that is told of one program uses the others, too. Their zip and installer are made from them and the
    project's files."""
    programs = [path for path in folder.iterdir() if path.is_file() and os.access(path, os.X_OK)]
    return hash_of_all(programs + list(folder.glob("lib*/**/*.so")) + list((folder / "generated").glob("*.py")))


@functools.cache
def named_by(word):
    """The hash of what a word of a command, or the value of a variable, names; None for the project's folders."""
    path = Path(word)
    if not path.is_absolute() or not path.exists():
        return None
    if path.is_dir():
        is_sources = path.is_relative_to(PROJECT) and not path.is_relative_to(PROJECT / "build")
        return None if is_sources else hash_of_all(files_below(path))
    if (path.parent / "CMakeCache.txt").exists():
        return programs_beside(path.parent)
    return hash_of_all([path, *path.parent.glob(f"{path.stem}.wasm")])


def properties_of(test):
    return {entry["name"]: entry["value"] for entry in test.get("properties", [])}


def inputs_of(test):
    properties = properties_of(test)
    variables = sorted(properties.get("ENVIRONMENT", []))
    if "random" in properties.get("LABELS", []):
        return None
    command = test.get("command", [])  # none if it has not been built
    words = command + [variable.partition("=")[2] for variable in variables]
    words += properties.get("REQUIRED_FILES", [])
    inputs = [command, variables, [named_by(word) for word in words],
              project_files("project" in properties.get("LABELS", []), Path(properties.get("WORKING_DIRECTORY", ""))),
              hash_of(PACKAGES) if PACKAGES.exists() else None,
              sorted(pair for pair in os.environ.items() if pair[0].startswith("KELVORA_"))]
    return hashlib.sha256(json.dumps(inputs).encode()).hexdigest()


def listed(build):
    """The build's tests by name: the number and the inputs of each."""
    listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True, capture_output=True)
    # ctest adds fixtures to the tests that need them.
    return {test["name"]: (number, inputs_of(test))
            for number, test in enumerate(json.loads(listing.stdout)["tests"], 1)
            if not {"FIXTURES_SETUP", "FIXTURES_CLEANUP"} & properties_of(test).keys()}


def passed_before(record):
    try:
        return json.loads(record.read_text())
    except (OSError, ValueError):
        return {}


def main():
    build, jobs = Path(sys.argv[1]).resolve(), sys.argv[2]
    record, results = build / "passed.json", build / "tests.xml"
    tests = listed(build)
    passed = {} if "--all" in sys.argv else passed_before(record)
    passed = {name: inputs for name, inputs in passed.items() if tests.get(name, (0, ""))[1] == inputs}
    numbers = [str(number) for name, (number, _) in tests.items() if name not in passed]
    print(f"{len(passed)} of {len(tests)} tests have passed on the same inputs before", flush=True)
    record.write_text(json.dumps(passed))
    results.unlink(missing_ok=True)
    if not numbers:
        return 0
    status = subprocess.run(["ctest", "--test-dir", build, "-j", jobs, "--timeout", "300", "--output-on-failure",
                             "--output-junit", results, "-I", f"{numbers[0]},{numbers[0]},1,{','.join(numbers)}"],
                            check=False).returncode
    cases = ElementTree.parse(results).iter("testcase") if results.exists() else ()
    for case in cases:
        inputs = tests.get(case.get("name"), (0, None))[1]
        if case.get("status") == "run" and inputs:
            passed[case.get("name")] = inputs
    record.write_text(json.dumps(passed))
    return status


if __name__ == "__main__":
    sys.exit(main())
