"""Drives the browser client in real Chromium against the real server, which delivers the page."""

import os
import pathlib
import random
import re
import socket
import subprocess
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

SERVER = os.environ["KELVORA_SERVER"]
SITE = os.environ["KELVORA_SITE"]
PICTURES = os.environ.get("KELVORA_PAGE_PICTURES")  # a folder for screenshots, which are taken only if it is set


def wait_for(condition, what, seconds=60.0, pause=0.05):
    """The first true result of `condition`; fails the test when there is none in time."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(pause)


def free_port():
    """A port that nobody listens on. The connect dialog refuses 32767 and above, where the system's own choice lies."""
    while True:
        port = random.randrange(10000, 32767)
        with socket.socket() as probe:
            probe.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
            try:
                probe.bind(("127.0.0.1", port))
            except OSError:
                continue
        return port


class Server:
    """The real server with the site, on a free port or on a given one."""

    def __init__(self, *options, port=None):
        port = port or free_port()
        self.process = subprocess.Popen(
            [SERVER, "--address", "127.0.0.1", "--port", str(port), "--web-port", "0", "--site", SITE, *options],
            stdout=subprocess.PIPE, text=True)
        for line in self.process.stdout:
            listening = re.search(r"^listening on .*\D(\d+)$", line.strip())
            if listening:
                self.port = int(listening[1])
                return
        raise AssertionError("the server ended at once")

    def stop(self):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()


class Page:
    """The client in a browser of its own. Controls are found by what a user sees of them."""

    def __init__(self, width=1000, height=800):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        self.profile = tempfile.TemporaryDirectory()
        for argument in ("headless", "no-sandbox", "disable-gpu", "disable-quic", "no-first-run",
                         "disable-background-networking", "disable-component-update", "disable-sync",
                         f"user-data-dir={self.profile.name}", f"window-size={width},{height}"):
            options.add_argument("--" + argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)

    def close(self):
        self.driver.quit()
        self.profile.cleanup()

    def open(self, port, arguments="nomusic"):
        self.driver.get(f"http://127.0.0.1:{port}/?{arguments}")

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def dialog(self, title):
        """The dialog with that title, or None."""
        for form in self.all(".form.dialog"):
            if form.is_displayed() and form.find_element(By.TAG_NAME, "h2").text == title:
                return form
        return None

    def labels(self):
        return [label.text for label in self.all(".main .label") if label.text]

    def button(self, caption):
        return next(b for b in self.all("button") if b.is_displayed() and b.text == caption)

    def picture(self, name):
        if PICTURES:
            self.driver.save_screenshot(str(pathlib.Path(PICTURES) / f"{name}.png"))

    def faults(self):
        """What the browser's console holds against the page."""
        return [entry["message"] for entry in self.driver.get_log("browser") if entry["level"] == "SEVERE"]


class PageTest(unittest.TestCase):
    """One server and one browser a test."""

    server_options = ()

    def setUp(self):
        self.server = Server(*self.server_options)
        self.addCleanup(lambda: self.server.stop())
        self.page = Page()
        self.addCleanup(self.page.close)
        self.page.open(self.server.port)

    def log_in(self, name="Ann"):
        dialog = wait_for(lambda: self.page.dialog("Connect"), "the connect dialog")
        name_box = dialog.find_element(By.CSS_SELECTOR, "input")
        name_box.clear()
        name_box.send_keys(name)
        self.page.button("Connect").click()
        wait_for(lambda: "Connected" in self.page.labels(), "the connection")
