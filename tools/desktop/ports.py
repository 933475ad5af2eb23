"""Free ports of this machine, which stay reserved until the program ends."""

import random
import socket

reserved = []


def free_port():
    """A port that the connect dialog and lists accept. A socket is bound to it, which keeps other programs from
    choosing it, but allows a listener."""
    while True:
        probe = socket.socket()
        try:
            probe.bind(("127.0.0.1", random.randrange(20000, 32000)))
        except OSError:
            probe.close()
            continue
        # Only now: it would share the port with other probes.
        probe.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        reserved.append(probe)
        return probe.getsockname()[1]
