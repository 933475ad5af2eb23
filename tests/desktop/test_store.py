"""The store in its real window: buying, selling, refusals, its position and closing; and the keys that fire what it
sells."""

import unittest

import harness
from desktopTest import DesktopTest
from harness import TWIPS
from protocol import (ACTIVATE_REQUEST, BUY_ACCEPTED, BUY_DENIED, BUY_REQUEST, FUNDS, POWERUP_ON, RESPAWN,
                      SELL_ACCEPTED, SELL_DENIED, SELL_REQUEST)
from storeWindow import (BUY, CAPACITY_LABEL, DONE, FUNDS_LABEL, PICTURE, SELL, STATUS, STOCK, TOO_DEAR, WHITE,
                         YELLOW, StoreWindow)



class Store(DesktopTest):

    def open(self, funds=10):
        """Opens the store over a running game. Returns it and the connection to its server."""
        client, line = self.log_in()
        line.send(FUNDS, 7, funds)
        line.ask()
        return StoreWindow(client), line

    def wait_for_home(self, store):
        """Waits for the store's position, 120 twips to the right of and below the main window."""
        def is_home():
            (left, top), (main_left, main_top) = (one.geometry()[:2] for one in (store.window, store.client.window))
            beside = 120 // TWIPS + harness.DIALOG_SHIFT
            return (left, top) == (main_left + beside, main_top + beside) and (left, top)
        return harness.wait_for(is_home, lambda: f"the store's place, but {store.window.geometry()}")

    def test_window_has_its_size_and_opens_over_the_main_one(self):
        store, line = self.open()
        self.assertEqual(store.window.geometry()[2:], (758, 604))
        self.wait_for_home(store)

    def test_prices_are_coloured_by_the_balance(self):
        store, line = self.open(funds=20)
        store.wait_for_prices([WHITE, WHITE, TOO_DEAR, WHITE, WHITE, TOO_DEAR])
        line.send(BUY_ACCEPTED, 1, 1, 10)
        store.wait_for_prices([TOO_DEAR, WHITE] + 4 * [TOO_DEAR])

    def test_buttons_and_pictures_buy(self):
        store, line = self.open()
        for item in range(6):
            store.click(BUY, item)
            self.assertEqual(line.recv_frame(), (BUY_REQUEST, [str(item).encode()]))
            store.click(PICTURE, item)
            self.assertEqual(line.recv_frame(), (BUY_REQUEST, [str(item).encode()]))

    def test_purchase_shows_in_the_row_and_in_the_totals(self):
        store, line = self.open(funds=100)
        before = [store.pixels(place, item) for place, item in
                  ((STOCK, 4), (FUNDS_LABEL, 0), (CAPACITY_LABEL, 0), (STOCK, 3))]
        store.click(BUY, 4)
        line.recv_frame()
        line.send(BUY_ACCEPTED, 4, 1, 80)
        store.wait_for_status()
        store.wait_for_change(STOCK, before[0], 4)
        store.wait_for_change(FUNDS_LABEL, before[1])
        store.wait_for_change(CAPACITY_LABEL, before[2])
        self.assertEqual(store.pixels(STOCK, 3), before[3], "another row")

    def test_selling(self):
        store, line = self.open()
        line.send(BUY_ACCEPTED, 2, 1, 0)
        store.wait_for_status()
        one = store.pixels(STOCK, 2)
        store.click(SELL, 2)
        self.assertEqual(line.recv_frame(), (SELL_REQUEST, [b"2"]))
        line.send(SELL_ACCEPTED, 2, 0, 15)
        store.wait_for_change(STOCK, one, 2)
        store.wait_for_prices([TOO_DEAR, WHITE] + 4 * [TOO_DEAR])

    def test_refusals_appear_at_the_bottom(self):
        store, line = self.open()
        self.assertNotIn(YELLOW, store.pixels(STATUS))
        line.send(BUY_DENIED, "You cannot afford that.")
        store.wait_for_status()
        first = store.pixels(STATUS)
        line.send(SELL_DENIED, "You have nothing to sell.")
        store.wait_for_change(STATUS, first)

    def test_purchase_beyond_the_capacity_is_refused_without_the_server(self):
        store, line = self.open()
        line.send(BUY_ACCEPTED, 0, 10, 500)
        store.wait_for_status()
        before = store.pixels(STATUS)
        store.click(BUY, 1)
        after = store.wait_for_change(STATUS, before)
        self.assertGreater(after.count(YELLOW), 2 * before.count(YELLOW), "the long text of the refusal")
        self.assertEqual(line.frames_during(0.5), [])

    def test_item_has_a_tool_tip(self):
        store, line = self.open()
        left, top = store.window.geometry()[:2]
        x, y = left + PICTURE[0] + 28, top + PICTURE[1] + 28
        below = (PICTURE[0] + 28, PICTURE[1] + 28, 120, 50)
        self.display.xdotool("mousemove", left + 400, top + 20)
        before = harness.wait_for_rest(lambda: store.pixels(below), "the store")
        self.display.xdotool("mousemove", x - 1, y, "mousemove", x, y)
        harness.wait_for(lambda: sum(a != b for a, b in zip(store.pixels(below), before)) > 500, "the tool tip")

    def test_done_and_a_respawn_close_it(self):
        store, line = self.open()
        store.click(DONE)
        store.wait_for_end()
        store = StoreWindow(store.client)
        line.send(RESPAWN, 7)
        store.wait_for_end()

    def test_game_continues_behind_it(self):
        client, line = self.log_in()
        client.mouse_to(600, 200)
        client.right_click()
        line.report()
        StoreWindow(client)
        places = {line.report() for _ in range(20)}
        self.assertGreater(len(places), 10)

    def test_it_jumps_back_when_it_gets_the_focus(self):
        store, line = self.open()
        line.send(BUY_ACCEPTED, 0, 2, 0)
        home = self.wait_for_home(store)
        self.display.xdotool("windowmove", store.window.identifier, home[0] + 200, home[1] + 150)
        harness.wait_for(lambda: store.window.geometry()[0] > home[0] + 150, "the move")
        store.client.window.activate()
        # A key handled by the main window shows that the client has been told about the move and the focus.
        self.display.xdotool("key", "F1")
        self.assertEqual(line.recv_frame(), (ACTIVATE_REQUEST, [b"0"]))
        self.assertGreater(store.window.geometry()[0], home[0] + 150)
        store.window.activate()
        self.assertEqual(self.wait_for_home(store), home)


class RealServer(DesktopTest):

    def test_ten_credits_buy_a_turbo_and_a_second_one_is_refused(self):
        server = self.start_server()
        client = self.start_client()
        client.connect(server.port)
        client.wait_for_status((128, 255, 128))
        client.mouse_to(300, 300)
        store = StoreWindow(client)
        # Ten credits only pay for the turbo.
        store.wait_for_prices([TOO_DEAR, WHITE] + 4 * [TOO_DEAR])
        none = store.pixels(STOCK, 1)
        store.click(BUY, 1)
        one = store.wait_for_change(STOCK, none, 1)
        store.wait_for_prices(6 * [TOO_DEAR])
        store.wait_for_status()
        bought = harness.wait_for_rest(lambda: store.pixels(STATUS), "the text at the bottom")
        store.click(BUY, 1)
        store.wait_for_change(STATUS, bought)
        self.assertEqual(store.pixels(STOCK, 1), one)


class Keys(DesktopTest):

    def fire_all(self, line):
        for item in range(6):
            line.send(BUY_ACCEPTED, item, 1, 0)
        line.ask()
        for item in range(5):
            self.display.xdotool("key", f"F{item + 1}")
            self.assertEqual(line.recv_frame(), (ACTIVATE_REQUEST, [str(item).encode()]))
        # The pulse only fires behind a shield.
        self.display.xdotool("key", "F6", "key", "F1")
        self.assertEqual(line.recv_frame(), (ACTIVATE_REQUEST, [b"0"]))
        line.send(POWERUP_ON, 7, 0)
        line.ask()
        self.display.xdotool("key", "F6")
        self.assertEqual(line.recv_frame(), (ACTIVATE_REQUEST, [b"5"]))

    def test_powerups_fire_from_the_canvas(self):
        client, line = self.log_in()
        client.window.activate()
        client.mouse_to(300, 300)
        self.display.xdotool("click", 1)
        self.fire_all(line)

    def test_powerups_fire_from_the_chat_box(self):
        client, line = self.log_in()
        client.window.activate()
        # txtChat is 1440 twips from the left and 105 below the canvas.
        x, y = client.on_screen(1440 // TWIPS + 100, client.canvas_size()[1] + 105 // TWIPS + 12)
        self.display.xdotool("mousemove", x, y, "click", 1)
        self.fire_all(line)


if __name__ == "__main__":
    unittest.main()
