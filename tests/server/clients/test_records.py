"""The players' records and claimed names, with the real program and sockets."""

import pathlib
import shutil
import tempfile
import unittest
import urllib.request

from realServer import RawPlayer, Server, VERSION, connect, frame, protocol, wait_for


class Records(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-records-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.records = self.folder / "records"

    def server(self, *options):
        return Server("--records", str(self.records), "--no-site", "--no-coach", *options)

    def player(self, server, name, password="", host=1):
        player = RawPlayer.__new__(RawPlayer)
        player.connection = connect(server.port, host)
        player.arrived, player.frames = b"", []
        self.addCleanup(player.close)
        player.send(frame(protocol.LOGIN, name, password, 0, VERSION))
        return player

    def answer(self, player, line):
        start = len(player.frames)
        player.send(frame(protocol.CHAT, "-1", line))
        return player.find(protocol.SERVER_TEXT, start=start)[0]

    def page(self, server):
        with urllib.request.urlopen(f"http://127.0.0.1:{server.port}/arena") as answer:
            return answer.read().decode()

    def test_rounds_are_kept_although_the_server_is_killed(self):
        for rounds in (1, 2, 3):
            server = self.server("--round-seconds", "1", "--intermission", "3600")
            try:
                ann = self.player(server, "Ann")
                ann.find(protocol.ROUND_OVER)
                wait_for(lambda: f"0 captures and 0 wins in {rounds} round" in self.answer(ann, "!stats"),
                         "the round is stored")
            finally:
                server.kill()
        with self.server() as server:
            wait_for(lambda: "<td>Ann</td><td>0</td><td>0</td><td>3</td>" in self.page(server), "the table")
            self.assertIn("Best players of the last 30 days", self.page(server))

    def test_a_claimed_name_needs_its_password_on_every_server(self):
        with self.server() as one, self.server() as two:
            ann = self.player(one, "Ann")
            ann.find(protocol.LOGIN_ACCEPTED)
            self.assertIn("is yours", self.answer(ann, "!claim secret"))
            for server in (one, two):
                for password in ("", "other"):
                    self.assertIn("claimed", self.player(server, "ANN", password).find(protocol.LOGIN_DENIED)[0])
            self.player(two, "Ann", "secret").find(protocol.LOGIN_ACCEPTED)

    def test_a_broken_file_costs_the_records_only(self):
        self.records.write_bytes(b"x" * 5000)
        with self.server() as server:
            self.player(server, "Ann").find(protocol.LOGIN_ACCEPTED)
            self.assertIn("no records: ", server.log())


if __name__ == "__main__":
    unittest.main()
