"""Sound in the browser: nothing before the first click or tap, then effects, and music that is fetched when wanted."""

import array
import wave

from harness import PROJECT, wait_for
from pageTest import PageTest, unittest

# Notes the lengths of the effects that are started and stopped.
WATCH = """() => {
  window.started = [];
  const start = AudioBufferSourceNode.prototype.start;
  AudioBufferSourceNode.prototype.start = function (...when) {
    window.started.push(this.buffer.duration);
    return start.apply(this, when);
  };
  window.stopped = [];
  const stop = AudioBufferSourceNode.prototype.stop;
  AudioBufferSourceNode.prototype.stop = function (...when) {
    window.stopped.push(this.buffer.duration);
    return stop.apply(this, when);
  };
}"""
# The first answer for each effect is an error.
FAIL_ONCE = """() => {
  const askServer = fetch;
  const failed = new Set();
  window.fetch = async (file, ...options) => {
    const answer = await askServer(file, ...options);
    if (!String(file).endsWith('.flac') || failed.has(file)) return answer;
    failed.add(file);
    return new Response(answer.body, {status: 503});
  };
}"""
LENGTHS = "[...sounds.values()].every((one) => one.buffer) && [...sounds.values()].map((one) => one.buffer.duration)"
TRACKS = "performance.getEntriesByType('resource').map((entry) => entry.name).filter((name) => name.endsWith('.mp3'))"


class Sound(PageTest):

    def open_watched(self, arguments, *changes):
        for change in (WATCH, *changes):
            script = self.browser.wire.call("script.addPreloadScript", functionDeclaration=change)
            self.addCleanup(self.browser.wire.call, "script.removePreloadScript", script=script["script"])
        page = self.open(self.start_server().port, arguments=arguments)
        page.wait_for("dialog('Connect')")
        return page

    def command(self, page, text):
        page.click_on("canvas()")
        page.type(text)
        page.press("Enter")

    def test_an_effect_sounds_after_the_first_click(self):
        page = self.open_watched("nomusic")
        self.assertIsNone(page.see("speaker"))
        self.log_in(page)
        page.wait_for("speaker.state === 'running'")
        effects = page.wait_for(LENGTHS)
        self.assertEqual(len(effects), 9)
        self.command(page, "~playsound:4")
        self.assertEqual(page.wait_for("started.length && started"), [effects[4]])
        self.assertEqual(page.complaints(), [])

    def test_the_first_tap_starts_the_speaker(self):
        page = self.open_watched("nomusic")
        page.tap(*page.middle("by('.menubar button', 'File')"))
        page.wait_for("speaker.state === 'running'")

    def test_a_browser_without_sound_plays_on(self):
        page = self.open_watched("nomusic", "() => { delete window.AudioContext; }")
        line = self.log_in(page)
        self.command(page, "~playsound:4")
        line.ask()
        self.assertFalse(page.see("hasEnded"))

    def test_a_taken_device_is_asked_again(self):
        page = self.open_watched("nomusic", """() => {
          window.asked = 0;
          Object.defineProperty(AudioContext.prototype, 'state', {get: () => 'interrupted'});
          AudioContext.prototype.resume = () => {
            window.asked += 1;
            return Promise.reject(new DOMException('no device', 'InvalidStateError'));
          };
        }""")
        line = self.log_in(page)
        asked = page.see("asked")
        page.click_on("canvas()")
        line.ask()
        self.assertGreater(page.see("asked"), asked)
        self.assertFalse(page.see("hasEnded"))
        self.assertEqual(page.complaints(), [])

    def test_a_reload_stops_the_effects_and_forgets_them(self):
        page = self.open_watched("nomusic")
        line = self.log_in(page)
        effects = page.wait_for(LENGTHS)
        self.command(page, "~playsound:4")
        page.wait_for("started.length")
        self.command(page, "~reloadsounds")
        line.ask()
        self.assertEqual(page.see("stopped"), [effects[4]])
        self.assertEqual(page.wait_for(LENGTHS), effects)
        self.command(page, "~playsound:4")
        self.assertEqual(page.wait_for("started.length > 1 && started"), [effects[4], effects[4]])

    def test_an_effect_whose_fetch_has_failed_is_fetched_when_it_should_play(self):
        page = self.open_watched("nomusic", FAIL_ONCE)
        line = self.log_in(page)
        page.wait_for("sounds.size === 9 && [...sounds.values()].every((one) => one.isLoading === false)")
        self.command(page, "~playsound:4")
        page.wait_for("[...sounds.values()][4].buffer !== undefined", "the effect in a second answer")
        self.assertEqual(page.see("[...sounds.values()].filter((one) => one.buffer).length"), 1)
        self.command(page, "~playsound:4")
        page.wait_for("started.length === 1")
        line.ask()
        self.assertEqual(page.complaints(), [])

    def test_effects_that_are_switched_off_are_silent(self):
        page = self.open_watched("nomusic nosound")
        line = self.log_in(page)
        page.wait_for("speaker.state === 'running'")
        self.command(page, "~playsound:4")
        line.ask()
        self.assertEqual(page.see("started"), [])

    def test_effects_have_the_samples_of_the_programs_files(self):
        page = self.open_watched("")
        for file in sorted((PROJECT / "sounds").glob("*.wav")):
            with wave.open(str(file)) as sound:
                samples = array.array("h", sound.readframes(sound.getnframes()))
            decoded = page.evaluate(f"""fetch('sounds/{file.stem}.flac').then((answer) => answer.arrayBuffer())
              .then((bytes) => new OfflineAudioContext(1, 1, {sound.getframerate()}).decodeAudioData(bytes))
              .then((buffer) => [...buffer.getChannelData(0)].map((sample) => Math.round(sample * 32768)))""")
            self.assertEqual(len(decoded), len(samples), file.name)
            # Chromium's numbers for positive samples are a little larger.
            self.assertLessEqual(max(abs(a - b) for a, b in zip(decoded, samples)), 1, file.name)

    def test_music_is_fetched_once_it_may_sound(self):
        page = self.open_watched("")
        self.assertEqual(page.see(TRACKS), [])
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!music.paused")
        self.assertEqual(len(page.wait_for(f"{TRACKS}.length && {TRACKS}")), 1)
        page.choose("Settings", "Audio", "Enable Music")
        page.wait_for("music.paused && !music.getAttribute('src')")
        page.choose("Settings", "Audio", "Enable Music")
        page.wait_for("!music.paused")
        self.assertEqual(page.complaints(), [])

    def test_music_that_has_ended_is_not_begun_again_by_a_click(self):
        page = self.open_watched("")
        self.log_in(page)
        page.click_on("document.querySelector('[aria-label=Store]')")
        # While the store is open, no other track follows.
        page.wait_for("music.src.endsWith('music_shopping.mp3') && music.currentTime > 0")
        page.see("music.currentTime = music.duration - 0.1")
        page.wait_for("musicState === 1")
        # A browser begins a track, or doesn't, within the click.
        page.see("(() => { window.begun = 0; music.addEventListener('play', () => { ++begun; }); })()")
        page.click_on("by('h2', 'Powerups')")
        self.assertEqual(page.see("[music.paused, begun]"), [True, 0])
        page.see("musicState = 3")  # as if the browser had not told the end yet
        page.click_on("by('h2', 'Powerups')")
        self.assertEqual(page.see("[music.paused, begun]"), [True, 0])

    def test_the_next_track_follows_one_that_ends_or_is_missing(self):
        page = self.open_watched("")
        self.log_in(page)
        page.wait_for("music.currentTime > 0")
        page.see("(() => { music.onloadstart = () => { window.begun = !music.src.includes('missing'); }; })()")
        for leave in ("music.currentTime = music.duration - 0.1",
                      "(() => { music.src = 'sounds/missing.mp3'; music.play().catch(() => {}); })()"):
            with self.subTest(leave):
                page.see("window.begun = false")
                page.see(leave)
                page.wait_for("begun && musicState === 3 && music.currentTime > 0")

    def test_music_that_is_switched_off_is_never_fetched(self):
        page = self.open_watched("nomusic")
        line = self.log_in(page)
        page.wait_for("speaker.state === 'running'")
        # A track starts within two seconds of the game.
        begin, _ = line.ask()
        wait_for(lambda: abs(line.ask()[0] - begin) > 2.5, "the time of a track's start")
        self.assertEqual(page.see(TRACKS), [])


if __name__ == "__main__":
    unittest.main()
