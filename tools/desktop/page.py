"""The client in a browser, and its controls by what a user sees of them."""

import contextlib
import json
import os
import pathlib

from browser import Tab
from harness import BESIDE_CANVAS, wait_for

PICTURES = os.environ.get("KELVORA_PICTURES")  # a folder for screenshots, which are kept only if it is set
LEFT, RIGHT = 0, 2  # mouse buttons

# The things that a user can see: elements with a box that nothing hides, by selector and text.
PRELUDE = """
const shown = (element) => element.checkVisibility({visibilityProperty: true}) && element.getClientRects().length > 0;
const all = (selector, root = document) => [...root.querySelectorAll(selector)].filter(shown);
const words = (element) => element.innerText.trim();
const by = (selector, text, root) => all(selector, root).find((element) => words(element) === text);
const dialog = (title) => all('.form.dialog').find((form) => words(form.querySelector('h2')) === title);
const box = () => all('dialog[open]').at(-1);
const named = (name, root) => all('input', root).find((input) => (
  input.labels && input.labels[0] ? words(input.labels[0]) : (input.getAttribute('aria-labelledby') || '').split(' ')
    .map((id) => document.getElementById(id)?.textContent).join(' ')) === name);
const canvas = () => document.querySelector('.main canvas');
"""


class Page(Tab):
    """The client in a browser."""

    def see(self, expression):
        """The value of an expression that may use PRELUDE's functions."""
        return self.evaluate(f"(() => {{ {PRELUDE} const seen = {expression}; "
                             "return seen instanceof Node ? true : seen; })()")

    def wait_for(self, expression, what=None):
        def look():
            with contextlib.suppress(RuntimeError):  # the browser is between two pages
                return self.see(expression)
        return wait_for(look, lambda: f"{what or expression}; the page says {self.texts()!r}")

    def texts(self):
        return self.see("document.body.innerText")

    def place(self, element):
        """Left, top, width and height of an element, whose middle nothing covers."""
        found = f"(() => {{ const e = {element}; if (!e) return null; const r = e.getBoundingClientRect(); " \
                "const top = document.elementFromPoint(r.left + r.width / 2, r.top + r.height / 2); " \
                "return e === top || e.contains(top) ? [r.left, r.top, r.width, r.height] : null; })()"
        return self.wait_for(found, f"{element} in sight")

    def middle(self, element):
        left, top, width, height = self.place(element)
        return left + width / 2, top + height / 2

    def click_on(self, element, button=LEFT, times=1):
        self.click(*self.middle(element), button=button, times=times)

    def double_click_on(self, element):
        """A busy browser takes two clicks for single ones. Then they are repeated."""
        self.see("(() => { window.isDouble = false; "
                 "addEventListener('dblclick', () => { isDouble = true; }, true); })()")

        def is_double():
            self.click_on(element, times=2)
            return self.see("isDouble")
        wait_for(is_double, f"a double-click on {element}")

    def press_button(self, caption, root="document"):
        self.click_on(f"by('button', {json.dumps(caption)}, {root})")

    def choose(self, *captions):
        """Clicks through the menus."""
        for caption in captions:
            self.click_on(f"by('.menubar button', {json.dumps(caption)})")

    def fill(self, name, text, root="document"):
        self.click_on(f"named({json.dumps(name)}, {root})")
        self.press("Control+a", "Backspace")
        self.type(text)

    def connect(self, name="Ann", port=None, colour=None):
        """Fills in the connect dialog and presses its button."""
        self.wait_for("dialog('Connect')")
        self.fill("Player Name:", name, "dialog('Connect')")
        if port is not None:
            self.fill("Server Port:", str(port), "dialog('Connect')")
        if colour is not None:
            left, top, width, height = self.place(
                f"all('.shape', dialog('Connect'))[{colour}].parentElement.parentElement")
            circle = self.see("(r => [r.left + r.width / 2, r.top + r.height / 2])"
                              f"(all('.shape')[{colour}].getBoundingClientRect())")
            self.click(*circle)
        self.press_button("Connect", "dialog('Connect')")

    def status(self):
        return self.see("words(all('.main .frame .label.bordered').at(-1))")

    def wait_for_status(self, text):
        self.wait_for(f"by('.main .label', {json.dumps(text)})", f"the status {text}")

    def canvas_size(self):
        """Once the game has taken the page's size."""
        self.wait_for(f"canvas().width + {BESIDE_CANVAS[0]} === deskWidth", "the page's size")
        return self.see("[canvas().width, canvas().height]")

    def mouse_to(self, x, y):
        """Moves the mouse to a pixel of the canvas."""
        left, top, width, _ = self.see("(r => [r.left, r.top, r.width, r.height])(canvas().getBoundingClientRect())")
        scale = width / self.canvas_size()[0]
        self.move(left + x * scale, top + y * scale)

    def release_brakes(self, x, y):
        """Points at a pixel of the canvas, then presses the right button."""
        self.mouse_to(x, y)
        self.mouse({"type": "pointerDown", "button": RIGHT}, {"type": "pointerUp", "button": RIGHT})

    def note_events(self):
        """From now on the page's `noted` lists the events that it queues for the program: kind, id and
        numbers."""
        self.see("(() => { window.noted = []; const queue = post; post = (kind, id, numbers = [], ...rest) => { "
                 "noted.push([kind, id, ...numbers]); queue(kind, id, numbers, ...rest); }; })()")

    def count_pixels(self, test, canvas="canvas()", area=None):
        """How many pixels of a canvas pass a test of r, g and b. `area`: left, top, width and height."""
        place = ",".join(str(round(number)) for number in area) if area else "0, 0, c.width, c.height"
        return self.see(f"(() => {{ const c = {canvas}; const d = c.getContext('2d').getImageData({place}).data; "
                        f"let n = 0; for (let i = 0; i < d.length; i += 4) {{ "
                        f"const r = d[i], g = d[i + 1], b = d[i + 2]; if ({test}) ++n; }} return n; }})()")

    def keep(self, name):
        """Keeps a screenshot for inspection."""
        if PICTURES:
            pathlib.Path(PICTURES, f"{self.browser.kind}-{name}.png").write_bytes(self.screenshot())
