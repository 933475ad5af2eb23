"""Shared code of the tests of the page: a real browser, and the real server that delivers the page."""

import functools
import os
import signal
import sys
import unittest

import harness
from bridge import Bridge
from browser import Browser
from page import Page
from protocol import LOGIN, LOGIN_ACCEPTED

KIND = os.environ.get("KELVORA_BROWSER", "chromium")
SITE = os.environ["KELVORA_SITE"]
HANG = 300  # seconds; a test that takes longer hangs
# Firefox shows this many frames a second. The game's own pace is the same, and pictures take much processor time.
FRAMES = {"layout.frame_rate": 20}
# A stopped run ends its browsers and servers, too.
signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))


@functools.cache
def browser_with(options, preferences):
    """One browser for all tests of a file that need these options and preferences."""
    browser = Browser(KIND, options, preferences)
    unittest.addModuleCleanup(browser.close)
    unittest.addModuleCleanup(browser_with.cache_clear)
    return browser


class PageTest(unittest.TestCase):
    """Classes with the same options share a browser. Each test gets its own server and fresh profiles."""

    browser_options = ()  # Chromium's
    browser_preferences = {}  # Firefox's

    @classmethod
    def setUpClass(cls):
        cls.browser = browser_with(cls.browser_options, tuple({**FRAMES, **cls.browser_preferences}.items()))

    def start_server(self, *options):
        server = harness.Server("--site", SITE, *options)
        self.addCleanup(server.close)
        return server

    def scripted_server(self):
        """A scripted server and the port at which pages reach it."""
        server = harness.ScriptedServer()
        self.addCleanup(server.close)
        bridge = Bridge(server.port)
        self.addCleanup(bridge.close)
        return server, bridge.port

    def open(self, port, arguments="nomusic", visitor=None, scheme="http", path="/", page=Page, **options):
        address = f"{scheme}://127.0.0.1:{port}{path}?{arguments}"
        page = self.browser.open(address, visitor or self.browser.visitor(), page, **options)
        self.addCleanup(page.close)
        return page

    def begin(self, *options):
        """The real server and a page from it that shows the connect dialog."""
        server = self.start_server(*options)
        page = self.open(server.port)
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
