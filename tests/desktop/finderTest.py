"""Shared code of the tests that use the game finder."""

import harness
from desktopTest import DesktopTest
from harness import TWIPS

FINDER = "Game Finder"
# Positions in the finder's client area, in pixels.
GRID = (60 // TWIPS, 1080 // TWIPS)
ROW_HEIGHT = 18


class FinderTest(DesktopTest):

    def open_finder(self, client):
        dialog = client.wait_for_window("Connect")
        dialog.activate()
        # Enters a name to log in with, then presses Esc, which opens the finder.
        dialog.click(1740 // TWIPS + 20, 180 // TWIPS + 9)
        self.display.xdotool("key", "ctrl+a", "type", "Ann")
        self.display.xdotool("key", "Escape")
        finder = client.wait_for_window(FINDER)
        harness.wait_for(lambda: self.has_plain_rows(finder), "the finder's painting")
        return finder

    def double_click(self, finder, row):
        """Double-clicks a row of the list, counted from 0 below the heading."""
        left, top = finder.geometry()[:2]
        x, y = GRID[0] + 40, GRID[1] + ROW_HEIGHT * (row + 1) + ROW_HEIGHT // 2
        self.display.screen.double_click(left + x, top + y)

    def has_plain_rows(self, finder):
        """True if the lower rows, which no test fills, have one colour, unlike the picture behind the finder."""
        left, top = finder.geometry()[:2]
        rows = self.display.picture((left + GRID[0] + 4, top + GRID[1] + ROW_HEIGHT * 8, 500, ROW_HEIGHT * 5))
        return len(set(rows.pixels())) == 1

    def has_row(self, finder, row):
        """True if the row has text, on any background."""
        left, top = finder.geometry()[:2]
        text = self.display.picture((left + GRID[0] + 4, top + GRID[1] + ROW_HEIGHT * (row + 1) + 4, 116, 12))
        colours = set(text.pixels())
        return max(map(sum, colours)) - min(map(sum, colours)) > 300

    def wait_for_row(self, finder, row):
        harness.wait_for(lambda: self.has_row(finder, row), f"row {row} of the list")

    def wait_for_no_row(self, finder, row):
        harness.wait_for(lambda: not self.has_row(finder, row), f"the end of row {row} of the list")
