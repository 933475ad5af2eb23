#!/usr/bin/env python3
"""Measures the page in headless Chromium, beside the native programs.

    bench/page_figures.py build/release [--web FOLDER] [--browser chromium] [--runs 5] [--minutes 10]

Needs the browser build, and in both builds the target kelvora_page_frames. Prints the time of whole frames in the
browser and natively, in turns; the time from the link to the connect dialog, and the bytes that are fetched until then
and before the first login, both with an empty cache; the passes per second of a page in a game of six; and the memory
of the browser's processes, beside those of an empty tab, once a minute. Stops everything it has started.
"""

import argparse
import functools
import http.server
import re
import statistics
import subprocess
import sys
import threading
import time
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(PROJECT / "tools" / "desktop"))
sys.dont_write_bytecode = True


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--browser", choices=("chromium", "firefox"), default="chromium")
    parser.add_argument("native", type=Path, help="the folder of a release build")
    parser.add_argument("--web", type=Path, help="the folder of the browser build; usually the one beside it")
    parser.add_argument("--runs", type=int, default=5, help="of each figure that is a median")
    parser.add_argument("--minutes", type=int, default=10, help="of play while memory is measured")
    options = parser.parse_args()
    options.web = options.web or options.native.resolve().parent / "web"
    return options


OPTIONS = arguments()
import harness  # noqa: E402  (found by the line above)
import process_figures  # noqa: E402
harness.use_build(OPTIONS.native)
from browser import Browser  # noqa: E402  (needs the build)
from page import Page  # noqa: E402
from protocol import PLAYER_JOINED, POSITION  # noqa: E402
from quiet_browser import QuietBrowser, QuietPage  # noqa: E402
from servers import Server  # noqa: E402
from spy import Spy  # noqa: E402

EMPTY = "about:blank"
# Notes when the connect dialog is shown, in milliseconds since the page was asked for.
WATCH = """() => {
  const look = () => {
    if (window.dialogTime || !document.querySelector('.form.dialog:not([hidden])')) return;
    requestAnimationFrame(() => { window.dialogTime = performance.now(); });
  };
  new MutationObserver(look).observe(document, {subtree: true, childList: true, attributes: true});
}"""
FETCHED = """[performance.getEntriesByType('navigation')[0], ...performance.getEntriesByType('resource')]
  .map((entry) => [new URL(entry.name).pathname, entry.transferSize])"""


class Silent(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


def frame_times(text):
    return {name: float(time_) for name, time_ in re.findall(r"(light|heavy) ([\d.]+)", text)}


def frames_in_browser(port):
    """Microseconds of a frame by scene."""
    browser = Browser(OPTIONS.browser)
    try:
        tab = browser.open(f"http://127.0.0.1:{port}/kelvora_page_frames.html", browser.visitor(), Page)
        output = "document.getElementById('output').value"
        return frame_times(harness.wait_for(lambda: "heavy" in tab.evaluate(output) and tab.evaluate(output),
                                            "the frames", seconds=180, pause=1))
    finally:
        browser.close()


def measure_frames():
    handler = functools.partial(Silent, directory=str(OPTIONS.web))
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    native, browser = [], []
    for _ in range(OPTIONS.runs):
        native.append(frame_times(subprocess.run([OPTIONS.native / "kelvora_page_frames"], stdin=subprocess.DEVNULL,
                                                 capture_output=True, text=True, check=True).stdout))
        browser.append(frames_in_browser(server.server_port))
    server.shutdown()
    for scene in "light", "heavy":
        mine, its = (min(times[scene] for times in runs) for runs in (native, browser))
        print(f"{scene} frame: {mine:.1f} us natively, {its:.1f} us in the browser, ratio {its / mine:.2f}", flush=True)


def with_page(measure, *options):
    """Runs `measure` with a server and a new browser, whose cache is empty."""
    server = Server("--site", str(OPTIONS.web / "site"), *options)
    browser = Browser(OPTIONS.browser)
    try:
        return measure(server, browser)
    finally:
        browser.close()
        server.close()


def open_page(server, browser):
    browser.wire.call("script.addPreloadScript", functionDeclaration=WATCH)
    page = browser.open(f"http://127.0.0.1:{server.port}/", browser.visitor(), Page)
    harness.wait_for(lambda: page.evaluate("window.dialogTime"), "the dialog")
    return page


def measure_start():
    def start(server, browser):
        page = open_page(server, browser)
        until_dialog = page.evaluate(FETCHED)
        page.press("Shift")  # lets the page sound, so it fetches the effects
        page.wait_for("[...sounds.values()].every((sound) => sound.buffer)")
        login = [entry for entry in page.evaluate(FETCHED) if not entry[0].endswith(".mp3")]
        return page.evaluate("window.dialogTime"), until_dialog, login
    runs = [with_page(start) for _ in range(OPTIONS.runs)]
    print(f"from the link to the dialog: {statistics.median(run[0] for run in runs):.0f} ms")
    for when, fetched in ("until the dialog", runs[0][1]), ("before the first login", runs[0][2]):
        print(f"fetched {when}: {sum(size for _, size in fetched) / 1e6:.2f} MB")
    for name, size in sorted(runs[0][2], key=lambda one: -one[1])[:6]:
        print(f"    {size / 1e3:7.0f} KB {name}")
    sys.stdout.flush()


def descendants(pid):
    """The process and all that it has started."""
    found = [pid]
    for one in found:
        for task in Path(f"/proc/{one}/task").glob("*"):
            try:
                found += [int(child) for child in (task / "children").read_text().split()]
            except OSError:
                pass
    return found


def memory(browser):
    """Megabytes of all processes of the browser, shared ones by their share."""
    total = 0
    for pid in descendants(browser.process.pid):
        try:
            total += process_figures.memory(pid)[1] / 1024
        except OSError:
            pass
    return total


def settled_memory(browser):
    time.sleep(5)
    return memory(browser)


def with_quiet_browser(measure, address):
    browser = QuietBrowser(address)
    try:
        return measure(browser)
    finally:
        browser.close()


def measure_game():
    empty = with_quiet_browser(settled_memory, EMPTY)
    print(f"memory of an empty tab: {empty:.0f} MB")
    server = Server("--site", str(OPTIONS.web / "site"), "--bots", "4", "--skill", "easy")
    try:
        with_quiet_browser(lambda browser: play(server, browser, empty), f"http://127.0.0.1:{server.port}/")
    finally:
        server.close()


def play(server, browser, empty):
    spy = Spy(server.port)
    page = QuietPage(browser)
    page.wait_for("dialog('Connect')")
    page.click_on("named('Player Name:')")
    page.type("Ann")
    page.press_button("Connect", "dialog('Connect')")
    node = spy.await_frame(PLAYER_JOINED, lambda fields: fields[2] == b"Ann")[0]
    page.wait_for_status("Connected")
    width, height = page.canvas_size()
    page.release_brakes(width / 2 + 100, height / 2 + 40)
    reported = []
    threading.Thread(target=listen, args=(spy, node, reported), daemon=True).start()
    print("minute  MB more  passes a second")
    figures = []
    for minute in range(OPTIONS.minutes + 1):
        begin, first = time.monotonic(), len(reported)
        # A turn of the mouse now and then, and a new life after each capture.
        while time.monotonic() - begin < (60 if minute else 20):
            before = len(reported)
            page.mouse_to(width / 2 + 100, height / 2 + (40 if before % 2 else -40))
            time.sleep(2)
            if len(reported) == before:
                page.click_on("all('.main .picturebox canvas')[2]")  # Spawn
                page.release_brakes(width / 2 + 100, height / 2 + 40)
        # Every fourth pass reports the place, unless the ball rests.
        gaps = [later - earlier for earlier, later in zip(reported[first:], reported[first + 1:])]
        flown = [gap for gap in gaps if gap < 0.5]
        rate = 4 * len(flown) / sum(flown) if flown else 0
        figures.append((memory(browser) - empty, rate))
        print("{:6} {:8.0f} {:16.0f}".format(minute, *figures[-1]), flush=True)
    more, rates = zip(*figures)
    print(f"memory above an empty tab: {max(more):.0f} MB at most, {more[-1]:.0f} MB in the end, "
          f"in {OPTIONS.minutes} minutes of play")
    print(f"passes a second: {statistics.median(rates):.0f}")


def listen(spy, node, reported):
    while spy.await_frame(POSITION, lambda fields: fields[0] == node):
        reported.append(time.monotonic())


measure_frames()
measure_start()
measure_game()
