"""The page's game finder, and what it enters in the connect dialog."""

import signal

from harness import wait_for
from pageTest import PageTest, unittest
from protocol import PLAYER_JOINED
from servers import servers_listed
from spy import Spy

# The numbers of the marked rows.
CHOSEN = "[...new Set(all('.grid [aria-selected=true]').map((one) => Number(one.dataset.row)))]"


class Finder(PageTest):

    def await_listed(self, server, note):
        """Waits until the server's list has one with this note. Finders ask for it when they open and at "Refresh"."""
        wait_for(lambda: note in servers_listed(f"127.0.0.1:{server.port}"), f"{note} in the list")

    def test_only_a_new_text_moves_the_caret_to_its_beginning(self):
        server, page = self.begin()
        page.fill("Server Port:", "1", "dialog('Connect')")
        page.click_on("named('Server Address:')")
        page.press("Home", *["ArrowRight"] * 3)
        page.press_button("Get List", "dialog('Connect')")
        page.double_click_on(f"by('td', '{server.port}')")
        page.wait_for("box()", "the box about the missing name")
        page.press("Enter")
        page.wait_for("!box()")
        state = "((one) => [one.value, one.selectionStart, one.selectionEnd])"
        self.assertEqual(page.see(f"{state}(named('Server Port:'))"), [str(server.port), 0, 0])
        self.assertEqual(page.see(f"{state}(named('Server Address:'))"), ["127.0.0.1", 3, 3])

    def test_the_finder_leads_to_another_server(self):
        server, page = self.begin("--notes", "the first one")
        page.fill("Player Name:", "Ann", "dialog('Connect')")
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("by('td', 'the first one')")
        other = self.start_server("--notes", "the other one", "--publish", f"http://127.0.0.1:{server.port}")
        spy = Spy(other.port)
        self.addCleanup(spy.close)
        self.await_listed(server, "the other one")
        page.press_button("Refresh", "dialog('Game Finder')")
        page.wait_for("by('td', 'the other one')")
        page.keep("finder")
        self.assertEqual(page.see(CHOSEN), [])
        self.assertTrue(page.see("((grid) => grid.scrollWidth <= grid.clientWidth)(document.querySelector('.grid'))"),
                        "a scroll bar for texts that fit")
        page.double_click_on("by('td', 'the other one')")
        self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"Ann")
        page.wait_for_status("Connected")

    def test_the_finder_is_empty_until_its_list_arrives(self):
        server, page = self.begin()
        server.process.send_signal(signal.SIGSTOP)
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("all('.grid', dialog('Game Finder')).length === 1")
        self.assertEqual(page.see("document.querySelectorAll('.grid th, .grid td').length"), 0)
        server.process.send_signal(signal.SIGCONT)
        page.wait_for("all('.grid td', dialog('Game Finder')).length > 0")

    def test_arrow_keys_choose_a_server_but_not_the_heading(self):
        server, page = self.begin()
        self.start_server("--notes", "the other one", "--publish", f"http://127.0.0.1:{server.port}")
        self.await_listed(server, "the other one")
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("by('td', 'the other one')")
        page.see("document.querySelector('.grid table').focus()")
        for key, row in (("ArrowDown", 2), ("ArrowUp", 1)):
            page.press(key)
            page.wait_for(f"{CHOSEN}.join() === '{row}'")
            # Screen readers read the chosen cell.
            self.assertEqual(page.see("document.getElementById(document.querySelector('.grid table')"
                                      ".getAttribute('aria-activedescendant')).dataset.row"), str(row))
        page.note_events()
        page.press("ArrowUp")
        self.assertEqual(page.see("noted.filter(([kind]) => kind === 'cellChosen')"), [])

    def test_a_double_click_without_servers_is_refused_and_closes_the_finder(self):
        # The list leaves out servers with a password, unless a player asks for them.
        _, page = self.begin("--password", "secret")
        page.press_button("Get List", "dialog('Connect')")
        page.wait_for("by('.label', 'Done', dialog('Game Finder'))")
        self.assertEqual(page.see("new Set(all('.grid [data-row]').map((one) => one.dataset.row)).size"), 1)
        page.double_click_on("by('.grid [data-row]', 'Port')")
        page.wait_for("box() && words(box()).includes('Invalid server port number')", "the box about the port")
        self.assertTrue(page.see("dialog('Game Finder')"))
        page.press("Enter")
        page.wait_for("!dialog('Game Finder')")
        self.assertTrue(page.see("dialog('Connect')"))

    def test_a_long_note_can_be_scrolled_into_sight(self):
        # It is wider than the room that the other columns leave.
        text = "i" * 125
        _, page = self.begin("--notes", text)
        page.press_button("Get List", "dialog('Connect')")
        note = f"by('td', '{text}')"
        page.wait_for(note)
        self.assertTrue(page.see(f"{note}.scrollWidth <= {note}.clientWidth"), "a note that is cut")
        self.assertTrue(page.see("((grid) => grid.scrollWidth > grid.clientWidth)(document.querySelector('.grid'))"))


if __name__ == "__main__":
    unittest.main()
