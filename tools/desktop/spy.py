"""A player of the real server who only watches."""

import socket

import harness
from protocol import LOGIN, LOGIN_ACCEPTED, PING, PING_REPLY, POSITION_REPORT
from servers import Line


class Spy(Line):
    """A player who flies nowhere and reads all that the real server says."""

    def __init__(self, port, name="Spy", colour=5):
        super().__init__(socket.create_connection(("127.0.0.1", port)))
        self.send(LOGIN, name, "", colour, harness.VERSION)
        identifier, fields = self.recv_frame()
        assert identifier == LOGIN_ACCEPTED, (identifier, fields)
        self.node = fields[1]
        self.start = float(fields[2]), float(fields[3])

    def await_frame(self, wanted, condition=lambda fields: True):
        """The fields of the next such frame. Answers pings meanwhile. None once the server has closed."""
        while received := self.recv_frame():
            identifier, fields = received
            if identifier == PING:
                self.send(PING_REPLY, 1)
                self.send(POSITION_REPORT, *self.start)
            if identifier == wanted and condition(fields):
                return fields
