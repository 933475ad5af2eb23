"""Shared code of the tests of the page: a real browser, and the real server that delivers the page."""

import atexit
import functools
import os
import signal
import sys
import traceback
import unittest

import harness
from bridge import Bridge
from browser import Browser
from page import Page
from protocol import LOGIN, LOGIN_ACCEPTED
from servers import ScriptedServer, Server

KIND = os.environ.get("KELVORA_BROWSER", "chromium")
SITE = os.environ["KELVORA_SITE"]
HANG = 300  # seconds; a test that takes longer hangs
# Firefox shows this many frames a second. The game's own pace is the same, and pictures take much processor time.
FRAMES = {"layout.frame_rate": 20}
# A stopped run ends its browsers and servers, too.
signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))


@functools.cache
def shared_browser():
    """The browser of all tests that need no special one. Starting one takes seconds of a processor."""
    browser = Browser(KIND, preferences=FRAMES)
    atexit.register(close_at_exit, browser)
    return browser


def close_at_exit(browser):
    """Closes the browser when the tests have ended. One that doesn't end is a failure."""
    try:
        browser.close()
    except Exception:
        traceback.print_exc()
        sys.stderr.flush()
        harness.close_all()
        os._exit(1)  # an exception wouldn't change the status any more


class PageTest(unittest.TestCase):
    """Each test gets its own server. That is a new origin, so no settings are stored for its page."""

    browser_options = ()  # Chromium's
    browser_preferences = {}  # Firefox's

    @classmethod
    def setUpClass(cls):
        if cls.browser_options or cls.browser_preferences:
            cls.browser = Browser(KIND, cls.browser_options, {**FRAMES, **cls.browser_preferences})
            cls.addClassCleanup(cls.browser.close)
        else:
            cls.browser = shared_browser()

    def start_server(self, *options, site=SITE):
        server = Server("--site", str(site), *options)
        self.addCleanup(server.close)
        self.addCleanup(server.process.kill)  # it would wait two seconds for the browser's connections
        return server

    def scripted_server(self):
        """A scripted server and the port at which pages reach it."""
        server = ScriptedServer()
        self.addCleanup(server.close)
        bridge = Bridge(server.port)
        self.addCleanup(bridge.close)
        return server, bridge.port

    def open(self, port, arguments="nomusic", scheme="http", path="/", size=(1000, 800), wait="interactive"):
        """Opens a page in a window of its own. One that an earlier test has left costs a third of a new one."""
        empty = self.browser.empty_pages
        page = empty.pop() if empty else self.browser.open("about:blank", self.browser.visitor(), Page)
        self.addCleanup(self.leave, page)
        page.activate()  # a browser paints no page behind another window
        page.resize(*size)
        page.load(f"{scheme}://127.0.0.1:{port}{path}?{arguments}", wait)
        return page

    def leave(self, page):
        try:
            page.empty()
        except Exception:
            page.close()  # it would keep a processor busy beside later tests
            raise
        self.browser.empty_pages.append(page)

    def pretend_mac(self):
        """Makes pages that are opened from now on believe that they are on a Mac."""
        script = self.browser.wire.call("script.addPreloadScript", functionDeclaration="() => { "
                                        "Object.defineProperty(navigator, 'platform', {get: () => 'MacIntel'}); }")
        self.addCleanup(self.browser.wire.call, "script.removePreloadScript", script=script["script"])

    def begin(self, *options, **opening):
        """The real server and a page from it that shows the connect dialog."""
        server = self.start_server(*options)
        page = self.open(server.port, **opening)
        page.wait_for("dialog('Connect')")
        return server, page

    def log_in(self, page, x=50000, y=50000, colour=0):
        """Logs a page in to a scripted server, with the brakes on. Returns the connection."""
        server, bridge = self.scripted_server()
        page.connect(port=bridge)
        line = server.accept()
        self.assertEqual(line.recv_frame()[0], LOGIN)
        line.send(LOGIN_ACCEPTED, colour, 7, x, y)
        line.ask()
        return line

    def run(self, result=None):
        # A hanging page must not block the whole run: the alarm interrupts any wait.
        def late(*_):
            raise AssertionError(f"the test took longer than {HANG} s")
        signal.signal(signal.SIGALRM, late)
        signal.alarm(HANG)
        try:
            return super().run(result)
        finally:
            signal.alarm(0)
