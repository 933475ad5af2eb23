#!/usr/bin/env python3
"""Measures a list of many servers: a real process on a real loopback socket.

    bench/list_load.py build/release/kelvora-server [--arenas 20000] [--requests 2000] [--seconds 20]

Announces the arenas, each with an address of its own, and announces all of them again at the pace of real ones, some
with other numbers of players, while clients ask for the list at the given rate. Checks that the list stays within 64
MiB and that the arenas that withdraw are gone. Memory is the server's resident set."""

import argparse
import multiprocessing
import os
import socket
import statistics
import subprocess
import time

from arena_load import Server

INTERVAL = 300  # seconds between an arena's announcements
MAX_MEMORY = 64 << 10  # KiB
CLIENTS = 4


def ask(port, request):
    with socket.create_connection(("127.0.0.1", port), 60) as one:
        one.sendall(request)
        size, first, last = 0, b"", b""
        while piece := one.recv(1 << 18):
            first, last = first or piece[:16], piece[-8:]
            size += len(piece)
    return first, last, size


def change(port, method, version, arena, players):
    query = (f"{method} /games/kelvora/publish?version={version}&address=arena{arena}.games.example&port=2010"
             f"&password=0&notes=arena+{arena}&players={players}&max=6 HTTP/1.0\r\n\r\n")
    first, _, _ = ask(port, query.encode())
    assert b" 200" in first, first


def announce_again(port, version, arenas):
    """Keeps the list busy as the arenas would. Two in three announcements bring another number of players."""
    arena, begin = 0, time.monotonic()
    while True:
        change(port, "POST", version, arena % arenas, arena * 7 // 3 % 7)
        arena += 1
        time.sleep(max(0.0, begin + arena * INTERVAL / arenas - time.monotonic()))


def request_lists(port, version, rate, seconds, results):
    """Asks at that rate. Puts the number of answers, their delays and the size of the last one into `results`."""
    queries = [f"GET /games/kelvora/gethosts.php?version={version}&password={p}&full={f}&empty={e} HTTP/1.0\r\n\r\n"
               for p in (0, 1) for f in (0, 1) for e in (0, 1)]
    delays, begin, largest = [], time.monotonic(), 0
    while (now := time.monotonic()) < begin + seconds:
        first, last, size = ask(port, queries[len(delays) % len(queries)].encode())
        assert b" 200" in first and last.endswith(b"-END-\n"), (first, last)
        delays.append(time.monotonic() - now)
        largest = max(largest, size)
        time.sleep(max(0.0, begin + len(delays) / rate - time.monotonic()))
    results.put((delays, largest, time.monotonic() - begin))


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("program")
    arguments.add_argument("--arenas", type=int, default=20_000)
    arguments.add_argument("--requests", type=float, default=2_000)
    arguments.add_argument("--seconds", type=float, default=20)
    chosen = arguments.parse_args()
    version = subprocess.run([chosen.program, "--version"], capture_output=True, text=True,
                             check=True).stdout.split()[-1]
    # All clients of this measurement come from one machine.
    server = Server(chosen.program, "--list-size", str(chosen.arenas), "--unlimited-for", "127.0.0.0/8", "--no-site")
    processes = []
    try:
        used, begin = server.seconds(), time.monotonic()
        for arena in range(chosen.arenas):
            change(server.port, "POST", version, arena, arena % 7)
        taken = time.monotonic() - begin
        print(f"{chosen.arenas} arenas announced in {taken:.1f} s, "
              f"{(server.seconds() - used) / chosen.arenas * 1e6:.0f} µs of processor time each; "
              f"{server.memory()[0] / 1024:.1f} MiB")
        results = multiprocessing.Queue()
        processes = [multiprocessing.Process(target=request_lists, args=(
            server.port, version, chosen.requests / CLIENTS, chosen.seconds, results)) for _ in range(CLIENTS)]
        processes.append(multiprocessing.Process(target=announce_again, args=(server.port, version, chosen.arenas)))
        used = server.seconds()
        for process in processes:
            process.start()
        delays, rate, largest = [], 0.0, 0
        for _ in range(CLIENTS):
            some, size, taken = results.get(timeout=chosen.seconds + 120)
            delays += some
            rate += len(some) / taken
            largest = max(largest, size)
        used = server.seconds() - used
        rss = server.memory()[0]
        print(f"lists: {rate:.0f} a second, {len(delays) / used:.0f} a second of processor time, "
              f"up to {largest / 1024:.0f} KiB; {1000 * statistics.median(delays):.1f} ms at the median, "
              f"{1000 * statistics.quantiles(delays, n=100)[98]:.1f} ms at the 99th percentile; {rss / 1024:.1f} MiB; "
              f"load of the machine {os.getloadavg()[0]:.1f}")
        if rss > MAX_MEMORY:
            raise SystemExit("The list takes more than 64 MiB.")
        processes[-1].kill()
        for arena in range(chosen.arenas - 1):
            change(server.port, "DELETE", version, arena, 0)
        _, _, size = ask(server.port, f"GET /games/kelvora/gethosts.php?version={version} HTTP/1.0\r\n\r\n".encode())
        if size > 500:
            raise SystemExit("Arenas that have withdrawn are still in the list.")
    finally:
        for process in processes:
            process.kill()
        server.end()


if __name__ == "__main__":
    main()
