#!/usr/bin/env python3
"""tests/run_tests.py BUILD_FOLDER JOBS [--all]: runs the tests of a build with ctest, except those that have passed and
whose inputs are the same since. --all runs these, too. Those with the label "random" always run.

A test's inputs are its command and environment, the programs, files and folders that these name, the installed
packages, and what it reads of the project's files that are not compiled. All tests read tests/ without its scripts, and
what programs load: assets/, sounds/ and kelvora.jpg. A test also reads whatever its text names: another file of its
folder, a file or folder beside tests/, or a program beside one of its programs. The text of a script's test is its
command, its environment, the script, and the files of its folder that the script names. The text of a program's test
has all files of its folder. Tests with the label "project" read everything, and so do those whose folder is unknown.
BUILD_FOLDER/passed.json has a hash of each passed test's inputs. ctest writes its results to tests.xml.
"""
import argparse
import functools
import hashlib
import json
import os
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
PACKAGES = Path("/var/lib/dpkg/status")
COMPILED = (".cpp", ".h")
READ_BY_ALL = ("tests", "assets", "sounds", "kelvora.jpg")


@functools.cache
def hash_of(path):
    """The hash of a file."""
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def hash_of_all(files):
    text = "\n".join(f"{path} {hash_of(path)}" for path in sorted(files))
    return hashlib.sha256(text.encode()).hexdigest()


def is_generated(name):
    return name.startswith(("build", ".git", "__pycache__"))


def files_below(folder):
    for place, folders, names in os.walk(folder):
        folders[:] = [name for name in folders if not is_generated(name)]
        yield from (path for path in (Path(place, name) for name in names) if path.is_file())


@functools.cache
def text_of(path):
    return path.read_text(encoding="utf-8", errors="replace")


@functools.cache
def is_named(name, text):
    """True if the text has the name as a whole. The compiler's includes don't count."""
    return name in text and bool(re.search(rf'(?<![\w-])(?<!#include "){re.escape(name)}(?![\w-])', text))


@functools.cache
def sources_of(folder, words):
    """The files of a test's folder that its text consists of."""
    files = {path.stem if path.suffix == ".py" else path.name: path for path in folder.iterdir() if path.is_file()}
    found = {name for name in files if name in words} or set(files)
    while new := {name for name, path in files.items() if name not in found
                  and any(is_named(name, text_of(files[other])) for other in found)}:
        found |= new
    return [files[name] for name in sorted(found)]


@functools.cache
def hash_of_entry(path, with_sources):
    """The hash of a file or folder of the project. Of tests, without the scripts: each belongs to some."""
    def is_read(file):
        is_script = file.suffix == ".py" and file.is_relative_to(PROJECT / "tests")
        return with_sources or not is_script and file.suffix not in COMPILED

    return hash_of_all(filter(is_read, files_below(path) if path.is_dir() else [path]))


def read_by(text, reads_everything):
    """The project's files and folders that a test with this text reads, with their hashes."""
    return [(path.name, hash_of_entry(path, reads_everything)) for path in sorted(PROJECT.iterdir())
            if not is_generated(path.name)
            and (reads_everything or path.name in READ_BY_ALL or is_named(path.name, text))]


@functools.cache
def programs_beside(program, text):
    """The hash of a program in a build's folder, of those beside it that the text names, of the modules that they load,
    and of their message ids for Python."""
    folder = program.parent
    programs = [path for path in folder.iterdir() if path.is_file() and os.access(path, os.X_OK)
                and (path == program or is_named(path.stem, text))]
    return hash_of_all(programs + list(folder.glob("lib*/**/*.so")) + list((folder / "generated").glob("*.py")))


@functools.cache
def named_by(word, text):
    """The hash of the file or folder that a word of a command, or the value of a variable, names."""
    path = Path(word)
    if not path.is_absolute() or not path.exists():
        return None
    if path.is_dir():
        return hash_of_all(files_below(path))
    if (path.parent / "CMakeCache.txt").exists():
        return programs_beside(path, text)
    return hash_of_all([path, *path.parent.glob(f"{path.stem}.wasm")])


def properties_of(test):
    return {entry["name"]: entry["value"] for entry in test.get("properties", [])}


def folder_of(properties, build):
    """The folder of the CMakeLists.txt that adds the test. A program of it runs in the folder's twin of the build."""
    place = Path(properties.get("WORKING_DIRECTORY", build))
    return PROJECT / place.relative_to(build) if place.is_relative_to(build) else place


def inputs_of(test, build):
    properties = properties_of(test)
    labels, variables = properties.get("LABELS", []), sorted(properties.get("ENVIRONMENT", []))
    if "random" in labels:
        return None
    command = test.get("command", [])  # none if it has not been built
    words = command + [variable.partition("=")[2] for variable in variables]
    words += properties.get("REQUIRED_FILES", [])
    folder = folder_of(properties, build)
    is_known = folder != PROJECT and folder.is_relative_to(PROJECT / "tests") and folder.is_dir()
    sources = sources_of(folder, tuple(command)) if is_known else []
    # Files among the words are inputs by themselves.
    text = "\n".join([word for word in words if not Path(word).is_file()] + [text_of(path) for path in sources])
    inputs = [command, variables, [named_by(word, text) for word in words],
              hash_of_all(path for path in sources if path.suffix == ".py"),
              read_by(text, "project" in labels or not is_known),
              hash_of(PACKAGES) if PACKAGES.exists() else None,
              sorted(pair for pair in os.environ.items() if pair[0].startswith("KELVORA_"))]
    return hashlib.sha256(json.dumps(inputs).encode()).hexdigest()


def listed(build):
    """The build's tests by name: the number and the inputs of each."""
    listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=False, stdout=subprocess.PIPE)
    if listing.returncode:
        sys.exit(f"ctest could not list the tests of {build}.")
    # ctest adds fixtures to the tests that need them.
    return {test["name"]: (number, inputs_of(test, build))
            for number, test in enumerate(json.loads(listing.stdout)["tests"], 1)
            if not {"FIXTURES_SETUP", "FIXTURES_CLEANUP"} & properties_of(test).keys()}


def passed_before(record, tests):
    """The tests that have passed on the same inputs, with these. Empty if the record is missing or damaged."""
    try:
        passed = json.loads(record.read_text())
    except (OSError, ValueError):
        return {}
    known = passed.items() if isinstance(passed, dict) else ()
    return {name: inputs for name, inputs in known if inputs and tests.get(name, (0, None))[1] == inputs}


def parse_arguments():
    parser = argparse.ArgumentParser(prog="tests/run_tests.py", description="Runs the tests of a build with ctest.")
    parser.add_argument("build", metavar="BUILD_FOLDER", type=Path, help="such as build/debug")
    parser.add_argument("jobs", metavar="JOBS", type=int, help="number of tests at a time")
    parser.add_argument("--all", action="store_true", help="also run those that have passed on the same inputs")
    arguments = parser.parse_args()
    if not arguments.build.is_dir():
        parser.error(f"there is no folder {arguments.build}")
    if arguments.jobs < 1:
        parser.error("JOBS must be at least 1")
    return arguments


def main():
    arguments = parse_arguments()
    build = arguments.build.resolve()
    record, results = build / "passed.json", build / "tests.xml"
    results.unlink(missing_ok=True)
    tests = listed(build)
    if not tests:
        sys.exit(f"{arguments.build} has no tests. Configure the build with -DKELVORA_TESTS=ON, then build it.")
    passed = {} if arguments.all else passed_before(record, tests)
    numbers = [str(number) for name, (number, _) in tests.items() if name not in passed]
    print(f"{len(passed)} of {len(tests)} tests have passed on the same inputs before", flush=True)
    record.write_text(json.dumps(passed))
    if not numbers:
        return 0
    status = subprocess.run(["ctest", "--test-dir", build, "-j", str(arguments.jobs), "--timeout", "900",
                             "--output-on-failure", "--output-junit", results,
                             "-I", f"{numbers[0]},{numbers[0]},1,{','.join(numbers)}"], check=False).returncode
    cases = ElementTree.parse(results).iter("testcase") if results.exists() else ()
    for case in cases:
        inputs = tests.get(case.get("name"), (0, None))[1]
        if case.get("status") == "run" and inputs:
            passed[case.get("name")] = inputs
    record.write_text(json.dumps(passed))
    return status


if __name__ == "__main__":
    sys.exit(main())
