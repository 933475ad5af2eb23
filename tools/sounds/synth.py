"""Sources of tone and noise, envelopes, filters and files. Samples are floats, full scale at 1, 44100 to the second."""

import wave

import numpy as np

RATE = 44100


def seconds(length):
    """The time of every sample of a sound of that length."""
    return np.arange(int(round(length * RATE))) / RATE


def phase(frequency):
    """The phase of a tone whose frequency is given sample by sample."""
    return 2 * np.pi * np.cumsum(frequency) / RATE


def sweep(start, end, time, speed=4.0):
    """A frequency that falls or rises from start towards end, fast at first."""
    progress = (1 - np.exp(-speed * time / time[-1])) / (1 - np.exp(-speed))
    return start * (end / start) ** progress


def harmonics(frequency, amplitudes, time):
    """A steady tone from its partials, those beyond 16 kHz left out."""
    result = np.zeros_like(time)
    for number, amplitude in enumerate(amplitudes, start=1):
        if amplitude and frequency * number < 16000:
            result += amplitude * np.sin(2 * np.pi * frequency * number * time)
    return result


def noise(count, seed):
    return np.random.default_rng(seed).uniform(-1, 1, count)


def band(samples, low, high):
    """Lets pass what lies between two frequencies, with soft shoulders."""
    spectrum = np.fft.rfft(samples)
    frequency = np.fft.rfftfreq(len(samples), 1 / RATE)
    gain = 1 / (1 + (frequency / high) ** 4)
    if low > 0:
        gain *= 1 - 1 / (1 + (frequency / low) ** 4)
    return np.fft.irfft(spectrum * gain, len(samples))


def strike(time, attack, decay):
    """Rises in a moment, then dies away; `decay` is the time to about a third."""
    return np.minimum(time / attack, 1) * np.exp(-np.maximum(time - attack, 0) / decay)


def swell(time, attack, release):
    """Rises, stays, falls, along smooth curves."""
    length = time[-1] + 1 / RATE
    up = np.clip(time / attack, 0, 1)
    down = np.clip((length - time) / release, 0, 1)
    return np.sin(up * np.pi / 2) ** 2 * np.sin(down * np.pi / 2) ** 2


def faded(samples, start=0.003, end=0.02):
    """Begins and ends in silence, so that nothing clicks."""
    result = samples.copy()
    first, last = int(start * RATE), int(end * RATE)
    result[:first] *= np.sin(np.linspace(0, np.pi / 2, first)) ** 2
    result[-last:] *= np.cos(np.linspace(0, np.pi / 2, last)) ** 2
    return result


def loudness(samples):
    """Root mean square of the loudest tenth of a second, as far as it is heard: lows and highs count less."""
    heard = band(samples, 150, 6000)
    window = int(0.1 * RATE)
    energy = np.cumsum(np.concatenate([[0.0], heard**2]))
    if len(heard) <= window:
        return np.sqrt(energy[-1] / window)
    return np.sqrt(np.max(energy[window:] - energy[:-window]) / window)


def rounded_off(samples, ceiling):
    """Bends what is beyond the ceiling's knee, so that no peak is cut."""
    knee = 0.7 * ceiling
    size = np.abs(samples)
    over = np.maximum(size - knee, 0)
    room = ceiling - knee
    return np.sign(samples) * (np.minimum(size, knee) + room * np.tanh(over / room))


def write_wave(path, samples):
    """One channel, or two as rows; 16 bits."""
    values = np.atleast_2d(samples).T
    whole = np.round(np.clip(values, -1, 1) * 32767).astype("<i2")
    with wave.open(str(path), "wb") as file:
        file.setnchannels(whole.shape[1])
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(whole.tobytes())
