"""Runs a program in Wine with windows but without a screen: withoutScreen.py PROGRAM. Wine's null driver shows them
nowhere, but they have an order, a focus and input."""

import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "tools" / "desktop"))

import wine

with tempfile.TemporaryDirectory(prefix="kelvora-wine-") as folder:
    prefix = wine.prefix_in(folder)
    with open(pathlib.Path(prefix) / "user.reg", "a") as registry:
        registry.write('\n[Software\\\\Wine\\\\Drivers]\n"Graphics"="null"\n')
    try:
        status = subprocess.run(wine.command(*sys.argv[1:]), env=dict(os.environ, WINEPREFIX=prefix),
                                stdin=subprocess.DEVNULL, check=False).returncode
    finally:
        wine.end(prefix)
if status:
    print(f"the program ended with status {status}", flush=True)
sys.exit(status)
