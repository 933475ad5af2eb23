"""Open space: d lydian, 96 beats a minute, a broken beat at half speed, a flute and bells over a long bass note. Intro,
A, B, which leaves the bass note and climbs, and A again with two flutes and glass."""

from sounds.instruments import bell, double_bass, flute, harp, pad, soft_pluck, strings
from sounds.score import Score
from sounds.theory import Chord, voiced

INTRO = "Dmaj7 E/D Dmaj7 E/D"
A = "Dmaj7 E/D F#m7 Aadd9 Dmaj7 E/D F#m7 Aadd9"
B = "Bm7 C#m7 Dmaj7 E Bm7 C#m7 Dmaj7 E"
LAST = "Dmaj7 E/D F#m7 Aadd9 Dmaj7 E/D Dmaj7 E/D"

THEME = """f#5:1.5 g#5:.5 a5:2 | b5 a5:.5 g#5:.5 e5:2 | c#5 e5 f#5:1.5 g#5:.5 | e5:3 - |
           f#5:1.5 g#5:.5 a5 c#6 | b5:1.5 g#5:.5 e5 g#5 | a5 g#5:.5 f#5:.5 c#5:2 | e5 c#5 b4:2"""
CLIMB = """d5:2 f#5 a5 | g#5:3 e5 | f#5:2 a5 c#6 | b5:3 g#5 |
           a5 f#5 d5 f#5 | e5:2 g#5:2 | a5:1.5 f#5:.5 e5 d5 | e5:3 -"""
RETURN = """f#5:1.5 g#5:.5 a5:2 | b5 a5:.5 g#5:.5 e5:2 | c#5 e5 f#5:1.5 g#5:.5 | e5:2 g#5 b5 |
            c#6:1.5 b5:.5 a5 f#5 | b5:1.5 g#5:.5 e5 g#5 | a5:2 f#5:2 | e5:1.5 f#5:.5 g#5 -"""
BELOW = """d5:1.5 e5:.5 f#5:2 | g#5 f#5:.5 e5:.5 b4:2 | a4 c#5 a4:1.5 b4:.5 | c#5:2 e5 g#5 |
           a5:1.5 g#5:.5 f#5 d5 | g#5:1.5 e5:.5 b4 e5 | f#5:2 d5:2 | b4:1.5 d5:.5 e5 -"""


def piece():
    score = Score(96, 28, swing=(0.5, 0.54), seed=102)
    score.bus("drums", -23, room=0.2)
    score.bus("bass", -23, room=0.05, duck=0.25)
    score.bus("pads", -27, room=0.6, duck=0.2, low=150)
    score.bus("bells", -28, room=0.6, echo=0.45, low=300)
    score.bus("harp", -28, room=0.45, echo=0.2, low=200)
    score.bus("flute", -22.5, room=0.5, echo=0.18, low=200)
    score.bus("strings", -25.5, room=0.5, low=180)

    symbols = f"{INTRO} {A} {B} {LAST}".split()
    chords = [Chord(symbol) for symbol in symbols]
    for bar, (chord, notes) in enumerate(zip(chords, voiced(chords, 61))):
        at, climbing = 4 * bar, 12 <= bar < 20
        for place, note in enumerate(notes):
            score.note("pads", pad, at, note, 4, 1.0, -0.4 + 0.25 * place)
        if not climbing:
            for step, place in enumerate((0, 2, 1, 3, 2, 4, 3, 1)):
                ladder = notes + [note + 12 for note in notes]
                score.note("bells", bell, at + step / 2, ladder[place] + 12, 0.5, 1.0 if step % 4 == 0 else 0.65,
                           0.45 if step % 2 else -0.45)
        if climbing or bar >= 20:
            for step in range(8 if climbing else 4):
                ladder = [note - 12 for note in notes] + notes + [note + 12 for note in notes]
                voice = harp if climbing else soft_pluck
                score.note("harp", voice, at + step * (0.5 if climbing else 1), ladder[(step * 2) % len(ladder)], 0.9,
                           0.9, -0.3 + 0.08 * step)
        if bar >= 2:
            low = chord.bass(34)
            for place, length in ((0, 1.4), (1.5, 0.9), (2.5, 1.4)):
                tone = low + (7 if place == 2.5 and climbing else 0)
                score.note("bass", double_bass, at + place, tone, length, 1.0 if place == 0 else 0.8)

    score.melody("flute", flute, 4, THEME, glide=True)
    score.melody("strings", strings, 12, CLIMB, 1.0, 0)
    score.melody("strings", strings, 12, CLIMB, 0.7, -12)
    score.melody("flute", flute, 16, "- a6:3 | - g#6:3 | f#6:2 e6:2 | e6:4", 0.5, -12)
    score.melody("flute", flute, 20, RETURN, side=-0.25, glide=True)
    score.melody("flute", flute, 20, BELOW, 0.6, side=0.35, glide=True)

    score.drums("drums", 2, 2, {"shaker": "x-o-x-o-x-o-x-o-"})
    score.drums("drums", 4, 8, {"soft_kick": "X-----x-X-------", "rim": "----o-------X--x",
                                "shaker": "x-o-x-o-x-o-x-oo",
                                "conga": "--x-----o--x----"})
    score.drums("drums", 12, 8, {"soft_kick": "X--x--X---x-----", "snap": "--------X-------",
                                 "shaker": "xoxoxoxoxoxoxoxo",
                                 "conga": "----x--o------x-", "high_conga": "--o-------o--x--"})
    score.drums("drums", 20, 8, {"soft_kick": "X-----x-X---x---", "snap": "----X-------X---",
                                 "shaker": "xxoxxxoxxxoxxxoo",
                                 "conga": "--x-----o--x--o-", "ride": "X-------o-------"})
    for bar in (11, 19, 27):
        score.drums("drums", bar, 1, {"high_conga": "--------x-o-X-X-", "conga": "---------x-o-X-X",
                                      "tom": "------------o-X-"})
    for beat in (16, 48, 80):
        score.hit("drums", "crash", beat, 0.5)
    return score.finished(room=2.2, echo=1.5, echoes=0.5, air=3)
