"""Pages that can't play say why: old browsers, missing files, faults. And the way out of the game."""

import pathlib
import shutil
import tempfile
import time

from pageTest import KIND, SITE, PageTest, unittest
from protocol import END as FRAME_END
from protocol import PLAYER_JOINED, PLAYER_LEFT
from spy import Spy

END = "words(document.getElementById('end'))"


class Endings(PageTest):

    def site_without(self, *names):
        """A server whose page lacks these files."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        site = pathlib.Path(folder.name, "site")
        shutil.copytree(SITE, site)
        for name in names:
            for file in (site / name, site / f"{name}.gz"):
                file.unlink(missing_ok=True)
        return self.start_server(site=site)

    def expect_too_old(self, change):
        """Opens the page in a browser that this script has changed."""
        server = self.start_server()
        script = self.browser.wire.call("script.addPreloadScript", functionDeclaration=f"() => {{ {change}; }}")
        self.addCleanup(self.browser.wire.call, "script.removePreloadScript", script=script["script"])
        page = self.open(server.port)
        page.wait_for(f"{END}.includes('This browser is too old')")
        self.assertFalse(page.see("all('#loading').length"))
        page.keep("old")

    def test_a_browser_without_webassembly_is_told(self):
        self.expect_too_old("delete window.WebAssembly")

    def test_a_browser_without_simd_is_told(self):
        self.expect_too_old("WebAssembly.validate = () => false")

    def test_a_browser_that_cannot_block_windows_is_told(self):
        self.expect_too_old("delete HTMLElement.prototype.inert")

    def test_a_browser_that_cannot_measure_fonts_is_told(self):
        self.expect_too_old("delete TextMetrics.prototype.fontBoundingBoxAscent")

    def test_missing_files_are_told(self):
        for name in ("style.css", "kelvora.js", "kelvora.wasm", "kelvora.data"):
            with self.subTest(name):
                page = self.open(self.site_without(name).port)
                page.wait_for(f"{END}.includes('Reload')", f"the words about {name}")
                self.assertFalse(page.see("all('#loading').length"))
                page.keep(f"without-{name}")
                self.doCleanups()

    def test_a_page_without_its_first_script_is_told(self):
        page = self.open(self.site_without("begin.js").port)
        page.wait_for("by('h1', 'Kelvora could not be loaded. Reload the page to try again.')")

    def test_missing_sounds_disturb_nobody(self):
        server = self.site_without(*(f"sounds/{file.name}" for file in pathlib.Path(SITE, "sounds").iterdir()))
        page = self.open(server.port, arguments="")
        page.connect()
        page.wait_for_status("Connected")
        self.assertFalse(page.see(f"!document.getElementById('end').hidden && {END}"))

    def test_a_fault_ends_the_game_with_its_text(self):
        _, page = self.begin()
        self.log_in(page)
        page.click_on("canvas()")
        # A command that lacks its number is a fault of the game.
        page.type("~playsound")
        page.press("Enter")
        lines = r"/^Run-time error: .*\nJust before: the command ~playsound\.\nKelvora .*\nReload the page /"
        page.wait_for(f"{lines}.test(document.querySelector('#end p').innerText)")
        page.keep("fault")
        page.reload()
        page.wait_for("dialog('Connect')")

    def test_a_fault_names_the_server_whose_bytes_came_before(self):
        _, page = self.begin()
        server, bridge = self.scripted_server()
        page.connect(port=bridge)
        line = server.accept()
        line.recv_frame()
        line.send_bytes(bytes([FRAME_END]))
        page.wait_for("/\\nJust before: bytes that came from 127\\.0\\.0\\.1:\\d+\\.\\n/"
                      ".test(document.querySelector('#end p').innerText)")

    def test_a_fault_names_the_setting_that_is_no_boolean(self):
        _, page = self.begin()
        page.see("localStorage.setItem('kelvora/misc/updates', 'perhaps')")
        page.reload()
        page.wait_for("document.querySelector('#end p').innerText.includes("
                      "'\\nJust before: the setting \"updates\" in section \"misc\" of this page\\'s store.\\n')")

    def test_exit_ends_the_game(self):
        _, page = self.begin()
        page.press_button("Cancel", "dialog('Connect')")
        page.choose("File", "Exit")
        page.wait_for(f"{END}.includes('Kelvora has ended')")

    def test_the_end_leaves_the_arena_and_silences_the_music(self):
        server = self.start_server()
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        ways = {"Kelvora has ended": lambda page: page.choose("File", "Exit"),
                "Run-time error": lambda page: (page.click_on("canvas()"), page.press(*"~playsound", "Enter")),
                "Reload it to play again": lambda page: page.see("setTimeout(showChosen)")}  # it lacks its grid
        for words, end in ways.items():
            with self.subTest(words):
                page = self.open(server.port, arguments="")
                page.connect()
                node = spy.await_frame(PLAYER_JOINED)[0]
                page.wait_for("!music.paused", "the music")
                page.see("(() => { const wait = waitForEvents; window.turns = 0; "
                         "waitForEvents = (...how) => { window.turns += 1; wait(...how); }; })()")
                begin = time.monotonic()
                end(page)
                page.wait_for(f"{END}.includes('{words}')")
                page.wait_for("music.paused")
                spy.await_frame(PLAYER_LEFT, lambda fields: fields[0] == node)
                self.assertLess(time.monotonic() - begin, 100, "the server lets a silent player go after 120 s")
                page.click(5, 5)
                self.assertTrue(page.see("music.paused"), "a press doesn't start it again")
                turns = page.see("turns")
                page.see("post('click', 0)")
                time.sleep(0.2)
                self.assertEqual(page.see("turns"), turns, "the program goes on")

    def test_mistakes_of_other_scripts_end_nothing(self):
        _, page = self.begin()
        page.see("setTimeout(() => { throw new Error('not the game\\'s'); })")
        page.see("void Promise.reject(new Error('not the game\\'s'))")
        page.see("void Promise.reject()")
        line = self.log_in(page)
        line.ask()
        self.assertFalse(page.see("hasEnded"))

    def test_a_rejected_promise_of_the_page_ends_the_game(self):
        _, page = self.begin()
        page.see("void Promise.resolve().then(showChosen)")
        page.wait_for(f"{END}.includes(\"The page can't go on\")")


class OldBrowsers(PageTest):
    """Browsers whose own options take away what the game needs: Chromium's SIMD and Firefox's WebAssembly."""

    browser_options = ("js-flags=--no-enable-sse4-1 --no-enable-ssse3",)
    browser_preferences = {"javascript.options.wasm": False}

    def test_are_told_what_they_lack(self):
        page = self.open(self.start_server().port)
        page.wait_for(f"{END}.includes('This browser is too old')")
        self.assertEqual(page.see("typeof WebAssembly"), "object" if KIND == "chromium" else "undefined")
        page.keep("too-old")


if __name__ == "__main__":
    unittest.main()
