"""A real server, and what the tests need to connect third-party programs to it: frames and ports. Everything stays on
this machine, and everything started here is stopped here."""

import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import time

SERVER = os.environ["KELVORA_SERVER"]
PROJECT = pathlib.Path(__file__).resolve().parents[3]
VERSION = re.search(r"project\(kelvora VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text())[1]

# Seconds to wait for what happens at once on an idle machine.
PATIENCE = 60

# The build writes the message ids beside its programs.
sys.path += [str(pathlib.Path(SERVER).resolve().parent / "generated"), str(PROJECT / "tools/desktop")]
import protocol
from ports import free_port
from protocol import LOGIN, frame

START, END, SEPARATOR = (bytes([byte]) for byte in (protocol.START, protocol.END, protocol.SEPARATOR))


def login(name, colour=0):
    return frame(LOGIN, name, "", colour, VERSION)


def fields_of(text):
    """The fields of a frame's text, without its id."""
    return text[1:].decode("latin-1").split(SEPARATOR.decode("latin-1"))


def wait_for(condition, what):
    """Waits for the first true result of `condition`. An error if there is none in time."""
    deadline = time.monotonic() + PATIENCE
    while not (result := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {PATIENCE} s: {what}")
        time.sleep(0.01)
    return result


def connect(port, host=1):
    """Connects from 127.0.0.`host`, which stands for another machine."""
    return socket.create_connection(("127.0.0.1", port), PATIENCE, (f"127.0.0.{host}", 0))


def read_to_end(connection):
    """Everything received up to the end of the connection, orderly or not."""
    data = b""
    try:
        while piece := connection.recv(65536):
            data += piece
    except ConnectionResetError:
        pass
    return data


class Server:
    """The server program. `end` and the end of a `with` stop it, and fail unless it exits with status 0."""

    def __init__(self, *options, program=SERVER):
        self.log_file = tempfile.TemporaryFile("w+")
        self.port = free_port()
        self.process = subprocess.Popen([program, "--port", str(self.port), *options], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=self.log_file, text=True)
        if not any(line.startswith("listening on ") for line in self.process.stdout):
            raise AssertionError(f"the server does not start: {self.log()}")

    def log(self):
        self.log_file.seek(0)
        return self.log_file.read()

    def address_of(self, client):
        """The player's address according to the log."""
        return re.search(rf"client {client} connected from (\S+)", self.log())[1]

    def kill(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        self.log_file.close()

    def end(self):
        self.process.send_signal(signal.SIGTERM)
        try:
            status = self.process.wait(PATIENCE)
        finally:
            self.process.kill()
            self.process.wait()
            self.process.stdout.close()
        log = self.log()
        self.log_file.close()
        if status != 0:
            raise AssertionError(f"the server ended with status {status}:\n{log}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()


class RawPlayer:
    """A player over TCP, or over any other stream with the same two calls."""

    def __init__(self, connection, name, colour=0):
        self.connection = connection
        self.arrived = b""
        self.frames = []  # texts of the frames so far, with ids
        self.send(login(name, colour))

    def send(self, data):
        self.connection.sendall(data)

    def close(self):
        self.connection.close()

    def receive(self):
        """Reads bytes, waiting for at least one."""
        data = self.connection.recv(65536)
        if not data:
            raise AssertionError("the server hung up")
        return data

    def read(self):
        """Reads the next frames and answers pings."""
        self.arrived += self.receive()
        *whole, self.arrived = self.arrived.split(END)
        for text in whole:
            assert text[:1] == START, text
            self.frames.append(text[1:])
            if text[1] == protocol.PING:
                self.send(frame(protocol.PING_REPLY, f"{time.time() % 86400:.3f}"))

    def find(self, message, accept=lambda fields: True, start=0):
        """The fields of the first frame with that id that `accept` accepts. Reads until there is one."""
        at = start
        deadline = time.monotonic() + PATIENCE
        while True:
            for text in self.frames[at:]:
                fields = fields_of(text)
                if text[0] == message and accept(fields):
                    return fields
            at = len(self.frames)
            if time.monotonic() > deadline:
                raise AssertionError(f"no message {message}; there were {self.frames[-20:]}")
            self.read()

    def say(self, text):
        self.send(frame(protocol.CHAT, -1, text))
