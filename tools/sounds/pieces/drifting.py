"""Drifting: b flat lydian, three beats to the bar, 100 a minute: harp, a music box, strings. Intro, A, A with strings
below, B in the relative minor, A with everything, and a coda that leads back."""

from sounds.instruments import double_bass, flute, harp, music_box, pad, strings
from sounds.score import Score
from sounds.theory import Chord, voiced

INTRO = "Bbmaj7 C/Bb Bbmaj7 C/Bb"
A = "Bbmaj7 C/Bb Bbmaj7 C/Bb Dm7 Gm7 Am7 F/A"
B = "Gm7 Am7 Dm7 Dm7 Gm7 C Fmaj7 F/A"
CODA = "Bbmaj7 C/Bb Dm7 C/Bb"

THEME = """f5:2 d5 | e5:2 g5 | a5:1.5 f5:.5 d5 | e5:2 c5 | f5:2 a5 | g5:1.5 f5:.5 d5 | c5:2 e5 | f5:2 c5"""
TURNED = """f5:2 a5 | g5:1.5 e5:.5 c5 | d6:2 a5 | g5:2 e5 | f5:1 a5 c6 | bb5:1.5 a5:.5 g5 | e5:2 c5 | a5:2 -"""
SONG = """bb4:1.5 d5:.5 f5 | e5:2 c5 | d5:1.5 e5:.5 f5 | a5:3 | bb5:1.5 a5:.5 g5 | e5:2 g5 | a5:1.5 g5:.5 e5 | c5:2 -"""
UNDER = """d5:3 | c5:3 | d5:3 | c5:2 e5 | f5:3 | d5:2 f5 | e5:3 | c5:3"""
AFTER = """f5:2 d5 | e5:2 g5 | a5:3 | g5:2 -"""


def piece():
    score = Score(100, 40, beats=3, seed=105)
    score.bus("drums", -29, room=0.3)
    score.bus("bass", -24.5, room=0.1)
    score.bus("pads", -28, room=0.6, low=150)
    score.bus("harp", -24.5, room=0.5, echo=0.12, low=100)
    score.bus("box", -22.5, room=0.6, echo=0.25, low=250)
    score.bus("strings", -24.5, room=0.6, low=150)
    score.bus("flute", -23.5, room=0.55, echo=0.12, low=200)

    symbols = f"{INTRO} {A} {A} {B} {A} {CODA}".split()
    chords = [Chord(symbol) for symbol in symbols]
    for bar, (chord, notes) in enumerate(zip(chords, voiced(chords, 62))):
        at, song = 3 * bar, 20 <= bar < 28
        if bar < 4 or bar >= 12:
            for place, tone in enumerate(notes):
                score.note("pads", pad, at, tone, 3, 1.0, -0.4 + 0.25 * place)
        ladder = [tone - 12 for tone in notes] + notes + [tone + 12 for tone in notes]
        order = (0, 2, 4, 6, 5, 3) if not song else (0, 3, 5, 7, 5, 3)
        for step, place in enumerate(order):
            level = (1.3 if bar < 4 else 1.0) * (1.0 if step == 0 else 0.7)
            score.note("harp", harp, at + step / 2, ladder[place], 0.9, level, -0.4 + 0.15 * step)
        if bar >= 4:
            low = chord.bass(34)
            score.note("bass", double_bass, at, low, 1.8 if song else 2.6)
            if song or bar >= 28:
                score.note("bass", double_bass, at + 2, chord.bass(34, chord.fifth), 0.9, 0.7)

    score.melody("box", music_box, 4, THEME, 1, 12)
    score.melody("box", music_box, 12, TURNED, 1, 12)
    score.melody("strings", strings, 12, UNDER, 0.9, -12)
    score.melody("flute", flute, 20, SONG, glide=True)
    score.melody("strings", strings, 20, "d4:3 | c4:3 | f4:3 | e4:2 d4 | d4:3 | e4:3 | e4:3 | f4:2 -", 0.8)
    score.melody("box", music_box, 28, THEME, 0.9, 12)
    score.melody("flute", flute, 28, TURNED, 0.8, side=0.25, glide=True)
    score.melody("strings", strings, 28, UNDER, 0.9, -12)
    score.melody("box", music_box, 36, AFTER, 0.9, 12)

    score.drums("drums", 12, 8, {"shaker": "o---x-x-x-x-"})
    score.drums("drums", 20, 8, {"soft_kick": "o-----------", "rim": "----x---x---", "shaker": "o-x-x-x-x-x-"})
    score.drums("drums", 28, 8, {"soft_kick": "o-------x---", "rim": "----x---x-x-",
                                 "shaker": "o-x-x-x-x-x-", "ride": "o-----------"})
    score.drums("drums", 36, 4, {"shaker": "o---x-x-x-x-"})
    for beat in (60, 84):
        score.hit("drums", "crash", beat, 0.4)
    return score.finished(room=2.6, echo=1.5, echoes=0.4, shine=5500, air=3.5)
