"""People who watch a running server: two players, a spectator over TCP and one over a third-party WebSocket library."""

import signal
import unittest
import urllib.request

from realServer import RawPlayer, Server, connect, fields_of, frame, free_port, protocol
from webSocketPlayer import WebSocket, WebSocketPlayer


class Spectators(unittest.TestCase):
    def test_they_see_both_players_and_neither_sees_them(self):
        port = free_port()
        with Server("--spectators", "2", "--spectator-port", str(port), "--speed-limit", "0") as server:
            ann = RawPlayer(connect(server.port, 2), "Ann", 0)
            bob = WebSocketPlayer(WebSocket(f"ws://127.0.0.1:{server.port}/play", 3), "Bob", 1)
            bob.find(protocol.LOGIN_ACCEPTED)
            sue = RawPlayer(connect(port, 4), "Sue", 2)
            tom = WebSocketPlayer(WebSocket(f"ws://127.0.0.1:{server.port}/watch", 5), "Tom", 3)
            for spectator in (sue, tom):
                spectator.find(protocol.ALIVE_STATE, lambda fields: fields == ["-1", "0"])
                for name in ("Ann", "Bob"):
                    spectator.find(protocol.PLAYER_JOINED, lambda fields, name=name: fields[2] == name)
            sue.send(frame(protocol.SPAWN_REQUEST))
            sue.find(protocol.SERVER_TEXT, lambda fields: "own port" in fields[0])
            sue.say("who leads?")
            tom.find(protocol.SERVER_TEXT, lambda fields: fields == ["[Sue, watching] who leads?"])
            ann.send(frame(protocol.POSITION_REPORT, "1234.5", ".5"))
            for everybody in (ann, bob, sue, tom):
                everybody.find(protocol.POSITION, lambda fields: fields[1:] == ["1234.5", ".5"])
            page = urllib.request.urlopen(f"http://127.0.0.1:{server.port}/metrics", timeout=60).read().decode()
            self.assertIn("\nkelvora_players 2\n", page)
            self.assertIn("\nkelvora_spectators 2\n", page)
            for player in (ann, bob):
                heard = " ".join(str(fields_of(text)) for text in player.frames)
                self.assertNotIn("Sue", heard)
                self.assertNotIn("Tom", heard)
            sue.close()
            tom.close()
            ann.say("still here")
            bob.find(protocol.CHAT, lambda fields: fields[1] == "still here")
            ann.close()
            bob.close()

    def test_they_hear_that_the_server_stops(self):
        port = free_port()
        with Server("--spectators", "1", "--spectator-port", str(port)) as server:
            sue = RawPlayer(connect(port, 4), "Sue", 2)
            sue.find(protocol.SERVER_TEXT, lambda fields: fields[0].startswith("You are watching."))
            server.process.send_signal(signal.SIGTERM)
            sue.find(protocol.SERVER_TEXT, lambda fields: "shutting down" in fields[0])
            sue.close()


if __name__ == "__main__":
    unittest.main()
