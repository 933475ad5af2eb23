"""Where dialogs open relative to the main window: corner to corner including the window manager's frames, whatever
their size, at the start and when reopened."""

import unittest

import harness
from desktopTest import DesktopTest
from harness import TWIPS

SETTINGS_MENU = 70  # pixels from the left
CONNECT_PLACE = (6435 // TWIPS, 3660 // TWIPS)
STORE_PLACE = (120 // TWIPS, 120 // TWIPS)


def middle(window):
    left, top, width, height = window.frame()
    return left + width / 2, top + height / 2


class Places(DesktopTest):

    def wait_for_place(self, main, dialog, place):
        """Waits until the dialog's frame is this many pixels to the right of and below the main window's."""
        def offset():
            left, top = main.frame()[:2]
            return tuple(a - b - harness.DIALOG_SHIFT for a, b in zip(dialog.frame()[:2], (left, top)))
        harness.wait_for(lambda: offset() == place, lambda: f"the dialog at {place}, but it is at {offset()}")

    def move_main(self, client, left, top):
        self.display.xdotool("windowmove", client.window.identifier, left, top)
        # Wine asks window managers to place the inside of the frame there.
        places = client.window.frame, client.window.geometry
        harness.wait_for(lambda: (left, top) in [place()[:2] for place in places], "the move")

    def close(self, client, title, x, y):
        """Clicks the button that closes a dialog, given its centre in twips."""
        client.wait_for_window(title).click(x // TWIPS, y // TWIPS)
        harness.wait_for(lambda: title not in client.windows(), f"the closing of {title}")

    def close_connect(self, client):
        self.close(client, "Connect", 1260 + 700, 2460 + 180)

    def test_connect_dialog(self):
        client = self.start_client()
        self.wait_for_place(client.window, client.wait_for_window("Connect"), CONNECT_PLACE)
        self.close_connect(client)
        self.move_main(client, 57, 43)
        x, y = client.on_screen((180 + 1700) // TWIPS, (5100 + 480) // TWIPS)  # the title picture
        self.display.xdotool("mousemove", x, y, "click", 1)
        self.wait_for_place(client.window, client.wait_for_window("Connect"), CONNECT_PLACE)

    def test_store(self):
        client = self.start_client()
        self.close_connect(client)
        for left, top in ((186, 149), (57, 43)):
            self.move_main(client, left, top)
            shop = client.on_screen(client.canvas_size()[0] + (225 + 700) // TWIPS, (4800 + 300) // TWIPS)
            self.display.xdotool("mousemove", *shop, "click", 1)
            self.wait_for_place(client.window, client.wait_for_window("Powerups"), STORE_PLACE)
            self.close(client, "Powerups", 9840 + 500, 8250 + 240)

    def test_font_dialog_is_centred(self):
        client = self.start_client()
        self.close_connect(client)
        for left, top in ((186, 149), (57, 43)):
            self.move_main(client, left, top)
            client.choose(SETTINGS_MENU, "Down", "Down", "Return")
            dialog = client.wait_for_window("Configure Fonts")
            # The window manager draws a handle below the main window but not below a dialog.
            harness.wait_for(lambda: all(abs(a - b) <= 8 for a, b in zip(middle(client.window), middle(dialog))),
                             lambda: f"the dialog round {middle(client.window)}, but it is round {middle(dialog)}")
            self.close(client, "Configure Fonts", 5130 + 700, 5220 + 180)


class ThickFrame(Places):
    frame = {"border": 9, "padding": 14}


if __name__ == "__main__":
    unittest.main()
