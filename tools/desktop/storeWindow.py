"""The store's real window: clicks by item, and what it shows."""

import harness
from harness import TWIPS

WHITE = (255, 255, 255)
TOO_DEAR = (128, 95, 95)
YELLOW = (255, 255, 0)

# Positions in pixels of the client area: left, top, width and height, in the first of six rows.
ROW = 76
PICTURE = (20, 79, 57, 57)
PRICE = (220, 81, 72, 17)
BUY = (220, 104, 72, 30)
STOCK = (656, 81, 72, 17)
SELL = (656, 104, 72, 30)
FUNDS_LABEL = (642, 25, 100, 18)
CAPACITY_LABEL = (534, 25, 100, 18)
STATUS = (24, 548, 616, 40)
DONE = (656, 550, 72, 32)


class StoreWindow:
    """The open store: clicks by item, and what it shows."""

    def __init__(self, client):
        self.client = client
        width, _ = client.canvas_size()
        # btnShop is 225 twips to the right of the canvas, 4800 from the top.
        left, top = client.on_screen(width + 225 // TWIPS + 49, 4800 // TWIPS + 20)
        client.display.xdotool("mousemove", left, top, "click", 1)
        self.window = client.wait_for_window("Powerups")
        harness.wait_for(lambda: self.price_colour(5) in (WHITE, TOO_DEAR), "the store's picture")

    def click(self, place, item=0):
        left, top, width, height = place
        self.window.click(left + width // 2, top + ROW * item + height // 2)

    def pixels(self, place, item=0):
        """The pixels of a rectangle on the screen, row by row."""
        window_left, window_top = self.window.geometry()[:2]
        left, top, width, height = place
        area = window_left + left, window_top + top + ROW * item, width, height
        return self.client.display.picture(area).pixels()

    def wait_for_change(self, place, before, item=0):
        return harness.wait_for(lambda: (now := self.pixels(place, item)) != before and now, f"a change at {place}")

    def price_colour(self, item):
        return self.pixels((PRICE[0] + 2, PRICE[1] + 2, 1, 1), item)[0]

    def wait_for_prices(self, colours):
        harness.wait_for(lambda: [self.price_colour(item) for item in range(6)] == colours, f"prices in {colours}")

    def wait_for_status(self):
        harness.wait_for(lambda: YELLOW in self.pixels(STATUS), "a text at the bottom")

    def wait_for_end(self):
        harness.wait_for(lambda: "Powerups" not in self.client.windows(), "the store's end")
