"""Perceived loudness: ITU-R BS.1770 with the gates of EBU R 128, in LUFS."""

import functools

import numpy as np

from sounds.synth import RATE


def _biquad(bins, b, a):
    z = np.exp(-2j * np.pi * bins / RATE)
    return (b[0] + b[1] * z + b[2] * z**2) / (a[0] + a[1] * z + a[2] * z**2)


@functools.lru_cache(maxsize=3)
def ear(size):
    """The response of the standard's filter for each frequency of this many samples: a shelf that raises the highs, and
    a high-pass."""
    bins = np.fft.rfftfreq(size, 1 / RATE)
    k = np.tan(np.pi * 1681.974450955533 / RATE)
    quality, high = 0.7071752369554196, 10 ** (3.999843853973347 / 20)
    middle = high**0.4996667741545416
    over = (high + middle * k / quality + k * k, 2 * (k * k - high), high - middle * k / quality + k * k)
    shelf = _biquad(bins, over, (1 + k / quality + k * k, 2 * (k * k - 1), 1 - k / quality + k * k))
    k, quality = np.tan(np.pi * 38.13547087602444 / RATE), 0.5003270373238773
    low_cut = _biquad(bins, (1, -2, 1), (1 + k / quality + k * k, 2 * (k * k - 1), 1 - k / quality + k * k))
    return shelf * low_cut


def heard(samples):
    """The channels as rows, after the standard's filter."""
    rows = np.atleast_2d(samples)
    count = rows.shape[1]
    size = 1 << (count + RATE // 2).bit_length()
    return np.array([np.fft.irfft(np.fft.rfft(row, size) * ear(size), size)[:count] for row in rows])


def powers(samples, window, step):
    """The mean square of every window, summed over the channels. A sound shorter than one window is padded with
    silence."""
    rows = heard(samples)
    width, hop = int(round(window * RATE)), int(round(step * RATE))
    if rows.shape[1] < width:
        rows = np.pad(rows, ((0, 0), (0, width - rows.shape[1])))
    energy = np.concatenate([[0.0], np.cumsum(np.sum(rows**2, axis=0))])
    starts = np.arange(0, rows.shape[1] - width + 1, hop)
    return np.maximum(energy[starts + width] - energy[starts], 0) / width


def decibels(power):
    return -0.691 + 10 * np.log10(np.maximum(power, 1e-12))


def integrated(samples):
    """The loudness of a piece as a whole."""
    blocks = powers(samples, 0.4, 0.1)
    blocks = blocks[decibels(blocks) > -70]
    if not len(blocks):
        return -70.0
    return decibels(np.mean(blocks[decibels(blocks) > decibels(np.mean(blocks)) - 10]))


def loudest(samples, window=0.1):
    """The loudness of the loudest tenth of a second, for effects that may be shorter than the standard's window."""
    return np.max(decibels(powers(samples, window, 0.005)))
