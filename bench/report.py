#!/usr/bin/env python3
"""Measures all figures of docs/performance.md and writes them into its table.

    bench/report.py build/release [--only frame_bench]

Runs the benchmarks one after another, which takes about an hour and a half, and marks the figures that miss their
goals. Use a release build with KELVORA_BENCH, and beside it the browser build with kelvora_site and kelvora_page_frames
and the Windows build with kelvora_empty_window, on a machine that is otherwise idle. --only measures the commands that
contain the word and leaves the other rows alone. The rows of a benchmark that fails keep their figures, and the script
ends with status 1.
"""

import argparse
import re
import subprocess
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
DOCUMENT = PROJECT / "docs" / "performance.md"
HEAD = "| figure | goal | today | command |\n| --- | --- | --- | --- |\n"
TABLE = re.compile(re.escape(HEAD) + r"(?:\|.*\n)*")
AT_LEAST, AT_MOST = "at least", "at most"
PYTHON = "/usr/bin/python3"  # the system's, whose packages page_figures.py needs


def counter(benchmark, name):
    """A counter's value in the line of a benchmark."""
    return rf"^{benchmark}\S*\s.*? {name}=([\d.]+[kMGm]?)"


def processor_time(benchmark):
    """A benchmark's processor time in its own unit."""
    return rf"^{benchmark}\s+\S+ \w+\s+([\d.]+) \w+"


def column(program, number):
    """A number in the row of a program in the table of starts."""
    return rf"^{program}\s+" + r"[\d.]+\s+" * number + r"([\d.]+)"


def ratio(program, number):
    """One of a program's ratios to the empty window."""
    return rf"^{program}\s.*ratios " + r"[\d.]+ " * number + r"([\d.]+)"


def share(what):
    return rf"^{what}: +([\d.]+) % of a core"


# Per command its figures: what, goal (None if there is none), unit, and the pattern that finds it in the output.
FIGURES = {
    "kelvora_frame_bench --benchmark_filter=frames": [
        ("light frame: the painter's time by ours", (AT_LEAST, 10), "", counter("frames/light/", "ratio")),
        ("heavy frame: the same", (AT_LEAST, 9.5), "", counter("frames/heavy/", "ratio")),
        ("light frame with all texts: the same", (AT_LEAST, 14), "", counter("frames/lightWithTexts/", "ratio")),
        ("heavy frame with all texts: the same", (AT_LEAST, 11), "", counter("frames/heavyWithTexts/", "ratio")),
        ("light frame with texts and the game's rules", None, "us", counter("frames/lightWithTexts/", "frame_us")),
        ("heavy frame with texts and the game's rules", None, "us", counter("frames/heavyWithTexts/", "frame_us"))],
    "kelvora_frame_bench --benchmark_filter=canvasSize": [
        ("heavy frame's drawing, canvas of 763 by 608", None, "us", counter("canvasSize/763", "draw_us")),
        ("the same at 1920 by 1080", None, "us", counter("canvasSize/1920", "draw_us")),
        ("the same at 3840 by 2160", None, "us", counter("canvasSize/3840", "draw_us")),
        ("copying the whole picture to the screen, 3840 by 2160", None, "us", counter("canvasSize/3840", "show_us"))],
    "kelvora_raster_bench": [
        ("sprites of 49 by 49, SRCAND: our time by memcpy's", (AT_MOST, 0.8), "", counter("sprites/0", "of_memory")),
        ("sprites of 49 by 49, SRCPAINT: the same", (AT_MOST, 0.8), "", counter("sprites/1", "of_memory")),
        ("sprites of 49 by 49, SRCCOPY: the same", (AT_MOST, 0.8), "", counter("sprites/2", "of_memory")),
        ("picture of 763 by 608, SRCAND: the same", (AT_MOST, 1.25), "", counter("wholePicture/0", "of_memory")),
        ("picture of 763 by 608, SRCCOPY: the same", (AT_MOST, 1.25), "", counter("wholePicture/2", "of_memory")),
        ("clear to black, 763 by 608: our time by memset's", (AT_MOST, 1.3), "", counter("clear/0/763", "of_memory")),
        ("clear to a picture, 763 by 608: by memcpy's", (AT_MOST, 1.4), "", counter("clear/2/763", "of_memory"))],
    "kelvora_message_bench": [
        ("positions a second, from bytes to queue, 100 a read", (AT_LEAST, 4), "million",
         r"^positions/100\s.*items_per_second=([\d.]+)M/s"),
        ("the same, 100,000 a read", (AT_LEAST, 4), "million", r"^positions/100000\s.*items_per_second=([\d.]+)M/s")],
    "kelvora_tail_bench": [
        ("painting a tail of 100,000 vertices out of sight", (AT_MOST, 0.9), "ms",
         counter("paintUnseenTail/100000", "ms")),
        ("ageing it", (AT_MOST, 2.25), "ms", counter("ageTail/100000", "ms")),
        ("painting it with six captures waiting", (AT_MOST, 1.1), "ms",
         counter("paintTailWithCapturesWaiting/100000", "ms")),
        ("ending it", (AT_MOST, 7), "ms", counter("endWholeTail/100000", "ms"))],
    "start_figures.py build/release": [
        ("start to window, by an empty window's", (AT_MOST, 1.5), "", ratio("kelvora", 0)),
        ("processor time to the window", None, "ms", column("kelvora", 1)),
        ("the same, by an empty window's", (AT_MOST, 1.5), "", ratio("kelvora", 1)),
        ("processor time of the whole start", None, "ms", column("kelvora", 4)),
        ("memory (RSS)", None, "MB", column("kelvora", 2)),
        ("the same, by an empty window's", (AT_MOST, 1.5), "", ratio("kelvora", 2)),
        ("memory without sound, by an empty window's", (AT_MOST, 1.35), "", ratio("without sound", 2)),
        ("not connected, minimised: wake-ups a second", (AT_MOST, 0), "",
         r"^not connected, minimised: .* ([\d.]+) wake-ups"),
        ("the same with effects on", (AT_MOST, 0.2), "",
         r"^not connected, minimised, effects on: .* ([\d.]+) wake-ups"),
        ("the same with effects on: of a core", (AT_MOST, 0.001), "%", share("not connected, minimised, effects on")),
        ("the same with effects and music on: of a core", None, "%",
         share("not connected, minimised, effects and music on")),
        ("at 10 ms a pass, a light scene in sight: of a core", (AT_MOST, 5), "%", share("connected, paced, in sight")),
        ("the same, covered by another window (without a compositor)", (AT_MOST, 3), "%",
         share("connected, paced, covered")),
        ("the same, minimised", (AT_MOST, 3), "%", share("connected, paced, minimised")),
        ("at 10 ms a pass, six long tails in sight: of a core", (AT_MOST, 8), "%",
         share("connected, paced, six long tails in sight")),
        ("mouse to the picture on the screen, at 10 ms a pass", None, "ms",
         r"^mouse to picture, on the screen: +(\d+) ms"),
        ("mouse to the first report with the turn, the same", None, "ms",
         r"^mouse to the first report with the turn: +(\d+) ms"),
        ("an unpaced pass, painted and shown", None, "us", r"^unpaced: (\d+) us")],
    "start_figures.py build/windows": [
        ("in Wine, start to window: by an empty window's", (AT_MOST, 1.5), "", ratio("kelvora", 0)),
        ("processor time to the window: the same", (AT_MOST, 1.5), "", ratio("kelvora", 1)),
        ("processor time of the whole start: the same", (AT_MOST, 1.5), "", ratio("kelvora", 4)),
        ("the same without sound", (AT_MOST, 1.5), "", ratio("without sound", 4)),
        ("memory (RSS), with music: by an empty window's", (AT_MOST, 1.5), "", ratio("kelvora", 2)),
        ("the same without sound", (AT_MOST, 1.5), "", ratio("without sound", 2))],
    "kelvora_arena_bench": [
        ("a report against a tail of 50 vertices, relayed to 5", None, "us",
         processor_time("report/tail:50/opponents:5")),
        ("a tick with five bots", None, "us", processor_time("tick/bots:5"))],
    "arena_load.py build/release/kelvora-server": [
        ("an arena of six clients: of a core", None, "%", r"^1 arena.*\n +processor: ([\d.]+) %"),
        ("an arena of six clients: memory (RSS)", None, "MiB", r"^1 arena.*\n.*\n +memory: ([\d.]+) MiB"),
        ("100 arenas of a client and five bots: of a core", (AT_MOST, 40), "%",
         r"^100 arena.*\n +processor: ([\d.]+) %"),
        ("100 arenas: memory, shared pages once", None, "MiB",
         r"^100 arena.*\n.*\n.*\(RSS\), ([\d.]+) MiB without")],
    "listener_load.py build/release/kelvora-server": [
        ("six players over WebSocket: processor time by TCP's", (AT_MOST, 1.3), "",
         r"^  WebSocket.*, ([\d.]+) of the first"),
        ("list of 1000 entries: answers a second of processor time", (AT_LEAST, 8000), "",
         r"^The list at 1000 .*: (\d+) requests a second"),
        ("report to the other player", (AT_MOST, 0.3), "ms", r"^From a report .*, alone: ([\d.]+) ms"),
        ("the same beside 1000 idle connections", (AT_MOST, 0.3), "ms",
         r"^From a report .* idle connections: ([\d.]+) ms")],
    "list_load.py build/release/kelvora-server": [
        ("list of 20,000 arenas: answers a second of processor time", (AT_LEAST, 7000), "",
         r"^lists: .*, (\d+) a second of processor time"),
        ("the same: memory (RSS)", (AT_MOST, 25), "MiB", r"^lists: .*; ([\d.]+) MiB;")],
    "spectator_load.py build/release/kelvora-server": [
        ("report to another player, median", None, "ms", r"^0 spectators: ([\d.]+) ms at the median"),
        ("the same with 32 spectators", None, "ms", r"^32 spectators: ([\d.]+) ms at the median"),
        ("the same at the 99th percentile", None, "ms", r"^32 spectators: .*median, ([\d.]+) ms")],
    "page_figures.py build/release": [
        ("in Chromium, a light frame: by the native one", (AT_MOST, 2.25), "", r"^light frame: .* ratio ([\d.]+)"),
        ("a heavy frame: the same", (AT_MOST, 2.5), "", r"^heavy frame: .* ratio ([\d.]+)"),
        ("from the link to the connect dialog", (AT_MOST, 500), "ms", r"^from the link to the dialog: (\d+) ms"),
        ("fetched until then", None, "MB", r"^fetched until the dialog: ([\d.]+) MB"),
        ("fetched before the first login, music aside", (AT_MOST, 1.35), "MB",
         r"^fetched before the first login: ([\d.]+) MB"),
        ("passes a second in a game of six", (AT_LEAST, 100), "", r"^passes a second: (\d+)"),
        ("memory above an empty tab, in play", (AT_MOST, 110), "MB",
         r"^memory above an empty tab: (-?\d+) MB at most")],
    "check_figures.py": [
        ("`./check` without the compiler's cache", (AT_MOST, 20), "min", r"^all systems: ([\d.]+) min"),
        ("a second `./check`", (AT_MOST, 1), "min", r"^again: ([\d.]+) min"),
        ("after a change of one source: of a test", (AT_MOST, 2), "min", r"^after a change of a test: ([\d.]+) min"),
        ("of the windows of Windows", (AT_MOST, 4), "min", r"^after a change of the windows of Windows: ([\d.]+) min"),
        ("of the page", (AT_MOST, 4), "min", r"^after a change of the page: ([\d.]+) min"),
        ("of the game, on all systems", (AT_MOST, 4), "min", r"^after a change of the game: ([\d.]+) min"),
        ("`./check linux` without the compiler's cache", (AT_MOST, 12), "min", r"^linux: ([\d.]+) min")],
}


def number(text):
    """A number as the benchmarks print it: 1.5k is 1500, 7m is 0.007."""
    scale = {"k": 1e3, "M": 1e6, "G": 1e9, "m": 1e-3}.get(text[-1])
    return float(text[:-1]) * scale if scale else float(text)


def in_build(word, build):
    """A word of a command, for this release build and those beside it."""
    if word.startswith("build/release"):
        return str(build) + word.removeprefix("build/release")
    return str(build.parent / word.removeprefix("build/")) if word.startswith("build/") else word


def output(command, build):
    program, *words = (in_build(word, build) for word in command.split())
    if program.endswith(".py"):
        call = [PYTHON, str(PROJECT / "bench" / program), *words]
    else:
        call = [str(build / program), *words]
    print("#", *call, flush=True)
    text = subprocess.run(call, cwd=PROJECT, stdout=subprocess.PIPE, text=True, check=True).stdout
    print(text, flush=True)
    return text


def measured(figure, text):
    """A figure's value in the output of its command."""
    what, _, _, pattern = figure
    found = re.search(pattern, text, re.M)
    if not found:
        raise LookupError(f"did not print: {what}")
    return number(found[1])


def misses(value, goal):
    return goal is not None and (value < goal[1] if goal[0] == AT_LEAST else value > goal[1])


def rounded(value, goal):
    """Three digits, or as many as tell the value from the goal that it misses."""
    digits = 3
    while True:
        text = f"{value:.{digits}g}" if value < 999.5 else f"{value:.{digits - 3}f}"
        if misses(float(text), goal) == misses(value, goal):
            return text
        digits += 1


def row(command, figure, value):
    """A line of the table."""
    what, goal, unit, _ = figure
    today = rounded(value, goal)
    words = f"{goal[0]} {goal[1]}" if goal else ""
    missed = misses(value, goal)
    parts = (what, f"{words} {unit}".strip() if goal else "", f"{today} {unit}".strip(), f"`{command}`")
    return "| {} | {} | {}{} | {} |\n".format(*parts[:3], ", **missed**" if missed else "", parts[3])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path, help="the folder of a release build")
    parser.add_argument("--only", default="", help="a part of the commands to run")
    options = parser.parse_args()
    if not any(options.only in command for command in FIGURES):
        parser.error(f"no command contains {options.only}")
    document = DOCUMENT.read_text()
    old = TABLE.search(document)[0][len(HEAD):].splitlines(keepends=True)
    rows = {command: "".join(line for line in old if line.endswith(f"| `{command}` |\n")) for command in FIGURES}
    failures = []
    for command, figures in FIGURES.items():
        if options.only not in command:
            continue
        try:
            text = output(command, options.build.resolve())
            rows[command] = "".join(row(command, figure, measured(figure, text)) for figure in figures)
        except (OSError, subprocess.CalledProcessError, LookupError) as failure:
            failures.append(f"{command}: {failure}")
        DOCUMENT.write_text(TABLE.sub(lambda _: HEAD + "".join(rows.values()), document))
    if failures:
        sys.exit("These rows are old, because their benchmarks failed:\n" + "\n".join(failures))


if __name__ == "__main__":
    main()
