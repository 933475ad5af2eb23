"""The real server's own web host: its list of servers and its version."""

import socket
import unittest

import harness
from protocol import LOGIN, LOGIN_ACCEPTED, PLAYER_JOINED
from servers import Line, servers_listed
from webTest import BOX, REFRESH, WebTest


class OwnWebHost(WebTest):

    def change_box_and_refresh(self, finder, name):
        """Changes a box and refreshes: a local host answers between press and release and gets the old value, then the
        new one."""
        self.change_box(finder, name)
        finder.click(*REFRESH)

    def test_server_lists_itself_and_is_joined(self):
        server = self.start_server("--web-port", "0", "--notes", "friendly game")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        self.wait_for_row(finder, 0)
        self.assertFalse(self.has_row(finder, 1))
        self.assertNotIn(BOX, client.windows())  # the same version
        self.double_click(finder, 0)
        client.wait_for_status((128, 255, 128))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE}, "the end of both dialogs")

    def test_second_server_of_its_list_is_joined(self):
        server = self.start_server("--web-port", "0")
        other = self.start_server("--publish", f"http://{server.web_host}")
        harness.wait_for(lambda: servers_listed(server.web_host).count("[") == 2, "the other server in the list")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        self.wait_for_row(finder, 1)
        self.double_click(finder, 1)
        client.wait_for_status((128, 255, 128))
        with socket.create_connection(("127.0.0.1", other.port)) as connection:
            player = Line(connection)
            player.send(LOGIN, "Bob", "", 5, harness.VERSION)
            self.assertEqual(player.recv_frame()[0], LOGIN_ACCEPTED)
            identifier, fields = player.recv_frame()
            self.assertEqual((identifier, fields[2]), (PLAYER_JOINED, b"Ann"))

    def test_empty_server_is_hidden_until_somebody_plays(self):
        server = self.start_server("--web-port", "0")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        self.wait_for_row(finder, 0)
        self.change_box_and_refresh(finder, "empty")
        self.wait_for_no_row(finder, 0)
        with socket.create_connection(("127.0.0.1", server.port)) as connection:
            player = Line(connection)
            player.send(LOGIN, "Bob", "", 0, harness.VERSION)
            self.assertEqual(player.recv_frame()[0], LOGIN_ACCEPTED)
            finder.click(*REFRESH)
            self.wait_for_row(finder, 0)

    def test_server_with_a_password_is_hidden_by_default_and_gets_no_prompt(self):
        server = self.start_server("--web-port", "0", "--password", "open up")
        client = self.start_client(web_host=server.web_host)
        finder = self.open_finder(client)
        finder.activate()
        self.wait_for_row(finder, -1)  # the heading, the only row of an empty list
        self.assertFalse(self.has_row(finder, 0))
        self.change_box_and_refresh(finder, "password")
        self.wait_for_row(finder, 0)
        self.double_click(finder, 0)
        # The connect dialog's empty password is refused.
        self.answer_box(client.wait_for_window(BOX))
        client.wait_for_status((255, 128, 128))

    def update_answer(self, host, server):
        """Forwards the client's request to the server. Returns the request and the server's whole answer."""
        request = host.request_for(b"ver.txt")
        name, port = server.web_host.split(":")
        with socket.create_connection((name, int(port)), harness.PATIENCE) as upstream:
            upstream.sendall(request.head)
            answer = b""
            while data := upstream.recv(4096):
                answer += data
        self.assertTrue(answer.endswith(f"\r\n\r\ntvqver:{harness.VERSION}\n".encode()), answer)
        return request, answer

    def test_its_version_is_the_clients(self):
        host, server = self.web_host(), self.start_server("--web-port", "0")
        client = self.start_client(web_host=host.name)
        request, answer = self.update_answer(host, server)
        request.send(answer)
        request.end()
        self.assert_no_box(client)

    def test_another_version_in_its_answer_is_announced(self):
        host, server = self.web_host(), self.start_server("--web-port", "0")
        client = self.start_client(web_host=host.name)
        request, answer = self.update_answer(host, server)
        request.send(answer.replace(harness.VERSION.encode(), b"7.2.2"))
        request.close()
        self.answer_box(client.wait_for_window(BOX))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE, "Connect"}, "the box's end")


if __name__ == "__main__":
    unittest.main()
