#!/usr/bin/env python3
"""Measures how long ./check takes, in clones of the last commit that begin with an empty compiler cache.

    bench/check_figures.py

Prints minutes. In one clone, ./check runs first, again, and after a change of each of some sources. In a second clone,
./check linux runs. Takes an hour on a machine that should be otherwise idle.
Packages that are missing are installed beforehand. The output of ./check goes to standard error. If one fails, the
script ends with status 1.
"""

import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
SOURCES = {"a test": "tails_test.cpp", "the windows of Windows": "labelPeer.cpp", "the page": "webGrid.cpp",
           "the game": "tails.cpp"}
# Changes every program that the source is linked into.
CHANGE = "\nstatic volatile int checkFigure = 0;\n[[maybe_unused]] static const int checkFigures = checkFigure;\n"
INSTALL = "source tools/common.sh; install_packages $linux_check_packages $web_check_packages $windows_check_packages"


def clone(folder):
    """A new clone below the folder, and variables for an empty compiler cache."""
    subprocess.run(["git", "clone", "-q", PROJECT, folder / "kelvora"], check=True)
    return folder / "kelvora", dict(os.environ, CCACHE_DIR=str(folder / "ccache"))


def change(name, project):
    """Changes the source of this name."""
    [path] = project.rglob(name)
    path.write_text(path.read_text() + CHANGE)


def minutes(what, project, environment, *words):
    """Runs ./check with these words and prints how long it took."""
    begin = time.monotonic()
    subprocess.run(["./check", *words], cwd=project, env=environment, stdin=subprocess.DEVNULL, stdout=sys.stderr,
                   check=True)
    print(f"{what}: {(time.monotonic() - begin) / 60:.2f} min", flush=True)


def main():
    subprocess.run(["bash", "-c", INSTALL], cwd=PROJECT, check=True)
    with tempfile.TemporaryDirectory(prefix="kelvora-check-") as folder:
        project, environment = clone(Path(folder))
        minutes("all systems", project, environment)
        minutes("again", project, environment)
        for part, name in SOURCES.items():
            change(name, project)
            minutes(f"after a change of {part}", project, environment)
    with tempfile.TemporaryDirectory(prefix="kelvora-check-") as folder:
        minutes("linux", *clone(Path(folder)), "linux")


if __name__ == "__main__":
    main()
