"""The game's byte stream over TCP as it is, and in a WebSocket."""

import struct

HANDSHAKE = (b"GET /play HTTP/1.1\r\nHost: h\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
             b"Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n")


def web_frame(data):
    """A masked binary frame. The mask is all zeros, which costs the server the same."""
    size = bytes([0x80 | len(data)]) if len(data) < 126 else b"\xfe" + struct.pack(">H", len(data))
    return b"\x82" + size + bytes(4) + data


class RawStream:
    def __init__(self, socket, _path=b""):
        self.socket = socket

    def send(self, data):
        self.socket.sendall(data)

    def take(self, data):
        """The protocol's bytes in the received data."""
        return data


class WebStream:
    """Opens the WebSocket of this path. Raises ConnectionError if the server hangs up."""

    def __init__(self, socket, path=b"/play"):
        self.socket, self.unread = socket, b""
        socket.sendall(HANDSHAKE.replace(b"/play", path))
        head = b""
        while not head.endswith(b"\r\n\r\n"):
            if not (byte := socket.recv(1)):
                raise ConnectionError("no handshake")
            head += byte

    def send(self, data):
        self.socket.sendall(web_frame(data))

    def take(self, data):
        """The protocol's bytes in the frames that are whole by now."""
        self.unread += data
        taken = b""
        while len(self.unread) >= 2:
            size, start = self.unread[1], 2
            if size == 126:
                if len(self.unread) < 4:
                    break
                size, start = struct.unpack(">H", self.unread[2:4])[0], 4
            if len(self.unread) < start + size:
                break
            taken += self.unread[start:start + size]
            self.unread = self.unread[start + size:]
        return taken
