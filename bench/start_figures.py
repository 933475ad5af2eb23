#!/usr/bin/env python3
"""Measures the whole program on its own virtual display.

    bench/start_figures.py build/release [--runs 9] [--seconds 5]

Start and memory are compared with an empty Qt Widgets window (kelvora_empty_window), both started in turn, medians of
the runs. Then come the processor time and wake-ups of a disconnected client, and of a connected one at the game's pace
(10 ms per pass) while visible, covered and minimised, and with six long tails in sight; the latency from a jump of the
mouse to its picture on the screen and to the first position report that includes the turn; and the length of an unpaced
pass. The script ends by itself and stops everything it has started.

With build/windows, it only compares start and memory, in Wine, with an empty window of the system's own. Build that
first: cmake --build --preset windows --target kelvora_empty_window
"""

import argparse
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tools" / "desktop"))
sys.dont_write_bytecode = True
import harness  # noqa: E402  (found by the line above)
import wine  # noqa: E402
from direct_screen import DirectScreen  # noqa: E402
from process_figures import memory, processor_seconds  # noqa: E402


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path, help="the folder of a release build")
    parser.add_argument("--runs", type=int, default=9, help="starts of each program")
    parser.add_argument("--seconds", type=float, default=5, help="length of each measurement of processor time")
    return parser.parse_args()


OPTIONS = arguments()
harness.use_build(OPTIONS.build)
from client import Client  # noqa: E402  (needs the build)
from display import on_display  # noqa: E402
from scripted_scene import LongTails, log_in  # noqa: E402
EMPTY_WINDOW = harness.program_in(OPTIONS.build, "kelvora_empty_window")


class WindowWatch:
    """Records when the window manager adopts a window."""

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


def start_once(display, command):
    """Seconds to the window; processor seconds of all threads until then; RSS and PSS some seconds later; processor
    seconds of the whole start."""
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(display.environment, XDG_CONFIG_HOME=folder, HOME=folder, QT_QPA_PLATFORM="xcb",
                           SDL_AUDIODRIVER="dummy", KELVORA_WEB_HOST=harness.CLOSED_PORT, KELVORA_FRAME_MS="10")
        watch = WindowWatch(display)
        begin = time.monotonic()
        process = subprocess.Popen(wine.command(*command), env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            shown = watch.next_window() - begin
            to_window = processor_seconds(process.pid)
            time.sleep(2.5)  # the sound starts after the window
            megabytes = (kibibytes / 1024 for kibibytes in memory(process.pid))
            return (shown, to_window, *megabytes, processor_seconds(process.pid))
        finally:
            harness.stop(process)
            watch.close()
            time.sleep(0.5)


def starts(display):
    commands = {"kelvora": [harness.CLIENT],
                "without sound": [harness.CLIENT, "nosound", "nomusic"],
                "empty window": [EMPTY_WINDOW]}
    results = {name: [] for name in commands}
    for command in commands.values():
        start_once(display, command)  # from here on, the files are cached
    for _ in range(OPTIONS.runs):
        for name, command in commands.items():
            results[name].append(start_once(display, command))
    medians = {name: [statistics.median(column) for column in zip(*rows)] for name, rows in results.items()}
    floor = medians["empty window"]
    print(f"{'':16}{'window ms':>12}{'CPU to it ms':>14}{'RSS MB':>10}{'PSS MB':>10}{'start CPU ms':>14}")
    for name, row in medians.items():
        shown, to_window, rss, pss, cpu = row
        ratios = " ".join(f"{value / least:.2f}" for value, least in zip(row, floor))
        print(f"{name:16}{shown * 1000:12.0f}{to_window * 1000:14.0f}{rss:10.1f}{pss:10.1f}{cpu * 1000:14.0f}   "
              f"ratios {ratios}")


def wake_ups(pid):
    """The number of times the process's threads have waited so far."""
    status = (Path(f"/proc/{pid}/task/{task}/status").read_text() for task in os.listdir(f"/proc/{pid}/task"))
    return sum(int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", text, re.M)[1]) for text in status)


def cost(pid, seconds=None):
    """Percent of one core and wake-ups per second during the measurement."""
    begin, cpu, waits = time.monotonic(), processor_seconds(pid), wake_ups(pid)
    time.sleep(seconds or OPTIONS.seconds)
    length = time.monotonic() - begin
    return (processor_seconds(pid) - cpu) / length * 100, (wake_ups(pid) - waits) / length


def share(client):
    return cost(client.process.pid)[0]


def reports_during(line, seconds):
    return sum(identifier == harness.protocol.POSITION_REPORT for identifier, _ in line.frames_during(seconds))


def idle(display):
    """Measures a disconnected client. A focused field has the toolkit's blinking caret, so the client is compared with
    an empty window, with and without the focus. A sound device that plays must be fed."""
    seconds = max(20, OPTIONS.seconds)
    client = Client(display)
    time.sleep(2)

    def tell(what, pid):
        percent, waits = cost(pid, seconds)
        print(f"{what:48}{percent:8.4f} % of a core {waits:6.2f} wake-ups a second")

    tell("not connected, caret in the connect dialog:", client.process.pid)
    field = subprocess.Popen([EMPTY_WINDOW, "field"],
                             env=dict(display.environment, QT_QPA_PLATFORM="xcb"), stdin=subprocess.DEVNULL,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(2)
    tell("an empty window with a caret:", field.pid)
    harness.stop(field)
    empty = subprocess.Popen([EMPTY_WINDOW, "-geometry", "100x100+1100+850"],
                             env=dict(display.environment, QT_QPA_PLATFORM="xcb"), stdin=subprocess.DEVNULL,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(2)
    tell("not connected, in sight, without the focus:", client.process.pid)
    tell("an empty window:", empty.pid)
    display.xdotool("windowminimize", client.window.identifier)
    time.sleep(1)
    tell("not connected, minimised:", client.process.pid)
    harness.stop(empty)
    client.close()
    for what, words in (("effects on", ("nomusic",)), ("effects and music on", ())):
        client = Client(display, arguments=words)
        client.wait_for_window("Connect")  # otherwise it opens over the minimised window, and has a caret
        display.xdotool("windowminimize", client.window.identifier)
        time.sleep(3)
        tell(f"not connected, minimised, {what}:", client.process.pid)
        client.close()


def paced(display):
    client, server, line = log_in(display)
    client.mouse_to(386, 308)
    client.right_click()
    time.sleep(1)
    print(f"connected, paced, in sight:  {share(client):.1f} % of a core")
    over = subprocess.Popen([EMPTY_WINDOW, "-geometry", "1270x1000+0+0"],
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
    client, server, line = log_in(display)
    tails = LongTails(line)
    time.sleep(tails.cycle)
    print(f"connected, paced, six long tails in sight: {cost(client.process.pid, 2 * tails.cycle)[0]:.1f} % of a core")
    tails.close()
    line.close()
    client.close()
    server.close()


def median_of(times):
    return f"{statistics.median(times):.0f} ms ({min(times):.0f} to {max(times):.0f})"


def latency(display):
    """Lets the ball fly towards the mouse, which jumps to the other side and back, slightly above the centre: exactly
    beside it, the ball would fly the other way. A report is sent every fourth pass."""
    client, server, line = log_in(display)
    client.mouse_to(700, 280)
    client.right_click()
    screen = DirectScreen(display)
    side, to_picture, to_report = 1, [], []
    for turn in range(60):
        time.sleep(0.25 + turn % 7 * 0.0057)  # at any moment of a pass and of the four passes of a report
        line.frames_during(0.05)
        step = abs(line.report()[0] - (before := line.report())[0])
        side = -side
        place = client.on_screen(380 + side * 320, 280)
        is_dark = screen.brightest(*place, 8) < 150  # there may be a star
        moved = screen.jump(*place)
        if turn % 2:
            if not is_dark:
                continue
            while screen.brightest(*place, 8) < 150:
                pass
            to_picture.append((time.monotonic() - moved) * 1000)
            continue
        while True:
            now = line.report()
            if (now[0] - before[0]) * -side < 0.9 * step:  # less far than four passes without a turn
                break
            before = now
        to_report.append((time.monotonic() - moved) * 1000)
    print(f"mouse to picture, on the screen:         {median_of(to_picture)} at 10 ms a pass")
    print(f"mouse to the first report with the turn: {median_of(to_report)} at 10 ms a pass and 4 passes a report")
    screen.close()
    line.close()
    client.close()
    server.close()


def unpaced(display):
    client, server, line = log_in(display, frame_ms="0")
    client.mouse_to(386, 308)
    client.right_click()
    time.sleep(1)
    line.frames_during(0.2)
    begin = time.monotonic()
    count = reports_during(line, OPTIONS.seconds)
    seconds = time.monotonic() - begin
    if count:
        print(f"unpaced: {seconds / count / 4 * 1e6:.0f} us a pass, painted and shown "
              f"({count * 4 / seconds:.0f} a second)")
    line.close()
    client.close()
    server.close()


def starts_in_wine(display):
    """Wine's own programs run already, so that only the measured program's start counts."""
    with tempfile.TemporaryDirectory() as folder:
        prefix = display.environment["WINEPREFIX"] = wine.prefix_in(folder)
        watch = WindowWatch(display)
        other = subprocess.Popen(wine.command(EMPTY_WINDOW), env=display.environment, stdin=subprocess.DEVNULL,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            watch.next_window()
            starts(display)
        finally:
            watch.close()
            harness.stop(other)
            wine.end(prefix)


def measure(display):
    if wine.is_for_windows(harness.CLIENT):
        return starts_in_wine(display)
    starts(display)
    idle(display)
    paced(display)
    latency(display)
    unpaced(display)


if __name__ == "__main__":
    on_display(measure)
