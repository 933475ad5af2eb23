"""The first steps of ./check and the tools: reading arguments, configuring a build."""

import json
import os
import pathlib
import pwd
import shlex
import shutil
import subprocess
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
COMMON = PROJECT / "tools" / "common.sh"
CLANG = '"-DCMAKE_CXX_COMPILER=$(clang_tool clang++)"'  # as ./check gives it
SCRIPTS = {"./check": PROJECT / "check", "tools/package.sh": PROJECT / "tools" / "package.sh",
           "tools/format.sh": PROJECT / "tools" / "format.sh", "tools/image.sh": PROJECT / "tools" / "image.sh",
           "tools/clean_room.sh": PROJECT / "tools" / "clean_room.sh",
           "tools/release.sh": PROJECT / "tools" / "release.sh", "tools/tidy.sh": PROJECT / "tools" / "tidy.sh",
           "tools/fuzz.sh": PROJECT / "tools" / "fuzz.sh"}
USAGES = {"./check": "[linux|web|windows]", "tools/package.sh": "windows: builds",
          "tools/format.sh": "[--check]: formats", "tools/image.sh": "[--no-page]: makes",
          "tools/clean_room.sh": "check|package: tests", "tools/release.sh": "VERSION: sets",
          "tools/tidy.sh": "[JOBS] [windows]: runs", "tools/fuzz.sh": "[TARGET|all] [MINUTES]: fuzzes"}


class FrontDoor(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-door-"))
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "tools").mkdir()

    def run_in_folder(self, *command):
        return subprocess.run(command, cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              check=False)


class Arguments(FrontDoor):
    def setUp(self):
        super().setUp()
        shutil.copy(COMMON, self.folder / "tools")
        for name, script in SCRIPTS.items():
            shutil.copy(script, self.folder / name)

    def expect(self, status, *command):
        done = self.run_in_folder(*command)
        self.assertEqual(done.returncode, status, done)
        self.assertFalse((self.folder / "build").exists())
        return done

    def test_help(self):
        for script in SCRIPTS:
            for word in ("-h", "--help"):
                done = self.expect(0, script, word)
                self.assertIn(USAGES[script], done.stdout)
                self.assertEqual(done.stdout.partition(" ")[0].rstrip(":"), script)
                self.assertEqual(done.stdout.count("#"), 0)
                self.assertEqual(done.stderr, "")

    def test_wrong_words(self):
        for script in SCRIPTS:
            for words in (("mac",), ("windows", "fast"), ("--help", "windows"), ("--every",)):
                done = self.expect(1, script, *words)
                self.assertIn(f"""{script} doesn't know "{' '.join(words)}".""", done.stderr)
                self.assertIn(USAGES[script], done.stderr)
        self.assertIn('"fast"', self.expect(1, "./check", "--all", "fast").stderr)

    def test_fuzzing_needs_a_target_and_whole_minutes(self):
        targets = self.folder / "tests" / "fuzz"
        targets.mkdir(parents=True)
        (targets / "wire_fuzz.cpp").touch()
        for words in (("wires",), ("wire", "0.5"), ("wire", "1h"), ("wire", "0"), ("--merge", "wires")):
            self.assertIn("doesn't know", self.expect(1, "tools/fuzz.sh", *words).stderr)
        for words in ((), ("wire",), ("all", "60"), ("--merge", "wire"), ("--coverage",)):
            self.assertNotIn("doesn't know", self.run_in_folder("tools/fuzz.sh", *words).stderr)

    def test_tidy_takes_jobs_and_a_system(self):
        for words in (("windows",), ("2", "windows")):
            self.assertIn("build/windows is not configured", self.expect(1, "tools/tidy.sh", *words).stdout)


class Owner(FrontDoor):
    def owner_of_a_new_file(self):
        commands = f'source "{COMMON}"; as_owner touch made; as_owner false || echo failed'
        done = self.run_in_folder("bash", "-c", commands)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "failed\n", ""))
        return (self.folder / "made").stat().st_uid

    def test_commands_run_as_the_user(self):
        self.assertEqual(self.owner_of_a_new_file(), os.getuid())

    @unittest.skipUnless(os.getuid() == 0, "only root can run a command as somebody else")
    def test_root_runs_commands_as_the_owner_of_the_folder(self):
        nobody = pwd.getpwnam("nobody").pw_uid
        os.chown(self.folder, nobody, -1)
        self.assertEqual(self.owner_of_a_new_file(), nobody)
        os.chown(self.folder, 54321, -1)  # without an account
        (self.folder / "made").unlink()
        self.assertEqual(self.owner_of_a_new_file(), 0)


class Configure(FrontDoor):
    """A tiny project with a preset. Its values are lost if CMake changes the compiler of a build folder."""

    def setUp(self):
        super().setUp()
        preset = {"name": "made", "binaryDir": "${sourceDir}/build/${presetName}", "generator": "Ninja",
                  "cacheVariables": {"CMAKE_BUILD_TYPE": "Debug", "KEPT": "from the preset"}}
        (self.folder / "CMakePresets.json").write_text(json.dumps({"version": 6, "configurePresets": [preset]}))
        (self.folder / "CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.25)\nproject(tiny CXX)\n")
        self.cache = self.folder / "build/made/CMakeCache.txt"
        self.mark = self.cache.with_name("mark")
        self.clang = shutil.which(self.shell("clang_tool clang++").strip())

    def shell(self, command):
        done = self.run_in_folder("bash", "-c", f'set -uo pipefail; source "{COMMON}"; {command}')
        self.assertEqual(done.returncode, 0, done)
        return done.stdout

    def configure(self, *arguments):
        """Configures the build. Returns the values of the cache."""
        self.shell(" ".join(["configure made -DADDED=yes", *arguments]))
        lines = [line for line in self.cache.read_text().splitlines() if "=" in line and line[0] not in "#/"]
        return {name.partition(":")[0]: value for name, _, value in (line.partition("=") for line in lines)}

    def test_another_call_changes_nothing(self):
        first = self.configure(CLANG)
        self.assertEqual(first["CMAKE_CXX_COMPILER"], self.clang)
        self.assertEqual(first["KEPT"], "from the preset")
        self.mark.touch()
        for arguments in ((CLANG,), (CLANG,), ()):
            self.assertEqual(self.configure(*arguments), first)
            self.assertTrue(self.mark.exists())

    def test_another_compiler_begins_the_build_anew(self):
        self.configure()
        self.mark.touch()
        values = self.configure(CLANG)
        self.assertEqual(values["CMAKE_CXX_COMPILER"], self.clang)
        self.assertEqual(values["KEPT"], "from the preset")
        self.assertFalse(self.mark.exists())

    def test_a_failure_ends_with_the_error_and_the_command(self):
        more = "".join(f"message({number})\n" for number in range(20))
        (self.folder / "CMakeLists.txt").write_text("message(SEND_ERROR wrong)\n" + more)
        done = self.run_in_folder("bash", "-c", f'source "{COMMON}"; configure made "-DROOMS=a;b" -DADDED=yes')
        self.assertEqual(done.returncode, 1)
        self.assertIn("  wrong", done.stderr.splitlines()[-10:])
        said, command = done.stderr.strip().rsplit("\n", 1)
        self.assertTrue(said.endswith("cmake could not configure the made build. Run it alone:"), said)
        self.assertEqual(shlex.split(command), ["cmake", "--preset", "made", "-DROOMS=a;b", "-DADDED=yes"])


if __name__ == "__main__":
    unittest.main()
