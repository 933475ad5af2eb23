"""A piece: buses of players, reverb, echoes, the mix. Everything is stereo, as two rows, and circular: sound beyond the
end continues at the beginning, so that the piece can loop."""

import numpy as np

from sounds import drums
from sounds.loudness import integrated
from sounds.synth import RATE, band, convolved, room_response
from sounds.theory import tune

LOUDNESS = -21.0  # LUFS, of every piece
CEILING = 0.4  # of its peaks, so that it doesn't clip with an effect on top
LEAD_IN = 0.012  # seconds from the beginning to the first beat
STEADY = {"kick", "soft_kick", "riser"}  # strokes that are always centred and on time


class Bus:
    def __init__(self, count, loudness, room, echo, duck, low):
        self.loudness, self.room, self.echo, self.duck, self.low = loudness, room, echo, duck, low
        self.sound = np.zeros((2, count))


class Score:
    def __init__(self, tempo, bars, beats=4, swing=None, shift=0, seed=1):
        """Swing is (length of a pair in beats, position of its second note within it); none plays straight. Shift is
        how many semitones higher it sounds than it is written."""
        self.beat, self.beats = 60 / tempo, beats
        self.length = bars * beats
        self.count = int(round(self.length * self.beat * RATE))
        self.swing, self.shift = swing, shift
        self.chance = np.random.default_rng(seed)
        self.buses, self.kicks = {}, []

    def bus(self, name, loudness, room=0.2, echo=0.0, duck=0.0, low=0):
        """Adds a group of players: its loudness while playing, in LUFS before the mix is normalised; how much of it
        goes to reverb and echo; how far the kick drum ducks it. Frequencies below `low` Hz are removed."""
        self.buses[name] = Bus(self.count, loudness, room, echo, duck, low)

    def time(self, beat):
        """The time of a beat in seconds, with swing."""
        if self.swing:
            pair, place = self.swing
            whole, part = divmod(beat / pair, 1)
            part = part * 2 * place if part < 0.5 else place + (part - 0.5) * 2 * (1 - place)
            beat = (whole + part) * pair
        return beat * self.beat

    def put(self, bus, time, samples, level, side=0.0):
        """Adds a sound at a time in seconds, at a position from -1 (left) to 1."""
        first = int(round((time + LEAD_IN) * RATE)) % self.count
        if samples.ndim == 1:
            angle = (side + 1) * np.pi / 4
            samples = np.array([np.cos(angle) * samples, np.sin(angle) * samples])
        elif side:
            samples = samples * np.array([[min(1, 1 - side)], [min(1, 1 + side)]])
        target, size = self.buses[bus].sound, samples.shape[1]
        head = min(size, self.count - first)
        target[:, first:first + head] += level * samples[:, :head]
        if head < size:
            target[:, :size - head] += level * samples[:, head:]

    def note(self, bus, instrument, beat, note, length, level=1.0, side=0.0, **more):
        """Adds a note of a length in beats, with the slight unevenness of a player."""
        start, end = self.time(beat), self.time(beat + length)
        late = abs(self.chance.normal(0, 0.003))
        samples = instrument(note + self.shift, round(end - start, 3), **more)
        self.put(bus, start + late, samples, level * self.chance.uniform(0.9, 1.06), side)

    def melody(self, bus, instrument, bar, text, level=1.0, shift=0, side=0.0, glide=False, short=0.94):
        """Adds a tune starting at a bar, optionally transposed by semitones."""
        beat, before = bar * self.beats, None
        for note, length in tune(text, self.beats):
            if note is not None:
                more = {"before": before + self.shift} if glide and before is not None else {}
                accent = 1.05 if beat % self.beats == 0 else 0.95
                self.note(bus, instrument, beat, note + shift, length * short, level * accent, side, **more)
            before = None if note is None else note + shift
            beat += length

    def hit(self, bus, name, beat, level=1.0):
        late = 0 if name in STEADY else abs(self.chance.normal(0, 0.002))
        if "kick" in name:
            self.kicks.append(self.time(beat))
        uneven = 1 if name in STEADY else self.chance.uniform(0.88, 1.08)
        self.put(bus, self.time(beat) + late, drums.stroke(name), level * uneven, drums.SIDES.get(name, 0))

    def drums(self, bus, bar, bars, pattern, level=1.0):
        """Adds lines with one character per sixteenth, repeated: X loud, o medium, x soft, - nothing."""
        marks = {"X": 1.0, "o": 0.68, "x": 0.42}
        for name, line in pattern.items():
            for step in range(bars * self.beats * 4):
                mark = line[step % len(line)]
                if mark != "-":
                    self.hit(bus, name, bar * self.beats + step / 4, marks[mark] * level)

    def _ducked(self, depth):
        """The gain of the other buses under the kick drum."""
        gain = np.ones(self.count)
        time = np.arange(int(0.4 * RATE)) / RATE
        dip = 1 - depth * np.clip(time / 0.008, 0, 1) * np.exp(-np.maximum(time - 0.03, 0) / 0.085)
        for kick in self.kicks:
            places = (int((kick + LEAD_IN) * RATE) + np.arange(len(dip))) % self.count
            gain[places] = np.minimum(gain[places], dip)
        return gain

    def _ring(self, samples):
        """Moves what exceeds the end to the beginning."""
        result = samples[:self.count].copy()
        rest = samples[self.count:]
        result[:len(rest)] += rest
        return result

    def finished(self, room=1.2, echo=0.75, echoes=0.42, shine=6000, air=0.0):
        """The mix. Arguments: the reverb's length in seconds and its highest frequency, the echo's distance in beats
        and its feedback, and the boost of the highest frequencies in dB."""
        mix, into_room, into_echo = (np.zeros((2, self.count)) for _ in range(3))
        for bus in self.buses.values():
            sound = bus.sound
            if bus.low:
                sound = np.array([band(row, bus.low, 20000) for row in sound])
            sound *= 10 ** ((bus.loudness - integrated(sound)) / 20)
            if bus.duck:
                sound *= self._ducked(bus.duck)
            mix += sound
            into_room += bus.room * sound
            into_echo += bus.echo * sound
        distance = int(round(echo * self.beat * RATE))
        into_echo = np.array([band(row, 280, 4200) for row in into_echo])
        for number in range(1, 7):  # from side to side
            rows = into_echo[::-1] if number % 2 else into_echo
            repeat = echoes ** (number - 1) * np.roll(rows, number * distance, axis=1)
            mix += repeat
            into_room += 0.3 * repeat
        for side in (0, 1):
            source = 0.8 * into_room[side] + 0.2 * into_room[1 - side]
            mix[side] += self._ring(convolved(source, room_response(room, 31 + side, 180, shine)))
        mix = np.array([band(lifted(row, air), 30, 16000) for row in mix])
        for _ in range(3):  # the limiter costs some loudness
            mix = limited(mix * 10 ** ((LOUDNESS - integrated(mix)) / 20))
        ramp = int(0.004 * RATE)
        mix[:, :ramp] *= np.linspace(0, 1, ramp) ** 2
        mix[:, -ramp:] *= np.linspace(1, 0, ramp) ** 2
        return mix


def lifted(samples, air):
    """Boosts frequencies far above 4 kHz by this many dB, and those at 4 kHz by half as many."""
    bins = np.fft.rfftfreq(len(samples), 1 / RATE)
    gain = 10 ** (air / 20 * bins**2 / (bins**2 + 4000.0**2))
    return np.fft.irfft(np.fft.rfft(samples) * gain, len(samples))


def limited(mix, reach=int(0.02 * RATE)):
    """A limiter: lowers the gain before a peak exceeds the ceiling, and raises it as smoothly."""
    gain = np.minimum(1, CEILING / np.maximum(np.max(np.abs(mix), axis=0), 1e-9))
    span = 1
    while span < reach:  # the minimum gain of the last `reach` samples ...
        shift = min(span, reach - span)
        gain = np.minimum(gain, np.roll(gain, shift))
        span += shift
    total = np.cumsum(np.concatenate([[0.0], gain, gain[:reach]]))
    return mix * (total[reach:] - total[:-reach])[:len(gain)] / reach  # ... and the mean of the next ones
