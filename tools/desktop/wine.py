"""Runs programs of the Windows build in Wine. Each client has a registry of its own, as other clients have a folder for
their settings."""

import os
import pathlib
import re
import shutil
import subprocess

PROJECT = pathlib.Path(__file__).resolve().parents[2]
RUN = str(PROJECT / "tools" / "wine.sh")
DOTS_PER_INCH = 96  # at scale 1
TEMPLATE = PROJECT / "build" / "windows" / "wine"


def command(program, *arguments):
    """The command that starts a program, in Wine if it is one for Windows."""
    return [RUN, program, *arguments] if is_for_windows(program) else [program, *arguments]


def is_for_windows(program):
    return program.endswith(".exe")


def prefix_in(folder, scale=1):
    """The prefix of the programs whose settings are in this folder. A new one shares the system's files with the
    template, but neither its registry nor its user. `scale` is that of its screen."""
    prefix = pathlib.Path(folder) / "wine"
    if not prefix.exists():
        if not (TEMPLATE / "new").exists():
            environment = {name: value for name, value in os.environ.items() if name != "WINEPREFIX"}
            subprocess.run([RUN, "cmd", "/c", "exit"], env=environment, stdin=subprocess.DEVNULL, check=True)
        shutil.copytree(TEMPLATE / "new", prefix)
        registry = prefix / "user.reg"
        dots = b'"LogPixels"=dword:%08x\n' % round(DOTS_PER_INCH * scale)
        registry.write_bytes(re.sub(rb"(?m)^\[Control Panel\\\\Desktop\].*\n(#.*\n)?", lambda found: found[0] + dots,
                                    registry.read_bytes()))
        shutil.copytree(TEMPLATE / "dosdevices", prefix / "dosdevices", symlinks=True)
        (prefix / "drive_c").mkdir()
        for entry in (TEMPLATE / "drive_c").iterdir():
            own = prefix / "drive_c" / entry.name
            if entry.name == "users":
                shutil.copytree(entry, own, symlinks=True)
            else:
                own.symlink_to(entry)
    return str(prefix)


def frame(scale):
    """Border and title of a window that can be resized, in pixels of a screen with this scale."""
    line, border = round(scale), 3
    return border + line, border + line + round(18 * scale) + 1


def setting(prefix, section, key):
    """The text of a setting in the prefix's registry, or None."""
    found = subprocess.run([RUN, "reg", "query", rf"HKCU\Software\kelvora\{section}", "/v", key],
                           env=dict(os.environ, WINEPREFIX=prefix), stdin=subprocess.DEVNULL, capture_output=True,
                           text=True, check=False).stdout
    value = re.search(rf"(?m)^\s*{re.escape(key)}\s+REG_SZ\s+(.*?)\r?$", found)
    return value and value[1]


def end(prefix):
    """Ends what still runs in the prefix, and waits until its registry is saved."""
    for option in ("-k", "-w"):
        subprocess.run(["wineserver", option], env=dict(os.environ, WINEPREFIX=prefix), stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
