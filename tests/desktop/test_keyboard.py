"""Typed text appears correctly on keyboards of several countries: in names and passwords, in the chat line, with dead
keys and locks. Letters outside the game's code page are dropped."""

import socket
import unittest

import harness
from desktopTest import DesktopTest
from harness import wait_for
from protocol import ACTIVATE_REQUEST, BUY_ACCEPTED, CHAT, LOGIN, LOGIN_DENIED, PLAYER_JOINED, POSITION_REPORT, frame
from servers import Line

# Keys by their position on the keyboard, as numbered by the display.
DIGIT_0, MINUS_PLACE, EQUALS_PLACE = "19", "20", "21"
Q, W, E, Y, BRACKET_LEFT, SEMICOLON, APOSTROPHE, BACKQUOTE = "24", "25", "26", "29", "34", "47", "48", "49"
DIGIT_2, DIGIT_7, SPACE, SHIFT, ALT_GR = "11", "16", "65", "50", "108"


class Keyboard(DesktopTest):

    def layout(self, *words):
        self.display.run("setxkbmap", *words)
        self.addCleanup(self.display.run, "setxkbmap", "us")

    def press(self, *keys):
        for key in keys:
            self.display.xdotool("key", key)

    def with_key(self, held, *keys):
        self.display.xdotool("keydown", held, *[word for key in keys for word in ("key", key)], "keyup", held)

    def field(self, client, row):
        """Clears a box of the connect dialog and gives it the focus."""
        dialog = client.wait_for_window("Connect")
        dialog.activate()
        dialog.click(1740 // harness.TWIPS + 20, (180 + 360 * row) // harness.TWIPS + 9)
        self.display.xdotool("key", "ctrl+a", "key", "BackSpace")

    def in_game(self):
        client, line = self.log_in()
        line.send(BUY_ACCEPTED, 0, 1, 0)
        return client, line

    def next_but_reports(self, line):
        while (received := line.recv_frame())[0] == POSITION_REPORT:
            pass
        return received


class Names(Keyboard):

    def login_typed(self, *layout, keys):
        """The login of a client after typing these keys as the name."""
        client = self.start_client()
        server = self.scripted_server()
        dialog = client.wait_for_window("Connect")
        dialog.activate()
        self.field(client, 2)
        self.display.xdotool("type", str(server.port))
        self.field(client, 0)
        self.layout(*layout)
        keys()
        self.press("Return")
        received = server.accept().recv_bytes()
        client.close()
        return received

    def test_german(self):
        def keys():
            self.press(Y, SEMICOLON, BRACKET_LEFT, APOSTROPHE, MINUS_PLACE)
            self.with_key(SHIFT, SEMICOLON)
            self.press(EQUALS_PLACE, E)
            self.with_key(ALT_GR, Q)
        self.assertEqual(self.login_typed("de", keys=keys), frame(
            LOGIN, "z\u00F6\u00FC\u00E4\u00DF\u00D6\u00E9@", "", 0, harness.VERSION))

    def test_french(self):
        def keys():
            self.press(Q, DIGIT_2, DIGIT_7, DIGIT_0, BRACKET_LEFT, E)
        self.assertEqual(self.login_typed("fr", keys=keys), frame(
            LOGIN, "a\u00E9\u00E8\u00E0\u00EA", "", 0, harness.VERSION))

    def test_american_with_dead_keys(self):
        def keys():
            self.press(APOSTROPHE, E, APOSTROPHE, SPACE, BACKQUOTE, E, Q)
        self.assertEqual(self.login_typed("us", "-variant", "intl", keys=keys), frame(LOGIN, "\u00E9'\u00E8q", "", 0,
                                                                                      harness.VERSION))

    def test_letters_outside_the_code_page_are_dropped(self):
        def keys():
            self.press(Q, W, "1", SPACE, E)
            self.press("2")
        # Three Cyrillic letters are dropped; two digits and a blank stay.
        self.assertEqual(self.login_typed("ru", keys=keys), frame(LOGIN, "1 2", "", 0, harness.VERSION))


class WithTheServer(Keyboard):

    def test_a_euro_sign_in_the_name_is_refused_with_a_message(self):
        server = self.start_server()
        client = self.start_client()
        client.connect(server.port, name="")
        # The dialog itself refuses the empty name and stays open.
        box = client.wait_for_other_window()
        box.activate()
        self.press("Return")
        wait_for(lambda: len(client.windows()) == 2, "the box's end")
        self.field(client, 0)
        self.layout("de")
        self.press(Y)
        self.with_key(ALT_GR, E)
        self.press("Return")
        # Shown in a box. Then the dialog opens again.
        box = client.wait_for_other_window()
        box.activate()
        self.press("Return")
        wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the dialog")

    def test_german_letters_in_name_and_password_are_accepted(self):
        # The password as a terminal passes it, in UTF-8.
        server = self.start_server("--password", "\u00D6ffne")
        client = self.start_client()
        self.layout("de")
        dialog = client.wait_for_window("Connect")
        dialog.activate()
        for row, text in ((2, str(server.port)), (3, "\u00D6ffne"), (0, "Z\u00F6e")):
            self.field(client, row)
            self.display.xdotool("type", "--delay", "20", text)
        self.press("Return")
        client.wait_for_status((128, 255, 128))
        witness = Line(socket.create_connection(("127.0.0.1", server.port)))
        self.addCleanup(witness.close)
        witness.send(LOGIN, "Bob", "\u00D6ffne", 1, harness.VERSION)
        while (received := witness.recv_frame())[0] != PLAYER_JOINED:
            self.assertNotEqual(received[0], LOGIN_DENIED, received)
        self.assertEqual(received[1][2], "Z\u00F6e".encode("cp1252"))


class Chat(Keyboard):

    def chat_typed(self, keys):
        """The chat line sent after these keys, the first of which are typed on the picture."""
        client, line = self.in_game()
        client.window.activate()
        client.mouse_to(300, 300)
        self.display.xdotool("click", 1)
        keys()
        self.press("Return")
        received = self.next_but_reports(line)
        client.close()
        return received

    def test_dead_keys_work_over_the_picture(self):
        def keys():
            # The dead circumflex and a blank give a circumflex. The letter goes to the chat line, which has the focus
            # by then.
            self.press(BACKQUOTE, SPACE, Y)
            self.with_key(ALT_GR, Q)
        self.layout("de")
        self.assertEqual(self.chat_typed(keys), (CHAT, [b"-1", b"^z@"]))

    def test_quick_typing_reaches_the_chat_line(self):
        # The first letter moves the focus to the chat line, where Enter sends it, however soon it follows.
        self.assertEqual(self.chat_typed(lambda: self.display.xdotool("key", "--delay", "0", Q, W, "Return", E)),
                         (CHAT, [b"-1", b"qw"]))

    def test_chat_drops_non_ascii(self):
        def keys():
            self.press(SEMICOLON, "a", EQUALS_PLACE, E, "b")
        self.layout("de")
        self.assertEqual(self.chat_typed(keys), (CHAT, [b"-1", b"ab"]))

    def test_powerups_fire_on_any_layout_and_with_any_lock(self):
        client, line = self.in_game()
        client.window.activate()
        client.mouse_to(300, 300)
        for layout in (("ru",), ("fr",), ("us", "-variant", "intl")):
            with self.subTest(layout=layout):
                self.layout(*layout)
                self.press("Caps_Lock", "Num_Lock")
                try:
                    self.press("F1")
                    self.assertEqual(self.next_but_reports(line), (ACTIVATE_REQUEST, [b"0"]))
                finally:
                    self.press("Caps_Lock", "Num_Lock")

    def test_powerups_fire_from_the_chat_line_with_any_shift_key(self):
        client, line = self.in_game()
        client.window.activate()
        client.mouse_to(300, 300)
        self.press(Q)  # moves the focus to the chat line
        for key in ("F1", "shift+F1", "ctrl+F1", "alt+F1"):
            with self.subTest(key=key):
                self.press(key)
                self.assertEqual(self.next_but_reports(line), (ACTIVATE_REQUEST, [b"0"]))
        self.press("Return")
        self.assertEqual(self.next_but_reports(line), (CHAT, [b"-1", b"q"]))


if __name__ == "__main__":
    unittest.main()
