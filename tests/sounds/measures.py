"""Measurements of the game's sounds: loudness, spectrum, tempo, key, and how well an end meets its beginning."""

import pathlib
import subprocess
import sys
import wave

import numpy as np

PROJECT = pathlib.Path(__file__).resolve().parents[2]
SOUNDS = PROJECT / "sounds"
sys.path.insert(0, str(PROJECT / "tools"))

from sounds import loudness  # noqa: E402  (of the tools)

RATE = 44100


def effect(name):
    """The samples of a mono wave file, full scale at 1."""
    with wave.open(str(SOUNDS / f"{name}.wav")) as file:
        return np.frombuffer(file.readframes(file.getnframes()), "<i2") / 32768


def music(name):
    """The decoded piece as two rows, full scale at 1, without the encoder's padding, which the file's header states."""
    command = ["mpg123", "-q", "-s", "-e", "f32", "--stereo", "-r", str(RATE), str(SOUNDS / f"{name}.mp3")]
    raw = subprocess.run(command, check=True, capture_output=True, timeout=60).stdout
    return np.frombuffer(raw, "<f4").reshape(-1, 2).T.astype(float)


def dB(ratio):
    return 20 * np.log10(np.maximum(ratio, 1e-9))


def peak(samples):
    return dB(np.max(np.abs(samples)))


def crest(samples):
    """How far the peak is above the mean, in dB."""
    return dB(np.max(np.abs(samples)) / np.sqrt(np.mean(samples**2)))


def _frames(samples, size, hop):
    padded = np.concatenate([np.zeros(size // 2), samples, np.zeros(size)])
    starts = np.arange(0, len(samples), hop)
    return padded[starts[:, None] + np.arange(size)] * np.hanning(size)


def centroid(samples):
    """The centroid of the amplitude spectrum, in Hz."""
    size = np.abs(np.fft.rfft(samples))
    return np.sum(size * np.fft.rfftfreq(len(samples), 1 / RATE)) / np.sum(size)


def shape(samples, slices=12, bands=16):
    """A coarse spectrogram in dB, 40 dB deep: time in slices of 100 ms, frequency in bands from 80 Hz to 8 kHz. The
    mean level is removed, so that a louder sound has the same shape."""
    frames = np.abs(np.fft.rfft(_frames(samples, 2048, 441)))**2
    bins = np.fft.rfftfreq(2048, 1 / RATE)
    edges = np.geomspace(80, 8000, bands + 1)
    power = np.array([frames[:, (bins >= low) & (bins < max(high, low + 22))].sum(axis=1)
                      for low, high in zip(edges[:-1], edges[1:])])
    power = np.pad(power, ((0, 0), (0, max(0, slices * 10 - power.shape[1]))))[:, :slices * 10]
    power = power.reshape(bands, slices, 10).mean(axis=2)
    level = 10 * np.log10(power / power.max() + 1e-4)
    return level - level.mean()


def distance(one, other):
    """The distance between two sounds: the root mean square difference of their shapes, in dB."""
    return np.sqrt(np.mean((shape(one) - shape(other)) ** 2))


def levels(samples, length):
    """The root mean square of every stretch of this length in seconds, in dB. The last one may be shorter."""
    mono = np.mean(np.atleast_2d(samples) ** 2, axis=0)
    width = int(length * RATE)
    return np.array([10 * np.log10(max(np.mean(mono[start:start + width]), 1e-12))
                     for start in range(0, len(mono), width)])


def joined(samples, around=0.5):
    """The end followed by the beginning, as heard when a player repeats the piece."""
    count = int(around * RATE)
    return np.concatenate([samples[:, -count:], samples[:, :count]], axis=1)


def onsets(samples, hop=256):
    """How much louder it gets at each moment, over all frequencies."""
    frames = np.log1p(100 * np.abs(np.fft.rfft(_frames(samples.mean(axis=0), 1024, hop))))
    return np.maximum(np.diff(frames, axis=0), 0).sum(axis=1)


def pulse(flow, tempo, hop=256):
    """How much the onsets repeat after 1, 2, 3, 4, 6 and 8 beats of a tempo, on average. 1 is a perfect repetition."""
    flow = flow - flow.mean()
    size = 1 << (2 * len(flow)).bit_length()
    echo = np.fft.irfft(np.abs(np.fft.rfft(flow, size)) ** 2)[:len(flow)]
    places = [int(round(beats * 60 / tempo * RATE / hop)) for beats in (1, 2, 3, 4, 6, 8)]
    return np.mean([np.max(echo[place - 2:place + 3]) for place in places]) / echo[0]


def chroma(samples):
    """The share of each of the twelve pitch classes, starting with c, in the tones between 100 and 1000 Hz: the peaks
    within 30 dB of the spectrum's maximum, with equal weight for every moment."""
    frames = np.abs(np.fft.rfft(_frames(samples.mean(axis=0), 16384, 8192)))**2
    bins = np.fft.rfftfreq(16384, 1 / RATE)
    first, last = np.searchsorted(bins, (100, 1000))
    left, middle, right = (frames[:, first + shift:last + shift] for shift in (-1, 0, 1))
    highest = middle.max(axis=1, keepdims=True) + 1e-12
    tops = (middle > left) & (middle >= right) & (middle > 1e-3 * highest)
    classes = np.round(69 + 12 * np.log2(bins[first:last] / 440)).astype(int) % 12
    share = np.bincount(classes, np.where(tops, middle / highest, 0).sum(axis=0), 12)
    return share / share.sum()


EFFECTS = ("capture", "bounce", "error", "puShield", "puTurbo", "puChargedTail", "puLongTail", "puLaser", "puMissile")
MUSIC = ("music1", "music2", "music3", "music4", "music5", "music_shopping")


def main():
    """Prints the figures of every sound."""
    print("effect            s   peak   LUFS  crest  centroid  nearest")
    sounds = {name: effect(name) for name in EFFECTS}
    for name, samples in sounds.items():
        near = min((distance(samples, other), key) for key, other in sounds.items() if key != name)
        print(f"{name:14s} {len(samples) / RATE:4.2f} {peak(samples):6.1f} {loudness.loudest(samples):6.1f} "
              f"{crest(samples):6.1f} {centroid(samples):8.0f}   {near[0]:4.1f} {near[1]}")
    print("piece             s   peak   LUFS  crest  centroid  sides   kB  twelve pitch classes from c, in %")
    for name in MUSIC:
        samples = music(name)
        sides = np.corrcoef(samples)[0, 1]
        size = (SOUNDS / f"{name}.mp3").stat().st_size / 1000
        share = " ".join(f"{100 * part:2.0f}" for part in chroma(samples))
        print(f"{name:14s} {samples.shape[1] / RATE:4.1f} {peak(samples):6.1f} {loudness.integrated(samples):6.1f} "
              f"{crest(samples):6.1f} {centroid(samples.mean(axis=0)):8.0f}   {sides:4.2f} {size:5.0f}  {share}")


if __name__ == "__main__":
    main()
