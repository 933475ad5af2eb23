"""The newest version from the web host, and how the game copes with a host that is slow, silent, broken or endless."""

import random
import unittest

import harness
from webTest import BOX, UPDATE_FILE, WebTest


class Updates(WebTest):

    def start_check(self):
        host = self.web_host()
        client = self.start_client(web_host=host.name)
        return host, client, host.request_for(b"ver.txt")

    def test_another_version_is_announced(self):
        host, client, request = self.start_check()
        self.assertEqual(request.head, f"GET http://{host.name}/games/kelvora/ver.txt HTTP/1.0\r\n\r\n".encode())
        request.send(UPDATE_FILE % b"7.3.0")
        request.await_all_read()
        self.assert_no_box(client)  # until the host closes
        request.close()
        self.answer_box(client.wait_for_window(BOX))
        harness.wait_for(lambda: set(client.windows()) == {harness.TITLE}, "the box's end")

    def test_same_version_is_not_announced(self):
        host, client, request = self.start_check()
        request.send(UPDATE_FILE % harness.VERSION.encode())
        request.end()
        self.assert_no_box(client)

    def test_slow_host_is_waited_for(self):
        host, client, request = self.start_check()
        for byte in UPDATE_FILE % b"7.3.0":
            request.send(bytes([byte]))
            request.await_all_read()
        request.close()
        client.wait_for_window(BOX)

    def test_answer_without_a_version_is_ignored(self):
        for answer in (b"", b"HTTP/1.0 404 Not Found\r\n\r\n", random.Random(2).randbytes(300_000)):
            with self.subTest(answer=answer[:20]):
                host, client, request = self.start_check()
                request.send(answer)
                request.end()
                self.assert_no_box(client)
                client.close()

    def test_endless_answer_is_cut_off(self):
        host, client, request = self.start_check()
        before = client.memory()
        self.assertLess(request.send_for_ever(b"tvqver:7.3.0\r\n" * 5000), 24 * 1024 * 1024)
        self.assertLess(client.memory() - before, 32 * 1024 * 1024)
        self.assert_no_box(client)

    def test_game_continues_while_the_host_is_silent(self):
        host, client, request = self.start_check()
        self.log_in(client)


if __name__ == "__main__":
    unittest.main()
