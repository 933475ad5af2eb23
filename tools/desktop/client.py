"""The real client in a window."""

import configparser
import os
import shutil
import subprocess
import sys
import tempfile

import harness
import wine
from display import Window
from harness import BESIDE_CANVAS, CLIENT_AREA, CLOSED_PORT, TITLE, TWIPS, opened, stop, take_out, wait_for


class Client:
    """The real client, with a new settings folder or one from an earlier run. `environment` has additional variables;
    None removes one. `scale` is the screen's scale, if it has one. `program` is the client if not the usual one."""

    def __init__(self, display, frame_ms="10", config=None, arguments=("nosound", "nomusic"), web_host=CLOSED_PORT,
                 environment=(), scale=1, program=None):
        program = program or harness.CLIENT
        assert program, "KELVORA_CLIENT is unset: CMakeLists.txt lists the tests that start the client"
        self.display = display
        self.scale = scale
        self.own_config = config is None
        self.config = config or tempfile.mkdtemp(prefix="kelvora-settings-")
        variables = dict(display.environment, XDG_CONFIG_HOME=self.config, HOME=self.config, QT_QPA_PLATFORM="xcb",
                         SDL_AUDIODRIVER="dummy", KELVORA_WEB_HOST=web_host, KELVORA_FRAME_MS=frame_ms)
        self.prefix = wine.prefix_in(self.config, scale) if wine.is_for_windows(program) else None
        if self.prefix:
            variables["WINEPREFIX"] = self.prefix
        variables.update(environment)
        variables = {name: value for name, value in variables.items() if value is not None}
        self.log = tempfile.TemporaryFile()
        display.use_new_window_numbers()
        self.process = subprocess.Popen(wine.command(program, *arguments), env=variables, stdin=subprocess.DEVNULL,
                                        stdout=self.log, stderr=subprocess.STDOUT)
        opened.append(self)
        try:
            self.window = self.wait_for_window(TITLE)
            display.last_window = max(display.last_window, self.window.identifier)
        except Exception:
            print(harness.stacks(), file=sys.stderr)
            self.close()
            raise
        # The menu is the part of the window above the designed client area. It may end between two of its pixels.
        self.menu = self.window.geometry()[3] / scale - CLIENT_AREA[1]

    def close(self):
        if not take_out(self):
            return
        stop(self.process)
        if self.prefix:
            wine.end(self.prefix)
        if self.own_config:
            shutil.rmtree(self.config, ignore_errors=True)
        self.log.close()

    def output(self):
        self.log.seek(0)
        return self.log.read().decode(errors="replace")

    def saved(self, section, key):
        """The setting's text as it is stored, or None."""
        if self.prefix:
            return wine.setting(self.prefix, section, key)
        parser = configparser.RawConfigParser()
        parser.optionxform = str
        parser.read(os.path.join(self.config, "kelvora", "kelvora.ini"))
        section, key = (name.replace(" ", "%20") for name in (section, key))
        return parser.get(section, key, fallback=None)

    def titles(self):
        """The titles of the client's visible windows by id."""
        return self.display.titles(self.process.pid)

    def visible(self):
        """The ids of the client's visible windows."""
        return list(self.titles())

    def choose(self, x, *keys):
        """Opens the menu at pixel x of the menu bar and moves to an item with these keys."""
        self.window.activate()
        before = set(self.visible())
        self.window.click(x, self.menu // 2)
        wait_for(lambda: set(self.visible()) - before, "the menu")
        for key in keys:
            self.display.xdotool("key", key)

    def windows(self):
        """The client's visible windows by title."""
        return {title: Window(self.display, identifier, self.scale)
                for identifier, title in self.titles().items() if title}

    def wait_for_window(self, title):
        def find():
            if self.process.poll() is not None:
                raise AssertionError(f"the client ended with {self.process.returncode}: {self.output()}")
            return self.windows().get(title)
        return wait_for(find, f"the window '{title}'")

    def wait_for_other_window(self):
        """Waits for a window that is neither the main one nor the connect dialog: a message box."""
        def find():
            return [window for title, window in self.windows().items() if title not in (TITLE, "Connect")]
        return wait_for(find, "a message box")[0]

    def connect(self, port, name="Ann", address="127.0.0.1", password="", circle=None):
        """Fills in the connect dialog and presses Enter. `circle` is the colour to click on, 0 to 5."""
        dialog = self.wait_for_window("Connect")
        dialog.activate()
        # Positions of the boxes in twips: 1740 from the left, rows 360 apart.
        for row, text in enumerate((name, address, str(port), password)):
            dialog.click(1740 // TWIPS + 20, (180 + 360 * row) // TWIPS + 9)
            self.display.xdotool("key", "ctrl+a", "key", "BackSpace")
            if text:
                self.display.xdotool("type", "--delay", "5", text)
        if circle is not None:
            dialog.click((1860 + 300 * circle + 97) // TWIPS, (1620 + 127) // TWIPS)
        self.display.xdotool("key", "Return")

    def canvas_size(self):
        """Width and height in pixels."""
        width, height = (pixels / self.scale for pixels in self.window.geometry()[2:])
        return round(width) - BESIDE_CANVAS[0], round(height - self.menu) - BESIDE_CANVAS[1]

    def on_screen(self, x, y):
        """The screen position of a pixel of the client area."""
        left, top, _, _ = self.window.geometry()
        return left + round(x * self.scale), top + round((self.menu + y) * self.scale)

    def mouse_to(self, x, y):
        """Moves the mouse to a pixel of the canvas, by way of a neighbouring one, so that the last step always raises a
        move."""
        left, top = self.on_screen(x, y)
        self.display.xdotool("mousemove", left + 1, top + 1, "mousemove", left, top)

    def right_click(self):
        self.display.xdotool("click", 3)

    def resize(self, width, height):
        """Resizes the client area below the menu, in pixels."""
        size = width, height + round(self.menu)
        self.display.xdotool("windowsize", self.window.identifier, *size)
        wait_for(lambda: self.window.geometry()[2:] == size, "the new size")

    def status_colour(self):
        """The background colour of the connection label, read near its corner, where it has no text."""
        height = self.canvas_size()[1]
        # The status bar starts 465 twips below the canvas, and the label 60 twips inside it.
        x, y = self.on_screen(4 + 4, height + (465 + 60) // TWIPS + 4)
        return self.display.pixel(x, y)

    def wait_for_status(self, colour):
        wait_for(lambda: self.status_colour() == colour, f"the label in {colour}")

    def memory(self):
        """The process's memory in bytes."""
        with open(f"/proc/{self.process.pid}/statm") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def cpu_seconds(self):
        with open(f"/proc/{self.process.pid}/stat") as file:
            fields = file.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
