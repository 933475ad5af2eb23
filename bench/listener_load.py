#!/usr/bin/env python3
"""Measures what each kind of connection costs the server: real processes on real loopback sockets.

    bench/listener_load.py build/release/kelvora-server [--before OTHER] [--seconds 30]

Everything compared runs at the same time: six players over TCP, six over WebSocket and, with --before, six over TCP on
another build of the server. Then follow the memory for each kind of connection, a list of 1000 entries, and the latency
of a position beside a thousand idle connections. Processor time and memory are those of the server processes alone."""

import argparse
import resource
import select
import socket
import statistics
import subprocess
import time

from arena_load import Player, Server, load_protocol, play
from streams import HANDSHAKE, WebStream, web_frame


class WebPlayer(Player):
    """A player over WebSocket."""

    Stream = WebStream


def compare_players(programs, seconds):
    """Measures one arena of six for each kind of player, all at once."""
    servers, players = [], []
    for _, program, kind in programs:
        server = Server(program)
        servers.append(server)
        version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.split()[-1]
        players.append([kind(server.port, number, version) for number in range(6)])
    everybody = [player for group in zip(*players) for player in group]
    play(everybody, 3)
    before = [server.seconds() for server in servers]
    for player in everybody:
        player.frames = 0
    taken = play(everybody, seconds)
    used = [server.seconds() - start for server, start in zip(servers, before)]
    print(f"Six players each for {taken:.0f} s, all at once:")
    for (name, _, _), group, cost, server in zip(programs, players, used, servers):
        heard = sum(player.frames for player in group) / taken
        print(f"  {name}: {100 * cost / taken:.2f} % of a core, {cost / used[0]:.2f} of the first; "
              f"{heard:.0f} messages a second, {server.memory()[1]} KiB (PSS)")
        server.end()


def from_host(port, number):
    """Connects from a separate address."""
    return socket.create_connection(("127.0.0.1", port), 10, (f"127.1.{number // 250}.{1 + number % 250}", 0))


def connection_memory(program):
    """The memory that 90 connections of each kind add to the process."""
    kinds = (("silent", b"", 0), ("raw, a frame begun", b"\x80\x90", 0), ("HTTP, a request of 4 KiB begun",
             b"GET / HTTP/1.1\r\nA: " + b"a" * 4000, 0), ("HTTP, kept", b"GET / HTTP/1.1\r\nHost: h\r\n\r\n", 1),
             ("WebSocket, a frame begun", HANDSHAKE, 1))
    print("Memory of the process for a connection:")
    for name, first, answered in kinds:
        server = Server(program)
        [from_host(server.port, 500 + number).close() for number in range(20)]
        time.sleep(0.2)
        start = server.memory()[1]
        held = [from_host(server.port, number) for number in range(90)]
        for one in held:
            one.sendall(first)
            if answered:
                one.recv(4096)
                if first == HANDSHAKE:
                    one.sendall(web_frame(b"\x80\x90"))
        time.sleep(0.5)
        print(f"  {name}: {(server.memory()[1] - start) / len(held):.1f} KiB")
        server.end()


def deaf_memory(program, kind):
    """The maximum memory that a player who reads nothing costs the process."""
    server = Server(program)
    version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.split()[-1]
    speakers = [kind(server.port, number, version) for number in range(2)]
    play(speakers, 1)
    start = server.memory()[1]
    deaf = [kind(server.port, number, version) for number in range(2, 6)]
    maximum, begin = 0, time.monotonic()
    while time.monotonic() < begin + 12:
        for speaker in speakers:
            speaker.send(protocol.frame(protocol.CHAT, "-1", "x" * 4000))
            speaker.read()
        time.sleep(0.1)
        maximum = max(maximum, server.memory()[1])
    print(f"  {kind.__name__} who reads nothing: {(maximum - start) / len(deaf):.0f} KiB at most")
    server.end()


def ask(port, number, request):
    with from_host(port, number) as one:
        one.sendall(request)
        answer = b""
        while piece := one.recv(65536):
            answer += piece
    return answer


def list_rate(program, seconds):
    """Requests for a list of 1000 entries, over as many connections as needed, by the server's processor time."""
    server = Server(program, "--list-key", "k")
    version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.split()[-1]
    for entry in range(1000):
        answer = ask(server.port, entry, (f"POST /games/kelvora/publish?version={version}&address=games{entry}.example"
                                          "&port=2010&password=0&notes=one+of+a+thousand&players=3&max=6 HTTP/1.0\r\n"
                                          "Authorization: Bearer k\r\n\r\n").encode())
        assert b" 200 " in answer, answer
    request = f"GET /games/kelvora/gethosts.php?version={version}&password=1&full=1&empty=1 HTTP/1.0\r\n\r\n".encode()
    size = len(ask(server.port, 2000, request))
    served, start, begin = 0, server.seconds(), time.monotonic()
    while time.monotonic() < begin + seconds:
        # 250 addresses at a time, so that none exceeds the limit of new connections
        assert len(ask(server.port, 3000 + served % 40_000, request)) == size
        served += 1
    used, taken = server.seconds() - start, time.monotonic() - begin
    print(f"The list at 1000 entries, {size / 1024:.0f} KiB: {served / used:.0f} requests a second of processor time "
          f"({served / taken:.0f} a second of one client's)")
    server.end()


def relay_times(watcher, flyer, count):
    times = []
    for step in range(count):
        x, y = flyer.centre
        text = f"{x + step % 2:.0f}".encode()
        watcher.read()
        watcher.rest = b""
        start = time.monotonic()
        flyer.send(protocol.frame(protocol.POSITION_REPORT, text.decode(), f"{y:.0f}"))
        while True:
            select.select([watcher.socket], [], [], 5)
            if bytes([protocol.END]) in watcher.stream.take(watcher.socket.recv(65536)):
                break
        times.append(time.monotonic() - start)
        time.sleep(0.04)
        flyer.read()
    return times


def idle_delay(program):
    """The time from a report to the other player, with and without a thousand idle connections."""
    server = Server(program)
    version = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.split()[-1]
    players = [Player(server.port, number, version) for number in range(2)]
    play(players, 1)
    quiet = relay_times(*players, 100)
    held = []
    for number in range(1000):
        one = from_host(server.port, number)
        one.sendall(b"GET / HTTP/1.1\r\nHost: h\r\n\r\n")
        held.append(one)
    idle = relay_times(*players, 100)
    for name, times in (("alone", quiet), ("beside a thousand idle connections", idle)):
        print(f"From a report to the other player, {name}: {1000 * statistics.median(times):.2f} ms at the median, "
              f"{1000 * max(times):.2f} ms at most")
    server.end()


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("program")
    arguments.add_argument("--before")
    arguments.add_argument("--seconds", type=float, default=30)
    chosen = arguments.parse_args()
    global protocol
    protocol = load_protocol(chosen.program)
    resource.setrlimit(resource.RLIMIT_NOFILE, (4096, max(4096, resource.getrlimit(resource.RLIMIT_NOFILE)[1])))
    programs = [("TCP", chosen.program, Player), ("WebSocket", chosen.program, WebPlayer)]
    if chosen.before:
        programs.insert(0, ("TCP before", chosen.before, Player))
    compare_players(programs, chosen.seconds)
    connection_memory(chosen.program)
    for kind in (Player, WebPlayer):
        deaf_memory(chosen.program, kind)
    idle_delay(chosen.program)
    list_rate(chosen.program, 10)


if __name__ == "__main__":
    main()
