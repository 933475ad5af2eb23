"""Pages of any size, and fingers."""

from harness import wait_for
from pageTest import PageTest, unittest
from protocol import ACTIVATE_REQUEST, BUY_ACCEPTED, POSITION_REPORT

GREY = "r === g && g === b && r > 60"
INSIDE = "((one) => { const r = one.getBoundingClientRect(); return r.left >= -1 && r.top >= -1 && " \
         "r.right <= innerWidth + 1 && r.bottom <= innerHeight + 1; })"
# The game's window is as large as the page on one axis.
FILLS_PAGE = "((r) => Math.min(Math.abs(r.width - innerWidth), Math.abs(r.height - innerHeight)) <= 2)" \
             "(document.querySelector('.main').getBoundingClientRect())"
# How far a dialog's middle is from the page's, in pixels.
OFF_CENTRE = "((r) => Math.max(Math.abs(r.left + r.right - innerWidth)," \
             " Math.abs(r.top + r.bottom - innerHeight)) / 2)(dialog('Connect').getBoundingClientRect())"


class Screens(PageTest):

    def test_a_larger_page_shows_more_of_the_world(self):
        _, page = self.begin()
        width, height = page.canvas_size()
        page.resize(1300, 900)
        page.wait_for(f"canvas().width === {width + 300} && canvas().height === {height + 100}")
        page.keep("large")
        page.resize(1000, 800)
        page.wait_for(f"canvas().width === {width} && canvas().height === {height}")

    def test_a_small_page_shows_everything_smaller(self):
        for name, size in (("portrait", (390, 780)), ("landscape", (780, 360))):
            with self.subTest(name):
                _, page = self.begin()
                page.resize(*size)
                page.wait_for(f"innerWidth === {size[0]}")
                page.wait_for(f"dialog('Connect') && all('.form.dialog, .form.dialog *').every({INSIDE})",
                              "the dialog inside")
                page.keep(name + "-dialog")
                line = self.log_in(page, colour=2)
                page.wait_for(f"all('.main .picturebox, .main .textbox, .main .label').every({INSIDE})", "all inside")
                page.release_brakes(*(pixels / 2 + 30 for pixels in page.canvas_size()))
                self.assertEqual(line.recv_frame()[0], POSITION_REPORT)
                page.keep(name)
                self.doCleanups()

    def test_the_dialog_is_in_the_middle_of_any_page_until_it_is_dragged(self):
        _, page = self.begin()
        for size in ((1000, 800), (1920, 1080), (390, 780), (780, 360), (1366, 768)):
            page.resize(*size)
            page.wait_for(f"innerWidth === {size[0]} && innerHeight === {size[1]} && {OFF_CENTRE} <= 2")
        x, y = page.middle("dialog('Connect').querySelector('h2')")
        page.drag((x, y), (x + 200, y + 100))
        page.wait_for(f"{OFF_CENTRE} > 190")
        left = page.see("dialog('Connect').getBoundingClientRect().left")
        page.resize(1400, 800)
        page.wait_for("innerWidth === 1400 && canvas().width > 1200")
        self.assertEqual(page.see("dialog('Connect').getBoundingClientRect().left"), left)
        # No drag takes it out of the page.
        page.drag(page.middle("dialog('Connect').querySelector('h2')"), (2, 2))
        page.wait_for("(r => r.left === 0 && r.top === 0)(dialog('Connect').getBoundingClientRect())")
        # The next time it is in the middle again.
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!dialog('Connect')")
        page.click_on("document.querySelector('.main .label')")
        page.wait_for(f"dialog('Connect') && {OFF_CENTRE} <= 2")
        page.resize(1000, 800)
        page.wait_for(f"innerWidth === 1000 && {OFF_CENTRE} <= 2")

    def test_the_start_picture_fits_any_page(self):
        _, page = self.begin()
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!dialog('Connect')")
        for name, size in (("wide", (1920, 1080)), ("portrait", (390, 780)), ("landscape", (780, 360))):
            with self.subTest(name):
                page.resize(*size)
                page.wait_for(f"innerWidth === {size[0]} && innerHeight === {size[1]} && {FILLS_PAGE}",
                              "the new layout")
                # As large as the view on one axis, centred on both.
                rectangle = "((one) => { const r = one.getBoundingClientRect();" \
                            " return [r.left, r.top, r.right, r.bottom]; })"
                margins = "((p, v) => [p[0] - v[0], p[1] - v[1], v[2] - p[2], v[3] - p[3]])" \
                          f"({rectangle}(document.querySelector('.front canvas')), {rectangle}(canvas()))"
                fits = "document.querySelector('.front canvas') && " \
                       f"((m) => Math.abs(m[0] - m[2]) <= 2 && Math.abs(m[1] - m[3]) <= 2 && " \
                       f"Math.abs(Math.min(...m)) <= 2)({margins})"
                page.wait_for(fits, "the picture in the middle of the view")
                page.keep("start-" + name)
                page.click_on("document.querySelector('.main .label')")
                page.wait_for("dialog('Connect')")
                page.press_button("Cancel", "dialog('Connect')")
                page.wait_for("!dialog('Connect')")
        page.click_on("document.querySelector('.main .label')")
        self.log_in(page)
        page.wait_for("!document.querySelector('.front canvas')", "the game without the picture")
        page.choose("File", "Disconnect")
        page.wait_for(fits, "the picture again")

    def test_screen_readers_and_keys_know_the_pictures_that_are_buttons(self):
        _, page = self.begin()
        buttons = "all('.main canvas[role=button]')"
        self.assertEqual(page.see(f"{buttons}.map((one) => one.getAttribute('aria-label'))"), ["Store", "Spawn"])
        self.log_in(page)
        page.evaluate("document.querySelector('[aria-label=Store]').focus()")
        page.press("Enter")
        page.wait_for("all('.form h2').some((title) => words(title) === 'Powerups')", "the store")

    def test_screen_readers_know_windows_by_their_titles(self):
        _, page = self.begin()
        known = "all('.form:not(.main), dialog').map((one) => [one.getAttribute('role'), one.ariaModal === 'true', " \
                "document.getElementById(one.getAttribute('aria-labelledby')).textContent])"
        self.assertEqual(page.see(known), [["dialog", False, "Connect"]])
        page.press_button("Connect", "dialog('Connect')")
        page.wait_for("box()")
        self.assertEqual(page.see(f"{known}[1]"), ["alertdialog", False, page.see("words(box().querySelector('p'))")])
        page.press("Enter")
        page.wait_for("!box()")
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("dialog('Game Finder')")
        self.assertEqual(page.see(f"{known}[1]"), ["dialog", True, "Game Finder"])

    def test_a_click_hits_the_same_place_in_a_small_page(self):
        _, page = self.begin(size=(450, 700))
        line = self.log_in(page)
        width, height = page.canvas_size()
        # Right of the ball and as far below it, at full speed: the bearing's steps make it 13 % more along one axis.
        page.release_brakes(width / 2 + 150, height / 2 + 150)
        line.report()
        begin, end = line.report(), line.report()
        self.assertGreater(end[0], begin[0])
        self.assertAlmostEqual((end[1] - begin[1]) / (end[0] - begin[0]), 1, delta=0.15)


class Phones(PageTest):
    """Browsers that know of no mouse, in which menus are larger."""

    browser_options = ("blink-settings=primaryPointerType=2,availablePointerTypes=2",)
    browser_preferences = {"ui.primaryPointerCapabilities": 1, "ui.allPointerCapabilities": 1}

    def test_the_whole_game_and_its_menus_fit(self):
        for name, size in (("portrait", (390, 844)), ("landscape", (844, 390))):
            with self.subTest(name):
                _, page = self.begin()
                page.resize(*size)
                page.wait_for(f"innerWidth === {size[0]} && matchMedia('(pointer: coarse)').matches")
                page.press_button("Cancel", "dialog('Connect')")
                page.wait_for(f"all('.main .picturebox, .main .textbox, .main .label').every({INSIDE})", "all inside")
                for caption in ("Settings", "Misc", "Directional Line Visible"):
                    page.tap(*page.middle(f"by('.menubar button', '{caption}')"))
                page.wait_for("all('.menubar ul ul ul button').length > 1", "the innermost menu")
                self.assertTrue(page.see(f"all('.menubar button').every({INSIDE})"), "a menu outside")
                page.keep("menus-" + name)
                self.doCleanups()

    def test_large_dialogs_fit(self):
        for name, size in (("portrait", (390, 844)), ("landscape", (844, 390))):
            with self.subTest(name):
                page = self.open(self.start_server().port, size=size)
                inside = f"all('.form:not(.main), .form:not(.main) .button').every({INSIDE})"
                page.press_button("Get List", "dialog('Connect')")
                page.wait_for(f"dialog('Game Finder') && {inside}")
                page.keep("finder-" + name)
                page.click_on("dialog('Game Finder').querySelector('.close')")
                page.wait_for("!dialog('Game Finder')")
                page.press_button("Cancel", "dialog('Connect')")
                page.choose("Settings", "Fonts")
                page.wait_for(f"all('.slider').length === 5 && {inside}")
                self.assertTrue(page.see("all('.form:not(.main) .label.line')"
                                         ".every((one) => one.scrollWidth <= one.clientWidth)"))
                page.keep("fonts-" + name)
                page.press_button("Done")
                page.wait_for("!all('.slider').length")
                page.click_on("document.querySelector('[aria-label=Store]')")
                page.wait_for(f"by('h2', 'Powerups') && {inside}")
                page.keep("store-" + name)
                self.doCleanups()

    def test_the_list_of_games_breaks_no_words(self):
        server = self.start_server("--notes", "An evening of games for everybody",
                                   "--public-address", "arena.games.example")
        page = self.open(server.port, path="/games", size=(390, 844))
        lines = "((one) => { const range = document.createRange(); range.selectNodeContents(one); " \
                "return new Set([...range.getClientRects()].map((r) => Math.round(r.top))).size; })"
        for width in (390, 844):
            page.resize(width, 844)
            page.wait_for(f"innerWidth === {width}")
            page.keep(f"games-{width}")
            self.assertEqual(page.see(f"all('tr + tr td:nth-child(n + 2), a').map({lines})"), [1, 1, 1, 1, 1])
            self.assertTrue(page.see("document.documentElement.scrollWidth <= innerWidth"))


class Fingers(PageTest):

    def test_a_finger_steers_and_another_one_brakes(self):
        _, page = self.begin(size=(390, 780))
        line = self.log_in(page)
        left, top, width, height = page.place("canvas()")
        middle = left + width / 2, top + height / 2
        page.fingers(("down", middle[0] + 60, middle[1] + 10), ("move", middle[0] + 80, middle[1] + 10))
        page.tap(middle[0], middle[1] + 100, finger=2)
        line.report()
        begin, end = line.report(), line.report()
        self.assertGreater(end[0], begin[0] + 100, "not to the right")
        page.fingers(("move", middle[0] - 80, middle[1] + 10))

        def flies_left():
            begin, end = line.report(), line.report()
            return end[0] < begin[0]
        wait_for(flies_left, "the flight to the left")
        page.fingers(("up",))
        page.keep("touch")
        # The button does the same as the second finger.
        page.tap(*page.middle("by('button', 'Brakes')"))
        line.wait_for_rest()
        # By keyboard, too. There is only one, however many fingers have come.
        page.evaluate("document.getElementById('brakes').focus()")
        page.press("Enter")
        wait_for(flies_left, "the flight after a key")
        self.assertEqual(page.see("all('#brakes').length"), 1)

    def test_a_tap_anywhere_shows_the_brakes(self):
        _, page = self.begin(size=(390, 780))
        self.assertEqual(page.see("all('#brakes').length"), 0)
        page.tap(*page.middle("named('Player Name:', dialog('Connect'))"))
        page.wait_for("all('#brakes').length === 1")

    def test_a_tap_on_an_icon_fires_its_powerup(self):
        _, page = self.begin(size=(780, 360))
        line = self.log_in(page)
        line.send(BUY_ACCEPTED, 1, 2, 0)
        line.ask()
        left, top, width, _ = page.place("canvas()")
        scale = width / page.canvas_size()[0]
        canvas_width, canvas_height = page.canvas_size()
        # Icons of 41 pixels with gaps of 25 twips, placed as if the gaps were 50, 1500 above the lower edge.
        x = canvas_width - 6 * (41 + 50 / 15) + 1 * (41 + 25 / 15) + 20
        page.tap(left + x * scale, top + (canvas_height - 100 + 20) * scale)
        while (received := line.recv_frame())[0] != ACTIVATE_REQUEST:
            pass
        self.assertEqual(received[1], [b"1"])

    def test_a_tap_on_a_menu_leaves_the_focus(self):
        _, page = self.begin()
        page.tap(*page.middle("by('.menubar button', 'File')"))
        page.wait_for("by('.menubar button', 'Exit')")
        self.assertTrue(page.see("document.activeElement === named('Player Name:', dialog('Connect'))"))
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!dialog('Connect')")
        page.see("canvas().focus()")
        page.tap(*page.middle("by('.menubar button', 'File')"))
        page.wait_for("by('.menubar button', 'Exit')")
        self.assertTrue(page.see("document.activeElement === canvas()"))

    def test_keyboards_on_the_screen_leave_texts_as_they_are(self):
        _, page = self.begin()
        self.assertEqual(page.see("[...new Set(all('.textbox').map((box) => "
                                  "[box.autocapitalize, box.getAttribute('autocorrect')].join()))]"), ["none,off"])

    def test_the_chat_line_takes_the_keyboard(self):
        _, page = self.begin()
        self.log_in(page)
        page.tap(*page.middle("named('Public Chat')"))
        self.assertEqual(page.see("document.activeElement.tagName"), "INPUT")


if __name__ == "__main__":
    unittest.main()
