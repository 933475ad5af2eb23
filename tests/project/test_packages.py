"""The server's list of packages in tools/common.sh brings every library that its build finds on this machine."""

import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]


def output(*command):
    return subprocess.run(command, cwd=PROJECT, check=True, stdout=subprocess.PIPE, text=True).stdout


@unittest.skipUnless(shutil.which("apt-cache") and shutil.which("dpkg"), "only Debian's tools know packages")
class Packages(unittest.TestCase):
    def test_the_servers_packages_suffice(self):
        listed = output("bash", "-c", "source tools/common.sh; echo $server_packages").split()
        depended = output("apt-cache", "depends", "--recurse", "--important", *listed)
        brought = set(re.findall(r"^(\w[^\s:]*)", depended, re.MULTILINE))
        with tempfile.TemporaryDirectory(prefix="kelvora-packages-") as folder:
            output("cmake", "--preset", "server", "-B", folder)
            cache = pathlib.Path(folder, "CMakeCache.txt").read_text()
        libraries = re.findall(r"^(?!CMAKE_)\w+:(?:FILE)?PATH=(/usr/lib/.+)$", cache, re.MULTILINE)
        self.assertGreaterEqual(len(libraries), 5, libraries)
        for library in libraries:
            package = output("dpkg", "-S", library).partition(":")[0]
            self.assertTrue(package in brought, f"{library} is of {package}, which server_packages lacks")


if __name__ == "__main__":
    unittest.main()
