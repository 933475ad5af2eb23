"""The page's other windows: store, fonts, menus and message boxes."""

from page import RIGHT
from pageTest import PageTest, unittest
from protocol import BUY_ACCEPTED, BUY_REQUEST, FUNDS, RESPAWN, SERVER_TEXT

STORE = "all('.form').find((form) => words(form.querySelector('h2')) === 'Powerups')"
CONNECT_PLACE = "((r) => [r.left, r.top])(dialog('Connect').getBoundingClientRect())"
LINE_HEIGHT = "Math.round(parseFloat(getComputedStyle(box().querySelector('p')).lineHeight))"
VALUES = "all('.slider').map((one) => one.valueAsNumber)"


class Windows(PageTest):

    def open_fonts(self, page):
        page.press_button("Cancel", "dialog('Connect')")
        page.choose("Settings", "Fonts")
        page.wait_for("all('.slider').length === 5", "five sliders")

    def expect_no_menu(self, page):
        """Expects that a click on a menu does nothing."""
        page.click(*page.see("((r) => [r.left + r.width / 2, r.top + r.height / 2])"
                             "(by('.menubar button', 'File').getBoundingClientRect())"))
        self.assertFalse(page.see("by('.menubar button', 'Exit')"))

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

    def test_the_store_jumps_back_to_its_place(self):
        _, page = self.begin()
        place = f"((r) => [r.left, r.top])({STORE}.getBoundingClientRect())"
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!dialog('Connect')")
        page.click_on("document.querySelector('[aria-label=Store]')")
        page.wait_for(STORE)
        # 120 twips from the corner of the page.
        page.wait_for(f"{place}.every((one) => one === 8)")
        x, y = page.middle(f"{STORE}.querySelector('h2')")
        page.drag((x, y), (x + 100, y + 50))
        page.wait_for(f"{place}[0] === 108 && {place}[1] === 58")
        # It gets the focus back from a dialog.
        page.choose("File", "Connect to server")
        page.wait_for("dialog('Connect')")
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for(f"{place}.every((one) => one === 8)")

    def test_only_the_left_button_drags_a_window(self):
        _, page = self.begin()
        before = page.see(CONNECT_PLACE)
        x, y = page.middle("dialog('Connect').querySelector('h2')")
        page.mouse({"type": "pointerMove", "x": round(x), "y": round(y)}, {"type": "pointerDown", "button": RIGHT},
                   {"type": "pointerMove", "x": round(x) + 100, "y": round(y)}, {"type": "pointerUp", "button": RIGHT})
        self.assertEqual(page.see(CONNECT_PLACE), before)

    def test_a_cancelled_touch_lets_go_of_a_window(self):
        _, page = self.begin()
        page.see("addEventListener('pointermove', (event) => { window.finger = event; })")
        left, top = page.see(CONNECT_PLACE)
        x, y = page.middle("dialog('Connect').querySelector('h2')")
        page.fingers(("down", x, y), ("move", x + 30, y))
        page.wait_for(f"{CONNECT_PLACE}.join() === '{left + 30},{top}'")
        page.see("dialog('Connect').querySelector('header').releasePointerCapture(finger.pointerId)")
        page.fingers(("move", x + 60, y))
        page.wait_for(f"Math.round(finger.clientX) === {round(x + 60)}")
        self.assertEqual(page.see(CONNECT_PLACE), [left + 30, top])

    def test_a_dialog_blocks_those_below_and_gives_the_focus_back(self):
        _, page = self.begin()
        self.assertEqual(page.see("document.activeElement === named('Player Name:')"), True)
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("dialog('Game Finder')")
        self.expect_no_menu(page)
        page.click_on("dialog('Game Finder').querySelector('.close')")
        page.wait_for("!dialog('Game Finder')")
        page.wait_for("document.activeElement === by('button', 'Get List')", "the focus back in the dialog")

    def test_the_canvas_keeps_the_focus_when_the_store_is_closed(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("document.querySelector('[aria-label=Store]')")
        page.wait_for(STORE)
        # The store covers the middle.
        page.click(*page.see("((r) => [r.right - 20, r.bottom - 20])(canvas().getBoundingClientRect())"))
        page.wait_for("document.activeElement === canvas()")
        line.send(RESPAWN, 7)
        page.wait_for(f"!{STORE}")
        page.wait_for("document.activeElement === canvas()")

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
        sizes = [value for name, value in stored.items() if name.startswith("kelvora/fonts/")]
        self.assertIn(str(wanted), sizes, stored)

    def test_a_colour_bar_reaches_a_hundred_inside_and_more_beyond(self):
        _, page = self.begin()
        self.open_fonts(page)
        # As wide as 855 twips, unlike the red message's picture.
        bar = "all('.label').find((one) => getComputedStyle(one).backgroundColor === 'rgb(255, 0, 0)'" \
              " && one.offsetWidth === 57)"
        left, top, width, height = page.place(bar)
        middle = (left + width / 2, top + height / 2)
        page.drag(middle, (left + width - 2, middle[1]))
        # 55 of 57 pixels.
        page.wait_for("localStorage.getItem('kelvora/fonts/0colorR') === '96'")
        # The bar gets mouse moves far outside itself.
        page.drag(middle, (left + 3 * width, middle[1]))
        page.wait_for("localStorage.getItem('kelvora/fonts/0colorR') === '255'")

    def test_a_click_on_a_mark_sets_the_size(self):
        _, page = self.begin()
        self.open_fonts(page)
        left, top, width, height = page.place("all('.slider')[2]")
        self.assertIn("gradient", page.see("getComputedStyle(all('.slider')[2]).backgroundImage"), "no marks")
        # Eight marks, from 9 to 16. The outer ones are below the middle of the knob, 13 pixels wide, at its two ends.
        between = (width - 13) / 7
        for size in (16, 9, 12):
            page.click(left + 6.5 + (size - 9) * between, top + height - 2)
            page.wait_for(f"all('.slider')[2].valueAsNumber === {size}")
            page.wait_for(f"getComputedStyle(all('.label').filter((one) => words(one).startsWith('This is'))[2])"
                          f".fontSize === '{round(size * 4 / 3)}px'", "the sample's size")

    def test_the_dialog_remembers_the_last_login(self):
        server, page = self.begin()
        page.connect("Zo\u00eb", colour=3)
        page.wait_for_status("Connected")
        page.reload()
        page.wait_for("dialog('Connect')")
        self.assertEqual(page.see("[named('Player Name:').value, named('Server Port:').value]"),
                         ["Zo\u00eb", str(server.port)])

    def test_a_long_name_is_stored_whole(self):
        _, page = self.begin()
        name = "0123456789" * 500
        page.see(f"localStorage.setItem('kelvora/last login/player name', '{name}')")
        page.reload()
        page.wait_for("dialog('Connect')")
        self.assertEqual(page.see("named('Player Name:').value"), name)

    def test_menus_work_by_keyboard(self):
        _, page = self.begin()
        page.press_button("Cancel", "dialog('Connect')")
        page.see("by('.menubar button', 'Settings').focus()")
        page.press("ArrowDown", "ArrowDown")
        self.assertEqual(page.see("words(document.activeElement)"), "Fonts")
        page.press("ArrowDown", "ArrowRight")
        self.assertEqual(page.see("words(document.activeElement)"), "Stars")
        page.keep("menus")
        page.press("ArrowLeft")
        self.assertEqual(page.see("words(document.activeElement)"), "Background Objects")
        page.press("ArrowRight", "Escape", "Escape")
        self.assertEqual(page.see("words(document.activeElement)"), "Settings")
        self.assertFalse(page.see("by('.menubar button', 'Fonts')"))
        # Disconnect is disabled.
        page.press("ArrowLeft", "ArrowDown", "ArrowDown")
        self.assertEqual(page.see("words(document.activeElement)"), "Exit")

    def test_a_dialog_that_closes_leaves_menus_the_keyboard(self):
        _, page = self.begin()
        page.see("by('.menubar button', 'Settings').focus()")
        page.press("ArrowDown")
        page.see("by('button', 'Cancel', dialog('Connect')).click()")
        page.wait_for("!dialog('Connect')")
        self.assertEqual(page.see("words(document.activeElement)"), "Audio")

    def test_menus_work_by_mouse(self):
        _, page = self.begin()
        page.press_button("Cancel", "dialog('Connect')")
        item = "by('.menubar button', '{}')".format
        page.choose("File")
        page.wait_for(item("Exit"))
        self.assertTrue(page.see(f"{item('Disconnect')}.disabled && !{item('Connect to server')}.disabled"))
        page.move(*page.middle(item("Settings")))
        page.wait_for(f"{item('Fonts')} && !{item('Exit')}", "the neighbour instead")
        page.move(*page.middle(item("Background Objects")))
        page.wait_for(item("Quarks"))
        checked = "all('.menubar [aria-checked=true]').map(words)"
        self.assertEqual(page.see(checked), ["Stars"])
        page.click_on(item("Quarks"))
        page.wait_for(f"!{item('Fonts')}", "the menus closed by a choice")
        page.choose("Settings", "Background Objects")
        page.wait_for(f"{checked}.join() === 'Quarks'")
        page.click_on("canvas()")
        page.wait_for(f"!{item('Fonts')}", "the menus closed by a click elsewhere")
        page.choose("File")
        page.wait_for(item("Exit"))
        page.choose("File")
        page.wait_for(f"!{item('Exit')}", "the menu closed by a second click")

    def test_a_message_box_waits_for_its_answer(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("canvas()")
        page.type("~?")
        page.press("Enter")
        page.wait_for("box()", "the box of commands")
        page.keep("box")
        # The longest word that desktops show whole.
        self.assertEqual(page.see("box().querySelector('p').offsetHeight"), page.see(LINE_HEIGHT), "a broken word")
        line.send(SERVER_TEXT, "still here")
        # Clicks beside the button don't take the box its Enter.
        page.click(5, 5)
        page.click_on("box().querySelector('p')")
        page.press("Enter")
        page.wait_for("!box()")
        line.ask()
        page.type("~?")
        page.press("Enter")
        page.wait_for("box()", "another box")
        self.expect_no_menu(page)
        page.press_button("OK")
        page.wait_for("!box()")
        # The game stood still behind the box, and goes on.
        width, height = page.canvas_size()
        page.release_brakes(width / 2 + 150, height / 2)
        begin, end = line.report(), line.report()
        self.assertGreater(end[0], begin[0])

    def test_the_right_button_opens_no_menu_of_the_browser(self):
        _, page = self.begin()
        page.see("addEventListener('contextmenu', (event) => { window.wasPrevented = event.defaultPrevented; })")
        for element in ("dialog('Connect').querySelector('h2')", "by('.main .label', 'Public Chat')",
                        "document.querySelector('[aria-label=Store]')"):
            page.see("window.wasPrevented = undefined")
            page.click_on(element, button=RIGHT)
            self.assertIs(page.wait_for("window.wasPrevented !== undefined && [window.wasPrevented]")[0], True, element)
        self.assertTrue(page.see("named('Player Name:').dispatchEvent(new MouseEvent('contextmenu', "
                                 "{bubbles: true, cancelable: true}))"), "texts can be pasted")

    def test_a_press_elsewhere_and_its_release_are_nothing_to_pictures_and_labels(self):
        _, page = self.begin()
        self.log_in(page)
        begin = page.middle("named('Public Chat')")
        for end in ("by('.main .label', 'Public Chat')", "canvas()", "document.querySelector('[aria-label=Spawn]')"):
            page.note_events()
            page.drag(begin, page.middle(end))
            told = page.see("noted.filter(([kind, id]) => kind.startsWith('mouse')"
                            " && controls.get(id).kind !== 'TextBox')")
            self.assertEqual(told, [], end)

    def test_a_visible_dialog_is_shown_again_where_it_is(self):
        _, page = self.begin()
        self.open_fonts(page)
        x, y = page.middle("by('h2', 'Configure Fonts')")
        page.drag((x, y), (x + 100, y + 50))
        page.see("all('.slider')[1].focus()")
        place = "((r) => [r.left, r.top])(all('.form:not(.main)')[0].getBoundingClientRect())"
        before = page.see(place)
        page.choose("Settings", "Fonts")
        page.wait_for("document.activeElement === all('.slider')[1]")
        self.assertEqual(page.see(place), before)

    def test_settings_last_for_the_visit_if_the_store_is_full(self):
        _, page = self.begin()
        page.see("localStorage.setItem('kelvora/last login/player name', 'Old')")
        page.see("Storage.prototype.setItem = () => { throw new DOMException('full', 'QuotaExceededError'); }")
        page.fill("Player Name:", "New")
        page.fill("Server Port:", "0")
        page.press_button("Connect", "dialog('Connect')")
        page.wait_for("box()", "the box about the port")
        page.press("Enter")
        page.wait_for("!box()")
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!dialog('Connect')")
        page.choose("File", "Connect to server")
        page.wait_for("dialog('Connect')")
        self.assertEqual(page.see("named('Player Name:').value"), "New")


if __name__ == "__main__":
    unittest.main()
