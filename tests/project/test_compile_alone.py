"""tools/compile_alone.py with a small made-up project: it names what a unity build hides, and skips clean sources."""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"

SPEED = '#pragma once\n#include <cstddef>\ninline std::size_t speedOf(std::size_t step) { return 2 * step; }\n'
CLEAN = '#include "game/speed.h"\nstd::size_t cleanSpeed() { return speedOf(1); }\n'
INCOMPLETE = "unsigned long incompleteSpeed() { return speedOf(2); }\n"
SHADOWING = "int shadowingSum(int step) {\n  for (int step = 0; step < 3;) return step;\n  return step;\n}\n"
# Logs what it compiles.
CLANG = '#!/bin/sh\nprintf "%s\\n" "$*" >>"{log}"\nexec "{clang}" "$@"\n'


class CompileAlone(unittest.TestCase):
    def setUp(self):
        self.project = pathlib.Path(tempfile.mkdtemp(prefix="kelvora-alone-"))
        self.addCleanup(shutil.rmtree, self.project)
        clang = subprocess.run(["bash", "-c", "source common.sh; clang_tool clang++"], cwd=TOOLS, check=True,
                               capture_output=True, text=True).stdout.strip()
        self.log = self.project / "log"
        self.write("clang", CLANG.format(log=self.log, clang=clang)).chmod(0o755)
        self.write("tools/compile_alone.py", (TOOLS / "compile_alone.py").read_text())
        self.write("game/speed.h", SPEED)
        sources = [self.write("game/clean.cpp", CLEAN), self.write("game/incomplete.cpp", INCOMPLETE),
                   self.write("game/shadowing.cpp", SHADOWING)]
        unity = self.write("build/unity.cpp", "".join(f'#include "{source}"\n' for source in sources))
        self.write("build/compile_commands.json", json.dumps([{
            "directory": str(self.project), "file": str(unity),
            "command": f"c++ -I{self.project} -std=c++20 -Wall -Werror -o unity.o -c {unity}"}]))

    def write(self, name, text):
        path = self.project / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        return path

    def expect(self, status, *compiled):
        """Runs the tool, which compiles exactly these sources. Returns what the compiler says."""
        self.log.unlink(missing_ok=True)
        done = subprocess.run([sys.executable, "-B", self.project / "tools/compile_alone.py", self.project / "clang",
                               self.project / "build", "2"], check=False, capture_output=True, text=True)
        self.assertEqual(done.returncode, status, done.stderr)
        words = self.log.read_text().split() if self.log.exists() else []
        self.assertEqual(sorted(pathlib.Path(word).stem for word in words if word.endswith(".cpp")), sorted(compiled))
        return done.stderr

    def test_hidden_faults_are_named_until_they_are_mended(self):
        said = self.expect(1, "clean", "incomplete", "shadowing")
        self.assertRegex(said, r"game/incomplete\.cpp:1:\d+: error: .*'speedOf'")
        self.assertRegex(said, r"game/shadowing\.cpp:2:\d+: error: .*shadows")
        self.assertNotIn("clean.cpp", said)
        self.assertIn("game/incomplete.cpp", self.expect(1, "incomplete", "shadowing"))
        self.write("game/incomplete.cpp", '#include "game/speed.h"\n' + INCOMPLETE)
        self.assertNotIn("incomplete", self.expect(1, "incomplete", "shadowing"))
        self.write("game/shadowing.cpp", SHADOWING.replace("int step = 0; step", "int i = 0; i"))
        self.expect(0, "shadowing")
        self.expect(0)

    def test_what_a_source_reads_makes_it_pending(self):
        self.write("game/incomplete.cpp", CLEAN.replace("clean", "other"))
        self.write("game/shadowing.cpp", "")
        self.expect(0, "clean", "incomplete", "shadowing")
        self.write("game/clean.cpp", CLEAN + "// changed\n")
        self.expect(0, "clean")
        self.write("game/speed.h", SPEED + "// changed\n")
        self.expect(0, "clean", "incomplete", "shadowing")
        self.write("game/speed.h", SPEED.replace("speedOf", "paceOf"))
        self.assertIn("game/clean.cpp", self.expect(1, "clean", "incomplete", "shadowing"))
        commands = self.project / "build/compile_commands.json"
        self.write("game/speed.h", SPEED)
        self.expect(0, "clean", "incomplete", "shadowing")
        self.write("build/compile_commands.json", commands.read_text().replace("-Wall", "-Wall -DMORE"))
        self.expect(0, "clean", "incomplete", "shadowing")


if __name__ == "__main__":
    unittest.main()
