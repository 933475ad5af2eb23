"""Six pieces of about a minute. Each is a row of sections over chords; melodies are written out in steps of the scale."""

from sounds import band
from sounds.band import Score

MAJOR = (0, 2, 4, 5, 7, 9, 11)
MINOR = (0, 2, 3, 5, 7, 8, 10)
DORIAN = (0, 2, 3, 5, 7, 9, 10)
LYDIAN = (0, 2, 4, 6, 7, 9, 11)
PHRYGIAN = (0, 1, 3, 5, 7, 8, 10)


class Key:
    def __init__(self, root, scale):
        self.root, self.scale = root, scale

    def note(self, step):
        """The note of a step of the scale; 0 is the root, 7 the octave."""
        return self.root + 12 * (step // 7) + self.scale[step % 7]

    def chord(self, step, size=3):
        return [self.note(step + 2 * i) for i in range(size)]


def drums(score, at, beats, pattern, level=1.0):
    """Lines of one character a sixteenth: X loud, x soft, - nothing."""
    sides = {"hat": 0.25, "open": 0.25, "shaker": -0.3, "rim": -0.2, "tom": 0.2}
    levels = {"kick": 0.95, "snare": 0.5, "hat": 0.32, "open": 0.26, "rim": 0.22, "shaker": 0.4, "tom": 0.55}
    for name, line in pattern.items():
        for step in range(int(beats * 4)):
            mark = line[step % len(line)]
            if mark == "-":
                continue
            loud = levels[name] * level * (1.0 if mark == "X" else 0.55)
            score.put(at + step / 4, band.drum(name), loud, sides.get(name, 0), 0.03 if name == "kick" else 0.12)


def melody(score, instrument, at, key, line, level, octave=0, side=0.0, room=0.35):
    """A line of (step or None for a rest, beats)."""
    for step, length in line:
        if step is not None:
            score.play(instrument, at, key.note(step) + 12 * octave, length * 0.95, level, side, room)
        at += length


def pads(score, at, notes, beats, level, room=0.5):
    for place, note in enumerate(notes):
        score.play(band.pad, at, note, beats, level, -0.5 + place / max(len(notes) - 1, 1), room)


def arpeggio(score, instrument, at, notes, order, beats, step, level, room=0.3):
    for count in range(int(round(beats / step))):
        note = notes[order[count % len(order)] % len(notes)] + 12 * (order[count % len(order)] // len(notes))
        accent = 1.0 if count % 4 == 0 else 0.72
        score.play(instrument, at + count * step, note, step, level * accent, 0.35 if count % 2 else -0.35, room)


def first():
    """Setting out: a minor key that drives."""
    key, bars = Key(57, MINOR), 32
    score = Score(114, bars * 4)
    chords = (0, 5, 2, 6)
    theme = [(4, 1.5), (5, 0.5), (4, 1), (2, 1), (0, 2), (2, 1), (4, 1), (6, 1.5), (4, 0.5), (5, 1), (4, 1), (1, 3),
             (None, 1)]
    answer = [(7, 1.5), (6, 0.5), (7, 1), (4, 1), (5, 2), (4, 1), (2, 1), (4, 1.5), (2, 0.5), (1, 1), (2, 1), (0, 3),
              (None, 1)]
    for bar in range(bars):
        at, step = 4 * bar, chords[bar % 4] - (7 if chords[bar % 4] > 4 else 0)
        pads(score, at, key.chord(step), 4, 0.1)
        arpeggio(score, band.pluck, at, [n + 12 for n in key.chord(step)], (0, 1, 2, 3, 2, 1, 4, 2), 4, 0.5, 0.15)
        if bar >= 4:
            for eighth in range(8):
                score.play(band.bass, at + eighth / 2, key.note(step) - 24 + (12 if eighth % 4 == 3 else 0), 0.42,
                           0.34 if eighth % 2 == 0 else 0.24, 0, 0.02)
        if 4 <= bar < 30:
            full = bar >= 8
            drums(score, at, 4, {"kick": "X---X---X---X---", "hat": "--x---X---x---X-",
                                 **({"snare": "----X-------X--x"} if full else {})}, 0.8)
    for bar, line in ((8, theme), (12, answer), (16, theme), (24, theme), (28, answer)):
        melody(score, band.lead, 4 * bar, key, line, 0.12, 1, 0.1)
    for bar in (20, 22):
        melody(score, band.bell, 4 * bar, key, [(7, 1), (9, 1), (11, 2), (9, 1), (8, 1), (7, 2)], 0.13, 1, -0.3)
    return score.finished(1.2)


def second():
    """Open space: bright and hopeful."""
    key, bars = Key(60, LYDIAN), 28
    score = Score(100, bars * 4)
    chords = (0, 1, 5, 4)
    theme = [(4, 1), (6, 1), (7, 2), (8, 1.5), (7, 0.5), (6, 2), (4, 1), (2, 1), (4, 1.5), (5, 0.5), (4, 4)]
    for bar in range(bars):
        at, step = 4 * bar, chords[bar % 4] - (7 if chords[bar % 4] >= 4 else 0)
        pads(score, at, key.chord(step, 4), 4, 0.085)
        if bar >= 2:
            arpeggio(score, band.bell, at, [n + 12 for n in key.chord(step, 4)], (0, 2, 1, 3, 2, 4), 4, 0.5, 0.07)
        if bar >= 4:
            for place, length in ((0, 1.4), (1.5, 0.9), (2.5, 1.4)):
                score.play(band.bass, at + place, key.note(step) - 24, length, 0.34, 0, 0.02)
        if 8 <= bar < 26:
            drums(score, at, 4, {"kick": "X-----x-X-------", "snare": "----x-------X---", "shaker": "x-X-x-X-x-X-x-X-"},
                  0.75)
    for bar in (4, 12, 20):
        melody(score, band.pluck, 4 * bar, key, theme, 0.2, 1, -0.1)
        melody(score, band.pluck, 4 * bar + 16, key, theme[:-1] + [(7, 4)], 0.2, 1, -0.1)
    for bar in (12, 16, 20):
        melody(score, band.lead, 4 * bar, key, [(0, 4), (1, 4), (-2, 4), (-3, 4)], 0.09, 1, 0.3)
    return score.finished(1.8)


def third():
    """Something waits out there: dark and slow."""
    key, bars = Key(50, PHRYGIAN), 24
    score = Score(88, bars * 4)
    chords = (0, 0, 1, 0, 5, 3, 1, 0)
    theme = [(0, 3), (1, 1), (0, 2), (-2, 2), (0, 3), (3, 1), (2, 2), (1, 2)]
    for bar in range(bars):
        at, step = 4 * bar, chords[bar % 8]
        pads(score, at, [key.note(step) - 12, *key.chord(step)], 4, 0.11, 0.7)
        if bar >= 2:
            for place in (0, 0.75, 1.5, 2.5, 3.25):
                score.play(band.bass, at + place, key.note(step) - 12, 0.55, 0.36, 0, 0.05)
        if bar >= 4:
            drums(score, at, 4, {"tom": "X--x--x---X--x-x", "rim": "----x--x----x---", "kick": "X-------X-x-----"}, 0.8)
        if bar % 2 == 1:
            arpeggio(score, band.pluck, at + 2, [n + 24 for n in key.chord(step)], (2, 1, 0, 1), 2, 0.25, 0.09, 0.6)
    for bar in (6, 14):
        melody(score, band.lead, 4 * bar, key, theme, 0.12, 1, -0.15, 0.6)
        melody(score, band.bell, 4 * bar + 16, key, theme, 0.1, 2, 0.3, 0.6)
    return score.finished(2.2)


def fourth():
    """The chase: fast, all eighths and offbeats."""
    key, bars = Key(52, DORIAN), 36
    score = Score(132, bars * 4)
    chords = (0, 3, 6, 3, 0, 3, 5, 6)
    riff = [(0, 0.5), (0, 0.5), (4, 0.5), (0, 0.5), (3, 0.5), (2, 0.5), (0, 0.5), (-1, 0.5)]
    theme = [(4, 0.75), (4, 0.75), (5, 0.5), (4, 1), (2, 1), (3, 0.75), (3, 0.75), (4, 0.5), (3, 1), (1, 1),
             (6, 0.75), (6, 0.75), (7, 0.5), (6, 1), (4, 1), (5, 1.5), (3, 0.5), (2, 2)]
    for bar in range(bars):
        at, step = 4 * bar, chords[bar % 8] - (7 if chords[bar % 8] > 4 else 0)
        for eighth, (offset, _) in enumerate(riff):
            score.play(band.bass, at + eighth / 2, key.note(step + (offset if bar % 4 == 3 else 0)) - 12, 0.4,
                       0.34 if eighth % 2 == 0 else 0.26, 0, 0.02)
        if bar >= 4:
            for place in (0.5, 1.5, 2.5, 3.5):
                for number, note in enumerate(key.chord(step)):
                    score.play(band.pluck, at + place, note + 12, 0.3, 0.11, -0.4 + 0.4 * number, 0.2)
        if 2 <= bar < 34:
            drums(score, at, 4, {"kick": "X---X---X---X-x-", "snare": "----X-------X---" if bar % 8 < 7 else "----X--x--X-XxXX",
                                 "hat": "x-X-x-X-x-X-x-X-", "open": "--X-------X-----"}, 0.8)
        if 16 <= bar < 24:
            pads(score, at, key.chord(step), 4, 0.09)
            arpeggio(score, band.pluck, at, [n + 24 for n in key.chord(step)], (0, 1, 2, 1), 4, 0.25, 0.09)
    for bar in (8, 12, 24, 28):
        melody(score, band.lead, 4 * bar, key, theme, 0.13, 1, 0.1)
        if bar >= 24:
            melody(score, band.bell, 4 * bar, key, theme, 0.06, 2, -0.35)
    return score.finished(0.9)


def fifth():
    """Drifting: three beats to the bar, bells and strings."""
    key, bars = Key(53, LYDIAN), 36
    score = Score(96, bars * 3)
    chords = (0, 4, 5, 1)
    theme = [(4, 2), (5, 1), (7, 2), (6, 1), (4, 2), (2, 1), (1, 3), (4, 2), (5, 1), (8, 2), (7, 1), (6, 2), (4, 1),
             (4, 3)]
    for bar in range(bars):
        at, step = 3 * bar, chords[bar % 4] - (7 if chords[bar % 4] >= 4 else 0)
        pads(score, at, key.chord(step, 4), 3, 0.1, 0.7)
        score.play(band.bass, at, key.note(step) - 12 if step < 0 else key.note(step) - 24, 2.6, 0.3, 0, 0.05)
        arpeggio(score, band.pluck, at, [n + 12 for n in key.chord(step, 4)], (0, 1, 2, 3, 2, 1), 3, 0.5, 0.1, 0.5)
        if bar >= 8:
            drums(score, at, 3, {"shaker": "x---X-x-X-x-", "kick": "x-----------"}, 0.6)
    for bar in (4, 12, 20, 28):
        melody(score, band.bell, 3 * bar, key, theme, 0.14, 1, -0.2, 0.6)
        if bar >= 12:
            melody(score, band.lead, 3 * bar, key, [(0, 6), (1, 6), (2, 6), (1, 3), (0, 3)], 0.07, 1, 0.3, 0.6)
    return score.finished(2.6)


def shopping():
    """The store: an easy, swinging lounge."""
    key, bars = Key(60, MAJOR), 28
    score = Score(108, bars * 4)
    chords = (0, 5, 1, 4)
    swing = 2 / 3
    theme = [(4, 1 + swing), (5, 1 / 3), (4, 1), (2, 1), (0, swing), (2, 1 / 3 + 1), (4, 2), (3, 1 + swing), (4, 1 / 3),
             (3, 1), (1, 1), (6, swing), (5, 1 / 3 + 1), (4, 2)]
    ending = theme[:-3] + [(1, swing), (-1, 1 / 3 + 1), (0, 2)]
    for bar in range(bars):
        at, step = 4 * bar, chords[bar % 4] - (7 if chords[bar % 4] >= 4 else 0)
        walk = (step, step + 2, step + 4, step + 5) if bar % 2 == 0 else (step, step + 4, step + 2, step + 1)
        for beat, note in enumerate(walk):
            score.play(band.bass, at + beat, key.note(note) - 24, 0.85, 0.34, 0, 0.03)
        for place in (swing, 2, 2 + swing) if bar % 2 else (0, 1 + swing):
            for number, note in enumerate(key.chord(step, 4)):
                score.play(band.keys, at + place, note, 0.6, 0.075, -0.45 + 0.3 * number, 0.25)
        if bar >= 2:
            for beat in range(4):
                score.put(at + beat, band.drum("shaker"), 0.3, -0.3, 0.1)
                score.put(at + beat + swing, band.drum("hat"), 0.2, 0.3, 0.1)
            for beat in (1, 3):
                score.put(at + beat, band.drum("rim"), 0.16, -0.2, 0.15)
            score.put(at, band.drum("kick"), 0.5, 0, 0.03)
    for bar, instrument in ((4, band.bell), (12, band.lead), (20, band.bell)):
        level = 0.12 if instrument is band.bell else 0.1
        melody(score, instrument, 4 * bar, key, theme, level, 1, 0.15)
        melody(score, instrument, 4 * bar + 16, key, ending, level, 1, 0.15)
    return score.finished(1.0)


PIECES = {"music1": first, "music2": second, "music3": third, "music4": fourth, "music5": fifth,
          "music_shopping": shopping}


def all_pieces(chosen=None):
    """Name and samples of every piece, or of the chosen one."""
    for name, make in PIECES.items():
        if chosen in (None, name):
            yield name, make()
