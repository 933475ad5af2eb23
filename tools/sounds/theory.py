"""Notes, chords and melodies in the notation of the pieces."""

import re

LETTERS = {"c": 0, "d": 2, "e": 4, "f": 5, "g": 7, "a": 9, "b": 11}
QUALITIES = {
    "": (0, 4, 7), "m": (0, 3, 7), "dim": (0, 3, 6), "sus2": (0, 2, 7), "sus4": (0, 5, 7), "add9": (0, 2, 4, 7),
    "madd9": (0, 2, 3, 7), "6": (0, 4, 7, 9), "m6": (0, 3, 7, 9), "7": (0, 4, 7, 10), "m7": (0, 3, 7, 10),
    "maj7": (0, 4, 7, 11), "7sus4": (0, 5, 7, 10), "9": (2, 4, 7, 10), "m9": (2, 3, 7, 10), "maj9": (2, 4, 7, 11),
    "5": (0, 7),
}


def pitch_class(name):
    """The pitch class of a letter with its accidentals; 0 is c."""
    return (LETTERS[name[0].lower()] + name.count("#") - name[1:].count("b")) % 12


def note(name):
    """The number of "c#4"; 69 is a4."""
    letter, signs, octave = re.fullmatch(r"([a-g])(#*|b*)(-?\d)", name).groups()
    return LETTERS[letter] + len(signs) * (-1 if "b" in signs else 1) + 12 * (int(octave) + 1)


class Chord:
    """A chord symbol such as "Am7" or "E/D": its pitch classes, and that of the bass."""

    def __init__(self, symbol):
        root, quality, _, low = re.fullmatch(r"([A-G][#b]?)([^/]*)(/([A-G][#b]?))?", symbol).groups()
        self.root = pitch_class(root)
        self.tones = [(self.root + step) % 12 for step in QUALITIES[quality]]
        self.low = pitch_class(low) if low else self.root
        self.third = (self.root + QUALITIES[quality][1]) % 12
        self.fifth = (self.root + 7) % 12 if quality != "dim" else (self.root + 6) % 12

    def bass(self, lowest, tone=None):
        """The bass note, or another chord tone, at or above a note."""
        tone = self.low if tone is None else tone
        return lowest + (tone - lowest) % 12


def voiced(chords, centre):
    """The notes of every chord in close position near a note, with each voice moving the shortest way."""
    last, result = None, []
    for chord in chords:
        best = None
        for lowest in range(centre - 12, centre + 4):
            if lowest % 12 not in chord.tones:
                continue
            notes = sorted(lowest + (tone - lowest) % 12 for tone in chord.tones)
            away = abs(sum(notes) / len(notes) - centre)
            moved = 0
            if last:
                moved = sum(min(abs(n - old) for old in last) for n in notes) + abs(notes[-1] - last[-1])
            cost = moved + 0.8 * away
            if best is None or cost < best[0]:
                best = (cost, notes)
        last = best[1]
        result.append(last)
    return result


def tune(text, bar):
    """Parses "e5:1.5 c5 -:0.5 | ..." into a list of (note or None, beats). Without a colon a note lasts one beat.
    Between two bar lines the notes must fill the bar."""
    result = []
    for number, part in enumerate(text.split("|"), start=1):
        total = 0
        for token in part.split():
            name, _, length = token.partition(":")
            beats = float(length or 1)
            result.append((None if name == "-" else note(name), beats))
            total += beats
        if total % bar or not total:
            raise ValueError(f"bar {number} of the tune has {total} beats")
    return result
