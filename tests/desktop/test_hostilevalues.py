"""A hostile server whose messages have values that no server sends."""

import unittest

import attacks
import harness
from hostileTest import MIB, WORLD_MIB, HostileTest
from protocol import END, LOGIN_ACCEPTED, PLAYER_JOINED, POSITION, POWERUP_ON, TAIL_CAPTURE, TO_CLIENT, frame


class HostileValues(HostileTest):

    def test_nodes_and_colours_out_of_range(self):
        client, line = self.log_in()
        self.begin_attack(client)
        everything = attacks.nodes_and_colours()
        line.send_bytes(everything)
        self.await_all_read(line)
        self.assert_answers(line)
        for login in attacks.odd_logins():
            line.send_bytes(login)
            line.frames_during(0.05)
            self.assertIsNone(client.process.poll(), login)
        line.send_bytes(everything)
        self.await_all_read(line)
        self.assert_answers(line)
        self.assert_within(client, WORLD_MIB)
        self.assert_plays_on(client, line)

    def test_invalid_and_extreme_numbers_in_every_field(self):
        client, line = self.log_in()
        self.begin_attack(client)
        self.assertEqual(len(TO_CLIENT), 25)
        line.send_bytes(attacks.BOB)
        count = 0
        for identifier, field, frames in attacks.extreme_numbers():
            line.send_bytes(b"".join(frames))
            count += len(frames)
            # Frames in between ensure that everything received is moved and painted.
            line.frames_during(0.03)
            self.assertIsNone(client.process.poll(), f"field {field} of {identifier}: {client.output()}")
            self.assertEqual(client.output(), "", f"field {field} of {identifier}")
        self.assertGreater(count, 3000)
        self.await_all_read(line)
        self.assert_answers(line)
        self.assert_within(client, WORLD_MIB)
        self.assert_plays_on(client, line)

    def test_long_texts(self):
        client, line = self.log_in()
        self.begin_attack(client)
        for message in attacks.long_texts():
            # Alone, so that one read contains all of it.
            line.frames_during(0.1)
            line.send_bytes(message)
            self.assert_answers(line)
        self.assert_within(client, WORLD_MIB)
        self.assert_plays_on(client, line)

    def test_captures_of_unknown_players(self):
        client, line = self.log_in()
        self.begin_attack(client)
        line.send_bytes(attacks.captures())  # no opponents
        self.await_all_read(line)
        self.assert_answers(line)
        line.send_bytes(attacks.BOB)
        line.send(POSITION, 7, 50000.5, 50000)
        line.send_bytes(attacks.captures_at_a_vertex() * 20)
        self.await_all_read(line)
        self.assert_answers(line)
        self.assert_within(client, WORLD_MIB)
        self.assert_plays_on(client, line)

    def assert_fault(self, client, what):
        box = client.wait_for_other_window()
        box.activate()
        self.display.xdotool("key", "Return")
        self.assertEqual(client.process.wait(harness.PATIENCE), 1)
        self.assertEqual(client.output().strip(), f"kelvora: Run-time error: {what}")

    def test_login_with_an_unknown_colour_ends_the_program_with_a_box(self):
        client, line = self.log_in()
        line.send(LOGIN_ACCEPTED, 6, 7, 50000, 50000)
        self.assert_fault(client, "Subscript out of range")

    def test_stored_values_end_the_program_frames_later_with_a_box(self):
        kills = frame(PLAYER_JOINED, 8, 1, "Bob", 50000, 50000, 1, 32767)
        places = frame(POSITION, 8, 90000, 90000) + frame(POSITION, 8, 91000, 90000)
        charged = frame(POSITION, 7, 50011, "6E34") + frame(POSITION, 7, 50010, 50000)
        for what, *stored in (
                ("Subscript out of range", frame(POSITION, 7, 50100, 50000), frame(TAIL_CAPTURE, 7, 99, 50100, 50000)),
                ("Overflow", kills + places, frame(TAIL_CAPTURE, 8, 7, 90000, 90000)),
                ("Overflow", frame(POWERUP_ON, 7, 2), charged)):
            client, line = self.log_in()
            for messages in stored[:-1]:
                line.send_bytes(messages)
                line.wait_for_paint()
            line.send_bytes(stored[-1])
            self.assert_fault(client, what)

    def test_end_byte_before_any_frame_ends_the_program_with_a_box(self):
        client = self.start_client()
        server = self.scripted_server()
        client.connect(server.port)
        line = server.accept()
        line.recv_frame()
        line.send_bytes(b"x" * MIB + bytes([END]))
        self.assert_fault(client, "Subscript out of range")


if __name__ == "__main__":
    unittest.main()
