"""Chromium without WebDriver, for measuring its memory. Under WebDriver, it keeps a record of every WebSocket message
that a page gets, as long as the page lives. Through the debugging port it is asked for one thing at a time, and keeps
nothing."""

import json
import pathlib
import subprocess
import tempfile
import urllib.request

from browser import BROWSER_PATIENCE, CHROMIUM_OPTIONS, Browser, Wire
from harness import wait_for
from page import Page
from ports import free_port

BUTTONS = {0: "left", 2: "right"}


class Port(Wire):
    """A connection to the debugging port, for one page."""

    async def ask(self, number, method, parameters):
        await self.socket.send(json.dumps({"id": number, "method": method, "params": parameters}))
        while True:
            message = json.loads(await self.socket.recv())
            if message.get("id") == number:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']['message']}")
                return message["result"]


class QuietBrowser(Browser):
    """A running Chromium with a single tab, which shows `address`."""

    def __init__(self, address):
        self.kind = "chromium"
        self.folder = tempfile.TemporaryDirectory(prefix="kelvora-browser-", ignore_cleanup_errors=True)
        self.port = free_port()
        options = (*CHROMIUM_OPTIONS, f"remote-debugging-port={self.port}", "window-size=1000,800",
                   f"user-data-dir={pathlib.Path(self.folder.name, 'profile')}")
        self.process = subprocess.Popen(["chromium", *(f"--{option}" for option in options), address],
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        start_new_session=True)
        try:
            self.wire = Port(wait_for(lambda: self.address_of(address), "chromium", BROWSER_PATIENCE))
        except BaseException:
            self.end_processes()
            raise

    def address_of(self, page):
        """Where the debugging port offers this page. None while it doesn't."""
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{self.port}/json", timeout=BROWSER_PATIENCE) as answer:
                return next((one["webSocketDebuggerUrl"] for one in json.load(answer) if one["url"] == page), None)
        except OSError:
            return None

    def close(self):
        self.wire.close()
        self.end_processes()


class QuietPage(Page):
    """The client in a QuietBrowser. The mouse and single keys work."""

    def __init__(self, browser):
        self.browser = browser
        self.wire = browser.wire
        self.mouse_place = {"x": 0, "y": 0}

    def evaluate(self, expression):
        outcome = self.wire.call("Runtime.evaluate", awaitPromise=True, returnByValue=True, expression=expression)
        if "exceptionDetails" in outcome:
            raise AssertionError(outcome["exceptionDetails"]["text"])
        return outcome["result"].get("value")

    def act(self, *sources):
        for source in sources:
            for action in source["actions"]:
                getattr(self, action["type"])(action)

    def pointerMove(self, action):
        self.mouse_place = {axis: action[axis] for axis in ("x", "y")}
        self.wire.call("Input.dispatchMouseEvent", type="mouseMoved", **self.mouse_place)

    def pointerDown(self, action, event="mousePressed"):
        self.wire.call("Input.dispatchMouseEvent", type=event, button=BUTTONS[action["button"]], clickCount=1,
                       **self.mouse_place)

    def pointerUp(self, action):
        self.pointerDown(action, "mouseReleased")

    def keyDown(self, action):
        self.wire.call("Input.dispatchKeyEvent", type="keyDown", key=action["value"], text=action["value"])

    def keyUp(self, action):
        self.wire.call("Input.dispatchKeyEvent", type="keyUp", key=action["value"])
