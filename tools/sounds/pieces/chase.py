"""The chase: e dorian, 168 beats a minute, a broken beat, stabs of brass against the bass. Intro, A, B, A again, a
break that builds up over rim shots, and B in octaves with a fill that leads back to the beginning."""

from sounds.instruments import brass, lead, pad, pluck, synth_bass, wide
from sounds.score import Score
from sounds.theory import Chord, voiced

INTRO = "Em Em A A Em Em D A"
A = "Em Em A A Em Em D A"
B = "G A Em Em G A D Bm"
BREAK = "Em Em D D A A Bm Bm"

THEME = """e5:.5 e5:.5 g5:.5 e5:.5 a5 g5 | f#5:.5 e5:.5 d5 e5:2 |
           c#5:.5 c#5:.5 e5:.5 c#5:.5 f#5 e5 | c#5:.5 b4:.5 a4 c#5:2 |
           e5:.5 e5:.5 g5:.5 e5:.5 b5 a5 | g5:.5 f#5:.5 e5 b4:2 |
           d5:.5 d5:.5 f#5:.5 d5:.5 a5 f#5 | e5:.5 d5:.5 c#5 a4:2"""
AGAIN = """e5:.5 e5:.5 g5:.5 e5:.5 a5 g5 | f#5:.5 e5:.5 d5 e5:2 |
           c#5:.5 e5:.5 a5:.5 e5:.5 f#5 e5 | c#5:.5 b4:.5 a4 e5:2 |
           e5:.5 g5:.5 b5:.5 g5:.5 d6 b5 | a5:.5 g5:.5 f#5 e5:2 |
           d5:.5 f#5:.5 a5:.5 f#5:.5 d6 a5 | c#6:.5 b5:.5 a5 e5:2"""
CHORUS = """b5:2 d6:1.5 b5:.5 | a5:2 c#6:1.5 a5:.5 | g5:1.5 f#5:.5 e5 g5 | b5:3 - |
            b5:2 d6:1.5 e6:.5 | c#6:2 a5:1.5 e5:.5 | f#5:1.5 a5:.5 d6 c#6 | b5:3 -"""


def piece():
    score = Score(168, 48, seed=104)
    score.bus("drums", -19.5, room=0.12)
    score.bus("bass", -21.5, room=0.02, duck=0.4)
    score.bus("brass", -25, room=0.25, echo=0.12, duck=0.2, low=180)
    score.bus("pads", -29, room=0.4, duck=0.4, low=180)
    score.bus("arpeggio", -28, room=0.2, echo=0.3, duck=0.2, low=250)
    score.bus("lead", -22, room=0.22, echo=0.2, low=250)

    symbols = f"{INTRO} {A} {B} {A} {BREAK} {B}".split()
    chords = [Chord(symbol) for symbol in symbols]
    for bar, (chord, notes) in enumerate(zip(chords, voiced(chords, 62))):
        at, part = 4 * bar, bar // 8  # 0 intro, 1 A, 2 B, 3 A, 4 break, 5 B
        low = chord.bass(31)
        if part == 4:
            score.note("bass", synth_bass, at, low, 3.6, 0.85)
        else:
            rhythm = (0, 0.75, 1.5, 2, 2.75, 3.5) if part in (0, 1, 3) else (0, 0.5, 1, 1.5, 2, 2.5, 3, 3.5)
            for number, place in enumerate(rhythm):
                jump = {3.5: 12, 2.75: 7}.get(place, 0)
                score.note("bass", synth_bass, at + place, low + jump, 0.42, 1.0 if number % 2 == 0 else 0.8)
        if part in (1, 3) or (part == 0 and bar >= 4):
            for place, length in (((0.5, 0.3), (2, 0.6), (3.5, 0.3)) if bar % 2 else ((0.5, 0.3), (1.5, 0.3))):
                for number, tone in enumerate(notes):
                    score.note("brass", brass, at + place, tone, length, 1.0, -0.5 + 0.5 * number)
        if part in (2, 5):
            for number, tone in enumerate(notes):
                score.note("pads", wide, at, tone, 4, 1.0, -0.3 + 0.3 * number)
        if part == 4:
            for number, tone in enumerate(notes):
                score.note("pads", pad, at, tone, 4, 1.8, -0.3 + 0.3 * number)
        if part in (2, 4, 5) or bar < 4:
            ladder = notes + [tone + 12 for tone in notes]
            for step in range(8 if part == 4 and bar < 36 else 16):
                width = 0.5 if part == 4 and bar < 36 else 0.25
                score.note("arpeggio", pluck, at + step * width, ladder[(0, 2, 4, 3, 5, 4, 2, 1)[step % 8]] + 12, width,
                           (1.4 if part == 4 else 1.0) * (1.0 if step % 4 == 0 else 0.7), 0.45 if step % 2 else -0.45)

    score.melody("lead", lead, 8, THEME, glide=True)
    score.melody("lead", lead, 16, CHORUS, glide=True)
    score.melody("lead", lead, 24, AGAIN, glide=True)
    score.melody("lead", lead, 36, "e5:3 f#5 | g5:3 a5 | b5:2 d6:2 | b5:2 f#5:1 -", 0.8, glide=True)
    score.melody("lead", lead, 40, CHORUS, glide=True)
    score.melody("lead", lead, 40, CHORUS, 0.5, -12, glide=True)

    broken = {"kick": "X-X-------X-----", "snare": "----X--x-x--X--x", "hat": "o-x-o-x-o-x-o-x-"}
    busy = {"kick": "X-X---X---X---x-", "snare": "----X--x-x--X--x",
            "ride": "o-o-o-o-o-o-o-o-", "hat": "--x---x---x---xx"}
    score.hit("drums", "crash", 0, 0.6)
    score.drums("drums", 0, 4, {"hat": "o-x-o-x-o-x-o-x-", "kick": "X---------------", "rim": "------x---x-----"})
    score.drums("drums", 4, 3, broken)
    score.drums("drums", 7, 1, {"kick": "X-X-----X-------", "snare": "----X-xxo-xxXoXX"})
    for bar, pattern in ((8, broken), (16, busy), (24, broken), (40, busy)):
        score.hit("drums", "crash", 4 * bar)
        score.drums("drums", bar, 7, pattern)
        score.drums("drums", bar + 7, 1, {"kick": "X-X---X---------", "snare": "----X--x--o-XxXX",
                                          "tom": "--------X-X-----"})
    score.hit("drums", "crash", 128)
    score.drums("drums", 32, 4, {"rim": "X--o--X---o-X---", "hat": "o---o---o---o-x-", "tom": "X---------------"})
    score.drums("drums", 36, 3, {"kick": "X---X---X---X---", "hat": "o-x-o-x-o-x-o-x-", "rim": "X--o--X---o-X---"})
    score.drums("drums", 39, 1, {"snare": "x-x-x-x-ooooXXXX", "kick": "X---X---X-X-X-X-"})
    score.hit("drums", "riser", 154.4)
    return score.finished(room=0.9, echo=0.75, echoes=0.35, shine=7500)
