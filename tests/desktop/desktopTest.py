"""Shared code of the tests of the real window."""

import contextlib
import functools
import pathlib
import signal
import subprocess
import unittest

import harness
from client import Client
from display import Display
from protocol import LOGIN, LOGIN_ACCEPTED, PING, PING_REPLY, POSITION_REPORT
from screen import Gone
from servers import ScriptedServer, Server

HANG = 300  # seconds; a test that takes longer hangs


class DesktopTest(unittest.TestCase):
    """One display for all tests of a class, and a separate client and servers for each test."""

    screen = "1280x1024"
    frame = {}  # sizes of the window manager's frames, if not its own

    @classmethod
    def setUpClass(cls):
        cls.display = Display(cls.screen, **cls.frame)
        cls.addClassCleanup(cls.display.close)

    def start_client(self, **options):
        client = Client(self.display, **options)
        self.addCleanup(client.close)
        return client

    def start_server(self, *arguments):
        server = Server(*arguments)
        self.addCleanup(server.close)
        return server

    def scripted_server(self):
        server = ScriptedServer()
        self.addCleanup(server.close)
        return server

    def log_in(self, client=None, colour=0, x=50000, y=50000, name="Ann"):
        """Logs a client in to a scripted server, with the brakes on. Returns the client and its connection."""
        client = client or self.start_client()
        server = self.scripted_server()
        client.connect(server.port, name=name)
        line = server.accept()
        self.assertEqual(line.recv_frame()[0], LOGIN)
        line.send(LOGIN_ACCEPTED, colour, 7, x, y)
        # The answer to a ping shows that the login has been handled. A report follows it.
        line.send(PING, 1)
        self.assertEqual(line.recv_frame()[0], PING_REPLY)
        self.assertEqual(line.recv_frame()[0], POSITION_REPORT)
        return client, line

    def run(self, result=None):
        # A hanging process must not block the whole run: the alarm interrupts any wait.
        def late(*_):
            raise AssertionError(f"the test took longer than {HANG} s")
        signal.signal(signal.SIGALRM, late)
        signal.alarm(HANG)
        setattr(self, self._testMethodName, functools.partial(self.run_method, getattr(self, self._testMethodName)))
        try:
            return super().run(result)
        finally:
            signal.alarm(0)

    def run_method(self, method):
        """Keeps the screen, a list of its windows, and the programs' stacks if the test fails."""
        try:
            method()
        except unittest.SkipTest:
            raise
        except BaseException:
            # The failure counts, even if the display has ended, too.
            with contextlib.suppress(OSError, subprocess.SubprocessError, Gone):
                self.keep_state(pathlib.Path(harness.CLIENT).parent / "desktop" / self.id())
            raise

    def keep_state(self, place):
        place.parent.mkdir(exist_ok=True)
        pathlib.Path(f"{place}.ppm").write_bytes(self.display.picture().ppm())
        windows = self.display.run("xwininfo", "-root", "-tree")
        pathlib.Path(f"{place}.txt").write_text(windows + harness.stacks(), encoding="utf-8")
        print(f"[screen, windows, stacks: {place}.*]", end=" ", flush=True)
