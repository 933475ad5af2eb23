"""Moderators, bans and the file that keeps them, with the real program and sockets."""

import contextlib
import os
import pathlib
import pty
import shutil
import signal
import subprocess
import tempfile
import termios
import unittest

from realServer import SERVER, RawPlayer, Server, connect, frame, free_port, protocol, wait_for


def hash_of(password):
    return subprocess.run([SERVER, "--hash-password"], input=password + "\n", capture_output=True, text=True,
                          check=True).stdout.strip()


class Moderation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.hash = hash_of("open-sesame")

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-moderation-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.bans = self.folder / "bans"

    def server(self):
        return Server("--moderator", self.hash, "--bans", str(self.bans), "--no-site")

    def player(self, server, name, host=1):
        player = RawPlayer(connect(server.port, host), name)
        self.addCleanup(player.close)
        return player

    def said(self, player, text):
        """Waits until the server says it, since the last such line."""
        start = getattr(player, "read_until", 0)
        player.find(protocol.SERVER_TEXT, lambda fields: fields[0].startswith(text), start)
        player.read_until = len(player.frames)

    def chat(self, player, text):
        player.send(frame(protocol.CHAT, "-1", text))

    def moderator(self, server):
        ann = self.player(server, "Ann")
        ann.find(protocol.LOGIN_ACCEPTED)
        self.chat(ann, "!login open-sesame")
        self.said(ann, "You are a moderator now.")
        return ann

    def refusal(self, server, host):
        return self.player(server, "Eve", host).find(protocol.LOGIN_DENIED)[0]

    def test_passwords_are_hashed_from_standard_input(self):
        self.assertNotEqual(self.hash, hash_of("open-sesame"))
        for password in ("", "caf\u00e9", "two words"):
            result = subprocess.run([SERVER, "--hash-password"], input=password, capture_output=True, text=True)
            self.assertEqual((result.returncode, result.stdout), (2, ""))
        result = subprocess.run([SERVER, "--moderator", "open-sesame"], capture_output=True, text=True)
        self.assertEqual(result.returncode, 2)
        self.assertIn("--moderator must be what kelvora-server --hash-password prints", result.stderr)

    def test_a_terminal_shows_no_password_and_everything_after_a_signal(self):
        for number in (signal.SIGINT, signal.SIGQUIT, signal.SIGTERM, signal.SIGHUP):
            ends = pty.openpty()
            for end in ends:
                self.addCleanup(os.close, end)

            def echoes(terminal=ends[1]):
                return bool(termios.tcgetattr(terminal)[3] & termios.ECHO)

            self.assertTrue(echoes())
            with subprocess.Popen([SERVER, "--hash-password"], stdin=ends[1], stderr=subprocess.DEVNULL) as process:
                wait_for(lambda: not echoes(), "a hidden password")
                process.send_signal(number)
                self.assertEqual(process.wait(60), -number)
            self.assertTrue(echoes(), number)

    def test_a_ban_lasts_beyond_the_server(self):
        with self.server() as server:
            ann = self.moderator(server)
            eve = self.player(server, "Eve", 2)
            eve.find(protocol.LOGIN_ACCEPTED)
            self.chat(ann, "!ban eve 2h rude")
            self.said(ann, "Banned Eve (127.0.0.2) until ")
            self.assertRegex(self.refusal(server, 2), r"^You are banned until 2\d\d\d-.* UTC: rude$")
            self.assertIn("): !ban eve 2h rude", server.log())
        self.assertRegex(self.bans.read_text(), r'^ban 127\.0\.0\.2 \S+Z "Eve" rude\n$')
        with self.server() as server:
            self.assertIn("rude", self.refusal(server, 2))
            self.player(server, "Eve", 3).find(protocol.LOGIN_ACCEPTED)

    def test_sighup_reads_the_bans_again(self):
        with self.server() as server:
            self.player(server, "Eve", 2).find(protocol.LOGIN_ACCEPTED)
            self.bans.write_text("ban 127.0.0.3 forever found out\nbam\n")
            server.process.send_signal(signal.SIGHUP)
            wait_for(lambda: "1 bans and mutes" in server.log(), "the file is read")
            self.assertIn(f"{self.bans}:2: expected", server.log())
            self.assertEqual(self.refusal(server, 3), "You are banned forever: found out")

    def test_a_signal_during_the_start_waits_until_the_server_takes_it(self):
        self.bans.touch()
        read_end, write_end = os.pipe()
        self.addCleanup(os.close, read_end)
        os.set_blocking(write_end, False)
        with contextlib.suppress(BlockingIOError):
            while os.write(write_end, b"x" * 4096):
                pass
        os.set_blocking(write_end, True)
        port = free_port()
        # It can't log the folder of its page, so the start takes until somebody reads.
        with subprocess.Popen([SERVER, "--port", str(port), "--bans", str(self.bans), "--site", str(self.folder)],
                              stdout=subprocess.PIPE, stderr=write_end) as server:
            os.close(write_end)

            def is_open():
                with contextlib.suppress(ConnectionRefusedError):
                    connect(port).close()
                    return True

            try:
                wait_for(is_open, "the port")
                self.bans.write_text("ban 127.0.0.3 forever found out\n")
                server.send_signal(signal.SIGHUP)
                log = b""
                while b"1 bans and mutes" not in log:
                    piece = os.read(read_end, 65536)
                    self.assertTrue(piece, f"the server has ended: {log[-200:]}")
                    log += piece
                server.send_signal(signal.SIGTERM)
                self.assertEqual(server.wait(60), 0)
            finally:
                server.kill()

    def test_a_killed_server_leaves_a_complete_file(self):
        known = 0
        for round in range(5):
            server = self.server()
            try:
                ann = self.moderator(server)
                for number in range(round + 2):
                    host = 10 * (round + 1) + number
                    self.player(server, "Eve", host).find(protocol.LOGIN_ACCEPTED)
                    self.chat(ann, "!ban eve forever")
                    self.said(ann, "Banned Eve")
            finally:
                server.kill()
            lines = self.bans.read_text().splitlines() if self.bans.exists() else []
            for line in lines:
                self.assertRegex(line, r'^ban 127\.0\.0\.\d+ forever "Eve"$')
            self.assertGreaterEqual(len(lines), known)
            known = len(lines)

    def test_a_server_that_cant_read_its_bans_does_not_start(self):
        self.bans.mkdir()
        result = subprocess.run([SERVER, "--port", "0", "--bans", str(self.bans)], capture_output=True, text=True)
        self.assertEqual(result.returncode, 1)
        self.assertIn("cannot read", result.stderr)


if __name__ == "__main__":
    unittest.main()
