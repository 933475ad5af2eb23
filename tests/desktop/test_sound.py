"""Effects and music, recorded from the sound server and searched for the samples of the files."""

import array
import subprocess
import unittest
import wave

import ears
from desktopTest import DesktopTest
from harness import PROJECT, wait_for

SOUNDS = PROJECT / "sounds"
EFFECTS = ("capture", "bounce", "error", "puShield", "puTurbo", "puChargedTail", "puLongTail", "puLaser", "puMissile")
TRACKS = ("music1", "music2", "music3", "music4", "music5", "music_shopping")
MENU = 70  # Settings, whose first item is Audio


def effect(name):
    with wave.open(str(SOUNDS / f"{name}.wav")) as file:
        return array.array("h", file.readframes(file.getnframes()))


def track(name):
    decoded = subprocess.run(["mpg123", "-q", "-s", str(SOUNDS / f"{name}.mp3")], capture_output=True, check=True)
    return array.array("h", decoded.stdout)[0::2]


def pieces(name):
    """The effect in hundredths of a second, without those that are nearly silent."""
    samples = effect(name)
    parts = (samples[at:at + ears.RATE // 100] for at in range(0, len(samples), ears.RATE // 100))
    return [part.tobytes() for part in parts if max(part) > 100]


def share_heard(name, heard):
    """The share of the effect's pieces that are in the recording, in their order. A busy sound server may drop some."""
    heard = heard.tobytes()
    found, at = 0, 0
    for piece in pieces(name):
        place = heard.find(piece, at)
        if place >= 0:
            found += 1
            at = place + len(piece)
    return found / len(pieces(name))


def is_at(samples, at, part):
    """True if the part is in the track here, up to half a second before, or up to a tenth after. Decoders round
    differently, and start differently many samples before the first. A busy sound server delays the rest."""
    return max(part) > 100 and any(all(abs(a - b) <= 8 for a, b in zip(part, samples[begin:begin + len(part)]))
                                   for begin in range(at - ears.RATE // 2, at + ears.RATE // 10))


def without_silence(samples):
    """Without the silent hundredths of a second. A game that stands still leaves as many as it takes."""
    parts = (samples[at:at + ears.RATE // 100] for at in range(0, len(samples), ears.RATE // 100))
    return array.array("h", b"".join(part.tobytes() for part in parts if any(part)))


def plays_from_its_start(samples, heard):
    """True if at least half of ten parts of the recording are the track's, both without silence."""
    places = range(ears.RATE // 2, 3 * ears.RATE, ears.RATE // 4)
    return sum(is_at(samples, at, heard[at:at + 500]) for at in places) >= len(places) / 2


class Sound(DesktopTest):

    def setUp(self):
        self.ears = ears.Ears()
        self.addCleanup(self.ears.close)

    def start(self, *arguments):
        return self.log_in(self.start_client(arguments=arguments, environment=self.ears.environment))

    def command(self, client, line, text):
        client.window.activate()
        client.mouse_to(386, 308)
        self.display.xdotool("type", "--delay", "5", text)
        self.display.xdotool("key", "Return")
        line.ask()

    def hear(self, client, line, slot):
        """Plays the effect until it is heard. One that a busy machine can't start at once is dropped."""
        begin = self.ears.now()

        def is_heard():
            self.command(client, line, f"~playsound:{slot}")
            until = self.ears.now() + 3 * ears.RATE
            wait_for(lambda: self.ears.now() >= until, "the recording")
            return share_heard(EFFECTS[slot], self.ears.heard(begin)) > 0.8
        wait_for(is_heard, f"the effect {EFFECTS[slot]}")
        return self.ears.heard(begin)

    def listen(self, seconds):
        """The sound from now on, for this time."""
        begin = self.ears.now()
        wait_for(lambda: self.ears.now() >= begin + seconds * ears.RATE, "the recording")
        return self.ears.heard(begin)

    def test_each_effect_is_heard_alone(self):
        client, line = self.start("nomusic")
        self.assertFalse(any(self.ears.heard()), "nothing before the first effect")
        for slot in (2, 7):
            heard = self.hear(client, line, slot)
            self.assertEqual([name for name in EFFECTS if share_heard(name, heard) > 0], [EFFECTS[slot]])

    def test_a_track_of_the_rotation_plays_from_its_start_until_it_is_switched_off(self):
        client, line = self.start("")
        wait_for(lambda: len(without_silence(self.ears.heard())) > 3 * ears.RATE, "three seconds of music")
        heard = without_silence(self.ears.heard())
        self.assertEqual(sum(plays_from_its_start(without_silence(track(name)), heard) for name in TRACKS[1:5]), 1,
                         "one of the second to the fifth track")
        client.choose(MENU, "Down", "Right", "Return")
        wait_for(lambda: not any(self.listen(1)), "silence")
        self.command(client, line, "~playmusic:0")
        self.assertFalse(any(self.listen(3)))

    def test_the_shopping_music_replaces_the_track(self):
        client, line = self.start("")
        wait_for(lambda: any(self.ears.heard()), "the music")
        self.command(client, line, "~playmusic:0")
        shopping = track("music_shopping")

        def is_shopping():
            heard = self.listen(1)[:500]
            return len(set(heard)) > 100 and any(
                all(abs(a - b) <= 8 for a, b in zip(heard, shopping[at:at + 500]))
                for at in range(60 * ears.RATE))
        wait_for(is_shopping, "the shopping music")

    def test_switched_off_effects_and_music_are_silent(self):
        client, line = self.start("nosound")
        self.command(client, line, "~playsound:2")
        self.assertFalse(any(self.listen(3)))


if __name__ == "__main__":
    unittest.main()
