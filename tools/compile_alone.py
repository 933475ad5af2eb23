#!/usr/bin/env python3
"""tools/compile_alone.py CLANG FOLDER JOBS: compiles each source of a unity build by itself, without output. Finds
shadowed names and missing includes of the project, which a unity build hides. FOLDER has the build's
compile_commands.json. Clean sources are skipped until they, a header or their command change.

Most of the time would go to library headers, so sources with equal flags share a precompiled one. It hides missing
includes of libraries. A test of the project's files finds those of the standard library.
"""
import hashlib
import json
import re
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[1]
LIBRARY_HEADER = re.compile(r"^#include (<[^>]+>)", re.MULTILINE)
SOURCE = re.compile(r'^#include "(.+)"$', re.MULTILINE)


def headers():
    """The headers that the game's sources may include."""
    folders = (path for path in PROJECT.iterdir() if path.is_dir() and not path.name.startswith(("build", "test", ".")))
    return sorted(header for folder in folders for header in folder.rglob("*.h"))


def is_precompiled(header):
    """Headers of C and of the system are small, and some belong to another system."""
    return not header.endswith(".h>")


def library_headers(folders):
    """The library headers that sources and headers of these folders include."""
    files = [path for folder in folders for path in folder.iterdir() if path.suffix in (".cpp", ".h")]
    texts = [path.read_text(encoding="utf-8") for path in files]
    return sorted({header for text in texts for header in LIBRARY_HEADER.findall(text) if is_precompiled(header)})


def flags_of(entry, clang):
    """The entry's command for clang, without its files. The preset makes warnings errors."""
    words = shlex.split(entry["command"])
    first = next(i for i, word in enumerate(words) if word.startswith("-"))
    flags = [word for word in words[first:] if word not in ("-c", entry["file"])]
    if "-o" in flags:
        output = flags.index("-o")
        del flags[output:output + 2]
    return (clang, *flags, "-Wno-unknown-warning-option", "-Wshadow-all")


def keys_of(entry, flags, common):
    """The sources of an entry, each with a hash of all that its compilation reads from the project."""
    for source in SOURCE.findall(Path(entry["file"]).read_text(encoding="utf-8")):
        key = common.copy()
        key.update(shlex.join(flags).encode() + Path(source).read_bytes())
        yield source, key.hexdigest()


def is_compiled(flags):
    return subprocess.run(flags, check=False).returncode == 0


def compile_alone(pending, jobs):
    """The sources that fail. pending has the sources by their flags."""
    with tempfile.TemporaryDirectory() as scratch, ThreadPoolExecutor(jobs) as pool:
        groups = [(flags, sources, Path(scratch, f"{number}.pch"))
                  for number, (flags, sources) in enumerate(pending.items())]

        def precompile(group):
            flags, sources, output = group
            header = output.with_suffix(".h")
            names = library_headers({Path(source).parent for source in sources})
            header.write_text("".join(f"#include {name}\n" for name in names), encoding="utf-8")
            # Otherwise each source would instantiate the headers' templates again.
            return is_compiled([*flags, "-fpch-instantiate-templates", "-x", "c++-header", header, "-o", output])

        def compile_one(work):
            source, flags, library = work
            return is_compiled([*flags, "-fsyntax-only", "-include-pch", library, source])

        if not all(pool.map(precompile, groups)):
            return {source for sources in pending.values() for source in sources}
        work = [(source, flags, library) for flags, sources, library in groups for source in sources]
        return {source for (source, *_), passed in zip(work, pool.map(compile_one, work)) if not passed}


def main():
    clang, folder, jobs = sys.argv[1], Path(sys.argv[2]).resolve(), int(sys.argv[3])
    record = folder / "alone.json"
    try:
        clean = json.loads(record.read_text(encoding="utf-8"))
    except (OSError, ValueError):
        clean = {}
    common = hashlib.sha256(b"".join(path.read_bytes() for path in [Path(__file__), *headers()]))
    keys, pending = {}, {}
    for entry in json.loads((folder / "compile_commands.json").read_text(encoding="utf-8")):
        flags = flags_of(entry, clang)
        found = dict(keys_of(entry, flags, common))
        keys.update(found)
        if changed := [source for source, key in found.items() if clean.get(source) != key]:
            pending.setdefault(flags, []).extend(changed)
    failed = compile_alone(pending, jobs)
    record.write_text(json.dumps({source: key for source, key in keys.items() if source not in failed}),
                      encoding="utf-8")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
