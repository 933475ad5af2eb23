"""Several visitors, hidden tabs, and a player with the desktop client."""

from client import Client
from display import Display
from harness import wait_for
from page import Page
from pageTest import PageTest, unittest
from protocol import CHAT, PLAYER_JOINED, POSITION
from spy import Spy

CYAN = "r < 110 && g > 110 && b > 110"


class Company(PageTest):

    def test_four_people_of_one_house_open_the_page_at_once(self):
        server = self.start_server()
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        pages = [self.open(server.port, arguments="", wait="none") for _ in range(4)]
        for number, page in enumerate(pages):
            page.connect(f"P{number}", colour=number)
            self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"P%d" % number)
        for page in pages:
            page.wait_for_status("Connected")
            self.assertEqual(page.complaints(), [])

    def test_a_hidden_tab_flies_on(self):
        server = self.start_server()
        visitor = self.browser.visitor()
        address = f"http://127.0.0.1:{server.port}/?nomusic"
        page = self.browser.open(address, visitor, Page)
        self.addCleanup(page.close)
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        page.connect()
        page.wait_for_status("Connected")
        node, *_ = spy.await_frame(PLAYER_JOINED)
        width, height = page.canvas_size()
        page.release_brakes(width / 2 + 40, height / 2 - 20)
        # Another tab in the same window.
        other = self.browser.open(address, visitor, Page, kind="tab", size=None)
        self.addCleanup(other.close)
        other.activate()
        page.wait_for("document.hidden", "the tab hidden")
        # A page that a browser slows down to a frame a second would need four minutes for these.
        for _ in range(60):
            spy.await_frame(POSITION, lambda fields: fields[0] == node)
        page.activate()
        page.wait_for("!document.hidden")
        page.wait_for_status("Connected")
        spy.await_frame(POSITION, lambda fields: fields[0] == node)

    def test_two_pages_and_a_desktop_client_see_the_same(self):
        display = Display()
        self.addCleanup(display.close)
        server, ann = self.begin("--no-coach")  # whose lines would follow Ann's on the console
        bob = self.open(server.port)
        spy = Spy(server.port)
        self.addCleanup(spy.close)
        ann.connect("Ann", colour=0)
        node = spy.await_frame(PLAYER_JOINED)[0]
        bob.connect("Bob", colour=3)
        start = spy.await_frame(PLAYER_JOINED)[3:5]
        client = Client(display)
        self.addCleanup(client.close)
        client.connect(server.port, name="Cy", circle=2)
        self.assertEqual(spy.await_frame(PLAYER_JOINED)[2], b"Cy")
        names = ["Ann", "Bob", "Cy", "Spy"]
        seen = "all('.main .frame .label').map(words)" \
               ".filter((text) => ['Ann', 'Bob', 'Cy', 'Spy'].includes(text)).sort()"
        for page in (ann, bob):
            wait_for(lambda: page.see(seen) == names, "everybody's name")
        # Bob's dot has the same place on the radars of Ann's page and of the desktop.
        radar = "all('.main .picturebox canvas').at(-1)"
        x, y = (float(coordinate) for coordinate in start)
        left, top = int(x * 117 / 100000), int(y * 93 / 100000)
        area = (max(left - 4, 0), max(top - 4, 0), 9, 9)
        wait_for(lambda: ann.count_pixels(CYAN, radar, area) >= 3, "Bob's dot on Ann's radar")
        self.assertLess(ann.count_pixels(CYAN, radar), 60)

        def on_desktop():
            picture = display.picture()
            origin = client.on_screen(772 + area[0], 460 + area[1])
            pixels = [picture.pixel(origin[0] + i, origin[1] + j) for i in range(9) for j in range(9)]
            return sum(r < 110 and g > 110 and b > 110 for r, g, b in pixels) >= 3
        wait_for(on_desktop, "Bob's dot on the desktop's radar")
        ann.keep("company")
        # A line from one reaches the others.
        console = (0, bob.canvas_size()[1] - 30, 300, 26)

        def chat():
            return bob.count_pixels("r === 128 && g === 255 && b === 128", area=console)
        self.assertEqual(chat(), 0)
        typed = "[words(document.activeElement), all('.main .textbox').map((box) => box.value)]"
        ann.click_on("canvas()")
        ann.type("hello")
        ann.press("Enter")
        wait_for(lambda: ann.see(typed)[1][0] == "", lambda: f"the line's end; Ann has {ann.see(typed)}")
        self.assertEqual(spy.await_frame(CHAT), [node, b"hello"])
        wait_for(lambda: chat() > 20, "Ann's line on Bob's page")


if __name__ == "__main__":
    unittest.main()
