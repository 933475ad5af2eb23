"""Setting out: a minor, 120 beats a minute, four kicks per bar, arpeggios of sixteenths. Intro, A, B, a bridge without
drums, A again with bells, and four bars that lead back to the beginning."""

from sounds.instruments import bell, lead, pad, pluck, soft_pluck, synth_bass, wide
from sounds.score import Score
from sounds.theory import Chord, voiced

INTRO = "Am F C G"
A = "Am F C G Am F C E7"
B = "F G Em Am F G C E7"
BRIDGE = "Dm Am F E7"
TURN = "Am F Dm E7"

THEME = """e5:1.5 a4:.5 c5 d5 | c5:1.5 f4:.5 a4 c5 | g4:1.5 e5:.5 d5 c5 | d5:2 b4 g4 |
           e5:1.5 a4:.5 c5 d5 | f5:1.5 e5:.5 d5 c5 | e5:2 d5 c5 | b4:3 -"""
ANSWER = """a5 g5:.5 f5:.5 c5:2 | b4:.5 c5:.5 d5 g5:2 | g5 e5:.5 d5:.5 b4:2 | c5:.5 d5:.5 e5:3 |
            a5 g5:.5 f5:.5 c5:2 | d5:.5 e5:.5 f5 d5:2 | e5:1.5 d5:.5 c5 g4 | g#4 b4 d5 -"""
RETURN = """e5:1.5 a4:.5 c5 d5 | c5:1 f5:.5 e5:.5 d5 c5 | g5:1.5 e5:.5 d5 c5 | d5:1 e5:.5 d5:.5 b4 g4 |
            a5:1.5 e5:.5 c5 d5 | f5:1.5 e5:.5 d5 c5 | e5:1 f5:.5 e5:.5 d5 c5 | b4:2 g#4 -"""
AGAINST = """- e6:3 | - f6:3 | - e6:2 g6 | d6:4 | - e6:3 | - a5:3 | g5:2 c6:2 | b5:3 -"""
CALL = """d5:3 f5 | e5:3 c5 | a4:2 c5:2 | b4:3 -"""


def piece():
    score = Score(120, 36, seed=101)
    score.bus("drums", -20, room=0.08)
    score.bus("bass", -22, room=0.02, duck=0.6)
    score.bus("pads", -29, room=0.4, duck=0.55, low=150)
    score.bus("arpeggio", -27, room=0.25, echo=0.35, duck=0.35, low=200)
    score.bus("lead", -22.5, room=0.3, echo=0.22, low=200)
    score.bus("bells", -27, room=0.5, echo=0.3, low=300)

    symbols = f"{INTRO} {A} {B} {BRIDGE} {A} {TURN}".split()
    chords = [Chord(symbol) for symbol in symbols]
    for bar, (chord, notes) in enumerate(zip(chords, voiced(chords, 60))):
        at, bridge = 4 * bar, 20 <= bar < 24
        for place, note in enumerate(notes):
            score.note("pads", wide if 12 <= bar < 20 else pad, at, note, 4, 1.0, -0.3 + 0.3 * place)
        order = (0, 1, 2, 1, 3, 2, 1, 2) if bar < 12 or bar >= 24 else (0, 2, 1, 3, 2, 4, 3, 1)
        ladder = notes + [note + 12 for note in notes]
        for step in range(16):
            if bridge and step % 2:
                continue
            voice = soft_pluck if bar < 2 or bridge else pluck
            score.note("arpeggio", voice, at + step / 4, ladder[order[step % 8]] + 12, 0.25,
                       1.0 if step % 4 == 0 else 0.7, 0.4 if step % 2 else -0.4)
        if bar < 2:
            continue
        low = chord.bass(33)
        if bridge:
            score.note("bass", synth_bass, at, low, 3.8, 0.8)
            continue
        for eighth in range(8):
            jump = 12 if eighth in (3, 6) else 0
            if bar % 4 == 3 and eighth == 7:
                jump = 7
            score.note("bass", synth_bass, at + eighth / 2, low + jump, 0.42, 1.0 if eighth % 2 == 0 else 0.75)

    score.melody("lead", lead, 4, THEME, glide=True)
    score.melody("lead", lead, 12, ANSWER, 1.05, glide=True)
    score.melody("bells", bell, 20, CALL, 1.1, 12)
    score.melody("lead", lead, 24, RETURN, glide=True)
    score.melody("bells", bell, 24, AGAINST, 0.9)
    score.melody("bells", bell, 32, "e6 c6 a5 e5 | f5 a5 c6 f6 | a6 f6 d6 a5 | g#5 b5 e6 -")

    four = "X---X---X---X---"
    score.hit("drums", "crash", 0, 0.6)
    score.drums("drums", 2, 2, {"kick": four, "hat": "--o---o---o---o-"})
    for bar in (4, 12, 24):
        score.hit("drums", "crash", 4 * bar)
        score.drums("drums", bar, 8, {"kick": four, "clap": "----X-------X---", "hat": "x-oxx-ox" * 2,
                                      "open_hat": "--X---X---X---X-" if bar == 12 else "----------------"})
        score.drums("drums", bar + 3, 1, {"snare": "--------------xo"})
        score.drums("drums", bar + 7, 1, {"snare": "----------x-oxXX", "tom": "--------X-X-----"})
    score.hit("drums", "crash", 80)
    score.drums("drums", 22, 2, {"hat": "x---x---x---x-x-"})
    score.hit("drums", "riser", 92)
    score.drums("drums", 23, 1, {"snare": "--------x-x-oxXX"})
    score.hit("drums", "crash", 128)
    score.drums("drums", 32, 3, {"kick": four, "hat": "x-oxx-oxx-oxx-ox", "clap": "----X-------X---"})
    score.drums("drums", 35, 1, {"kick": "X---X-----------", "snare": "----X---x-xoX-XX",
                                 "low_tom": "--------X--X----"})
    return score.finished(room=1.3, echo=0.75)
