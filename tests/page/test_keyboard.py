"""The keyboard: which presses take it away, what gets it back, and keys that other keys must not overtake."""

from pageTest import PageTest, unittest
from protocol import CHAT

CONNECT = "dialog('Connect')"
FINDER = "dialog('Game Finder')"
NAME = "named('Player Name:')"


class Keyboard(PageTest):

    def click_beside(self, page, selector, root="document.body"):
        """Clicks where an element with this selector is in front of all others."""
        page.click(*page.wait_for(
            f"(() => {{ const r = {root}.getBoundingClientRect();"
            " for (let y = r.top + 1; y < r.bottom; y += 3) for (let x = r.left + 1; x < r.right; x += 3)"
            f" if (document.elementFromPoint(x, y)?.matches('{selector}')) return [x, y]; }})()"))

    def begin_offline(self):
        """A page with the focus on the view, and no other window."""
        _, page = self.begin()
        page.press_button("Cancel", CONNECT)
        page.wait_for(f"!{CONNECT}")
        # The label of the start picture covers the rest.
        page.see("canvas().focus()")
        return page

    def await_chat(self, line):
        while (received := line.recv_frame())[0] != CHAT:
            pass
        return received[1][1]

    def press_at_once(self, page, *keys):
        """Presses keys before the program takes any of them."""
        page.see("(() => { const wait = waitForEvents; window.goOn = undefined; waitForEvents = (time, wakeUp) => { "
                 "window.goOn = () => { waitForEvents = wait; wait(0, wakeUp); }; }; })()")
        page.wait_for("window.goOn !== undefined")
        page.press(*keys)
        page.see("goOn()")

    def assert_focused(self, page, element, message=None):
        self.assertTrue(page.see(f"document.activeElement === {element}"), message)

    def insert(self, page, text):
        """As pasting does."""
        page.see(f"document.execCommand('insertText', false, {text!r})")

    def test_presses_on_what_takes_no_keys_leave_the_focus(self):
        page = self.begin_offline()
        for selector in (".main .frame", ".main .client", ".menubar"):
            self.click_beside(page, selector)
            self.assert_focused(page, "canvas()", selector)
        page.choose("File", "Connect to server")
        page.wait_for(CONNECT)
        for selector in (".client", "header"):
            self.click_beside(page, selector, CONNECT)
            self.assert_focused(page, NAME, selector)

    def test_menus_give_the_focus_back(self):
        page = self.begin_offline()
        ways = {
            "a choice": lambda: page.choose("Settings", "Background Objects", "Quarks"),
            "a second click": lambda: page.choose("File", "File"),
            "a click elsewhere": lambda: (page.choose("File"), self.click_beside(page, ".main .frame")),
            "a disabled item": lambda: (page.choose("File"), page.click_on("by('.menubar li', 'Disconnect')"),
                                        self.click_beside(page, ".main .frame")),
            "Enter": lambda: (page.choose("Settings"), page.press("ArrowDown", "ArrowDown", "ArrowDown", "ArrowRight",
                                                                  "Enter")),
            "Escape": lambda: (page.choose("File"), page.press("ArrowDown", "Escape", "Escape")),
        }
        for way, use in ways.items():
            with self.subTest(way):
                use()
                page.wait_for("!all('.menubar [role=menu]').length", "no open menu")
                self.assert_focused(page, "canvas()")

    def test_arrows_pass_over_disabled_items(self):
        _, page = self.begin()
        self.log_in(page)
        page.see("by('.menubar button', 'File').focus()")
        for item in ("Disconnect", "Exit"):  # Connect to server is disabled
            page.press("ArrowDown")
            self.assert_focused(page, f"by('.menubar button', '{item}')")

    def test_tab_closes_the_menus_that_it_leaves(self):
        page = self.begin_offline()
        page.choose("Settings")
        for _ in range(20):
            page.press("Tab")
            if not page.see("document.activeElement.closest('.menubar')"):
                break
        self.assertFalse(page.see("document.activeElement.closest('.menubar') || all('.menubar [role=menu]').length"))

    def test_typing_works_after_a_menu(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("canvas()")
        page.choose("Settings", "Background Objects", "Quarks")
        page.type("hi")
        page.press("Enter")
        self.assertEqual(self.await_chat(line), b"hi")

    def test_a_raised_window_has_the_keyboard(self):
        _, page = self.begin()
        page.see("named('Server Port:').focus()")
        for press in (lambda: self.click_beside(page, "header", CONNECT),
                      lambda: page.click_on("document.querySelector('.main .label')")):
            page.click_on("named('Public Chat')")
            self.assert_focused(page, "named('Public Chat')")
            press()
            page.wait_for("document.activeElement === named('Server Port:')", "the focus in the dialog")

    def test_enter_closes_a_box_and_presses_nothing_behind_it(self):
        _, page = self.begin()
        page.press_button("Connect", CONNECT)
        page.wait_for("box()", "the box about the missing name")
        page.note_events()
        page.press("Enter")
        page.wait_for("noted.some(([kind]) => kind === 'closed')")
        self.assertEqual(page.see("noted.map(([kind]) => kind)"), ["closed"])

    def test_letters_behind_enter_begin_the_next_line(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("named('Public Chat')")
        self.press_at_once(page, *"hi", "Enter", *"you", "Backspace")
        self.assertEqual(self.await_chat(line), b"hi")
        page.wait_for("named('Public Chat').value === 'yo'")
        page.press("Enter")
        self.assertEqual(self.await_chat(line), b"yo")

    def test_letters_behind_an_older_line_are_added_to_it(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("named('Public Chat')")
        page.press(*"one", "Enter")
        self.assertEqual(self.await_chat(line), b"one")
        page.press(*"abc")
        self.press_at_once(page, "ArrowUp", "Backspace", "x", "Enter")
        self.assertEqual(self.await_chat(line), b"onex")
        # The browser has put the caret in front of the line, and the game puts it behind the line that it brings.
        page.press("ArrowUp")
        page.wait_for("named('Public Chat').value === 'one '")
        page.press("y", "Enter")
        self.assertEqual(self.await_chat(line), b"one y")

    def test_option_makes_characters_on_a_mac(self):
        self.pretend_mac()
        _, page = self.begin()
        self.log_in(page)
        page.see("canvas().dispatchEvent(new KeyboardEvent('keydown', {key: '@', keyCode: 76, altKey: true}))")
        page.wait_for("named('Public Chat').value === '@'")

    def test_tab_on_the_view_types_nothing(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("canvas()")
        page.press("Tab")
        line.ask()
        self.assertEqual(page.see("all('.main .textbox')[0].value"), "")

    def test_tab_goes_round_in_a_dialog(self):
        _, page = self.begin()
        page.fill("Player Name:", "Ann", CONNECT)
        close = f"{CONNECT}.querySelector('.close')"
        for keys, wanted in ((["Tab"] * 6, "by('button', 'Cancel')"), (["Tab"], close), (["Tab"], NAME),
                             (["Shift+Tab"], close), (["Shift+Tab"] * 2, "by('button', 'Get List')")):
            page.press(*keys)
            self.assert_focused(page, wanted)
        page.press("Tab", "Tab", "Tab")
        self.assertEqual(page.see(f"[{NAME}.selectionStart, {NAME}.selectionEnd]"), [0, 3])

    def test_keys_reach_the_list_in_its_order_and_close_it(self):
        _, page = self.begin()
        page.press_button("Get List", CONNECT)
        page.wait_for(f"{FINDER} && document.activeElement.closest('.form') === {FINDER}")
        for wanted in ("INPUT", "INPUT", "INPUT", "TABLE", "BUTTON"):
            page.press("Tab")
            self.assertEqual(page.see("document.activeElement.tagName"), wanted)
        page.press("Tab")
        self.assert_focused(page, "by('button', 'Refresh')")
        page.press("Shift+Tab", "Enter")
        page.wait_for(f"!{FINDER}")

    def test_a_letter_may_be_composed_of_unknown_ones(self):
        _, page = self.begin()
        told = f"{NAME}.dispatchEvent(new InputEvent('input', {{isComposing: true}}))"
        page.see(f"(() => {{ {NAME}.value = '\u02c7'; {told}; }})()")
        self.assertEqual(page.see(f"{NAME}.value"), "\u02c7", "the composition has ended")
        page.see(f"(() => {{ {NAME}.value = '\u0161\u02c7'; "
                 f"{NAME}.dispatchEvent(new CompositionEvent('compositionend')); }})()")
        self.assertEqual(page.see(f"{NAME}.value"), "\u0161")

    def test_keys_of_input_methods_and_password_managers_mean_nothing(self):
        _, page = self.begin()
        page.note_events()
        keys = "noted.map(([kind]) => kind).filter((kind) => kind.startsWith('key'))"
        # The Enter that Safari sends behind a composition, and an event without a key.
        page.see(f"{NAME}.dispatchEvent(new KeyboardEvent('keydown', {{key: 'Enter', keyCode: 229}}))")
        self.assertEqual(page.see(keys), [])
        page.see(f"{NAME}.dispatchEvent(new Event('keydown'))")
        self.assertFalse(page.see("hasEnded"))
        self.assertEqual(page.see(keys), ["keyDown"])

    def test_a_pasted_text_becomes_a_line_of_the_game(self):
        _, page = self.begin()
        page.see("named('Server Address:').select()")
        self.insert(page, "\t192.0.2.7\t2010\t")
        self.assertEqual(page.see("named('Server Address:').value"), "192.0.2.7 2010")
        # The tab at its end stands in mid-line, and is a blank with the caret behind it.
        page.press("Home")
        self.insert(page, "at\t")
        self.assertEqual(page.see("((box) => [box.value, box.selectionStart])(named('Server Address:'))"),
                         ["at 192.0.2.7 2010", 3])
        # Letters with their accents apart.
        page.see(f"{NAME}.focus()")
        self.insert(page, "Zoe\u0308 Rene\u0301")
        self.assertEqual(page.see(f"[{NAME}.value, {NAME}.selectionStart]"), ["Zo\u00eb Ren\u00e9", 8])


if __name__ == "__main__":
    unittest.main()
