"""Runs programs of the Windows build in Wine. Each client has a registry of its own, as other clients have a folder for
their settings. The other programs of a script share a prefix. "wine.py start" keeps Wine's own programs running in the
prefix of programs that no script starts, until "wine.py end"."""

import atexit
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[2]
RUN = str(PROJECT / "tools" / "wine.sh")
DOTS_PER_INCH = 96  # at scale 1
TEMPLATE = PROJECT / "build" / "windows" / "wine"


def command(program, *arguments):
    """The command that starts a program, in Wine if it is one for Windows."""
    return [RUN, program, *arguments] if is_for_windows(program) else [program, *arguments]


def is_for_windows(program):
    return program.endswith(".exe")


def run(program, *arguments, environment=None):
    """Runs a program to its end. Returns its status, output and errors. The errors go through a file: Wine's own
    programs keep the error stream of the program that starts them, so a pipe may stay open after it."""
    with tempfile.TemporaryFile("w+") as errors:
        done = subprocess.run(command(program, *arguments), env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=errors, text=True, timeout=60, check=False)
        errors.seek(0)
        return done.returncode, done.stdout, errors.read()


def prefix_in(folder, scale=1):
    """The prefix of the programs whose settings are in this folder. A new one shares the system's files with the
    template, but neither its registry nor its users. `scale` is that of its screen."""
    prefix = pathlib.Path(folder) / "wine"
    if not prefix.exists():
        if not (TEMPLATE / "fresh").exists():
            environment = {name: value for name, value in os.environ.items() if name != "WINEPREFIX"}
            subprocess.run([RUN, "cmd", "/c", "exit"], env=environment, stdin=subprocess.DEVNULL, check=True)
        shutil.copytree(TEMPLATE / "fresh", prefix, symlinks=True)
        registry = prefix / "user.reg"
        dots = b'"LogPixels"=dword:%08x\n' % round(DOTS_PER_INCH * scale)
        registry.write_bytes(re.sub(rb"(?m)^\[Control Panel\\\\Desktop\].*\n(#.*\n)?", lambda found: found[0] + dots,
                                    registry.read_bytes()))
    return str(prefix)


def use_own_prefix():
    """Gives the script a prefix of its own until it ends. When a program with connections ends, the server of Wine 8
    sometimes fails an assertion and aborts, and all other programs of its prefix are lost with it."""
    folder = tempfile.TemporaryDirectory(prefix="kelvora-wine-", ignore_cleanup_errors=True)
    prefix = os.environ["WINEPREFIX"] = prefix_in(folder.name)
    atexit.register(folder.cleanup)
    atexit.register(end, prefix)


def frame(scale):
    """Border and title of a window that can be resized, in pixels of a screen with this scale."""
    line, border = round(scale), 3
    return border + line, border + line + round(18 * scale) + 1


def setting(prefix, section, key):
    """The text of a setting in the prefix's registry, or None."""
    found = run("reg.exe", "query", rf"HKCU\Software\kelvora\{section}", "/v", key,
                environment=dict(os.environ, WINEPREFIX=prefix))[1]
    value = re.search(rf"(?m)^\s*{re.escape(key)}\s+REG_SZ\s+(.*?)\r?$", found)
    return value and value[1]


def run_quietly(*command, prefix, check=False):
    subprocess.run(command, env=dict(os.environ, WINEPREFIX=str(prefix)), stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=check)


def processes_in(prefix):
    """The processes that run in a prefix."""
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            variables = (process / "environ").read_bytes().split(b"\0")
        except OSError:
            continue  # has ended, or is another user's
        if f"WINEPREFIX={prefix}".encode() in variables:
            yield int(process.name)


def end(prefix):
    """Ends what still runs in the prefix, and waits until its registry is saved."""
    for option in ("-k", "-w"):
        run_quietly("wineserver", option, prefix=prefix)
    # Some of Wine's own programs don't notice that the server has ended, and would wait for it forever.
    for process in processes_in(prefix):
        if process != os.getpid():
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)


def start():
    """Starts Wine's own programs in the template, where they stay until its end. Otherwise the first program there
    starts them again whenever none is left, and everyone who reads its errors waits for them, too."""
    run_quietly(RUN, "cmd", "/c", "exit", prefix=TEMPLATE, check=True)  # creates the template
    end(TEMPLATE)
    run_quietly("wineserver", "-p", prefix=TEMPLATE, check=True)
    run_quietly(RUN, "cmd", "/c", "exit", prefix=TEMPLATE, check=True)


if __name__ == "__main__":
    {"start": start, "end": lambda: end(TEMPLATE)}[sys.argv[1]]()
