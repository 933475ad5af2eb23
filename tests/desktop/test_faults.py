"""Failures outside the program: the screen, the terminal, the sound, the fonts, the disk, the program's files."""

import pathlib
import resource
import shutil
import signal
import socket
import subprocess
import tempfile
import unittest

import harness
import wine
from client import Client
from desktopTest import DesktopTest
from display import Display
from harness import wait_for
from protocol import CHAT, LOGIN, PING, PING_REPLY, PLAYER_JOINED, PLAYER_LEFT, POSITION_REPORT
from servers import Line

IN_WINE = wine.is_for_windows(harness.CLIENT)
PROJECT = pathlib.Path(__file__).resolve().parents[2]
EMPTY_FONTCONFIG = '<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig></fontconfig>'


def spy_on(server, name="Spy", colour=5):
    spy = Line(socket.create_connection(("127.0.0.1", server.port)))
    spy.send(LOGIN, name, "", colour, harness.VERSION)
    return spy


def has_left(spy, node):
    """Waits until the server announces that the player has left."""
    while True:
        identifier, fields = spy.recv_frame()
        if identifier == PLAYER_LEFT and fields[0] == node:
            return True


class ClientFaults(DesktopTest):

    def in_game(self, client, server):
        """Logs the client in to the real server, and then a spy: the server drops those who are silent for long.
        Returns the client's node and the spy."""
        client.connect(server.port)
        spy = spy_on(server)
        self.addCleanup(spy.close)
        while True:
            identifier, fields = spy.recv_frame()
            if identifier == PLAYER_JOINED and fields[2] == b"Ann":
                return fields[0], spy

    def settings(self, client):
        return (pathlib.Path(client.config) / "kelvora" / "kelvora.ini").read_text()

    def expect_play(self, client):
        """Expects that the client joins a game and its ball follows the mouse."""
        client, line = self.log_in(client)
        client.mouse_to(700, 250)
        client.right_click()
        wait_for(lambda: line.report()[0] >= 52000, "the flight")

    @unittest.skipIf(IN_WINE, "a desktop of Windows doesn't die alone")
    def test_the_x_server_dies_during_play(self):
        display = Display()
        self.addCleanup(display.close)
        server = self.start_server()
        client = Client(display)
        self.addCleanup(client.close)
        node, spy = self.in_game(client, server)
        before = self.settings(client)
        display.xvfb.kill()
        self.assertEqual(client.process.wait(harness.PATIENCE), 1)
        self.assertTrue(has_left(spy, node))
        spy.send(CHAT, -1, "still here")
        while spy.recv_frame()[0] != CHAT:
            pass
        self.assertEqual(self.settings(client), before)
        self.assertIn("player%20name=Ann", before)

    @unittest.skipIf(IN_WINE, "Windows has no signals")
    def test_signals_end_it_at_once_and_keep_the_settings(self):
        # A test run that ignores SIGHUP, as under nohup, would pass that on.
        self.addCleanup(signal.signal, signal.SIGHUP, signal.signal(signal.SIGHUP, signal.SIG_DFL))
        server = self.start_server()
        for sent in (signal.SIGHUP, signal.SIGTERM):
            with self.subTest(signal=sent.name):
                client = self.start_client()
                node, spy = self.in_game(client, server)
                client.process.send_signal(sent)
                self.assertEqual(client.process.wait(harness.PATIENCE), -sent)
                self.assertTrue(has_left(spy, node))
                self.assertIn("player%20name=Ann", self.settings(client))
                spy.close()

    def test_a_stopped_client_continues_where_it_was(self):
        client, line = self.log_in()
        client.mouse_to(700, 250)
        client.right_click()
        line.report()
        client.process.send_signal(signal.SIGSTOP)
        last = [fields for identifier, fields in line.frames_during(1.5) if identifier == POSITION_REPORT]
        before = float(last[-1][0]) if last else 50000.0
        client.process.send_signal(signal.SIGCONT)
        after = line.report()[0]
        # At most 300 world units per frame. A second and a half of missed frames would be 150 of them.
        self.assertLess(after - before, 15000)
        line.send(PING, 1)
        wait_for(lambda: line.recv_frame()[0] == PING_REPLY, "the answer to a ping")

    def test_no_fonts(self):
        with tempfile.NamedTemporaryFile("w", suffix=".conf") as config:
            config.write(EMPTY_FONTCONFIG)
            config.flush()
            client = self.start_client(environment={"FONTCONFIG_FILE": config.name})
            self.expect_play(client)
            self.assertIsNone(client.process.poll())

    def test_no_sound_device(self):
        # Wine finds no device either way.
        for driver in ("pulseaudio", "alsa", "there-is-none")[:1 if IN_WINE else 3]:
            with self.subTest(driver=driver):
                client = self.start_client(environment={"SDL_AUDIODRIVER": driver}, arguments=())
                self.expect_play(client)
                if not IN_WINE:  # the libraries that Wine plays with complain
                    self.assertEqual(client.output(), "")
                client.close()

    @unittest.skipIf(IN_WINE, "such a device is one of SDL")
    def test_a_sound_device_fails_during_play(self):
        device = {"SDL_AUDIODRIVER": "disk", "SDL_DISKAUDIOFILE": "/dev/full"}
        client = self.start_client(environment=device, arguments=())
        self.expect_play(client)
        self.assertEqual(client.output(), "")

    def test_no_sounds(self):
        data = self.data()
        shutil.rmtree(data / "sounds")
        client = self.start_client(arguments=(), environment={"KELVORA_DATA": str(data)})
        self.expect_play(client)
        self.assertEqual(client.output(), "")

    def test_broken_sounds(self):
        data = self.data()
        for index, file in enumerate(sorted((data / "sounds").iterdir())):
            content = file.read_bytes()
            file.write_bytes(content[:len(content) // 3 if index % 2 else 0])
        client = self.start_client(arguments=(), environment={"KELVORA_DATA": str(data)})
        self.expect_play(client)

    def data(self):
        """A copy of the program's files."""
        data = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-data-"))
        self.addCleanup(shutil.rmtree, data)
        for folder in ("assets", "sounds"):
            shutil.copytree(PROJECT / folder, data / folder)
        return data

    def test_broken_pictures_are_named_in_the_error_box(self):
        data = self.data()
        sheet = data / "assets" / "radarGrid.png"
        content = sheet.read_bytes()
        for kind, spoil in (("missing", sheet.unlink), ("empty", lambda: sheet.write_bytes(b"")),
                            ("cut off", lambda: sheet.write_bytes(content[:len(content) // 2]))):
            with self.subTest(kind=kind):
                spoil()
                environment = dict(self.display.environment, KELVORA_DATA=str(data), QT_QPA_PLATFORM="xcb",
                                   KELVORA_WEB_HOST=harness.CLOSED_PORT, XDG_CONFIG_HOME=str(data))
                if IN_WINE:
                    environment["WINEPREFIX"] = wine.prefix_in(data)
                    self.addCleanup(wine.end, environment["WINEPREFIX"])
                errors = tempfile.TemporaryFile("w+")  # Wine's own programs would keep a pipe open
                self.addCleanup(errors.close)
                process = subprocess.Popen(wine.command(harness.CLIENT, "nosound"), env=environment,
                                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=errors)
                self.addCleanup(harness.stop, process)
                box = wait_for(lambda: list(self.display.titles(process.pid)), "the error box")[0]
                self.display.xdotool("windowactivate", "--sync", box, "key", "Return")
                self.assertEqual(process.wait(harness.PATIENCE), 1)
                errors.seek(0)
                self.assertIn(str(sheet), errors.read())

    @unittest.skipIf(IN_WINE, "the registry is no file of the client")
    def test_settings_that_cannot_be_written(self):
        home = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-home-"))
        self.addCleanup(shutil.rmtree, home)
        (home / "kelvora").write_text("A file in place of the folder stops even root.")
        client = self.start_client(config=str(home))
        self.expect_play(client)
        self.assertEqual(client.output(), "")

    def test_a_full_disk(self):
        # No file grows beyond 200 bytes, as on a full disk.
        client = self.start_client()
        resource.prlimit(client.process.pid, resource.RLIMIT_FSIZE, (200, 200))
        self.expect_play(client)
        self.assertIsNone(client.process.poll())

    @unittest.skipIf(IN_WINE, "Windows has no signals")
    def test_a_closed_terminal_and_a_file_size_limit(self):
        client = self.start_client()
        for sent in (signal.SIGPIPE, signal.SIGXFSZ):
            client.process.send_signal(sent)
        self.expect_play(client)

    def test_concurrent_clients_keep_each_others_settings(self):
        server = self.scripted_server()
        ann = self.start_client()
        bob = self.start_client(config=ann.config)
        bob.wait_for_window("Connect")  # it opens above Ann's, at the same place
        ann.connect(server.port, name="Ann")
        self.assertEqual(server.accept().recv_frame()[1][0], b"Ann")
        bob.connect(server.port, name="Bob", address="localhost")
        self.assertEqual(server.accept().recv_frame()[1][0], b"Bob")
        # Afterwards the keyboard would be Bob's again.
        wait_for(lambda: "Connect" not in bob.windows(), "the end of Bob's dialog")
        # Ann's client doesn't know what Bob's has saved, and saves something else: the first item of Settings, Audio.
        ann.choose(70, "Down", "Right", "Return")
        wait_for(lambda: ann.saved("audio", "music"), "the setting")
        saved = [ann.saved("last login", key) for key in ("player name", "server address", "server port")]
        self.assertEqual(saved, ["Bob", "localhost", str(server.port)])


if __name__ == "__main__":
    unittest.main()
