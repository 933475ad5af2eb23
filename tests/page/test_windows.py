"""The page's other windows: store, fonts, finder, menus and message boxes."""

import harness
from pageTest import PageTest, unittest
from protocol import BUY_ACCEPTED, BUY_REQUEST, FUNDS, PLAYER_JOINED, SERVER_TEXT
from spy import Spy

STORE = "all('.form').find((form) => words(form.querySelector('h2')) === 'Powerups')"
VALUES = "all('.slider').map((one) => one.valueAsNumber)"


class Windows(PageTest):

    def open_fonts(self, page):
        page.press_button("Cancel", "dialog('Connect')")
        page.choose("Settings", "Fonts")
        page.wait_for("all('.slider').length === 5", "five sliders")

    def test_the_store_sells_a_powerup(self):
        _, page = self.begin()
        line = self.log_in(page)
        line.send(FUNDS, 7, 75)
        page.wait_for("by('.main .label', '75')", "the credits")
        # The store's button is the upper one of the two below the credits.
        left, top, width, height = page.place("by('.main .label', '75')")
        page.click(left + width / 2, top + height + 30)
        page.wait_for(STORE, "the store")
        page.wait_for(f"by('.label', 'Turbo Boost', {STORE})")
        page.keep("store")
        page.click_on(f"all('.button', {STORE}).filter((one) => words(one) === 'Buy')[1]")
        while (received := line.recv_frame())[0] != BUY_REQUEST:
            pass
        self.assertEqual(received[1], [b"1"])
        line.send(BUY_ACCEPTED, 1, 3, 65)
        page.wait_for(f"by('.label', '3', {STORE}) && by('.label', '65', {STORE})", "the stock and the funds")
        page.press_button("Done", STORE)
        page.wait_for(f"!{STORE}")
        self.assertEqual(page.complaints(), [])

    def test_a_font_size_survives_a_reload(self):
        _, page = self.begin()
        self.open_fonts(page)
        page.keep("fonts")
        first, *others = page.see(VALUES)
        page.see("all('.slider')[0].focus()")
        wanted = first - 2 if first > 12 else first + 2
        page.press(*["ArrowLeft" if first > 12 else "ArrowRight"] * 2)
        page.press_button("Done")
        page.wait_for("!all('.slider').length")
        page.reload()
        page.wait_for("dialog('Connect')")
        self.open_fonts(page)
        self.assertEqual(page.see(VALUES), [wanted, *others])
        stored = page.see("Object.fromEntries(Object.entries(localStorage))")
        self.assertIn(str(wanted), [value for name, value in stored.items() if name.startswith("kelvora/fonts/")], stored)

    def test_the_dialog_remembers_the_last_login(self):
        server, page = self.begin()
        page.connect("Zo\u00eb", colour=3)
        page.wait_for_status("Connected")
        page.reload()
        page.wait_for("dialog('Connect')")
        self.assertEqual(page.see("[named('Player Name:').value, named('Server Port:').value]"),
                         ["Zo\u00eb", str(server.port)])

    def test_the_finder_leads_to_another_server(self):
        server, page = self.begin("--notes", "the first one")
        other = self.start_server("--notes", "the other one", "--publish", f"http://127.0.0.1:{server.port}")
        spy = Spy(other.port)
        self.addCleanup(spy.close)
        page.fill("Player Name:", "Ann", "dialog('Connect')")
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("dialog('Game Finder')")

        def is_listed():
            page.press_button("Refresh", "dialog('Game Finder')")
            return page.see("by('td', 'the other one')")
        harness.wait_for(is_listed, "the other server in the list", pause=0.5)
        page.wait_for("by('td', 'the other one')")
        page.keep("finder")
        page.click_on("by('td', 'the other one')", times=2)
        self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"Ann")
        page.wait_for_status("Connected")

    def test_menus_work_by_keyboard(self):
        _, page = self.begin()
        page.press_button("Cancel", "dialog('Connect')")
        page.see("by('.menubar button', 'Settings').focus()")
        page.press("ArrowDown", "ArrowDown")
        self.assertEqual(page.see("words(document.activeElement)"), "Fonts")
        page.press("ArrowDown", "ArrowRight")
        self.assertEqual(page.see("words(document.activeElement)"), "Stars")
        page.keep("menus")
        page.press("Escape", "Escape")
        self.assertEqual(page.see("words(document.activeElement)"), "Settings")
        self.assertFalse(page.see("by('.menubar button', 'Fonts')"))

    def test_a_message_box_waits_for_its_answer(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("canvas()")
        page.type("~?")
        page.press("Enter")
        page.wait_for("box()", "the box of commands")
        page.keep("box")
        line.send(SERVER_TEXT, "still here")
        page.press("Enter")
        page.wait_for("!box()")
        line.ask()

    def test_the_right_button_opens_no_menu_of_the_browser(self):
        _, page = self.begin()
        self.log_in(page)
        page.see("addEventListener('contextmenu', (event) => { window.wasPrevented = event.defaultPrevented; })")
        page.release_brakes(300, 300)
        self.assertIs(page.wait_for("window.wasPrevented !== undefined && [window.wasPrevented]")[0], True)


if __name__ == "__main__":
    unittest.main()
