"""Oscillators, noise, envelopes, filters and files. Samples are floats, full scale at 1, 44100 per second."""

import wave

import numpy as np

RATE = 44100


def seconds(length):
    """The time of each sample of a sound of this length."""
    return np.arange(int(round(length * RATE))) / RATE


def frequency(note):
    """The frequency of a note number; 69 is 440 Hz."""
    return 440 * 2 ** ((note - 69) / 12)


def phase(pitch):
    """The phase of a tone whose frequency is given for each sample."""
    return 2 * np.pi * np.cumsum(pitch) / RATE


def sweep(start, end, time, speed=4.0):
    """A frequency that glides from start towards end, fast at first."""
    progress = (1 - np.exp(-speed * time / time[-1])) / (1 - np.exp(-speed))
    return start * (end / start) ** progress


def harmonics(pitch, amplitudes, time):
    """A steady tone from its partials, without those above 16 kHz."""
    return partials(2 * np.pi * pitch * time,
                    [a if pitch * n < 16000 else 0 for n, a in enumerate(amplitudes, start=1)])


def partials(turn, gains):
    """A tone of a given phase from the gains of its partials, each a number or an array with one value per sample."""
    step = np.exp(1j * turn)
    wheel = np.ones_like(step)
    result = np.zeros(len(turn))
    for gain in gains:
        wheel = wheel * step
        if np.ndim(gain) or gain:
            result += gain * wheel.imag
    return result


def saw(pitch, time, cut, resonance=0.0, start=0.0, odd=False):
    """A band-limited sawtooth (or a square, with only odd partials) through a two-pole low-pass filter.

    Pitch and cut-off frequency are numbers, or arrays with one value per sample; start is the initial phase."""
    pitch = np.broadcast_to(np.asarray(pitch, float), time.shape)
    cut = np.broadcast_to(np.asarray(cut, float), time.shape)
    ratio = pitch / cut
    fourth = ratio**4
    last = int(min(14000 / pitch.max(), 6 * cut.max() / pitch.min(), 90)) + 1
    gains = []
    for number in range(1, last + 1):
        if odd and number % 2 == 0:
            gains.append(0)
            continue
        gain = 1 / (number * np.sqrt(1 + number**4 * fourth))
        if resonance:
            gain = gain * (1 + resonance / (1 + ((number * ratio - 1) / 0.22) ** 2))
        gains.append(gain)
    return partials(phase(pitch) + start, gains)


def noise(count, seed):
    return np.random.default_rng(seed).uniform(-1, 1, count)


def band(samples, low, high, order=4):
    """A band-pass between two frequencies, with soft edges."""
    spectrum = np.fft.rfft(samples)
    bins = np.fft.rfftfreq(len(samples), 1 / RATE)
    gain = 1 / (1 + (bins / high) ** order)
    if low > 0:
        gain *= 1 - 1 / (1 + (bins / low) ** order)
    return np.fft.irfft(spectrum * gain, len(samples))


def moving_band(samples, centre, octaves):
    """A band-pass with a moving centre: a frequency for each sample, and the width in octaves."""
    frame, hop = 1024, 256
    padded = np.concatenate([np.zeros(frame), samples, np.zeros(2 * frame)])
    starts = np.arange(0, len(padded) - frame, hop)
    window = np.sin(np.pi * (np.arange(frame) + 0.5) / frame)
    frames = padded[starts[:, None] + np.arange(frame)] * window
    middles = np.clip(starts - frame // 2, 0, len(samples) - 1)
    bins = np.maximum(np.fft.rfftfreq(frame, 1 / RATE), 20)
    distance = np.log2(bins[None, :] / centre[middles][:, None]) / (octaves / 2)
    frames = np.fft.irfft(np.fft.rfft(frames) * np.exp(-0.5 * distance**2), frame) * window
    result = np.zeros(len(padded))
    for start, part in zip(starts, frames):
        result[start:start + frame] += part
    return result[frame:frame + len(samples)] * 0.5


def strike(time, attack, decay):
    """An envelope that rises at once and then decays; `decay` is the time to about a third."""
    return np.minimum(time / attack, 1) * np.exp(-np.maximum(time - attack, 0) / decay)


def swell(time, attack, release):
    """An envelope that rises, holds and falls along smooth curves."""
    length = time[-1] + 1 / RATE
    up = np.clip(time / attack, 0, 1)
    down = np.clip((length - time) / release, 0, 1)
    return np.sin(up * np.pi / 2) ** 2 * np.sin(down * np.pi / 2) ** 2


def faded(samples, start=0.003, end=0.02):
    """Fades both ends, to avoid clicks."""
    result = samples.copy()
    first, last = int(start * RATE), int(end * RATE)
    result[..., :first] *= np.sin(np.linspace(0, np.pi / 2, first)) ** 2
    result[..., -last:] *= np.cos(np.linspace(0, np.pi / 2, last)) ** 2
    return result


def rounded_off(samples, ceiling):
    """Rounds off peaks above the ceiling's knee instead of clipping them."""
    knee = 0.7 * ceiling
    size = np.abs(samples)
    over = np.maximum(size - knee, 0)
    room = ceiling - knee
    return np.sign(samples) * (np.minimum(size, knee) + room * np.tanh(over / room))


def room_response(length, seed, low=180, high=6000):
    """A room's impulse response: a few early reflections, then noise whose highs decay first. It reaches -60 dB after
    its length."""
    time = seconds(length)
    grain = noise(len(time), seed)
    bright = band(grain, 1400, high) * np.exp(-6.9 * time / (0.55 * length))
    dark = band(grain, low, 1400) * np.exp(-6.9 * time / length)
    answer = (bright + dark) * np.clip(time / 0.02, 0, 1)
    chance = np.random.default_rng(seed + 1000)
    for place in chance.uniform(0.007, 0.045, 7):
        answer[int(place * RATE)] += chance.choice([-1, 1]) * 1.6 * np.exp(-place / 0.03)
    answer = band(answer, low, high)
    return answer / np.sqrt(np.sum(answer**2))


def convolved(samples, response):
    """The full convolution of both."""
    count = len(samples) + len(response) - 1
    size = 1 << (count - 1).bit_length()
    return np.fft.irfft(np.fft.rfft(samples, size) * np.fft.rfft(response, size), size)[:count]


def write_wave(path, samples):
    """Writes 16-bit samples: one channel, or two as rows."""
    values = np.atleast_2d(samples).T
    whole = np.round(np.clip(values, -1, 1) * 32767).astype("<i2")
    with wave.open(str(path), "wb") as file:
        file.setnchannels(whole.shape[1])
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(whole.tobytes())
