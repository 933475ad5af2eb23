"""Chromium and Firefox, driven over WebDriver BiDi. Each runs without a screen, with a profile of its own, and reaches
this machine alone."""

import asyncio
import base64
import json
import os
import pathlib
import signal
import subprocess
import tempfile
import urllib.request

import websockets

from harness import stop, wait_for
from ports import free_port

# Seconds. On a machine that is several times overloaded, a browser needs minutes to start.
BROWSER_PATIENCE = 300.0

# Each window would load two pages of the address bar's own.
CHROMIUM_OPTIONS = ("disable-features=WebUIOmniboxPopup,WebUIOmniboxAimPopup",
                    "headless=new", "no-sandbox", "disable-gpu", "disable-quic", "no-first-run",
                    "disable-background-networking", "disable-component-update", "disable-sync", "no-proxy-server",
                    "host-resolver-rules=MAP * ~NOTFOUND , EXCLUDE 127.0.0.1", "autoplay-policy=user-gesture-required")
# Firefox ends whatever leaves the machine at a proxy that nobody runs. Addresses of the machine itself take no proxy.
FIREFOX_PREFERENCES = {"network.proxy.type": 1, "network.proxy.http": "127.0.0.1", "network.proxy.http_port": 9,
                       "network.proxy.ssl": "127.0.0.1", "network.proxy.ssl_port": 9,
                       "datareporting.policy.dataSubmissionEnabled": False, "app.update.enabled": False,
                       "browser.shell.checkDefaultBrowser": False, "security.sandbox.content.level": 0,
                       "dom.w3c_touch_events.enabled": 1,
                       # No processes in advance, each of which takes a third of a processor second to start.
                       "dom.ipc.processPrelaunch.enabled": False,
                       # A sound device that nobody hears, for machines without one.
                       "media.cubeb.force_mock_context": True}


class Wire:
    """A connection that speaks WebDriver BiDi: commands with their answers, and the events that come in between."""

    def __init__(self, address):
        self.loop = asyncio.new_event_loop()
        self.socket = self.loop.run_until_complete(self.connect(address))
        self.number = 0
        self.events = []

    async def connect(self, address):
        return await websockets.connect(address, max_size=None, ping_interval=None, compression=None)

    def close(self):
        """Ends the connection, which the browser may have done already."""
        self.socket.transport.abort()
        self.loop.run_until_complete(self.socket.wait_closed())
        self.loop.run_until_complete(asyncio.gather(*asyncio.all_tasks(self.loop), return_exceptions=True))
        self.loop.close()

    def call(self, method, /, **parameters):
        self.number += 1
        return self.loop.run_until_complete(asyncio.wait_for(self.ask(self.number, method, parameters),
                                                              BROWSER_PATIENCE))

    async def ask(self, number, method, parameters):
        await self.socket.send(json.dumps({"id": number, "method": method, "params": parameters}))
        while True:
            message = json.loads(await self.socket.recv())
            if "method" in message:
                self.events.append(message)
            elif message["id"] == number:
                if message["type"] != "success":
                    raise RuntimeError(f"{method}: {message['error']}: {message['message']}")
                return message["result"]


class Browser:
    """A running browser, "chromium" or "firefox". `options` are further command-line options of Chromium."""

    def __init__(self, kind, options=(), preferences=()):
        self.kind = kind
        self.folder = tempfile.TemporaryDirectory(prefix="kelvora-browser-", ignore_cleanup_errors=True)
        self.port = free_port()
        environment = dict(os.environ, HOME=self.folder.name, MOZ_DISABLE_AUTO_SAFE_MODE="1")
        profile = pathlib.Path(self.folder.name, "profile")
        profile.mkdir()
        if kind == "chromium":
            command = ["chromedriver", f"--port={self.port}"]
        else:
            lines = [f"user_pref({json.dumps(name)}, {json.dumps(value)});\n"
                     for name, value in {**FIREFOX_PREFERENCES, **dict(preferences)}.items()]
            pathlib.Path(profile, "user.js").write_text("".join(lines))
            command = ["firefox-esr", "--headless", "--no-remote", "--profile", str(profile),
                       f"--remote-debugging-port={self.port}"]
        self.process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, start_new_session=True)
        self.session = None
        self.empty_pages = []  # left by their users
        try:
            self.wire = wait_for(lambda: self.begin(profile, options), kind, BROWSER_PATIENCE)
            self.wire.call("session.subscribe", events=["log.entryAdded"])
        except BaseException:
            self.end_processes()
            raise

    def begin(self, profile, options):
        """Begins a session. None while the browser is not ready."""
        try:
            if self.kind == "firefox":
                wire = Wire(f"ws://127.0.0.1:{self.port}/session")
                wire.call("session.new", capabilities={"alwaysMatch": {"acceptInsecureCerts": True}})
                return wire
            arguments = [f"--{option}" for option in (*CHROMIUM_OPTIONS, *options, f"user-data-dir={profile}")]
            self.session = self.driver("POST", "/session", {"capabilities": {"alwaysMatch": {
                "webSocketUrl": True, "acceptInsecureCerts": True,
                "goog:chromeOptions": {"binary": "/usr/bin/chromium", "args": arguments}}}})
            return Wire(self.session["capabilities"]["webSocketUrl"])
        except (ConnectionError, OSError):
            return None

    def driver(self, method, path, body=None):
        request = urllib.request.Request(f"http://127.0.0.1:{self.port}{path}", method=method,
                                         data=body and json.dumps(body).encode())
        with urllib.request.urlopen(request, timeout=BROWSER_PATIENCE) as answer:
            return json.load(answer)["value"]

    def close(self):
        try:
            self.wire.call("browser.close")
            self.wire.close()
        finally:
            self.end_processes()

    def end_processes(self):
        stop(self.process)
        wait_for(self.kill_rest, "the browser's end")  # a driver does not always end its browser
        self.folder.cleanup()

    def kill_rest(self):
        """Kills what is left of driver and browser, which name the folder in their home or arguments. True once nothing
        is left."""
        name = self.folder.name.encode()
        left = False
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if name in (process / "environ").read_bytes() or name in (process / "cmdline").read_bytes():
                    left = True
                    os.kill(int(process.name), signal.SIGKILL)
            except OSError:
                pass  # it has ended, or belongs to somebody else
        return not left

    def visitor(self):
        """A fresh profile, which shares no settings with other tabs."""
        return self.wire.call("browser.createUserContext")["userContext"]

    def save_downloads(self, folder):
        """Saves files in a folder without asking."""
        self.wire.call("browser.setDownloadBehavior",
                       downloadBehavior={"type": "allowed", "destinationFolder": str(folder)})

    def open(self, address, visitor, page, size=(1000, 800), kind="window"):
        """Opens an address as a `page`, which is a Tab. `kind` is "window" or "tab"."""
        return page(self, address, visitor, size, kind)


class Tab:
    """A page in a tab or a window, used as a user does: with mouse, keys and fingers."""

    keys = {"Enter": "\ue007", "Escape": "\ue00c", "Tab": "\ue004", "Backspace": "\ue003", "Control": "\ue009",
            "Shift": "\ue008", "Alt": "\ue00a", "ArrowLeft": "\ue012", "ArrowUp": "\ue013", "ArrowRight": "\ue014",
            "ArrowDown": "\ue015", "Home": "\ue011", "End": "\ue010", "F1": "\ue031", "F2": "\ue032", "F10": "\ue03a"}

    def __init__(self, browser, address, visitor, size, kind):
        self.browser = browser
        self.wire = browser.wire
        self.context = self.wire.call("browsingContext.create", type=kind, userContext=visitor)["context"]
        if browser.kind == "chromium":
            self.stop_watching_network()
        if size:
            self.resize(*size)
        self.load(address)

    def stop_watching_network(self):
        """Chromium's driver watches each page's network and gets a copy of all that arrives. No test needs it."""
        session = self.wire.call("goog:cdp.getSession", context=self.context)["session"]
        self.wire.call("goog:cdp.sendCommand", method="Network.disable", session=session)

    def load(self, address, wait="interactive"):
        self.wire.call("browsingContext.navigate", context=self.context, url=address, wait=wait)

    def empty(self):
        """Leaves the page for an empty one in the same process, which costs less than a new window. Forgets
        complaints."""
        self.wire.call("input.releaseActions", context=self.context)
        self.mouse({"type": "pointerMove", "x": 0, "y": 0})
        self.evaluate("void location.replace('about:blank')")
        wait_for(self.is_empty, "the empty page")
        self.wire.events = [event for event in self.wire.events
                            if event["params"]["source"].get("context") != self.context]

    def is_empty(self):
        try:
            return self.evaluate("location.href === 'about:blank'")
        except RuntimeError:
            return False  # the browser is between the two pages

    def reload(self):
        self.wire.call("browsingContext.reload", context=self.context, wait="interactive")

    def close(self):
        self.wire.call("browsingContext.close", context=self.context)

    def activate(self):
        self.wire.call("browsingContext.activate", context=self.context)

    def resize(self, width, height):
        self.wire.call("browsingContext.setViewport", context=self.context,
                       viewport={"width": width, "height": height})

    def evaluate(self, expression):
        """The value of a JavaScript expression, which may be a promise."""
        outcome = self.wire.call("script.evaluate", target={"context": self.context}, awaitPromise=True,
                                 expression=f"Promise.resolve({expression}).then((value) => JSON.stringify(value))")
        if outcome["type"] != "success":
            raise AssertionError(outcome["exceptionDetails"]["text"])
        text = outcome["result"].get("value")
        return None if text is None else json.loads(text)

    def screenshot(self):
        """The visible page as PNG."""
        return base64.b64decode(self.wire.call("browsingContext.captureScreenshot", context=self.context)["data"])

    def complaints(self):
        """The errors from the page's console and scripts."""
        self.evaluate("1")  # takes in what is on the way
        return [event["params"]["text"] for event in self.wire.events
                if event["params"]["source"].get("context") == self.context and event["params"]["level"] == "error"]

    def act(self, *sources):
        self.wire.call("input.performActions", context=self.context, actions=list(sources))

    def mouse(self, *actions):
        self.act({"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": list(actions)})

    def move(self, x, y):
        """By way of a neighbouring pixel, so that the last step always is a move."""
        self.mouse(*({"type": "pointerMove", "x": round(x) + step, "y": round(y)} for step in (1, 0)))

    def click(self, x, y, button=0, times=1):
        down_and_up = [{"type": "pointerDown", "button": button}, {"type": "pointerUp", "button": button}]
        self.mouse({"type": "pointerMove", "x": round(x), "y": round(y)}, *down_and_up * times)

    def drag(self, begin, end):
        self.mouse({"type": "pointerMove", "x": round(begin[0]), "y": round(begin[1])},
                   {"type": "pointerDown", "button": 0},
                   {"type": "pointerMove", "x": round(end[0]), "y": round(end[1])}, {"type": "pointerUp", "button": 0})

    def fingers(self, *actions, finger=1):
        """Moves one finger: ("down", x, y), ("move", x, y) and ("up",)."""
        steps = []
        for kind, *place in actions:
            if place:
                steps.append({"type": "pointerMove", "x": round(place[0]), "y": round(place[1])})
            if kind != "move":
                steps.append({"type": "pointerDown" if kind == "down" else "pointerUp", "button": 0})
        self.act({"type": "pointer", "id": f"finger{finger}", "parameters": {"pointerType": "touch"}, "actions": steps})

    def tap(self, x, y, finger=1):
        self.fingers(("down", x, y), ("up",), finger=finger)

    def press(self, *names):
        """Presses these keys in turn; "Control+a" holds the first one."""
        steps = []
        for name in names:
            held = [self.keys.get(part, part) for part in (name.split("+") if len(name) > 1 else [name])]
            steps += [{"type": "keyDown", "value": key} for key in held]
            steps += [{"type": "keyUp", "value": key} for key in reversed(held)]
        self.act({"type": "key", "id": "keys", "actions": steps})

    def type(self, text):
        self.press(*text)
