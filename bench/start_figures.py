#!/usr/bin/env python3
"""What the whole program costs, on a virtual display of its own.

    bench/start_figures.py build/release [--runs 9] [--seconds 5]

Start and memory stand beside an empty window of Qt Widgets (kelvora_empty_window), both started in turn, medians of the
runs. Then the processor's time of a client that is not connected; of a connected one at the pace of the game (10 ms a
pass), in sight, covered and minimised; the length of an unpaced pass; and the time from a move of the mouse to the
first position report that has turned. It ends by itself and takes what it has started with it.
"""

import argparse
import os
import signal
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path, help="the folder of a release build")
    parser.add_argument("--runs", type=int, default=9, help="starts of each program")
    parser.add_argument("--seconds", type=float, default=5, help="length of each measurement of processor time")
    return parser.parse_args()


OPTIONS = arguments()
os.environ["KELVORA_CLIENT"] = str((OPTIONS.build / "kelvora").resolve())
os.environ["KELVORA_SERVER"] = str((OPTIONS.build / "kelvora-server").resolve())
sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests" / "desktop"))
sys.dont_write_bytecode = True
import harness  # noqa: E402  (needs the two variables)


class WindowWatch:
    """Tells the moment at which the window manager takes a window in."""

    def __init__(self, display):
        self.process = subprocess.Popen(["xprop", "-spy", "-root", "_NET_CLIENT_LIST"], env=display.environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.process.stdout.readline()

    def next_window(self):
        while "0x" not in self.process.stdout.readline():
            pass
        return time.monotonic()

    def close(self):
        harness.stop(self.process)
        self.process.stdout.close()


def memory(pid):
    """Megabytes: in memory at all, and the part of it that is the process's own share (PSS)."""
    figures = {}
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
        name, value = line.split()[:2]
        figures[name] = int(value) / 1024
    return figures["Rss:"], figures["Pss:"]


def processor_seconds(pid):
    """Of all threads, in nanoseconds' steps."""
    return sum(int(Path(f"/proc/{pid}/task/{task}/schedstat").read_text().split()[0])
               for task in os.listdir(f"/proc/{pid}/task")) / 1e9


def start_once(display, command):
    """Seconds to the window, RSS and PSS half a second later, processor seconds until then."""
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(display.environment, XDG_CONFIG_HOME=folder, HOME=folder, QT_QPA_PLATFORM="xcb",
                           SDL_AUDIODRIVER="dummy", KELVORA_WEB_HOST=harness.CLOSED_PORT, KELVORA_FRAME_MS="10")
        watch = WindowWatch(display)
        begin = time.monotonic()
        process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        try:
            shown = watch.next_window() - begin
            time.sleep(0.5)
            return (shown, *memory(process.pid), processor_seconds(process.pid))
        finally:
            harness.stop(process)
            watch.close()
            time.sleep(0.2)


def starts(display):
    commands = {"kelvora": [os.environ["KELVORA_CLIENT"]],
                "without sound": [os.environ["KELVORA_CLIENT"], "nosound", "nomusic"],
                "empty window": [str((OPTIONS.build / "kelvora_empty_window").resolve())]}
    results = {name: [] for name in commands}
    for command in commands.values():
        start_once(display, command)  # what the disk has to give is in memory from here on
    for _ in range(OPTIONS.runs):
        for name, command in commands.items():
            results[name].append(start_once(display, command))
    medians = {name: [statistics.median(column) for column in zip(*rows)] for name, rows in results.items()}
    floor = medians["empty window"]
    print(f"{'':16}{'window ms':>12}{'RSS MB':>10}{'PSS MB':>10}{'start CPU ms':>14}")
    for name, (shown, rss, pss, cpu) in medians.items():
        print(f"{name:16}{shown * 1000:12.0f}{rss:10.1f}{pss:10.1f}{cpu * 1000:14.0f}"
              f"   ratios {shown / floor[0]:.2f} {rss / floor[1]:.2f} {pss / floor[2]:.2f} {cpu / floor[3]:.2f}")


def share(client):
    """Percent of one core over the measuring time."""
    begin, cpu = time.monotonic(), processor_seconds(client.process.pid)
    time.sleep(OPTIONS.seconds)
    return (processor_seconds(client.process.pid) - cpu) / (time.monotonic() - begin) * 100


def log_in(display, **options):
    client = harness.Client(display, **options)
    server = harness.ScriptedServer()
    client.connect(server.port)
    line = server.accept()
    line.recv_frame()
    line.send(harness.LOGIN_ACCEPTED, 0, 7, 50000, 50000)
    line.send(harness.PING, 1)
    line.report()
    return client, server, line


def reports_during(line, seconds):
    return sum(identifier == harness.POSITION_REPORT for identifier, _ in line.frames_during(seconds))


def idle(display):
    client = harness.Client(display)
    time.sleep(2)
    print(f"not connected:   {share(client):.3f} % of a core")
    client.close()


def paced(display):
    client, server, line = log_in(display)
    client.mouse_to(386, 308)
    client.right_click()
    time.sleep(1)
    print(f"connected, paced, in sight:  {share(client):.1f} % of a core")
    over = subprocess.Popen([str((OPTIONS.build / "kelvora_empty_window").resolve()), "-geometry", "1270x1000+0+0"],
                            env=dict(display.environment, QT_QPA_PLATFORM="xcb"), stdin=subprocess.DEVNULL,
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(2)
    print(f"connected, paced, covered:   {share(client):.1f} % of a core")
    harness.stop(over)
    display.xdotool("windowminimize", client.window.identifier)
    time.sleep(1)
    print(f"connected, paced, minimised: {share(client):.1f} % of a core")
    line.close()
    client.close()
    server.close()


def latency(display):
    """The ball flies towards the mouse; the mouse jumps to the other side."""
    client, server, line = log_in(display)
    client.mouse_to(700, 300)
    client.right_click()
    times = []
    side = 1
    for _ in range(15):
        time.sleep(0.3)
        line.frames_during(0.05)
        side = -side
        before = line.report()
        client.mouse_to(380 + side * 320, 300)
        moved = time.monotonic()
        while True:
            place = line.report()
            if (place[0] - before[0]) * side > 0:
                break
            before = place
        times.append((time.monotonic() - moved) * 1000)
    print(f"mouse to report: {statistics.median(times):.0f} ms at 10 ms a pass and 4 passes a report "
          f"({min(times):.0f} to {max(times):.0f})")
    line.close()
    client.close()
    server.close()


def unpaced(display):
    client, server, line = log_in(display, frame_ms=None)
    client.mouse_to(386, 308)
    client.right_click()
    time.sleep(1)
    line.frames_during(0.2)
    begin = time.monotonic()
    count = reports_during(line, OPTIONS.seconds)
    seconds = time.monotonic() - begin
    if count:
        print(f"unpaced: {seconds / count / 4 * 1e6:.0f} us a pass, painted and shown ({count * 4 / seconds:.0f} a second)")
    line.close()
    client.close()
    server.close()


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    display = harness.Display()
    try:
        starts(display)
        idle(display)
        paced(display)
        latency(display)
        unpaced(display)
    finally:
        display.close()


if __name__ == "__main__":
    main()
