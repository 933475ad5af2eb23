"""SIGTERM with --drain: the round plays out without newcomers."""

import signal
import unittest
import urllib.request

from realServer import PATIENCE, VERSION, RawPlayer, Server, connect, protocol, wait_for


class Drain(unittest.TestCase):
    def player(self, server, name):
        player = RawPlayer(connect(server.port), name)
        self.addCleanup(player.close)
        return player

    def drain(self, server, player):
        server.process.send_signal(signal.SIGTERM)
        player.find(protocol.SERVER_TEXT, lambda fields: fields[0] == "The server stops when this round is over.")

    def test_the_round_plays_out_without_newcomers(self):
        with Server("--drain", "3600", "--round-seconds", "10", "--no-coach") as server:
            ann = self.player(server, "Ann")
            ann.find(protocol.LOGIN_ACCEPTED)
            self.drain(server, ann)
            self.assertEqual(self.player(server, "Bob").find(protocol.LOGIN_DENIED)[0],
                             "The server is about to stop. Try another one.")
            ann.find(protocol.ROUND_OVER)
            ann.find(protocol.SERVER_TEXT, lambda fields: fields[0] == "The server is shutting down.")
            ann.close()
            self.assertEqual(server.process.wait(PATIENCE), 0)

    def test_an_empty_server_stops(self):
        with Server("--drain", "3600") as server:
            server.process.send_signal(signal.SIGTERM)
            self.assertEqual(server.process.wait(PATIENCE), 0)

    def test_the_time_is_limited(self):
        with Server("--drain", "1", "--round-seconds", "86400", "--no-coach") as server:
            ann = self.player(server, "Ann")
            ann.find(protocol.LOGIN_ACCEPTED)
            self.drain(server, ann)
            ann.find(protocol.SERVER_TEXT, lambda fields: fields[0] == "The server is shutting down.")

    def test_a_second_signal_stops_at_once(self):
        with Server("--drain", "3600", "--round-seconds", "86400", "--no-coach") as server:
            ann = self.player(server, "Ann")
            ann.find(protocol.LOGIN_ACCEPTED)
            self.drain(server, ann)
            server.process.send_signal(signal.SIGTERM)
            ann.find(protocol.SERVER_TEXT, lambda fields: fields[0] == "The server is shutting down.")
            wait_for(lambda: "SIGTERM: shutting down\n" in server.log(), "the log")

    def test_a_second_signal_after_another_first_one_ends_at_once(self):
        with Server("--drain", "3600", "--no-coach") as server:
            ann = self.player(server, "Ann")
            ann.find(protocol.LOGIN_ACCEPTED)
            server.process.send_signal(signal.SIGINT)
            ann.find(protocol.SERVER_TEXT, lambda fields: fields[0] == "The server is shutting down.")
            server.process.send_signal(signal.SIGTERM)
            wait_for(lambda: "SIGTERM: shutting down\n" in server.log(), "the log")

    def test_its_list_no_longer_has_it(self):
        def listed(server):
            url = f"http://127.0.0.1:{server.port}/games/kelvora/gethosts.php?version={VERSION}"
            with urllib.request.urlopen(url) as answer:
                return answer.read()

        with Server("--drain", "3600", "--round-seconds", "86400", "--no-coach") as server:
            ann = self.player(server, "Ann")
            ann.find(protocol.LOGIN_ACCEPTED)
            self.assertIn(f"[127.0.0.1|{server.port}|".encode(), listed(server))
            self.drain(server, ann)
            self.assertEqual(listed(server), b"-END-\n")


if __name__ == "__main__":
    unittest.main()
