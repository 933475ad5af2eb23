"""Something waits out there: c phrygian, 80 beats a minute, large drums, voices, a growling bass, and a plucked figure
that never rests. Drone, A, B with moving chords, a quiet bridge for voices and bell, and A with everything."""

from sounds.instruments import bell, choir, growl_bass, harp, soft_pluck, strings
from sounds.score import Score
from sounds.theory import Chord, note, voiced

DRONE = "C5 C5 C5 Db/C"
A = "Cm Db/C Cm Bbm/C Cm Db/C Ab Cm"
B = "Ab Db Bbm Cm"
BRIDGE = "Fm Db Bbm Gdim"
LAST = "Cm Db/C Bbm Gdim"

THEME = """c4:3 db4 | f4:1.5 eb4:.5 db4:2 | c4:2 eb4 g4 | f4 eb4 db4:2 |
           c5:3 bb4 | ab4:1.5 f4:.5 db4:2 | eb4:2 ab4:1.5 g4:.5 | g4:3 -"""
RISE = """ab4 c5 eb5:2 | db5:1.5 c5:.5 ab4:2 | bb4 db5 f5:2 | eb5:2 c5 g4"""
TOLL = """c6:2 ab5:2 | f5:3 - | db6:2 bb5:2 | g5:2 bb5 db6"""
END = """c5:2 eb5 g5 | f5:1.5 eb5:.5 db5:2 | db5:2 bb4 f4 | g4:2 bb4 -"""


def piece():
    score = Score(80, 24, seed=103)
    score.bus("drums", -21, room=0.35)
    score.bus("bass", -23.5, room=0.05, duck=0.2)
    score.bus("choir", -24.5, room=0.7, low=120)
    score.bus("figure", -27.5, room=0.4, echo=0.4, low=180)
    score.bus("strings", -23, room=0.45, echo=0.1, low=120)
    score.bus("bells", -26, room=0.8, echo=0.35, low=250)

    symbols = f"{DRONE} {A} {B} {BRIDGE} {LAST}".split()
    chords = [Chord(symbol) for symbol in symbols]
    shape = (0, 7, 12, 7, 3, 12, 7, 12)
    for bar, (chord, notes) in enumerate(zip(chords, voiced(chords, 57))):
        at, still = 4 * bar, 16 <= bar < 20
        for place, tone in enumerate(notes):
            score.note("choir", choir, at, tone, 4, 1.0, -0.5 + 0.5 * place)
        if still:
            score.note("choir", choir, at, notes[-1] + 12, 4, 0.5)
        low = chord.bass(29)
        if still or bar < 4:
            score.note("bass", growl_bass, at, low, 3.9, 0.8)
        else:
            for place, length in ((0, 0.7), (0.75, 0.7), (1.5, 0.9), (2.5, 0.7), (3.25, 0.7)):
                up = 1 if place == 3.25 and bar % 4 == 1 and low % 12 == 0 else 0
                score.note("bass", growl_bass, at + place, low + up, length, 1.0 if place == 0 else 0.8)
        if bar >= 1 and not still:
            root = note("c4") + (chord.root - 60) % 12 - (12 if (chord.root - 60) % 12 > 5 else 0)
            third = (chord.third - chord.root) % 12
            fifth = (chord.fifth - chord.root) % 12
            for step, jump in enumerate(shape):
                jump = {3: third, 7: fifth}.get(jump, jump)
                voice = harp if bar >= 8 else soft_pluck
                score.note("figure", voice, at + step / 2, root + jump, 0.5, 1.0 if step in (0, 3, 6) else 0.7,
                           0.35 if step % 2 else -0.35)

    score.melody("bells", bell, 0, "c5:4 | g5:4 | db6:3 c6 | ab5:4", 0.8)
    score.melody("strings", strings, 4, THEME)
    score.melody("strings", strings, 12, RISE, 1.05)
    score.melody("strings", strings, 12, RISE, 0.6, -12)
    score.melody("bells", bell, 16, TOLL)
    score.melody("strings", strings, 20, END, 1.1)
    score.melody("strings", strings, 20, END, 0.7, -12)
    score.melody("bells", bell, 20, "c6:4 | db6:4 | bb5:4 | g5:3 -", 0.7)

    score.drums("drums", 0, 4, {"taiko": "o---------------"})
    score.drums("drums", 4, 8, {"taiko": "X--o----X--o--o-", "low_tom": "----x--x----x---", "rim": "--x---x---x---xx",
                                "shaker": "----x-------x-x-"}, 0.9)
    score.drums("drums", 12, 4, {"taiko": "X--X--X-X--X--X-", "tom": "--x--x--o-x--xoo", "low_tom": "----o--o----o---",
                                 "shaker": "o-x-o-x-o-x-o-x-"})
    score.drums("drums", 16, 4, {"taiko": "x---------------"})
    score.hit("drums", "riser", 77.33, 1.2)
    score.drums("drums", 20, 4, {"taiko": "X--X--X-X--X--X-", "tom": "--x--x--o-x--xxo", "low_tom": "----o--o----o---",
                                 "snare": "------------x---", "shaker": "o-x-o-x-o-x-o-x-"})
    score.drums("drums", 11, 1, {"tom": "--------x-xoo-XX"})
    score.drums("drums", 15, 1, {"tom": "--------o-oXX---", "low_tom": "------------X-X-"})
    score.drums("drums", 23, 1, {"tom": "--------x-xoo-XX", "low_tom": "--------X---X---"})
    for beat in (16, 48, 80):
        score.hit("drums", "crash", beat, 0.8)
    return score.finished(room=3.0, echo=0.75, echoes=0.45, shine=4500, air=3)
