"""The six pieces of music, decoded: whole bars, equal loudness, an end that leads into the beginning, and six moods."""

import itertools
import re
import sys
import unittest

import numpy as np

import measures
from measures import EFFECTS, MUSIC, RATE
from sounds import loudness
from sounds.theory import Chord, note, tune, voiced

# Tempo, beats per bar, bars, and the seven notes of the scale, named by the major scale that has them.
PIECES = {
    "music1": (120, 4, 36, "C"),  # a minor
    "music2": (96, 4, 28, "A"),  # d lydian
    "music3": (80, 4, 24, "Ab"),  # c phrygian
    "music4": (168, 4, 48, "D"),  # e dorian
    "music5": (100, 3, 40, "F"),  # b flat lydian
    "music_shopping": (116, 4, 36, "Eb"),
}
MAJOR = (0, 2, 4, 5, 7, 9, 11)


class Decoded(unittest.TestCase):
    """Decodes every piece once and finds its notes once."""

    pieces, shares = {}, {}

    @classmethod
    def setUpClass(cls):
        for name in MUSIC:
            if name not in Decoded.pieces:
                Decoded.pieces[name] = measures.music(name)
                Decoded.shares[name] = measures.chroma(Decoded.pieces[name])


class Files(Decoded):
    def test_are_mp3_at_44100_and_not_large(self):
        for name in MUSIC:
            with self.subTest(name):
                head = (measures.SOUNDS / f"{name}.mp3").read_bytes()
                self.assertEqual(head[0], 0xFF)
                self.assertEqual(head[1], 0xFB, "MPEG 1, layer 3, no checksum")
                self.assertEqual((head[2] >> 2) & 3, 0, "44100 Hz")
                self.assertEqual(head[36:40], b"Xing", "the header that tells a decoder about the padding")
                self.assertLess(len(head), 1_200_000)

    def test_last_a_minute_and_a_whole_number_of_bars(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                tempo, beats, bars, _ = PIECES[name]
                self.assertAlmostEqual(samples.shape[1] / RATE, bars * beats * 60 / tempo, delta=0.001)
                self.assertGreaterEqual(samples.shape[1] / RATE, 60)


class Levels(Decoded):
    def test_have_equal_loudness(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                self.assertAlmostEqual(loudness.integrated(samples), -21, delta=0.2)

    def test_are_not_clipped_even_under_the_loudest_effect(self):
        music = max(np.max(np.abs(samples)) for samples in self.pieces.values())
        effect = max(np.max(np.abs(measures.effect(name))) for name in EFFECTS)
        self.assertLess(music, 0.45)
        self.assertLess(music + effect, 1)

    def test_are_nowhere_silent(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                self.assertGreater(np.min(measures.levels(samples, 0.05)), -50)

    def test_have_no_dc_offset(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                self.assertLess(np.max(np.abs(samples.mean(axis=1))), 1e-4)

    def test_rise_and_fall_from_section_to_section(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                tempo, beats, _, _ = PIECES[name]
                width = int(4 * beats * 60 / tempo * RATE)
                sections = [loudness.integrated(samples[:, start:start + width])
                            for start in range(0, samples.shape[1] - width // 2, width)]
                self.assertGreater(max(sections) - min(sections), 2, "a piece has a form")
                self.assertLess(max(sections) - min(sections), 9, "and is audible everywhere")

    def test_have_wide_highs_and_narrow_lows(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                self.assertGreater(np.corrcoef(samples)[0, 1], 0.2, "the mono mix is still audible")
                self.assertLess(np.corrcoef(samples)[0, 1], 0.95)
                size = 1 << 20  # about twenty seconds from the middle
                left, right = samples[:, samples.shape[1] // 2:][:, :size]
                bins = np.fft.rfftfreq(size, 1 / RATE)
                lows = (bins > 30) & (bins < 120)
                middle, side = (np.abs(np.fft.rfft(row, size))[lows] for row in (left + right, left - right))
                self.assertGreater(10 * np.log10(np.sum(middle**2) / np.sum(side**2)), 12)


class Rounds(Decoded):
    def test_loop_without_a_click(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                self.assertLess(np.max(np.abs(samples[:, 0] - samples[:, -1])), 0.01)
                self.assertLess(np.max(np.abs(samples[:, :RATE // 1000])), 0.02)
                self.assertLess(np.max(np.abs(samples[:, -RATE // 1000:])), 0.02)

    def test_continue_across_the_join(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                around = np.min(measures.levels(measures.joined(samples, 0.5), 0.02))
                self.assertGreater(around, np.median(measures.levels(samples, 0.02)) - 15)

    def test_begin_with_the_reverb_of_their_end(self):
        # The room already resounds before the first stroke.
        for name, samples in self.pieces.items():
            with self.subTest(name):
                self.assertGreater(measures.levels(samples[:, int(0.004 * RATE):int(0.011 * RATE)], 1)[0], -55)


class Moods(Decoded):
    def test_pulse_at_their_own_tempo(self):
        for name, samples in self.pieces.items():
            with self.subTest(name):
                flow = measures.onsets(samples)
                strengths = {other: measures.pulse(flow, PIECES[other][0]) for other in MUSIC}
                self.assertEqual(max(strengths, key=strengths.get), name, strengths)
                self.assertGreater(strengths[name], 0.35)

    def test_have_their_own_keys(self):
        for name in MUSIC:
            with self.subTest(name):
                share = self.shares[name]
                inside = {root: sum(share[(root + step) % 12] for step in MAJOR) for root in range(12)}
                own = Chord(PIECES[name][3]).root
                self.assertEqual(max(inside, key=inside.get), own, inside)
                self.assertGreater(inside[own], 0.72)

    def test_have_no_tempo_and_no_scale_in_common(self):
        self.assertEqual(len({tempo for tempo, _, _, _ in PIECES.values()}), 6)
        self.assertEqual(len({scale for _, _, _, scale in PIECES.values()}), 6)

    def test_use_their_notes_in_different_proportions(self):
        for one, other in itertools.combinations(MUSIC, 2):
            with self.subTest(f"{one} {other}"):
                self.assertGreater(np.abs(self.shares[one] - self.shares[other]).sum() / 2, 0.15)


class Writing(unittest.TestCase):
    def test_notes_have_their_numbers(self):
        self.assertEqual([note(name) for name in ("a4", "c4", "c#4", "db4", "b3", "c-1")], [69, 60, 61, 61, 59, 0])

    def test_chords_have_their_tones(self):
        self.assertEqual(Chord("Am7").tones, [9, 0, 4, 7])
        self.assertEqual((Chord("E/D").tones, Chord("E/D").low), ([4, 8, 11], 2))
        self.assertEqual((Chord("Gdim").third, Chord("Gdim").fifth), (10, 1))
        self.assertEqual(Chord("Bbmaj7").bass(34), 34)

    def test_voices_take_the_shortest_way(self):
        first, second = voiced([Chord("C"), Chord("Am")], 60)
        self.assertEqual(len(set(first) & set(second)), 2, "c and e stay")
        self.assertLessEqual(max(abs(a - b) for a, b in zip(first, second)), 5)

    def test_tunes_fill_their_bars(self):
        self.assertEqual(tune("e5:1.5 c5:.5 -:2", 4), [(76, 1.5), (72, 0.5), (None, 2.0)])
        with self.assertRaisesRegex(ValueError, re.escape("bar 2 of the tune has 3.5 beats")):
            tune("a4:4 | a4:3 b4:.5", 4)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
