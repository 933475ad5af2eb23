"""A hostile server and a hostile web host that open message boxes."""

import unittest

import attacks
from desktopTest import HANG
from harness import wait_for
from hostileTest import MIB, WORLD_MIB, Attack, HostileTest
from protocol import LOGIN_DENIED, SPAWN_DENIED
from webTest import BOX, UPDATE_FILE, WebHost

MAX_BOXES = 16
SCREEN = (1280, 1024)


class HostileBoxes(HostileTest):

    def boxes(self, client):
        """The open message boxes: all windows of the client that the window manager lists, except the main one."""
        screen = self.display.screen
        listed = set(screen.numbers(screen.root, "_NET_CLIENT_LIST"))
        return listed.intersection(client.visible()) - {client.window.identifier}

    def close_boxes(self, client):
        """Closes each box with Enter, in time. A key pressed before the next box has the focus is lost."""
        while before := len(self.boxes(client)):
            def is_closed():
                self.display.xdotool("key", "Return")
                return len(self.boxes(client)) < before
            with self.answer_in_time():
                wait_for(is_closed, "the end of a box", HANG, pause=0.1)

    def test_flood_while_a_box_is_open(self):
        client, line = self.log_in()
        self.begin_attack(client)
        line.send(SPAWN_DENIED)
        wait_for(lambda: self.boxes(client), "a box")
        attack = Attack(line, attacks.BOX_FLOOD, 8 * MIB)
        attack.stop_at_its_end()
        # The box now has the focus.
        self.await_all_read(line, lambda line: [identifier for identifier, _ in line.frames_during(0.3)])
        self.assertLessEqual(len(self.boxes(client)), MAX_BOXES, self.display.titles(client.process.pid))
        self.close_boxes(client)
        self.take_keys(client)
        self.assert_answers(line)
        self.assert_within(client, WORLD_MIB)
        self.assert_plays_on(client, line)

    def test_longest_box_fits_on_the_screen(self):
        client = self.start_client()
        for reason in attacks.LONG_TEXTS:
            server = self.scripted_server()
            client.connect(server.port)
            line = server.accept()
            line.recv_frame()
            cpu = client.cpu_seconds()
            line.send(LOGIN_DENIED, reason)
            box = client.wait_for_other_window()
            left, top, width, height = box.geometry()
            self.assertGreaterEqual(min(left, top), 0)
            self.assertLessEqual(left + width, SCREEN[0])
            self.assertLessEqual(top + height, SCREEN[1])
            box.activate()
            self.display.xdotool("key", "Return")
            client.wait_for_window("Connect")
            self.assertLess(client.cpu_seconds() - cpu, 2.0)
        self.assert_plays_on(client)

    def test_megabyte_long_version_from_the_web_host(self):
        host = WebHost()
        self.addCleanup(host.close)
        client = self.start_client(web_host=host.name)
        request = host.request_for(b"ver.txt")
        cpu = client.cpu_seconds()
        request.send(UPDATE_FILE % (b"1" * 1000000))
        request.close()
        box = client.wait_for_other_window()
        left, top, width, height = box.geometry()
        self.assertLessEqual(left + width, SCREEN[0])
        self.assertLessEqual(top + height, SCREEN[1])
        seconds = client.cpu_seconds() - cpu
        print(f"[{seconds:.2f} s of the processor]", end=" ", flush=True)
        self.assertLess(seconds, 1.5)
        box.activate()
        self.display.xdotool("key", "Return")
        wait_for(lambda: BOX not in client.windows(), "the end of the box")
        self.assert_plays_on(client)


if __name__ == "__main__":
    unittest.main()
