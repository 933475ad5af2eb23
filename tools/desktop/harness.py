"""Shared by everything that drives the real programs: their paths, waiting and closing. Everything stays on this
machine, and everything started is stopped."""

import atexit
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time

import wine

PROJECT = pathlib.Path(__file__).resolve().parents[2]
CLIENT = os.environ.get("KELVORA_CLIENT")
# The second client of a game of two. It may be the build of another system.
OTHER_CLIENT = os.environ.get("KELVORA_OTHER_CLIENT", CLIENT)
SERVER = os.environ.get("KELVORA_SERVER")
VERSION = re.search(r"project\(kelvora VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text())[1]
TITLE = f"Kelvora v{VERSION}"
TWIPS = 15  # per pixel
# The update check at every start connects to a port of this machine without a listener.
CLOSED_PORT = "127.0.0.1:9"
CLIENT_AREA = (894, 670)  # pixels of the main window below its menu, as designed
# The part of the client area outside the canvas, in pixels, at any window size.
BESIDE_CANVAS = (131, 62)

# Wine's frames of dialogs are a pixel thinner than those of windows that can be resized, whatever the window manager
# draws. So dialogs are this many pixels from where they would be.
DIALOG_SHIFT = -1 if CLIENT and wine.is_for_windows(CLIENT) else 0

# Timeout in seconds for things that happen at once on an idle machine. Nothing waits longer than necessary.
PATIENCE = 60.0


def program_in(folder, name):
    """The path of a program in a build folder. Those for Windows have an ending."""
    program = (pathlib.Path(folder) / name).resolve()
    return str(program if program.exists() else program.with_name(name + ".exe"))


def use_build(folder):
    """Uses the programs of this build folder, whatever the environment says."""
    global CLIENT, SERVER
    CLIENT, SERVER = (program_in(folder, name) for name in ("kelvora", "kelvora-server"))
    load_protocol()


def load_protocol():
    """Loads the message ids, which the build writes beside its programs."""
    global protocol
    program = CLIENT or SERVER
    sys.path.insert(0, str(pathlib.Path(program).resolve().parent / "generated"))
    try:
        import protocol
    except ModuleNotFoundError:
        sys.exit(f"The message ids for Python are missing beside {program}. Build them: cmake --build --preset release")


if CLIENT or SERVER:
    load_protocol()
if SERVER and wine.is_for_windows(SERVER):
    wine.use_own_prefix()


# Everything open, in order. It is closed even if the script is interrupted.
opened = []
signal.signal(signal.SIGTERM, signal.default_int_handler)


def take_out(program):
    """Takes it out of what is open. Returns False if it has been closed before."""
    if program not in opened:
        return False
    opened.remove(program)
    return True


@atexit.register
def close_all():
    while opened:
        opened[-1].close()


def stacks():
    """Where every thread of the open programs is, and of Wine's own in their prefixes. Nothing without gdb."""
    if not shutil.which("gdb"):
        return ""
    processes = set()
    for program in opened:
        if hasattr(program, "process") and program.process.poll() is None:
            processes.add(program.process.pid)
        if getattr(program, "prefix", None):
            processes.update(wine.processes_in(program.prefix))
    found = ""
    for process in sorted(processes):
        with contextlib.suppress(subprocess.TimeoutExpired):
            found += subprocess.run(["gdb", "-p", str(process), "-batch", "-ex", "thread apply all backtrace"],
                                    capture_output=True, text=True, errors="replace", timeout=PATIENCE,
                                    check=False).stdout
    return found


def wait_for(condition, what, seconds=PATIENCE, pause=0.02):
    """Waits for the first true result of `condition`. Fails the test if there is none in time. `what` names it, and may
    be a function that does."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds} s: {what() if callable(what) else what}")
        time.sleep(pause)


def wait_until_it_holds(assertion, seconds=PATIENCE, pause=0.02):
    """Waits until `assertion` passes. If it doesn't in time, fails the test with its last failure."""
    deadline = time.monotonic() + seconds
    while True:
        try:
            return assertion()
        except AssertionError:
            if time.monotonic() > deadline:
                raise
        time.sleep(pause)


def wait_for_rest(look, what, looks=5):
    """Waits until `look` has returned the same result this many times in a row, and returns it."""
    seen = []

    def is_at_rest():
        seen.append(look())
        return len(seen) >= looks and all(one == seen[-1] for one in seen[-looks:])
    wait_for(is_at_rest, f"{what} at rest")
    return seen[-1]


def stop(process):
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
