"""From the link to the game and back."""

import itertools
import time

import harness
from page import LEFT, RIGHT
from pageTest import PageTest, unittest
from protocol import CHAT, PLAYER_JOINED, PLAYER_LEFT, POSITION
from spy import Spy


class Session(PageTest):

    def test_the_link_leads_to_a_dialog_for_the_server_of_the_page(self):
        server, page = self.begin()
        self.assertEqual(page.see("[named('Server Address:').value, named('Server Port:').value]"),
                         ["127.0.0.1", str(server.port)])
        self.assertEqual(page.see("document.title"), harness.TITLE)
        page.keep("start")
        self.assertEqual(page.complaints(), [])

    def test_a_player_logs_in_and_flies(self):
        server, page = self.begin()
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        page.connect()
        node, colour, name, x, y, *_ = spy.await_frame(PLAYER_JOINED)
        self.assertEqual((colour, name), (b"0", b"Ann"))
        page.wait_for_status("Connected")
        page.wait_for("by('.main .label', 'Ann') && by('.main .label', 'Spy')", "both names")
        # Towards the far side of the world, wherever the ball starts.
        width, height = page.canvas_size()
        far_right = float(x) < 50000
        page.release_brakes(width - 60 if far_right else 60, height / 2 - 20)
        spy.await_frame(POSITION, lambda fields: fields[0] == node and abs(float(fields[1]) - float(x)) > 5000
                        and (float(fields[1]) > float(x)) == far_right)
        page.keep("flight")
        page.release_brakes(width / 2, 40)
        page.choose("File", "Disconnect")
        spy.await_frame(PLAYER_LEFT, lambda fields: fields[0] == node)
        page.wait_for("dialog('Connect')")
        page.wait_for_status("Closed")
        self.assertEqual(page.complaints(), [])

    def test_the_right_button_works_while_the_left_one_is_held(self):
        _, page = self.begin()
        line = self.log_in(page)
        width, height = page.canvas_size()
        page.mouse_to(width / 2 + 150, height / 2)
        page.note_events()
        page.mouse({"type": "pointerDown", "button": LEFT})
        # The back button, which is none of the game's. Real presses would leave the page.
        mouse = "[...Array(100).keys()].filter((id) => canvas().hasPointerCapture(id))"
        press = "canvas().dispatchEvent(new PointerEvent('pointermove', {pointerId, button: 3, buttons: 9}))"
        self.assertEqual(page.see(f"{mouse}.map((pointerId) => {press})"), [True])
        page.mouse({"type": "pointerDown", "button": RIGHT})
        page.mouse_to(width / 2 + 140, height / 2)
        self.assertEqual(page.see("noted.at(-1)[0] === 'mouseMove' && noted.at(-1)[2]"), 3)
        page.mouse({"type": "pointerUp", "button": LEFT}, {"type": "pointerUp", "button": RIGHT})
        # A mere move that names the left button, as in Safari.
        page.see("canvas().dispatchEvent(new PointerEvent('pointermove', {button: 0, buttons: 0}))")
        presses = page.see("noted.map(([kind, , button]) => [kind, button]).filter(([kind]) => /Down|Up/.test(kind))")
        self.assertEqual(presses, [["mouseDown", 1], ["mouseDown", 2], ["mouseUp", 1], ["mouseUp", 2]])
        begin, end = line.report(), line.report()
        self.assertGreater(end[0], begin[0], "the brakes are on")

    def test_ctrl_makes_the_left_button_the_right_one_on_a_mac(self):
        self.pretend_mac()
        _, page = self.begin()
        line = self.log_in(page)
        width, height = page.canvas_size()
        page.mouse_to(width / 2 + 150, height / 2)
        page.note_events()
        page.act({"type": "key", "id": "keys", "actions": [{"type": "keyDown", "value": page.keys["Control"]}]})
        page.mouse({"type": "pointerDown", "button": LEFT})
        page.mouse_to(width / 2 + 140, height / 2)
        page.act({"type": "key", "id": "keys", "actions": [{"type": "keyUp", "value": page.keys["Control"]}]})
        page.wait_for("noted.some(([kind, , button]) => kind === 'mouseMove' && button === 2)")
        page.see("noted.push(['Ctrl up'])")
        page.mouse_to(width / 2 + 150, height / 2)
        page.mouse({"type": "pointerUp", "button": LEFT})
        page.mouse_to(width / 2 + 140, height / 2)
        page.mouse({"type": "pointerDown", "button": LEFT}, {"type": "pointerUp", "button": LEFT})
        told = page.see("noted.filter(([kind]) => /^(mouse|Ctrl)/.test(kind)).map(([kind, , button]) => "
                        "button === undefined ? kind : [kind, button])")
        # A browser may merge moves.
        self.assertEqual([one for one, _ in itertools.groupby(told)],
                         [["mouseDown", 2], ["mouseMove", 2], "Ctrl up", ["mouseMove", 2], ["mouseUp", 2],
                          ["mouseMove", 0], ["mouseDown", 1], ["mouseUp", 1]])
        begin, end = line.report(), line.report()
        self.assertGreater(end[0], begin[0], "the brakes are on")

    def test_any_link_starts_the_game(self):
        server = self.start_server()
        for arguments in ("100%", "x" * 2000 + "&nosound"):
            with self.subTest(arguments):
                page = self.open(server.port, arguments=arguments)
                page.wait_for("dialog('Connect')")
                self.assertEqual(page.complaints(), [])
        self.assertEqual(page.see("sounds.size"), 0, "the end of the long link is lost")

    def test_the_picture_on_the_start_screen_opens_the_dialog(self):
        _, page = self.begin()
        page.press_button("Cancel", "dialog('Connect')")
        page.wait_for("!dialog('Connect')")
        page.click_on("document.querySelector('.main .label')")
        page.wait_for("dialog('Connect')")

    def test_both_sides_chat(self):
        server, page = self.begin("--no-coach")  # whose lines would move the others up
        spy = Spy(server.port, "Spy")
        self.addCleanup(spy.close)
        page.connect()
        node = spy.await_frame(PLAYER_JOINED)[0]
        page.wait_for_status("Connected")
        # The first letter moves from the game to the chat line.
        page.click_on("canvas()")
        page.type("hello")
        page.wait_for("named('Public Chat').value === 'hello'")
        page.press("Enter")
        self.assertEqual(spy.await_frame(CHAT), [node, b"hello"])
        page.wait_for("named('Public Chat').value === ''")
        green = "r === 128 && g === 255 && b === 128"
        width, height = page.canvas_size()
        console = (0, height - 30, 300, 26)
        harness.wait_for(lambda: page.count_pixels(green, area=console) > 20, "the own line on the console")
        spy.send(CHAT, int(node), "psst")
        # The own line moves up for the other one, a little darker.
        above = (0, height - 56, 300, 26)
        harness.wait_for(lambda: page.count_pixels("g > 150 && r === b && g - r > 90", area=above) > 20,
                         "the answer on the console")
        page.keep("chat")

    def test_a_private_line_reaches_one_player(self):
        server, page = self.begin()
        spy = Spy(server.port, "Spy", colour=5)
        self.addCleanup(spy.close)
        other = Spy(server.port, "Other", colour=4)
        self.addCleanup(other.close)
        page.connect()
        node = spy.await_frame(PLAYER_JOINED, lambda fields: fields[2] == b"Ann")[0]
        page.wait_for_status("Connected")
        page.click_on("by('.main .label', 'Spy')")
        page.wait_for("named('Spy')", "the chat line for Spy")
        page.click_on("canvas()")
        page.type("psst")
        page.press("Enter")
        self.assertEqual(spy.await_frame(CHAT), [node, b"(private) psst"])
        # A click on the label of the line makes it public again. Both labels take any button.
        line = "all('.main .label').filter((one) => words(one) === 'Spy').at(-1)"
        page.click_on(line, button=RIGHT)
        page.wait_for("named('Public Chat')")
        page.click_on("by('.main .label', 'Spy')", button=RIGHT)
        page.wait_for("named('Spy')", "the chat line for Spy")
        page.click_on(line)
        page.wait_for("named('Public Chat')")
        page.click_on("canvas()")
        page.type("all")
        page.press("Enter")
        self.assertEqual(spy.await_frame(CHAT), [node, b"all"])
        self.assertEqual(other.await_frame(CHAT), [node, b"all"])
        spy.send(CHAT, int(node), "(private) yes")
        page.wait_for("named('Spy')", "the answer to Spy alone")

    def test_quick_typing_reaches_the_chat_line(self):
        _, page = self.begin()
        line = self.log_in(page)
        page.click_on("canvas()")
        # All keys at once, before the program takes the first one, which moves the focus to the chat line.
        page.see("[['h', 72], ['i', 73], ['Enter', 13], ['y', 89], ['o', 79]].forEach(([key, keyCode]) => "
                 "canvas().dispatchEvent("
                 "new KeyboardEvent('keydown', {key, keyCode, bubbles: true, cancelable: true})))")
        while (received := line.recv_frame())[0] != CHAT:
            pass
        self.assertEqual(received[1], [b"-1", b"hi"])
        page.wait_for("named('Public Chat').value === 'yo'")

    def test_a_lost_server_and_another_login(self):
        server, page = self.begin()
        page.connect()
        page.wait_for_status("Connected")
        server.close()
        page.wait_for("dialog('Connect')", "the dialog after the loss")
        page.keep("lost")
        # Nobody answers at that port now.
        page.press_button("Connect", "dialog('Connect')")
        page.wait_for_status("Error")
        page.keep("error")
        page.choose("File", "Disconnect")
        other = self.start_server()
        spy = Spy(other.port)
        self.addCleanup(spy.close)
        page.connect(port=other.port)
        self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"Ann")
        page.wait_for_status("Connected")

    def test_leaving_the_page_leaves_the_game(self):
        server, page = self.begin()
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        page.connect()
        node = spy.await_frame(PLAYER_JOINED)[0]
        page.wait_for_status("Connected")
        begin = time.monotonic()
        page.load(f"http://127.0.0.1:{server.port}/arena")
        spy.await_frame(PLAYER_LEFT, lambda fields: fields[0] == node)
        self.assertLess(time.monotonic() - begin, 100, "the server lets a silent player go after 120 s")


if __name__ == "__main__":
    unittest.main()
