"""The players of the music: tuned instruments, drums, and the room they sound in. Everything is stereo, as two rows."""

import functools

import numpy as np

from sounds.synth import RATE, band, harmonics, noise, phase, seconds, strike, swell, sweep


def frequency(note):
    """Of a note by its number; 69 is the a of 440."""
    return 440 * 2 ** ((note - 69) / 12)


@functools.lru_cache(maxsize=None)
def pad(note, length):
    """Soft strings: three voices a little apart."""
    time = seconds(length + 0.6)
    partials = [1 / n**1.7 for n in range(1, 13)]
    pitch = frequency(note)
    tone = sum(harmonics(pitch * detune, partials, time) for detune in (0.9968, 1.0, 1.0034))
    return 0.33 * tone * swell(time, min(0.5, length / 3), 0.7)


@functools.lru_cache(maxsize=None)
def bass(note, length):
    time = seconds(length + 0.05)
    pitch = frequency(note)
    dull = harmonics(pitch, (1, 0.45, 0.12, 0.05), time)
    bright = harmonics(pitch, [1 / n for n in range(1, 15)], time)
    glow = np.exp(-time / 0.11)
    return (dull + 0.4 * glow * bright) * strike(time, 0.006, 0.9) * np.clip((length + 0.05 - time) / 0.05, 0, 1)


@functools.lru_cache(maxsize=None)
def pluck(note, length):
    """A string of glass: bright when struck, round soon after."""
    time = seconds(max(length, 0.35) + 0.4)
    pitch = frequency(note)
    wobble = 1.8 * np.exp(-time / 0.09) * np.sin(2 * np.pi * 2 * pitch * time)
    return np.sin(2 * np.pi * pitch * time + wobble) * strike(time, 0.003, 0.22) * swell(time, 0.002, 0.1)


@functools.lru_cache(maxsize=None)
def bell(note, length):
    time = seconds(max(length, 0.8) + 0.8)
    pitch = frequency(note)
    ring = 1.1 * np.exp(-time / 0.5) * np.sin(2 * np.pi * 3.5 * pitch * time)
    return np.sin(2 * np.pi * pitch * time + ring) * strike(time, 0.003, 0.55) * swell(time, 0.002, 0.2)


@functools.lru_cache(maxsize=None)
def lead(note, length):
    """A voice that sings: a hollow tone with a late vibrato."""
    time = seconds(length + 0.12)
    vibrato = 1 + 0.006 * np.sin(2 * np.pi * 5.4 * time) * np.clip((time - 0.18) / 0.25, 0, 1)
    turn = phase(frequency(note) * vibrato)
    tone = np.sin(turn) + 0.42 * np.sin(2 * turn) + 0.3 * np.sin(3 * turn) + 0.1 * np.sin(4 * turn)
    return tone * swell(time, 0.025, min(0.14, length / 2))


@functools.lru_cache(maxsize=None)
def keys(note, length):
    """An electric piano."""
    time = seconds(length + 0.3)
    pitch = frequency(note)
    tine = 0.9 * np.exp(-time / 0.25) * np.sin(2 * np.pi * pitch * time)
    hammer = 0.25 * np.exp(-time / 0.03) * np.sin(2 * np.pi * 7 * pitch * time)
    return (np.sin(2 * np.pi * pitch * time + tine) + hammer) * strike(time, 0.004, 0.8) * swell(time, 0.003, 0.25)


@functools.lru_cache(maxsize=None)
def drum(name):
    if name == "kick":
        time = seconds(0.32)
        return np.sin(phase(sweep(150, 46, time, 7))) * strike(time, 0.003, 0.1) * swell(time, 0.002, 0.08)
    if name == "snare":
        time = seconds(0.26)
        rattle = band(noise(len(time), 21), 900, 7000) * strike(time, 0.002, 0.06)
        return (0.8 * rattle + 0.5 * np.sin(phase(sweep(230, 170, time))) * strike(time, 0.002, 0.05)) * swell(time, 0.001, 0.08)
    if name == "hat":
        time = seconds(0.08)
        return band(noise(len(time), 22), 6000, 14000) * strike(time, 0.001, 0.018) * swell(time, 0.0005, 0.03)
    if name == "open":
        time = seconds(0.3)
        return band(noise(len(time), 23), 5500, 13000) * strike(time, 0.001, 0.09) * swell(time, 0.0005, 0.1)
    if name == "rim":
        time = seconds(0.09)
        return (np.sin(2 * np.pi * 1650 * time) + 0.6 * np.sin(2 * np.pi * 870 * time)) * strike(time, 0.001, 0.014)
    if name == "shaker":
        time = seconds(0.11)
        return band(noise(len(time), 24), 3500, 9000) * swell(time, 0.04, 0.05)
    if name == "tom":
        time = seconds(0.4)
        return np.sin(phase(sweep(140, 82, time, 4))) * strike(time, 0.003, 0.13) * swell(time, 0.002, 0.1)
    raise ValueError(name)


class Score:
    """A piece in beats. What sounds beyond the end goes on at the beginning, so that the piece can follow itself."""

    def __init__(self, tempo, beats):
        self.beat = 60 / tempo
        self.count = int(round(beats * self.beat * RATE))
        self.dry = np.zeros((2, self.count))
        self.send = np.zeros((2, self.count))  # into the room

    def put(self, at, samples, level, side=0.0, room=0.2):
        """A sound at a beat; side from -1 (left) to 1."""
        first = int(round(at * self.beat * RATE)) % self.count
        angle = (side + 1) * np.pi / 4
        gains = level * np.sqrt(2) * np.array([[np.cos(angle)], [np.sin(angle)]])
        head = min(len(samples), self.count - first)
        for target, amount in ((self.dry, 1), (self.send, room)):
            target[:, first:first + head] += amount * gains * samples[:head]
            if head < len(samples):
                target[:, :len(samples) - head] += amount * gains * samples[head:]

    def play(self, instrument, at, note, length, level, side=0.0, room=0.2):
        self.put(at, instrument(note, round(length * self.beat, 4)), level, side, room)

    def finished(self, room_length, peak=0.5, level=0.075):
        """The mix at the common loudness."""
        length = seconds(min(4 * room_length, 4))
        wet = np.zeros_like(self.dry)
        for side in (0, 1):
            response = band(noise(len(length), 31 + side), 180, 5200) * np.exp(-length / (room_length / 2))
            response /= np.sqrt(np.sum(response**2))
            padded = np.zeros(self.count)
            padded[:len(response)] = response
            wet[side] = np.fft.irfft(np.fft.rfft(self.send[side]) * np.fft.rfft(padded), self.count)
        mix = np.array([band(row, 28, 15000) for row in self.dry + wet])
        mix *= level / np.sqrt(np.mean(mix**2))
        knee = 0.6 * peak
        over = np.maximum(np.abs(mix) - knee, 0)
        mix = np.sign(mix) * (np.minimum(np.abs(mix), knee) + (peak - knee) * np.tanh(over / (peak - knee)))
        ramp = int(0.012 * RATE)
        mix[:, :ramp] *= np.linspace(0, 1, ramp)
        mix[:, -ramp:] *= np.linspace(1, 0, ramp)
        return mix
