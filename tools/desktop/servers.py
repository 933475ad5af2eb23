"""The real server, servers scripted by a test, and their connections."""

import socket
import subprocess
import tempfile
import time
import urllib.request

import harness
import wine
from harness import PATIENCE, opened, stop, take_out, wait_for_rest
from ports import free_port


def is_read(connection):
    """True if the program at the other end has read everything sent over this connection."""
    ends = connection.getsockname()[1], connection.getpeername()[1]
    queues = {}
    with open("/proc/net/tcp") as table:
        next(table)
        for row in table:
            _, local, remote, _, waiting = row.split()[:5]
            ports = tuple(int(address.rpartition(":")[2], 16) for address in (local, remote))
            queues[ports] = [int(length, 16) for length in waiting.split(":")]
    # Either end may be missing: the table is read in parts, and changes meanwhile.
    return all(end in queues for end in (ends, ends[::-1])) and queues[ends][0] == queues[ends[::-1]][1] == 0


def listener():
    """A socket that listens on a free port."""
    return socket.create_server(("127.0.0.1", free_port()))


def servers_listed(host):
    """The list of all servers that a game finder gets from this web host, as text."""
    query = f"version={harness.VERSION}&password=1&full=1&empty=1"
    with urllib.request.urlopen(f"http://{host}/games/kelvora/gethosts.php?{query}", timeout=PATIENCE) as answer:
        return answer.read().decode()


class Server:
    """The real server on a free port. `web_host` is the address of its list, if requested. An unpaced client flies many
    times faster than designed, so the speed is not limited."""

    def __init__(self, *arguments):
        assert harness.SERVER, "KELVORA_SERVER is unset: CMakeLists.txt lists the tests that start the server"
        self.port = free_port()
        self.web_host = None
        self.log = tempfile.TemporaryFile("w+")
        self.process = subprocess.Popen(wine.command(harness.SERVER, "--address", "127.0.0.1", "--port", str(self.port),
                                                     "--speed-limit", "0", *arguments),
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=self.log, text=True)
        opened.append(self)
        for line in self.process.stdout:
            if line.startswith("web on "):
                self.web_host = line.split()[-1]
            if line.startswith("listening on "):
                return
        self.log.seek(0)
        log = self.log.read()
        self.close()
        raise AssertionError(f"the server ended at once: {log}")

    def close(self):
        if not take_out(self):
            return
        stop(self.process)
        self.process.stdout.close()
        self.log.close()


class Line:
    """One connection that sends and receives whole frames."""

    def __init__(self, connection):
        self.socket = connection
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.received = b""

    def close(self):
        self.socket.close()

    def send_bytes(self, data):
        self.socket.sendall(data)

    def send(self, identifier, *fields):
        self.send_bytes(harness.protocol.frame(identifier, *fields))

    def recv_bytes(self, seconds=PATIENCE):
        """The bytes of the next frame with its delimiters; None once the other side has closed."""
        deadline = time.monotonic() + seconds
        while harness.protocol.END not in self.received:
            self.socket.settimeout(max(deadline - time.monotonic(), 0.001))
            try:
                data = self.socket.recv(65536)
            except socket.timeout:
                raise AssertionError(f"no frame within {seconds} s, but {self.received!r}") from None
            except ConnectionResetError:
                data = b""
            if not data:
                return None
            self.received += data
        whole, _, self.received = self.received.partition(bytes([harness.protocol.END]))
        return whole + bytes([harness.protocol.END])

    def recv_frame(self, seconds=PATIENCE):
        """The id and fields of the next frame; None once the other side has closed."""
        data = self.recv_bytes(seconds)
        if data is None:
            return None
        assert data[0] == harness.protocol.START, data
        return data[1], data[2:-1].split(bytes([harness.protocol.SEPARATOR]))

    def frames_during(self, seconds):
        """All frames that arrive in this time. Looks once more after it, in case this test was interrupted."""
        frames = []
        deadline = time.monotonic() + seconds
        is_over = False
        while not is_over:
            left = deadline - time.monotonic()
            is_over = left <= 0
            try:
                received = self.recv_frame(max(left, 0.001))
            except AssertionError:
                break
            if received is None:
                break
            frames.append(received)
        return frames

    def ask(self):
        """Waits until the client has handled everything sent. Returns its time of day in seconds and the ball's
        position, which it sends in reply to a ping. Skips frames before the reply."""
        self.send(harness.protocol.PING, 1)
        while (received := self.recv_frame())[0] != harness.protocol.PING_REPLY:
            pass
        seconds = float(received[1][0])
        identifier, place = self.recv_frame()
        assert identifier == harness.protocol.POSITION_REPORT
        return seconds, tuple(float(coordinate) for coordinate in place)

    def wait_for_paint(self):
        """Waits until a frame has been painted after the client handled everything sent. Returns the ball's position.
        One pass answers for 10 ms, so a later answer comes from another pass."""
        begin = self.ask()[0]
        while abs(self.ask()[0] - begin) < 0.05:
            pass
        return self.ask()[1]

    def wait_for_rest(self):
        """Waits until the ball rests, so that it is always painted at the same position. Returns that."""
        return wait_for_rest(self.wait_for_paint, "the ball", looks=2)

    def report(self, seconds=PATIENCE):
        """The next position report as a pair of numbers. Skips other frames."""
        while True:
            identifier, fields = self.recv_frame(seconds)
            if identifier == harness.protocol.POSITION_REPORT:
                return float(fields[0]), float(fields[1])


class ScriptedServer:
    """A server scripted by the test."""

    def __init__(self):
        self.listener = listener()
        self.port = self.listener.getsockname()[1]
        self.lines = []

    def accept(self, seconds=PATIENCE):
        self.listener.settimeout(seconds)
        self.lines.append(Line(self.listener.accept()[0]))
        return self.lines[-1]

    def close(self):
        for line in self.lines:
            line.close()
        self.listener.close()
