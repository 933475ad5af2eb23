"""The link for spectators."""

import harness
from harness import wait_for
from pageTest import PageTest, unittest
from protocol import CHAT, PLAYER_JOINED, POSITION_REPORT
from spy import Spy

NOTE = "words(document.querySelector('.menubar .note'))"
GREEN = "g > 110 && r < 110 && b < 110"


class Watch(PageTest):

    def test_a_spectator_sees_a_game_that_does_not_see_them(self):
        server = self.start_server("--spectators", "2")
        spy = Spy(server.port, "Bea", colour=2)
        self.addCleanup(spy.close)
        page = self.open(server.port, path="/watch")
        page.wait_for("dialog('Connect')")
        # It says so before the login.
        self.assertEqual(page.see("document.title"), f"Watching {harness.TITLE}")
        self.assertIn("Watching", page.see(NOTE))
        page.connect()
        page.wait_for_status("Connected")
        page.wait_for("by('.main .label', 'Bea')", "the player's name")
        # The player moves from one corner of the world to another, and so does the dot on the radar.
        radar = "all('.main .picturebox canvas').at(-1)"
        width, height = page.see(f"[{radar}.width, {radar}.height]")
        for place in (10000, 90000):
            spy.send(POSITION_REPORT, place, place)
            area = (width * place // 100000 - 6, height * place // 100000 - 6, 12, 12)
            wait_for(lambda: page.count_pixels(GREEN, radar, area) >= 3, f"the player's dot at {place}")
        page.keep("watch")
        # Of two lines, the player gets that of another player.
        page.click_on("canvas()")
        page.type("boo")
        page.wait_for("named('Public Chat').value === 'boo'")
        page.press("Enter")
        page.wait_for("named('Public Chat').value === ''")
        other = self.open(server.port)
        other.connect("Cy")
        self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"Cy", "the spectator joined")
        other.wait_for_status("Connected")
        other.click_on("canvas()")
        other.type("hi")
        other.press("Enter")
        self.assertEqual(spy.await_frame(CHAT)[1], b"hi")
        self.assertFalse(other.see("by('.main .label', 'Ann')"))
        self.assertEqual(page.complaints(), [])

    def test_a_player_is_not_told_that_they_watch(self):
        _, page = self.begin("--spectators", "2")
        self.assertFalse(page.see("document.querySelector('.menubar .note')"))

    def test_an_arena_without_spectators_says_so_and_leads_to_the_game(self):
        server = self.start_server()
        page = self.open(server.port, path="/watch")
        page.wait_for("by('h1', 'Nobody can watch here')")
        page.keep("nobody")
        page.click_on("by('a', 'The start page')")
        page.wait_for("dialog('Connect')", "the game")


if __name__ == "__main__":
    unittest.main()
