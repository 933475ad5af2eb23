"""The music, one module per piece: music1 to music5 rotate in the game, the last one plays in the store."""

from sounds.pieces import chase, drifting, open_space, setting_out, something_waits, store

PIECES = {
    "music1": setting_out.piece,
    "music2": open_space.piece,
    "music3": something_waits.piece,
    "music4": chase.piece,
    "music5": drifting.piece,
    "music_shopping": store.piece,
}


def all_pieces(chosen=None):
    """Name and samples of every piece, or of the selected one."""
    for name, make in PIECES.items():
        if chosen in (None, name):
            yield name, make()
