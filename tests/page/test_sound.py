"""Sound in the browser: nothing before the first click, then effects, and music that is fetched when it is wanted."""

from pageTest import KIND, PageTest, unittest

# Notes the lengths of the effects that are started.
WATCH = """() => {
  window.started = [];
  const start = AudioBufferSourceNode.prototype.start;
  AudioBufferSourceNode.prototype.start = function (...when) {
    window.started.push(this.buffer.duration);
    return start.apply(this, when);
  };
}"""
TRACKS = "performance.getEntriesByType('resource').map((entry) => entry.name).filter((name) => name.endsWith('.mp3'))"


# Effects play in Firefox, too, but its context doesn't run where there is no sound device, as on machines for tests.
needs_device = unittest.skipIf(KIND == "firefox", "Firefox needs a sound device")


class Sound(PageTest):

    def open_watched(self, arguments):
        script = self.browser.wire.call("script.addPreloadScript", functionDeclaration=WATCH)
        self.addCleanup(self.browser.wire.call, "script.removePreloadScript", script=script["script"])
        page = self.open(self.start_server().port, arguments=arguments)
        page.wait_for("dialog('Connect')")
        return page

    @needs_device
    def test_an_effect_sounds_after_the_first_click(self):
        page = self.open_watched("nomusic")
        self.assertIsNone(page.see("speaker"))
        self.log_in(page)
        page.wait_for("speaker.state === 'running'")
        effects = page.wait_for("[...sounds.values()].every((one) => one.buffer) && [...sounds.values()].map((one) => one.buffer.duration)")
        self.assertEqual(len(effects), 9)
        page.click_on("canvas()")
        page.type("~playsound:4")
        page.press("Enter")
        self.assertEqual(page.wait_for("started.length && started"), [effects[4]])
        self.assertEqual(page.complaints(), [])

    @needs_device
    def test_effects_that_are_switched_off_are_silent(self):
        page = self.open_watched("nomusic nosound")
        line = self.log_in(page)
        page.wait_for("speaker.state === 'running'")
        page.click_on("canvas()")
        page.type("~playsound:4")
        page.press("Enter")
        line.ask()
        self.assertEqual(page.see("started"), [])

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

    @needs_device
    def test_music_that_is_switched_off_is_never_fetched(self):
        page = self.open_watched("nomusic")
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("speaker.state === 'running'")
        self.assertEqual(page.see(TRACKS), [])


if __name__ == "__main__":
    unittest.main()
