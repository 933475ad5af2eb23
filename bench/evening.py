#!/usr/bin/env python3
"""A scripted evening: many arenas, a list, people over TCP and WebSocket, spectators, votes, bans, hostile clients all
the while, and a rolling update of every arena in the middle of it.

    bench/evening.py build/release/kelvora-server [--arenas 40] [--seconds 300] [--round 30] [--update OTHER]
                     [--untimed]

Each arena has five people. Hostile clients and spectators visit every second one. A moderator bans and unbans in the
others, and their people vote. There the counts of /metrics must equal what the scripts sent and got. Ends with status 1
if anybody who behaves well loses a connection that no server announced, if a report takes more than a tick (40 ms) to
reach others at the median or two at the 99th percentile, if the quiet arenas' memory grows by a tenth between the start
and the end of a half, or if a figure differs. --untimed judges neither time nor memory. --update names the program that
replaces the first one; without it, the program replaces itself."""

import argparse
import collections
import multiprocessing
import os
import re
import signal
import statistics
import subprocess
import tempfile
import time
import urllib.request

from arena_load import Server, load_protocol
from evening_people import Person, find_arena, probe
from flood_delay import Attacker, floods

PASSWORD = "open-sesame"
RUN, QUIET, END = range(3)
COUNTED = ("POSITION_REPORT", "POSITION", "CHAT", "LOGIN", "LOGIN_ACCEPTED", "PLAYER_JOINED", "PLAYER_LEFT")


class Evening:
    """The values that all processes share."""

    def __init__(self, program, list_port):
        self.protocol = load_protocol(program)
        self.version = subprocess.run([program, "--version"], capture_output=True, text=True,
                                      check=True).stdout.split()[-1]
        self.list_port = list_port
        self.phase = multiprocessing.Value("i", RUN)
        self.joined = multiprocessing.Value("i", 0)
        self.scenes = multiprocessing.Value("i", 0)  # bans and votes
        self.results = multiprocessing.Queue()

    def run(self, people, work, guests=(), **more):
        """Does the work again and again, then reads on in quiet, and reports at the end."""
        signal.signal(signal.SIGINT, signal.SIG_IGN)
        has_counted = False
        while self.phase.value == RUN:
            work()
            if not has_counted and all(one.is_in for one in people):
                has_counted = True
                with self.joined:
                    self.joined.value += len(people)
        for guest in guests:
            guest.quit()
        while self.phase.value == QUIET:
            for one in people:
                one.act(is_flying=False)
            time.sleep(0.02)
        sent, heard = collections.Counter(), collections.Counter()
        for one in [*people, *guests]:
            sent.update(one.sent)
            heard.update(one.heard)
        self.results.put({"dropped": [line for one in people for line in one.dropped], "sent": sent, "heard": heard,
                          "moves": sum(one.moves - 1 for one in people), **more})


def fly(evening, people):
    """Lets them report 25 times a second, spread evenly over each 40 ms."""
    clock = {"step": 0, "begin": time.monotonic()}

    def work():
        people[clock["step"] % len(people)].act()
        clock["step"] += 1
        due = clock["begin"] + clock["step"] * 0.04 / len(people)
        if due > (now := time.monotonic()):
            time.sleep(due - now)
        elif now > due + 1:
            clock.update(step=0, begin=now)  # a busy machine: never a burst

    evening.run(people, work)


def measure(evening, pairs):
    """Times reports from one to the other of each pair."""
    times, state = [], {"step": 0}

    def work():
        flyer, watcher = pairs[state["step"] % len(pairs)]
        for one in (flyer, watcher):
            one.act(is_flying=False)
        taken = probe(flyer, watcher, state["step"])
        if taken is not None:
            times.append(taken)
        state["step"] += 1
        time.sleep(0.02)

    evening.run([one for pair in pairs for one in pair], work, times=times)


def moderate(evening, moderators):
    """In one arena after the other: bans a troublemaker, who reads why and may not return, lifts the ban, and has the
    people vote."""
    faults, guests = [], []
    due = {one: 0.0 for one in moderators}

    def rest():
        for one in moderators:
            one.act(is_flying=False)

    def troublemaker(moderator, number):
        rascal = Person(evening, moderator.arena, number, name="Rascal")
        guests.append(rascal)
        rascal.join(moderator.port)
        deadline = time.monotonic() + 60
        while rascal.socket and not rascal.is_in and time.monotonic() < deadline:
            rest()
            rascal.read()
            time.sleep(0.01)
        return rascal

    def scene(moderator):
        """The failures; nothing if all went well."""
        first = 30_005 + 6 * len(guests)  # addresses that nobody has banned
        moderator.said.clear()
        moderator.say("!login " + PASSWORD)
        if not moderator.wait_for("You are a moderator"):
            return "no moderator"
        rascal = troublemaker(moderator, first)
        moderator.say("!ban Rascal 5m rude words")
        if not (moderator.wait_for("Banned Rascal") and rascal.wait_for("rude words")):
            return "no ban"
        rascal.quit()
        banned = troublemaker(moderator, first)
        if not banned.wait_for("rude words") or banned.is_in:
            return "the ban has no effect"
        banned.quit()
        moderator.say("!unban Rascal")
        if not moderator.wait_for("Lifted the ban"):
            return "the ban was not lifted"
        pest = troublemaker(moderator, first)
        if not pest.is_in:
            return "still banned"
        moderator.say("!vote kick Rascal")
        if not (pest.wait_for("The players have voted to kick you.") and moderator.wait_for("has passed")):
            return "no majority"
        pest.quit()
        return None

    def work():
        rest()
        for moderator in moderators:
            if moderator.is_in and not moderator.leaves and time.monotonic() > due[moderator]:
                break
        else:
            return time.sleep(0.02)
        fault = scene(moderator)
        due[moderator] = time.monotonic() + 61  # a network may start one vote a minute
        for guest in guests:
            if not guest.is_gone:
                guest.quit()
        # The server may have stopped in between, as announced.
        if fault is None:
            evening.scenes.value += 1
        elif moderator.is_in and not moderator.has_heard("stops when this round is over"):
            faults.append(f"arena {moderator.arena}: {fault}, {list(moderator.said)[-5:]}")

    evening.run(moderators, work, guests, faults=faults)


def attack(evening, names):
    """Floods one arena after the other, in all ways."""
    ways = [(name, crowds) for name, crowds in floods(evening.protocol, evening.version) if crowds]
    number = 0
    while evening.phase.value == RUN:
        name, crowds = ways[number % len(ways)]
        port = find_arena(evening.list_port, evening.version, names[number % len(names)], "127.0.0.1")
        number += 1
        if port is None:
            continue
        attackers = [Attacker(port, first, portion, "read nothing" not in name)
                     for count, first, portion in crowds for _ in range(count)]
        end = time.monotonic() + 5
        while time.monotonic() < end and evening.phase.value == RUN:
            for attacker in attackers:
                attacker.act()
            time.sleep(0.01)
        for attacker in attackers:
            attacker.leave()
    evening.results.put({"attacks": number})


class Arena(Server):
    """A server whose end must be orderly."""

    def __init__(self, program, *options):
        self.process = subprocess.Popen([program, "--port", "0", *options], stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True)
        while not (line := self.process.stdout.readline()).startswith("listening on"):
            if not line:
                raise SystemExit("A server doesn't start.")
        self.port = int(line.rsplit(":", 1)[1])

    def figures(self):
        with urllib.request.urlopen(f"http://127.0.0.1:{self.port}/metrics", timeout=60) as page:
            lines = page.read().decode().splitlines()
        return {name: float(value) for name, value in (line.rsplit(" ", 1) for line in lines if line[0] != "#")}


def quantile(arenas, family, share):
    """Of all arenas' histograms: the upper bound of the bin, in seconds."""
    bins = collections.Counter()
    for figures in arenas:
        for name, value in figures.items():
            if match := re.fullmatch(rf'{family}_bucket{{le="(.+)"}}', name):
                bins[float(match[1])] += value
    total = max(bins.values())
    return min(bound for bound, count in bins.items() if count >= share * total)


def memory(arenas):
    """MiB of all, pages in common counted once."""
    return sum(arena.memory()[1] for arena in arenas) / 1024


class Coordinator:
    def __init__(self, chosen, folder):
        self.chosen, self.folder = chosen, folder
        self.faults = []
        help_text = subprocess.run([chosen.program, "--help"], capture_output=True, text=True, check=True).stdout
        self.has_spectators = "--spectators" in help_text
        self.hash = subprocess.run([chosen.program, "--hash-password"], input=PASSWORD + "\n", capture_output=True,
                                   text=True, check=True).stdout.strip()
        with open(os.path.join(folder, "large"), "wb") as file:
            file.truncate(20 << 20)
        os.environ["no_proxy"] = "*"
        self.list = Arena(chosen.program, "--unlimited-for", "127.0.0.1", "--no-site")
        self.evening = Evening(chosen.program, self.list.port)
        self.arenas = [self.start(chosen.program, number) for number in range(chosen.arenas)]
        self.processes = []

    def start(self, program, number):
        options = ["--spectators", "8", "--spectator-port", "0"] if self.has_spectators else []
        return Arena(program, "--notes", f"arena {number}", "--public-address", "127.0.0.1", "--round-seconds",
                     str(self.chosen.round),
                     "--intermission", "5", "--drain", "300", "--moderator", self.hash, "--site", self.folder,
                     "--speed-limit", "0", "--publish", f"http://127.0.0.1:{self.list.port}", *options)

    def people(self, arena, seats, **more):
        return [Person(self.evening, arena, 6 * arena + seat, is_web=seat % 2 == 1, **more) for seat in seats]

    def invite(self):
        """Starts the people. Returns their number. Quiet arenas are the odd ones."""
        everybody = range(self.chosen.arenas)
        quiet = [arena for arena in everybody if arena % 2]
        flyers = [one for arena in everybody for one in self.people(arena, (0, 1) if arena % 2 else (0, 1, 4))]
        pairs = [tuple(self.people(arena, (2, 3))) for arena in everybody]
        moderators = [one for arena in quiet for one in self.people(arena, (4,))]
        watchers = [Person(self.evening, arena, 18_000 + 6 * arena + seat, is_web=True, is_watching=True)
                    for arena in everybody if not arena % 2 and self.has_spectators for seat in range(2)]
        crowds = [(fly, flyers[part::3] + watchers[part::3]) for part in range(3)]
        crowds += [(measure, pairs), (moderate, moderators),
                   (attack, [f"arena {arena}" for arena in everybody if not arena % 2])]
        for work, crowd in crowds:
            process = multiprocessing.Process(target=work, args=(self.evening, crowd))
            process.start()
            self.processes.append(process)
        self.watchers = len(watchers)
        return 5 * self.chosen.arenas + len(watchers)

    def wait_until(self, condition, what, patience=300):
        deadline = time.monotonic() + patience
        while not condition():
            if time.monotonic() > deadline:
                raise SystemExit(f"Not within {patience} s: {what}.")
            if any(process.exitcode for process in self.processes):
                raise SystemExit("A process of the people failed.")
            time.sleep(0.2)

    def half(self, name):
        """Lets it run for half the time, and compares the memory at its ends."""
        time.sleep(min(10, self.chosen.seconds / 2))  # for the buffers of the first positions
        groups = {"quiet": self.arenas[1::2], "attacked": self.arenas[::2]}
        before = {group: memory(arenas) for group, arenas in groups.items()}
        used, begin = self.processor_time(), time.monotonic()
        time.sleep(self.chosen.seconds / 2)
        share = (self.processor_time() - used) / (time.monotonic() - begin)
        after = {group: memory(arenas) for group, arenas in groups.items()}
        print(f"{name} half: the arenas took {100 * share:.0f} % of a core, the quiet ones {before['quiet']:.1f} MiB "
              f"at its start and {after['quiet']:.1f} at its end, the attacked ones {before['attacked']:.1f} and "
              f"{after['attacked']:.1f}; load of the machine {os.getloadavg()[0]:.1f}", flush=True)
        if after["quiet"] > 1.1 * before["quiet"] and not self.chosen.untimed:
            self.faults.append(f"the quiet arenas' memory grew in the {name} half")

    def processor_time(self):
        return sum(arena.seconds() for arena in self.arenas)

    def update(self):
        """Replaces the arenas, a quarter at a time. Their rounds play out."""
        begin, size = time.monotonic(), -(-self.chosen.arenas // 4)
        for first in range(0, self.chosen.arenas, size):
            old = self.arenas[first:first + size]
            for number in range(first, first + len(old)):
                self.arenas[number] = self.start(self.chosen.update or self.chosen.program, number)
            for server in old:
                server.process.terminate()
            self.wait_until(lambda: all(server.process.poll() is not None for server in old), "the end of their rounds")
            self.faults += [f"an arena ended with status {server.process.returncode}" for server in old
                            if server.process.returncode]
        print(f"all arenas updated in {time.monotonic() - begin:.0f} s", flush=True)

    def all_are_in(self):
        return all(figures["kelvora_players"] >= 5 for figures in (arena.figures() for arena in self.arenas))

    def settle(self):
        """Lets everybody fall silent, and returns the figures of that moment."""
        self.evening.phase.value = QUIET
        last = []

        def is_still():
            nonlocal last
            before, last = last, [arena.figures() for arena in self.arenas]
            time.sleep(1)
            return before and all(one[self.sample(message)] == other[self.sample(message)]
                                  for one, other in zip(before, last) for message in COUNTED)

        self.wait_until(is_still, "silence")
        return last

    def sample(self, message):
        protocol = self.evening.protocol
        way = "in" if getattr(protocol, message) in protocol.TO_SERVER else "out"
        name = "msg" + message.title().replace("_", "")
        return f'kelvora_messages_total{{direction="{way}",message="{name}"}}'

    def compare(self, figures, results):
        """The quiet arenas' figures with what the scripts sent and got."""
        sent, heard = collections.Counter(), collections.Counter()
        for result in results:
            sent.update(result.get("sent", {}))
            heard.update(result.get("heard", {}))
        compared = 0
        for number in range(1, self.chosen.arenas, 2):
            for message in COUNTED:
                key = (self.arenas[number].port, getattr(self.evening.protocol, message))
                seen = (sent if 'direction="in"' in self.sample(message) else heard)[key]
                told = figures[number][self.sample(message)]
                compared += 1
                if seen != told:
                    self.faults.append(f"arena {number}: {told:.0f} {message} by its figures, {seen} by the scripts")
            if figures[number]["kelvora_players"] != 5:
                self.faults.append(f"arena {number}: {figures[number]['kelvora_players']:.0f} players by its figures")
        print(f"{compared} figures of the quiet arenas compared")

    def judge(self, figures, results):
        times = sorted(one for result in results for one in result.get("times", ()))
        median, late = statistics.median(times), statistics.quantiles(times, n=100)[98]
        print(f"{len(times)} reports: {1000 * median:.2f} ms to another player at the median, {1000 * late:.2f} ms at "
              f"the 99th percentile, {1000 * times[-1]:.2f} ms at most; by the servers' figures at most "
              f"{1000 * quantile(figures, 'kelvora_relay_seconds', 0.99):.2f} ms to relay and "
              f"{1000 * quantile(figures, 'kelvora_wait_seconds', 0.99):.2f} ms to wait, at the 99th percentile")
        if (median > 0.04 or late > 0.08) and not self.chosen.untimed:
            self.faults.append("reports took too long")
        scenes = self.evening.scenes.value
        moves = sum(result.get("moves", 0) for result in results)
        attacks = sum(result.get("attacks", 0) for result in results)
        print(f"{scenes} bans and votes, {attacks} attacks, {moves} moves to another server")
        dropped = [line for result in results for line in result.get("dropped", ())]
        self.faults += [f"dropped: {line}" for line in dropped]
        self.faults += [line for result in results for line in result.get("faults", ())]
        if attacks == 0:
            self.faults.append("there were no attacks")
        if moves < 5 * self.chosen.arenas:
            self.faults.append("not everybody moved to the new servers")

    def run(self):
        count = self.invite()
        self.wait_until(lambda: self.evening.joined.value == count, "everybody's login")
        print(f"{self.chosen.arenas} arenas, {5 * self.chosen.arenas} players, {self.watchers} spectators", flush=True)
        self.half("first")
        self.wait_until(lambda: self.evening.scenes.value > 0, "a ban and a vote")
        self.update()
        self.wait_until(self.all_are_in, "everybody's return")
        self.half("second")
        figures = self.settle()
        time.sleep(2)
        self.evening.phase.value = END
        results = [self.evening.results.get(timeout=60) for _ in self.processes]
        self.compare(figures, results)
        self.judge(figures, results)

    def end(self):
        for process in self.processes:
            process.kill()
        for server in [self.list, *self.arenas]:
            server.process.kill()
            server.process.wait()


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("program")
    arguments.add_argument("--arenas", type=int, default=40)
    arguments.add_argument("--seconds", type=float, default=300)
    arguments.add_argument("--round", type=int, default=30)
    arguments.add_argument("--update")
    arguments.add_argument("--untimed", action="store_true")
    chosen = arguments.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        coordinator = Coordinator(chosen, folder)
        try:
            coordinator.run()
        finally:
            coordinator.end()
    for fault in coordinator.faults[:50]:
        print(fault)
    raise SystemExit(1 if coordinator.faults else 0)


if __name__ == "__main__":
    main()
