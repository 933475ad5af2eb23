"""The store: e flat major, 116 beats a minute, an easy swing with an electric piano, a walking bass and brushes. A
four-bar intro, then an A A B A song: vibraphone, flute, marimba, and vibraphone with flute. It is written in g and
sounds a major third lower."""

from sounds.instruments import double_bass, flute, keys, marimba, vibraphone
from sounds.score import Score
from sounds.theory import Chord, voiced

COME_IN = "Gmaj7 E7 Am7 D7 Bm7 E7 Am7 D7"
A = "Gmaj7 E7 Am7 D7 Bm7 E7 Am7 D7 Gmaj7 G7 Cmaj7 Cm6 Bm7 E7 Am7 D7"
B = "Cmaj7 Cmaj7 Cm6 Cm6 Bm7 Bm7 E7 E7 Am7 Am7 A7 A7 Am7 Am7 D7 D7"

THEME = """d5 b4:.5 d5:1 e5:.5 g#4 | a4 c5:.5 e5:1 d5:.5 c5 | d5 f#5:.5 d5:1 b4:.5 g#4 | c5:1.5 a4:.5 f#4 - |
           d5 b4:.5 d5:1 f5:.5 d5 | e5:1.5 g5:.5 eb5 c5 | d5 b4:.5 d5:1 e5:.5 d5 | c5:1.5 a4:.5 d5 -"""
SECOND = """g5 f#5:.5 d5:1 e5:.5 b4 | c5 e5:.5 g5:1 f#5:.5 d5 | f#5 a5:.5 f#5:1 d5:.5 b4 | e5:1.5 c5:.5 a4 - |
            g5 f#5:.5 d5:1 b4:.5 f5 | e5:1.5 g5:.5 a5 g5 | f#5 d5:.5 f#5:1 e5:.5 g#4 | a4:1.5 c5:.5 b4 -"""
MIDDLE = """g5:1.5 e5:.5 c5 e5 | g5:1.5 eb5:.5 c5:2 | f#5:1.5 d5:.5 b4 d5 | e5:2 g#5 - |
            a5:1.5 g5:.5 e5 c5 | c#5:1.5 e5:.5 g5:2 | e5 c5:.5 e5:1 g5:.5 e5 | f#5 a5:.5 f#5:1 d5:.5 -"""
LAST = """d5 b4:.5 d5:1 e5:.5 g#4 | a4 c5:.5 e5:1 d5:.5 c5 | d5 f#5:.5 d5:1 b4:.5 g#4 | c5:1.5 a4:.5 f#4 - |
          d5 b4:.5 d5:1 f5:.5 d5 | e5:1.5 g5:.5 eb5 c5 | b4 d5:.5 f#5:1 e5:.5 d5 | c5 a4:.5 f#4:1 e4:.5 f#4"""


def piece():
    score = Score(116, 36, swing=(1, 0.64), shift=-4, seed=106)
    score.bus("drums", -27, room=0.15)
    score.bus("bass", -22.5, room=0.06)
    score.bus("keys", -26, room=0.2, low=120)
    score.bus("tune", -22, room=0.3, echo=0.08, low=200)
    score.bus("flute", -24, room=0.35, low=250)

    symbols = f"{COME_IN} {A} {A} {B} {A}".split()
    chords = [Chord(symbol) for symbol in symbols]  # two in every bar
    rhythms = (((0, 0.9), (1.5, 0.4)), ((0.5, 0.4), (1.5, 0.8)), ((0, 0.4), (1, 0.7)), ((0.5, 1.3),))
    walk = []
    for chord in chords:
        walk += [chord.root, chord.fifth if len(walk) % 8 == 0 else chord.third]
    last = 40
    for beat, tone in enumerate(walk):
        if beat % 4 == 3:  # a step that leads into the next bar
            following = walk[(beat + 1) % len(walk)]
            tone = (following + (1 if beat % 8 == 3 else -1)) % 12
        choices = [n for n in range(34, 53) if n % 12 == tone]
        last = min(choices, key=lambda n: abs(n - last) + 0.15 * abs(n - 42))
        score.note("bass", double_bass, beat, last, 0.9, 1.0 if beat % 2 == 0 else 0.9)
    for number, notes in enumerate(voiced(chords, 60)):
        at = 2 * number
        for place, length in rhythms[(number * 7 + number // 8) % 4]:
            for side, tone in enumerate(notes):
                score.note("keys", keys, at + place, tone, length, 0.9, -0.3 + 0.2 * side)

    score.melody("tune", vibraphone, 4, THEME)
    score.melody("flute", flute, 12, SECOND, glide=True)
    score.melody("tune", marimba, 20, MIDDLE, 1.1)
    score.melody("tune", vibraphone, 20, "e5:4 | eb5:4 | d5:4 | d5:4 | c5:4 | c#5:4 | c5:4 | c5:3 -", 0.5)
    score.melody("tune", vibraphone, 28, LAST)
    score.melody("flute", flute, 28, LAST, 0.7, 12, side=0.3, glide=True)

    swing = {"ride": "X---o-x-X---o-x-", "brush": "x---o---x---o---", "tap": "----o-------o---"}
    score.drums("drums", 0, 4, {"brush": "x---o---x---o---", "snap": "----X-------X---"})
    score.drums("drums", 4, 16, swing)
    score.drums("drums", 20, 8, {"brush": "x-x-o-x-x-x-o-x-", "rim": "----o-------o-x-", "shaker": "x-o-x-o-x-o-x-o-"})
    score.drums("drums", 28, 8, swing)
    score.drums("drums", 2, 34, {"soft_kick": "o-------x-----x-"}, 0.8)
    for bar in (3, 11, 19, 27, 35):
        score.drums("drums", bar, 1, {"tap": "--------x-o-X-o-", "tom": "------------x-x-"})
    return score.finished(room=1.0, echo=1.0, echoes=0.3, air=1.5)
