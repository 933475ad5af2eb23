"""Drives the real program: a virtual display with a small window manager, the client with its own settings, the real
server or a scripted one, the mouse and the keyboard. Everything stays on this machine, and everything started here is
stopped here."""

import atexit
import configparser
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

import wine
from ports import free_port
from screen import Gone, Screen

PROJECT = pathlib.Path(__file__).resolve().parents[2]
CLIENT = os.environ.get("KELVORA_CLIENT")
# The second client of a game of two. It may be the build of another system.
OTHER_CLIENT = os.environ.get("KELVORA_OTHER_CLIENT", CLIENT)
SERVER = os.environ.get("KELVORA_SERVER")
VERSION = re.search(r"project\(kelvora VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text())[1]
TITLE = f"Kelvora v{VERSION}"
TWIPS = 15  # per pixel
# The update check at every start connects to a port of this machine without a listener.
CLOSED_PORT = "127.0.0.1:9"
CLIENT_AREA = (894, 670)  # pixels of the main window below its menu, as designed
# The part of the client area outside the canvas, in pixels, at any window size.
BESIDE_CANVAS = (131, 62)

# Wine's frames of dialogs are a pixel thinner than those of windows that can be resized, whatever the window manager
# draws. So dialogs are this many pixels from where they would be.
DIALOG_SHIFT = -1 if CLIENT and wine.is_for_windows(CLIENT) else 0

# Timeout in seconds for things that happen at once on an idle machine. Nothing waits longer than necessary.
PATIENCE = 60.0


def program_in(folder, name):
    """The path of a program in a build folder. Those for Windows have an ending."""
    program = (pathlib.Path(folder) / name).resolve()
    return str(program if program.exists() else program.with_name(name + ".exe"))


def use_build(folder):
    """Uses the programs of this build folder, whatever the environment says."""
    global CLIENT, SERVER
    CLIENT, SERVER = (program_in(folder, name) for name in ("kelvora", "kelvora-server"))
    load_protocol()


def load_protocol():
    """Loads the message ids, which the build writes beside its programs."""
    global protocol
    program = CLIENT or SERVER
    sys.path.insert(0, str(pathlib.Path(program).resolve().parent / "generated"))
    try:
        import protocol
    except ModuleNotFoundError:
        sys.exit(f"The message ids for Python are missing beside {program}. Build them: cmake --build --preset release")


if CLIENT or SERVER:
    load_protocol()


# What is open, in order. It is closed even if the script is interrupted.
opened = []
signal.signal(signal.SIGTERM, signal.default_int_handler)


def take_out(program):
    """Takes it out of what is open. Returns False if it has been closed before."""
    if program not in opened:
        return False
    opened.remove(program)
    return True


@atexit.register
def close_all():
    while opened:
        opened[-1].close()


def on_display(action):
    """Runs `action` with a display, which is closed afterwards."""
    display = Display()
    try:
        action(display)
    finally:
        display.close()


def wait_for(condition, what, seconds=PATIENCE, pause=0.02):
    """Waits for the first true result of `condition`. Fails the test if there is none in time. `what` names it, and may
    be a function that does."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds} s: {what() if callable(what) else what}")
        time.sleep(pause)


def wait_until_it_holds(assertion, seconds=PATIENCE, pause=0.02):
    """Waits until `assertion` passes. If it doesn't in time, fails the test with its last failure."""
    deadline = time.monotonic() + seconds
    while True:
        try:
            return assertion()
        except AssertionError:
            if time.monotonic() > deadline:
                raise
        time.sleep(pause)


def wait_for_rest(look, what, looks=5):
    """Waits until `look` has returned the same result this many times in a row, and returns it."""
    seen = []

    def is_at_rest():
        seen.append(look())
        return len(seen) >= looks and all(one == seen[-1] for one in seen[-looks:])
    wait_for(is_at_rest, f"{what} at rest")
    return seen[-1]


def is_read(connection):
    """True if the program at the other end has read everything sent over this connection."""
    ends = connection.getsockname()[1], connection.getpeername()[1]
    queues = {}
    with open("/proc/net/tcp") as table:
        next(table)
        for row in table:
            _, local, remote, _, waiting = row.split()[:5]
            ports = tuple(int(address.rpartition(":")[2], 16) for address in (local, remote))
            queues[ports] = [int(length, 16) for length in waiting.split(":")]
    unsent, unread = queues[ends][0], queues.get(ends[::-1], (0, 0))[1]
    return unsent == 0 and unread == 0


def stop(process):
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def listener():
    """A socket that listens on a free port."""
    return socket.create_server(("127.0.0.1", free_port()))


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
        """Makes the next client's window numbers new. The X server reuses those of a client that has ended, and a window
        manager that still manages such a window never shows the new one. Connections that stay open reserve the
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
        if not wine.is_for_windows(CLIENT):
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


class Client:
    """The real client, with a new settings folder or one from an earlier run. `environment` has additional variables;
    None removes one. `scale` is the screen's scale, if it has one. `program` is the client if not the usual one."""

    def __init__(self, display, frame_ms="10", config=None, arguments=("nosound", "nomusic"), web_host=CLOSED_PORT,
                 environment=(), scale=1, program=None):
        program = program or CLIENT
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
        except BaseException:
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


class Server:
    """The real server on a free port. `web_host` is the address of its list, if requested. An unpaced client flies many
    times faster than designed, so the speed is not limited."""

    def __init__(self, *arguments):
        assert SERVER, "KELVORA_SERVER is unset: CMakeLists.txt lists the tests that start the server"
        self.port = free_port()
        self.web_host = None
        self.process = subprocess.Popen(wine.command(SERVER, "--address", "127.0.0.1", "--port", str(self.port),
                                                     "--speed-limit", "0", *arguments),
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        text=True)
        opened.append(self)
        for line in self.process.stdout:
            if line.startswith("web on "):
                self.web_host = line.split()[-1]
            if line.startswith("listening on "):
                return
        self.close()
        raise AssertionError("the server ended at once")

    def close(self):
        if not take_out(self):
            return
        stop(self.process)
        self.process.stdout.close()


class Line:
    """One connection that sends and receives whole frames."""

    def __init__(self, connection):
        self.socket = connection
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.received = b""

    def close(self):
        self.socket.close()

    def send_bytes(self, data):
        self.socket.sendall(data)

    def send(self, identifier, *fields):
        self.send_bytes(protocol.frame(identifier, *fields))

    def recv_bytes(self, seconds=PATIENCE):
        """The bytes of the next frame with its delimiters; None once the other side has closed."""
        deadline = time.monotonic() + seconds
        while protocol.END not in self.received:
            self.socket.settimeout(max(deadline - time.monotonic(), 0.001))
            try:
                data = self.socket.recv(65536)
            except socket.timeout:
                raise AssertionError(f"no frame within {seconds} s, but {self.received!r}") from None
            except ConnectionResetError:
                data = b""
            if not data:
                return None
            self.received += data
        whole, _, self.received = self.received.partition(bytes([protocol.END]))
        return whole + bytes([protocol.END])

    def recv_frame(self, seconds=PATIENCE):
        """The id and fields of the next frame; None once the other side has closed."""
        data = self.recv_bytes(seconds)
        if data is None:
            return None
        assert data[0] == protocol.START, data
        return data[1], data[2:-1].split(bytes([protocol.SEPARATOR]))

    def frames_during(self, seconds):
        """All frames that arrive in this time."""
        frames = []
        deadline = time.monotonic() + seconds
        while (left := deadline - time.monotonic()) > 0:
            try:
                received = self.recv_frame(left)
            except AssertionError:
                break
            if received is None:
                break
            frames.append(received)
        return frames

    def ask(self):
        """Waits until the client has handled everything sent. Returns its time of day in seconds and the ball's
        position, which it sends in reply to a ping. Skips frames before the reply."""
        self.send(protocol.PING, 1)
        while (received := self.recv_frame())[0] != protocol.PING_REPLY:
            pass
        seconds = float(received[1][0])
        identifier, place = self.recv_frame()
        assert identifier == protocol.POSITION_REPORT
        return seconds, tuple(float(coordinate) for coordinate in place)

    def wait_for_paint(self):
        """Waits until a frame has been painted after the client handled everything sent. Returns the ball's position.
        One pass answers for 10 ms, so a later answer comes from another pass."""
        begin = self.ask()[0]
        while abs(self.ask()[0] - begin) < 0.05:
            pass
        return self.ask()[1]

    def wait_for_rest(self):
        """Waits until the ball rests, so that it is always painted at the same position. Returns that."""
        return wait_for_rest(self.wait_for_paint, "the ball", looks=2)

    def report(self, seconds=PATIENCE):
        """The next position report as a pair of numbers. Skips other frames."""
        while True:
            identifier, fields = self.recv_frame(seconds)
            if identifier == protocol.POSITION_REPORT:
                return float(fields[0]), float(fields[1])


class ScriptedServer:
    """A server scripted by the test."""

    def __init__(self):
        self.listener = listener()
        self.port = self.listener.getsockname()[1]
        self.lines = []

    def accept(self, seconds=PATIENCE):
        self.listener.settimeout(seconds)
        self.lines.append(Line(self.listener.accept()[0]))
        return self.lines[-1]

    def close(self):
        for line in self.lines:
            line.close()
        self.listener.close()
