"""Failures outside the server: signals, ports, files, descriptors, time."""

import os
import resource
import signal
import socket
import subprocess
import unittest

import harness
import wine
from harness import wait_for
from ports import free_port
from protocol import CHAT, LOGIN, LOGIN_ACCEPTED, POSITION_REPORT, SERVER_TEXT
from servers import Line

IN_WINE = wine.is_for_windows(harness.SERVER)
ONLY_LINUX = unittest.skipIf(IN_WINE, "Windows has neither these signals nor a limit of open files")


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


class ServerFaults(unittest.TestCase):

    def start(self, *arguments, **options):
        port = free_port()
        options = dict(dict(stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True),
                       **options)
        process = subprocess.Popen(
            wine.command(harness.SERVER, "--address", "127.0.0.1", "--port", str(port), *arguments), **options)
        self.addCleanup(harness.stop, process)
        for stream in (process.stdout, process.stderr):
            if stream:
                self.addCleanup(stream.close)
        process.port = port
        if process.stdout:
            line = ""
            while not line.startswith("listening on "):
                line = process.stdout.readline()
                self.assertTrue(line, "the server ended at once")
        return process

    def run_server(self, *arguments):
        """Runs a server that ends at once. Returns its status and what it complains about."""
        status, _, errors = wine.run(harness.SERVER, *arguments)
        return status, errors

    def log_in(self, process, name="Ann", colour=0):
        line = Line(socket.create_connection(("127.0.0.1", process.port)))
        self.addCleanup(line.close)
        line.send(LOGIN, name, "", colour, harness.VERSION)
        return line

    def test_signals_end_it_with_a_message_to_the_players(self):
        # A test run that ignores SIGHUP, as under nohup, would pass that on.
        self.addCleanup(signal.signal, signal.SIGHUP, signal.signal(signal.SIGHUP, signal.SIG_DFL))
        # Of these, Wine passes on an interrupt, as Ctrl+C.
        for sent in (signal.SIGINT,) if IN_WINE else (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=sent.name):
                process = self.start("--bots", "3")
                line = self.log_in(process)
                self.assertEqual(line.recv_frame()[0], LOGIN_ACCEPTED)
                process.send_signal(sent)
                frames = []
                while received := line.recv_frame():
                    frames.append(received)
                self.assertIn((SERVER_TEXT, [b"The server is shutting down."]), frames)
                line.close()
                self.assertEqual(process.wait(harness.PATIENCE), 0)

    @ONLY_LINUX
    def test_an_ignored_hang_up_stays_ignored(self):
        process = self.start(preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        process.send_signal(signal.SIGHUP)
        self.assertEqual(self.log_in(process).recv_frame()[0], LOGIN_ACCEPTED)

    def test_a_port_in_use(self):
        with socket.create_server(("127.0.0.1", 0)) as other:
            port = other.getsockname()[1]
            status, complaint = self.run_server("--address", "127.0.0.1", "--port", str(port))
        self.assertEqual(status, 1)
        self.assertEqual(complaint, f"kelvora-server: cannot listen on 127.0.0.1:{port}: Address already in use\n")

    def test_a_wrong_option(self):
        status, complaint = self.run_server("--bots", "seven")
        self.assertEqual(status, 2)
        self.assertRegex(complaint, "^kelvora-server: --bots must be .*\nkelvora-server --help lists the options.\n$")

    def test_an_unreadable_configuration(self):
        for path, reason in (("/no/such/file", "there is no such file"), ("/", "not a file")):
            status, complaint = self.run_server("--config", path)
            self.assertEqual(status, 2)
            self.assertEqual(complaint.splitlines()[0], f"kelvora-server: cannot read {path}: {reason}")

    def test_a_log_on_a_full_disk(self):
        with open("/dev/full", "w") as full:
            process = self.start(stdout=full, stderr=full)

            def is_listening():
                with socket.socket() as probe:
                    return probe.connect_ex(("127.0.0.1", process.port)) == 0
            wait_for(is_listening, "the server")
            self.assertEqual(self.log_in(process).recv_frame()[0], LOGIN_ACCEPTED)
            self.assertIsNone(process.poll())

    def test_a_log_that_nobody_reads(self):
        process = self.start()
        process.stderr.close()
        process.stdout.close()
        for name in ("Ann", "Bob"):
            line = self.log_in(process, name)
            self.assertEqual(line.recv_frame()[0], LOGIN_ACCEPTED)
        self.assertIsNone(process.poll())

    @ONLY_LINUX
    def test_no_descriptors_left(self):
        process = self.start()
        open_files = harness.wait_for_rest(lambda: len(os.listdir(f"/proc/{process.pid}/fd")), "the open files")
        resource.prlimit(process.pid, resource.RLIMIT_NOFILE, (open_files + 1, open_files + 1))
        ann = self.log_in(process)
        self.assertEqual(ann.recv_frame()[0], LOGIN_ACCEPTED)
        bob = self.log_in(process, "Bob", 1)
        before = cpu_seconds(process.pid)
        bob_frames = bob.frames_during(1.0)
        self.assertEqual(bob_frames, [])
        self.assertLess(cpu_seconds(process.pid) - before, 0.25, "it does not spin")
        ann.send(CHAT, -1, "hello")
        while ann.recv_frame()[0] != CHAT:
            pass
        ann.close()
        self.assertEqual(bob.recv_frame()[0], LOGIN_ACCEPTED)

    @ONLY_LINUX
    def test_it_raises_a_low_limit_of_descriptors(self):
        hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
        process = self.start(preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (20, hard)))
        self.assertEqual(resource.prlimit(process.pid, resource.RLIMIT_NOFILE)[0], 320)

    @ONLY_LINUX
    def test_it_warns_about_a_low_limit_of_descriptors(self):
        process = self.start(preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (40, 40)))
        self.assertIn("only 40 files may be open", process.stderr.readline())

    def test_a_pause_of_the_process_disconnects_nobody(self):
        process = self.start("--bots", "2")
        line = self.log_in(process)
        place = line.recv_frame()[1][2:4]
        process.send_signal(signal.SIGSTOP)
        line.send(POSITION_REPORT, *place)
        line.frames_during(1.5)
        line.send(CHAT, -1, "hello")
        process.send_signal(signal.SIGCONT)
        frames = []
        while not frames or frames[-1][0] != CHAT:
            frames.append(line.recv_frame())
        self.assertLess(len(frames), 200, "missed time is not made up for")


if __name__ == "__main__":
    unittest.main()
