"""A hostile server that breaks off or stays silent. KELVORA_HOSTILE_RECONNECTS is the number of reconnections, 60 by
default."""

import os
import signal
import socket
import struct
import time
import unittest

import attacks
import harness
from desktopTest import HANG
from harness import wait_for
from hostileTest import GREEN, MIB, STREAM_MIB, HostileTest
from protocol import LOGIN, LOGIN_ACCEPTED, POSITION, START

RECONNECTS = int(os.environ.get("KELVORA_HOSTILE_RECONNECTS", "60"))
RED = (255, 128, 128)
# However often the dialog has been opened and closed.
RECONNECT_MIB = 4


class HostileSessions(HostileTest):

    def test_closing_in_the_middle_of_a_frame(self):
        client = self.start_client()
        whole = attacks.BOB
        for cut in (1, 2, 3, len(whole) - 1):
            client, line = self.log_in(client)
            line.send_bytes(whole[:cut])
            line.close()
            client.wait_for_window("Connect")
        # The missing part comes from the next server, and is simply lost.
        client, line = self.log_in(client)
        line.send_bytes(whole[-1:] + whole[2:])
        self.begin_attack(client)
        self.await_all_read(line)
        self.assert_answers(line)
        # A reset is an ordinary end.
        line.send_bytes(whole[:5])
        line.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        line.close()
        client.wait_for_window("Connect")
        self.assert_within(client, STREAM_MIB)
        self.assert_plays_on(client)

    def disconnect(self, client):
        """Chooses File, Disconnect: from below, since some systems skip the disabled item above it."""
        client.choose(20, "Up", "Up", "Return")
        client.wait_for_window("Connect")

    def test_silent_server_can_be_left_for_another(self):
        client = self.start_client()
        silent = self.scripted_server()
        client.connect(silent.port)
        line = silent.accept()
        line.recv_frame()
        client.wait_for_status(GREEN)
        self.begin_attack(client)
        self.assert_answers(line)
        client.resize(800, 600)
        client.resize(*harness.CLIENT_AREA)
        self.disconnect(client)
        self.assertIsNone(line.recv_frame())
        client.wait_for_status(RED)
        self.assert_within(client, STREAM_MIB)
        self.assert_plays_on(client)

    def test_closing_the_window_leaves_a_silent_server(self):
        client = self.start_client()
        silent = self.scripted_server()
        client.connect(silent.port)
        wait_for(lambda: "Connect" not in client.windows(), "the dialog's end")
        client.window.activate()
        self.display.xdotool("key", "alt+F4")
        self.assertEqual(client.process.wait(harness.PATIENCE), 0)

    def test_reconnections_leave_nothing_behind(self):
        signal.alarm(HANG + RECONNECTS)
        client = self.start_client()
        server = self.scripted_server()

        def answer(n):
            line = server.accept()
            self.assertEqual(line.recv_frame()[0], LOGIN)
            wait_for(lambda: "Connect" not in client.windows(), "the dialog's end")
            line.send(LOGIN_ACCEPTED, n % 6, 7, 50000, 50000)
            if n % 2:
                line.send_bytes(bytes([START, POSITION]) + b"8")
            line.close()
            server.lines.clear()

        def come_back(times):
            """The dialog opens filled in and only needs Enter."""
            for n in range(times):
                client.wait_for_window("Connect").activate()
                self.display.xdotool("key", "Return")
                answer(n)

        def descriptors():
            return len(os.listdir(f"/proc/{client.process.pid}/fd"))

        client.connect(server.port)
        answer(0)
        come_back(20)
        memory, open_before = client.memory(), descriptors()
        begin = time.monotonic()
        come_back(RECONNECTS)
        seconds = time.monotonic() - begin
        grown = (client.memory() - memory) / MIB
        print(f"[{RECONNECTS} in {seconds:.1f} s: {grown:.2f} MiB]", end=" ", flush=True)
        self.assertLess(grown, RECONNECT_MIB)
        # The client may be saving its settings, which takes some more files for a moment.
        wait_for(lambda: descriptors() <= open_before + 1, lambda: f"{open_before} descriptors, but {descriptors()}")
        self.assert_plays_on(client)


if __name__ == "__main__":
    unittest.main()
