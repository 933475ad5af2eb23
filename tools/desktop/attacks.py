"""Messages of a hostile server to a client that is logged in as node 7."""

import harness
from protocol import (ALIVE_STATE, CHAT, END, FUNDS, LOGIN_ACCEPTED, LOGIN_DENIED, PLAYER_JOINED, PLAYER_LEFT, POSITION,
                      POWERUP_OFF, POWERUP_ON, RESPAWN, SEPARATOR, SPAWN_DENIED, START, TAIL_CAPTURE, VELOCITY,
                      frame)

ODD_NUMBERS = ["-32769", "-32768", "-1", "6", "255", "256", "32767", "32768", "65536", "99999999999"]
EXTREME_VALUES = ["nan", "-nan", "inf", "-inf", "infinity", "1e999", "-1e999", "1e308", "-1e308", "3.4e38", "-3.4e38",
                  "3.5e38", "1e-400", "1e-40", "2147483647", "-2147483648", "2147483648", "99999.99", "-1", "", "word",
                  ".", "-", "+", "e5", "1e", "0x7f", "9" * 400, "." + "0" * 400 + "1"]
# They fit into one packet. Longer ones could arrive in two reads, and the game loses a message that spans two.
LONG_TEXTS = ["x" * 30000, "word " * 6000, "\n" * 30000]
USUAL = {"int16": "1", "int32": "1", "single": "50010.5", "real": "5"}
BOB = frame(PLAYER_JOINED, 8, 1, "Bob", 50050, 50050, 1, 0)

# Each end byte appends to its entry everything that the read has brought since the start, so little input becomes much.
REPEATED_ENDS = (bytes([START, CHAT]) + b"7" + bytes([SEPARATOR]) + b"x" + bytes([END]) * 1000) * 64

# All of them alive, visible, and with a chat line each. They are sent forty times.
THOUSAND_JOINS = b"".join(frame(PLAYER_JOINED, 8 + n, n % 6, f"Player {n}", 50000 + n * 4, 50000 - n * 3, 1, 0)
                          for n in range(1000))
# Messages for the last of them, and for an unknown one.
LATE_MESSAGES = [frame(POSITION, node, 50000, 50000) * 5000 for node in (1007, 31000)]

BOX_FLOOD = b"".join(frame(POSITION, 7, 50000 + n, 50000) + frame(CHAT, 7, "hello") + frame(SPAWN_DENIED) +
                     frame(POSITION, 8, 50000, 50000 + n) + bytes([START]) for n in range(100)) + BOB


def nodes_and_colours():
    """Numbers out of range in every message that has a node or a colour."""
    everything = b""
    for number in ODD_NUMBERS:
        everything += frame(PLAYER_JOINED, number, 1, "Node", 50100, 50100, 1, number)
        everything += frame(PLAYER_JOINED, 9, number, "Colour", 50200, 50200, 1, 0)
        everything += frame(TAIL_CAPTURE, 7, 9, 1, 1) + frame(RESPAWN, 9)
        for identifier in (POSITION, PLAYER_LEFT, TAIL_CAPTURE, CHAT, FUNDS, RESPAWN, POWERUP_ON, POWERUP_OFF, VELOCITY,
                           ALIVE_STATE):
            everything += frame(identifier, number, number, 50000, 50000)
            everything += frame(identifier, 9, number, number, number)
    return everything


def odd_logins():
    """A colour that doesn't exist, replaced before a frame can paint it."""
    return [frame(LOGIN_ACCEPTED, number, 7, 50000, 50000) + frame(LOGIN_ACCEPTED, 0, number, 50000, 50000)
            for number in ODD_NUMBERS]


def extreme_numbers():
    """For each numeric field of each message: its id, the field's number, and the frames with every odd value in it."""
    for identifier, types in harness.protocol.TO_CLIENT.items():
        for field, kind in enumerate(types):
            if kind == "text":
                continue
            frames = []
            for value in EXTREME_VALUES:
                # The own node, an opponent's and an unknown one. An unknown colour in a login ends the game, later.
                for node in ("7", "8", "99") if types[0] == "int16" and identifier != LOGIN_ACCEPTED else ("1",):
                    fields = [dict(USUAL, text="Bob")[one] for one in types]
                    fields[0] = node
                    fields[field] = value
                    if (identifier, field, value) != (LOGIN_ACCEPTED, 0, "-1"):
                        frames.append(frame(identifier, *fields))
            yield identifier, field, frames


def long_texts():
    """Every message with a text, with long texts. Each should arrive in one read."""
    for identifier, types in harness.protocol.TO_CLIENT.items():
        if identifier != LOGIN_DENIED and "text" in types:
            for text in LONG_TEXTS:
                yield frame(identifier, *[dict(USUAL, text=text)[kind] for kind in types])


def captures():
    """Captures by and of everybody, known or not."""
    return b"".join(frame(TAIL_CAPTURE, winner, loser, *place)
                    for winner in (7, 8, 9, 99, -1, 0) for loser in (7, 8, 9, 99, -1, 0)
                    for place in ((50000, 50000), (1, 1), (-5, 1e38), ("nan", "")))


def captures_at_a_vertex():
    """The same, and a hundred of an unknown player at a vertex of the own tail, among respawns and departures."""
    everything = captures() + frame(TAIL_CAPTURE, 7, 99, 50000.5, 50000) * 100
    for node in (7, 8):
        everything += frame(RESPAWN, node) + frame(PLAYER_LEFT, 99)
    return everything
