"""The nine effects: their files, how loud and clean they are, and that each has the shape of its meaning."""

import itertools
import pathlib
import sys
import tempfile
import unittest
import wave

import numpy as np

import measures
from measures import EFFECTS, RATE, effect
from sounds import effects, loudness, synth


class Measured(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sounds = {name: effect(name) for name in EFFECTS}

    def part(self, name, first, last):
        """The samples from one second to another."""
        return self.sounds[name][int(first * RATE):int(last * RATE)]

    def height(self, name, first, last):
        """The centroid of the spectrum in a part, in Hz."""
        samples = self.part(name, first, last)
        return measures.centroid(samples * np.hanning(len(samples)))

    def strongest(self, name, first, last, low=80, high=8000):
        """The frequency of the strongest tone in a part, in Hz."""
        samples = self.part(name, first, last)
        spectrum = np.abs(np.fft.rfft(samples * np.hanning(len(samples)), 32768))
        bins = np.fft.rfftfreq(32768, 1 / RATE)
        inside = (bins >= low) & (bins <= high)
        return bins[inside][np.argmax(spectrum[inside])]


class TheMeter(unittest.TestCase):
    def test_measures_the_standards_tone_correctly(self):
        # A tone of 997 Hz at full scale on one channel is -3.01 LUFS; of -23 dBFS on both channels -23 LUFS.
        tone = np.sin(2 * np.pi * 997 * synth.seconds(5))
        self.assertAlmostEqual(loudness.integrated(tone), -3.01, delta=0.1)
        self.assertAlmostEqual(loudness.integrated(np.array([tone, tone]) * 10 ** (-23 / 20)), -23, delta=0.1)

    def test_ignores_passages_ten_below_the_rest(self):
        tone = 0.1 * np.sin(2 * np.pi * 997 * synth.seconds(10))
        alone = loudness.integrated(tone)
        with_quiet = loudness.integrated(np.concatenate([tone, 0.01 * tone]))
        self.assertAlmostEqual(with_quiet, alone, delta=0.15)


class Files(Measured):
    SECONDS = {"capture": (0.4, 1), "bounce": (0.1, 0.4), "error": (0.2, 0.6), "puShield": (0.6, 1.5),
               "puTurbo": (0.5, 1.5), "puChargedTail": (0.5, 1.5), "puLongTail": (0.5, 1.5), "puLaser": (0.3, 1),
               "puMissile": (0.8, 2)}

    def test_are_exactly_these_and_small(self):
        expected = {f"{name}.wav" for name in EFFECTS} | {f"{name}.mp3" for name in measures.MUSIC}
        self.assertEqual({path.name for path in measures.SOUNDS.iterdir()}, expected)
        self.assertLess(sum(path.stat().st_size for path in measures.SOUNDS.iterdir()), 8_000_000)

    def test_have_one_channel_of_16_bits_at_44100(self):
        for name in EFFECTS:
            with self.subTest(name), wave.open(str(measures.SOUNDS / f"{name}.wav")) as file:
                self.assertEqual((file.getnchannels(), file.getsampwidth(), file.getframerate()), (1, 2, 44100))

    def test_last_as_long_as_their_kind_should(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                shortest, longest = self.SECONDS[name]
                self.assertGreaterEqual(len(samples) / RATE, shortest)
                self.assertLessEqual(len(samples) / RATE, longest)

    def test_match_the_programs_output(self):
        # Samples may differ by one step of 16 bits where another version of the mathematics library rounds differently.
        for name, samples in effects.all_effects():
            with self.subTest(name):
                made = np.round(np.clip(samples, -1, 1) * 32767)
                self.assertEqual(len(made), len(self.sounds[name]))
                self.assertLessEqual(np.max(np.abs(made - self.sounds[name] * 32768)), 1)

    def test_are_generated_identically_every_time(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("capture", "puMissile"):
                contents = []
                for run in range(2):
                    path = pathlib.Path(folder) / f"{name}{run}.wav"
                    synth.write_wave(path, effects.finished(effects.MAKERS[name](), effects.LOUDNESS[name]))
                    contents.append(path.read_bytes())
                self.assertEqual(contents[0], contents[1], name)


class Levels(Measured):
    # The loudest tenth of a second in LUFS. Frequent sounds are quieter than those that decide a round.
    HEARD = {"bounce": -17, "error": -16, "puShield": -15, "puTurbo": -14.5, "puChargedTail": -15, "puLongTail": -15,
             "puLaser": -14.5, "capture": -13.5, "puMissile": -13.5}

    def test_have_the_loudness_of_their_kind(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                self.assertAlmostEqual(loudness.loudest(samples), self.HEARD[name], delta=0.5)

    def test_peak_five_decibels_below_full_scale(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                self.assertLessEqual(measures.peak(samples), -5)

    def test_are_not_clipped_anywhere(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                top = np.abs(samples) > 0.999 * np.max(np.abs(samples))
                longest = max((len(list(run)) for high, run in itertools.groupby(top) if high), default=0)
                self.assertLess(longest, 12, "a quarter of a millisecond at the very top")

    def test_have_no_dc_offset(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                self.assertLess(abs(np.mean(samples)), 1e-4)

    def test_begin_and_end_at_zero_without_a_click(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                self.assertEqual(samples[0], 0)
                self.assertEqual(samples[-1], 0)
                self.assertLess(np.max(np.abs(samples[:10])), 0.05)
                self.assertLess(measures.peak(samples[-RATE // 500:]), -60, "the last two milliseconds")

    def test_are_audible_within_fifty_milliseconds(self):
        for name, samples in self.sounds.items():
            with self.subTest(name):
                self.assertLess(np.argmax(np.abs(samples) > 0.02) / RATE, 0.05)


class Kinds(Measured):
    def test_have_spectrograms_that_differ_by_eight_decibels(self):
        for one, other in itertools.combinations(EFFECTS, 2):
            with self.subTest(f"{one} {other}"):
                self.assertGreater(measures.distance(self.sounds[one], self.sounds[other]), 8)

    def test_do_not_resemble_each_other_as_waves(self):
        spectra = {name: np.fft.rfft(samples, 1 << 18) / np.linalg.norm(samples)
                   for name, samples in self.sounds.items()}
        for one, other in itertools.combinations(EFFECTS, 2):
            with self.subTest(f"{one} {other}"):
                likeness = np.max(np.abs(np.fft.irfft(spectra[one] * spectra[other].conj())))
                self.assertLess(likeness, 0.4)

    def test_distance_ignores_the_loudness(self):
        self.assertLess(measures.distance(self.sounds["error"], 0.5 * self.sounds["error"]), 0.01)

    def test_bounce_springs_up_and_is_the_shortest(self):
        self.assertGreater(self.strongest("bounce", 0.1, 0.2), 1.25 * self.strongest("bounce", 0, 0.03))
        self.assertEqual(min(self.sounds, key=lambda name: len(self.sounds[name])), "bounce")

    def test_capture_rushes_up_then_falls(self):
        rush = [self.height("capture", at, at + 0.03) for at in (0.03, 0.11)]
        self.assertGreater(rush[1], 1.5 * rush[0])
        fall = [self.strongest("capture", at, at + 0.07, 500) for at in (0.165, 0.24, 0.315, 0.39)]
        # d6, a5, f5, d5
        for tone, expected in zip(fall, (1174.7, 880.0, 698.5, 587.3)):
            self.assertAlmostEqual(tone, expected, delta=25)

    def test_error_is_two_low_descending_notes(self):
        # b3 and f3, an augmented fourth apart
        self.assertAlmostEqual(self.strongest("error", 0.03, 0.15), 246.9, delta=6)
        self.assertAlmostEqual(self.strongest("error", 0.2, 0.4), 174.6, delta=6)

    def test_shield_swells_and_closes_again(self):
        bright = [self.height("puShield", at, at + 0.2) for at in (0.0, 0.5, 1.2)]
        self.assertGreater(bright[1], 1.3 * bright[0])
        self.assertGreater(bright[1], 1.3 * bright[2])

    def test_turbo_rises_all_the_way(self):
        heights = [self.height("puTurbo", at, at + 0.15) for at in (0.2, 0.45, 0.7)]
        self.assertEqual(heights, sorted(heights))
        self.assertGreater(heights[2], 1.5 * heights[0])

    def test_charged_tail_hums_with_the_mains_and_crackles(self):
        hum = self.part("puChargedTail", 0.1, 0.9)
        spectrum = np.abs(np.fft.rfft(hum * np.hanning(len(hum))))
        bins = np.fft.rfftfreq(len(hum), 1 / RATE)
        low = bins < 1400
        on = np.min(np.abs(bins[:, None] - 110 * np.arange(1, 13)), axis=1) < 8
        self.assertGreater(np.max(spectrum[low & on]), 2 * np.max(spectrum[low & ~on]))
        sparks = synth.band(self.sounds["puChargedTail"], 3000, 8000)[int(0.05 * RATE):int(0.85 * RATE)]
        steps = np.sqrt(np.mean(sparks[:len(sparks) // 220 * 220].reshape(-1, 220) ** 2, axis=1))
        self.assertGreater(np.max(steps), 4 * np.median(steps), "sparks stand out")

    def test_long_tail_glides_up_and_leaves_echoes(self):
        # From a3 up by 19 semitones to e5.
        self.assertLess(self.strongest("puLongTail", 0.05, 0.2, 150, 420), 260)
        self.assertAlmostEqual(self.strongest("puLongTail", 0.9, 1.1), 657, delta=20)
        self.assertGreater(measures.dB(np.std(self.part("puLongTail", 1.2, 1.4))), -40)

    def test_laser_falls_from_high_up(self):
        heights = [self.height("puLaser", at, at + 0.06) for at in (0, 0.12, 0.26)]
        self.assertEqual(heights, sorted(heights, reverse=True))
        self.assertGreater(heights[0], 2 * heights[2])

    def test_missile_is_the_deepest_and_the_longest(self):
        def lows(name):
            power = np.abs(np.fft.rfft(self.sounds[name])) ** 2
            return np.sum(power[np.fft.rfftfreq(len(self.sounds[name]), 1 / RATE) < 120]) / np.sum(power)
        self.assertEqual(max(self.sounds, key=lows), "puMissile")
        self.assertEqual(max(self.sounds, key=lambda name: len(self.sounds[name])), "puMissile")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v"])
