"""A virtual display with a small window manager, and the windows on it."""

import os
import re
import shutil
import subprocess
import tempfile

import harness
import wine
from harness import PATIENCE, opened, stop, take_out, wait_for
from screen import Gone, Screen


class Picture:
    """A screenshot of the screen, or of one area: left, top, width, height. Positions are the screen's."""

    def __init__(self, screen, area):
        self.left, self.top, self.width, self.height = area or (0, 0, screen.width, screen.height)
        pixels = screen.pixels(self.left, self.top, self.width, self.height)
        self.bytes = bytearray(3 * self.width * self.height)
        for channel in range(3):
            self.bytes[channel::3] = pixels[2 - channel::4]

    def pixel(self, x, y):
        assert 0 <= x - self.left < self.width and 0 <= y - self.top < self.height
        at = ((y - self.top) * self.width + x - self.left) * 3
        return tuple(self.bytes[at:at + 3])

    def pixels(self):
        """All pixels, row by row."""
        return list(zip(self.bytes[0::3], self.bytes[1::3], self.bytes[2::3]))

    def ppm(self):
        return b"P6 %d %d 255\n" % (self.width, self.height) + self.bytes


class Display:
    """A screen with openbox on a free display number. `border` and `padding` change the size of the window manager's
    frames, in pixels."""

    def __init__(self, size="1280x1024", border=None, padding=None):
        self.folder = tempfile.mkdtemp(prefix="kelvora-display-")
        self.programs = []
        self.screen = None
        self.placeholders = []
        self.last_window = 0
        opened.append(self)
        try:
            self.start(size, border, padding)
        except BaseException:
            self.close()
            raise

    def start(self, size, border, padding):
        reader, writer = os.pipe()
        self.xvfb = subprocess.Popen(
            # Keys don't repeat (-r): on a busy machine a key is often released late.
            ["Xvfb", "-displayfd", str(writer), "-screen", "0", f"{size}x24", "-nolisten", "tcp", "-noreset", "-r"],
            pass_fds=[writer], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.programs.append(self.xvfb)
        os.close(writer)
        with os.fdopen(reader) as stream:
            number = stream.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.screen = Screen(number)
        self.environment = dict(os.environ, DISPLAY=f":{number}", HOME=self.folder, LC_ALL="C.UTF-8",
                                XDG_CONFIG_HOME=self.folder, XDG_CACHE_HOME=self.folder, XDG_RUNTIME_DIR=self.folder)
        for name in ("WAYLAND_DISPLAY", "XAUTHORITY", "SESSION_MANAGER", "KELVORA_FRAME_MS"):
            self.environment.pop(name, None)
        self.write_manager_settings(border, padding)
        self.programs.append(subprocess.Popen(
            ["openbox", "--sm-disable"], env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL))
        wait_for(self.manager_answers, "the window manager")

    def write_manager_settings(self, border, padding):
        """Writes a copy of the window manager's default settings, in which it takes no clicks inside windows. It would
        pass them on late, after keys pressed later. Also selects a theme with these frames, if they are given."""
        with open("/etc/xdg/openbox/rc.xml") as file:
            settings = file.read()
        settings = re.sub(r'(?s)<context name="Client">.*?</context>', "", settings)
        if border is not None:
            theme = os.path.join(self.folder, ".themes", "Frame", "openbox-3")
            os.makedirs(theme)
            with open(os.path.join(theme, "themerc"), "w") as file:
                file.write(f"border.width: {border}\npadding.height: {padding}\n")
            settings = re.sub(r"(<theme>\s*<name>)[^<]*", r"\1Frame", settings)
        os.makedirs(os.path.join(self.folder, "openbox"))
        with open(os.path.join(self.folder, "openbox", "rc.xml"), "w") as file:
            file.write(settings)

    def manager_answers(self):
        """Waits until openbox has started: a window shown before that never appears. So one of our requests must
        succeed first."""
        self.xdotool("set_num_desktops", 1)
        return self.xdotool("get_num_desktops").strip() == "1"

    def close(self):
        if not take_out(self):
            return
        for connection in self.placeholders + [self.screen] * bool(self.screen):
            connection.close()
        for program in reversed(self.programs):
            stop(program)
        shutil.rmtree(self.folder, ignore_errors=True)

    def use_new_window_numbers(self):
        """Makes the next client's window numbers new. The X server reuses those of a client that has ended, and a
        window manager that still manages such a window never shows the new one. Connections that stay open reserve the
        numbers of earlier clients."""
        while not self.placeholders or self.placeholders[-1].last_number < self.last_window:
            self.placeholders.append(Screen(self.screen.display))

    def run(self, *command):
        return subprocess.run([str(word) for word in command], env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=PATIENCE).stdout

    def xdotool(self, *arguments):
        return self.run("xdotool", *arguments)

    def titles(self, process=None):
        """The titles of visible windows by id: those of a process, or of all. Menus and tool tips have none."""
        found = {}
        for window in self.screen.shown():
            try:
                if process is None or self.screen.numbers(window, "_NET_WM_PID") == (process,):
                    found[window] = self.screen.property(window, "_NET_WM_NAME").decode()
            except Gone:
                pass
        return found

    def pixel(self, x, y):
        return self.picture((x, y, 1, 1)).pixel(x, y)

    def picture(self, area=None):
        return Picture(self.screen, area)


class Window:
    """A window of the client and its position on the screen, without the window manager's frame. Positions inside it
    are in window pixels, each of which is `scale` screen pixels wide and high."""

    def __init__(self, display, identifier, scale=1):
        self.display = display
        self.identifier = identifier
        self.scale = scale

    def geometry(self):
        """Left, top, width and height in screen pixels."""
        return self.display.screen.geometry(self.identifier)

    def frame(self):
        """The same for the window manager's frame around it."""
        left, top, width, height = self.geometry()
        before, after, above, below = self.display.screen.numbers(self.identifier, "_NET_FRAME_EXTENTS")
        return left - before, top - above, width + before + after, height + above + below

    def corner_for_the_game(self):
        """The upper left corner of the frame as the game knows it, in screen pixels. Wine tells programs about a frame
        of its own, whatever the window manager draws."""
        if not wine.is_for_windows(harness.CLIENT):
            return self.frame()[:2]
        left, top = self.geometry()[:2]
        border, title = wine.frame(self.scale)
        return left - border, top - title

    def is_shown(self):
        try:
            return self.display.screen.is_shown(self.identifier)
        except Gone:
            return False

    def activate(self):
        # First the program hears of any earlier change. Otherwise Wine, on a busy machine, makes another window active
        # afterwards.
        self.display.screen.ping(self.identifier)
        self.display.xdotool("windowactivate", "--sync", self.identifier)

    def click(self, x, y, button=1):
        left, top = self.geometry()[:2]
        self.display.xdotool("mousemove", left + round(x * self.scale), top + round(y * self.scale), "click", button)


def on_display(action):
    """Runs `action` with a display, which is closed afterwards."""
    display = Display()
    try:
        action(display)
    finally:
        display.close()
