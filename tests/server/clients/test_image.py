"""The server in the OCI image, which tools/image.sh makes and runs."""

import os
import pathlib
import re
import subprocess
import unittest

from realServer import PROJECT, SERVER, Server, connect, read_to_end

IMAGE = pathlib.Path(SERVER).resolve().parent / "unpacked"


def status(server):
    return pathlib.Path(f"/proc/{server.process.pid}/status").read_text(encoding="ascii")


@unittest.skipUnless(IMAGE.is_dir(), "only tools/image.sh has an image")
class Image(unittest.TestCase):
    def test_it_runs_as_a_user_of_its_own_without_capabilities(self):
        with Server() as server:
            user = re.search(r"USER (\d+):(\d+)", (PROJECT / "packaging/container/Containerfile").read_text())
            self.assertEqual(re.search(r"Uid:\s+(.*)", status(server))[1].split(), [user[1]] * 4)
            self.assertEqual(re.search(r"Gid:\s+(.*)", status(server))[1].split(), [user[2]] * 4)
            self.assertEqual(int(re.search(r"CapEff:\s+(\w+)", status(server))[1], 16), 0)

    def test_its_root_is_read_only(self):
        with Server() as server:
            mounts = pathlib.Path(f"/proc/{server.process.pid}/mountinfo").read_text(encoding="utf-8").splitlines()
            options = {line.split()[4]: line.split()[5].split(",") for line in mounts}
            self.assertEqual(os.readlink(f"/proc/{server.process.pid}/root"), str(IMAGE))
            self.assertIn("ro", options["/"])

    def test_it_answers_and_uses_only_what_it_brings(self):
        with Server() as server:
            with connect(server.port) as connection:
                connection.sendall(b"GET /healthz HTTP/1.0\r\n\r\n")
                self.assertTrue(read_to_end(connection).endswith(b"\r\n\r\nok\n"))
            maps = pathlib.Path(f"/proc/{server.process.pid}/maps").read_text(encoding="utf-8")
            files = {line.split(maxsplit=5)[5] for line in maps.splitlines() if "/" in line}
            self.assertTrue(files)
            self.assertEqual([file for file in files if not file.startswith(str(IMAGE))], [])

    def test_nothing_in_it_may_change_its_user(self):
        found = subprocess.run(["find", IMAGE, "-type", "f", "-perm", "/6000"], capture_output=True, text=True,
                               check=True)
        self.assertEqual(found.stdout, "")

    def test_it_knows_authorities_for_https(self):
        self.assertIn("BEGIN CERTIFICATE", (IMAGE / "etc/ssl/certs/ca-certificates.crt").read_text(encoding="ascii"))


if __name__ == "__main__":
    unittest.main()
