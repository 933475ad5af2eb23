"""The server's figures: Prometheus and its promtool read them, and they agree with what players saw."""

import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import urllib.error
import urllib.parse
import urllib.request

from operatorsGuide import documented
from realServer import PATIENCE, PROJECT, RawPlayer, Server, connect, free_port, wait_for
from protocol import CHAT, LOGIN_ACCEPTED, POSITION, POSITION_REPORT, frame

REPORTS = 5


def get(url):
    with urllib.request.urlopen(url, timeout=PATIENCE) as answer:
        return answer.read().decode()


class Prometheus:
    """A real Prometheus with the configuration of docs/server.md, but another port, and a scrape each second."""

    def __init__(self, server):
        self.folder = tempfile.mkdtemp(prefix="kelvora-prometheus-")
        text = documented("Prometheus on the same machine")
        assert text.count("127.0.0.1:2010") == 1
        config = os.path.join(self.folder, "prometheus.yml")
        with open(config, "w", encoding="utf-8") as file:
            file.write("global:\n  scrape_interval: 1s\n" + text.replace("127.0.0.1:2010", f"127.0.0.1:{server.port}"))
        subprocess.run(["promtool", "check", "config", config], check=True, capture_output=True)
        self.url = f"http://127.0.0.1:{free_port()}"
        self.log_file = os.path.join(self.folder, "log")
        with open(self.log_file, "w", encoding="utf-8") as log:
            self.process = subprocess.Popen(
                ["prometheus", f"--config.file={config}", f"--storage.tsdb.path={self.folder}/data",
                 f"--web.listen-address={self.url[7:]}"], stdin=subprocess.DEVNULL, stdout=log, stderr=log)

    def ask(self, query):
        """The numbers that a query results in; none before Prometheus has started."""
        if self.process.poll() is not None:
            with open(self.log_file, encoding="utf-8") as file:
                raise AssertionError(f"Prometheus does not start: {file.read()}")
        try:
            answer = json.loads(get(f"{self.url}/api/v1/query?query={urllib.parse.quote(query)}"))
        except urllib.error.URLError:
            return []
        return [float(result["value"][1]) for result in answer["data"]["result"]]

    def end(self):
        self.process.terminate()
        self.process.wait(PATIENCE)
        shutil.rmtree(self.folder, ignore_errors=True)


class Figures(unittest.TestCase):
    def setUp(self):
        self.server = Server("--bots", "2", "--speed-limit", "0")
        self.addCleanup(self.server.end)
        self.url = f"http://127.0.0.1:{self.server.port}"
        self.player = RawPlayer(connect(self.server.port, 2), "Ann")
        self.addCleanup(self.player.close)
        _, self.node, *_ = self.player.find(LOGIN_ACCEPTED)

    def fly(self):
        for step in range(REPORTS):
            self.player.send(frame(POSITION_REPORT, 50000 + step, 50000))
            self.player.find(POSITION, lambda fields: fields == [self.node, str(50000 + step), "50000"])

    def test_promtool_finds_no_fault(self):
        self.fly()
        result = subprocess.run(["promtool", "check", "metrics"], input=get(f"{self.url}/metrics"), capture_output=True,
                                text=True, timeout=PATIENCE)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_the_server_is_healthy(self):
        self.assertEqual(get(f"{self.url}/healthz"), "ok\n")

    def test_prometheus_sees_what_the_player_saw(self):
        prometheus = Prometheus(self.server)
        self.addCleanup(prometheus.end)
        wait_for(lambda: prometheus.ask("kelvora_players") == [1], "one player")
        self.fly()
        self.assertEqual(get(f"{self.url}/healthz"), "ok\n")  # a connection that ends
        self.player.say("hello")
        self.player.find(CHAT, lambda fields: fields[-1] == "hello")
        wait_for(lambda: prometheus.ask('kelvora_messages_total{direction="in",message="msgChat"}') == [1], "the line")
        for query, value in (('kelvora_messages_total{direction="in",message="msgLogin"}', 1),
                             ('kelvora_messages_total{direction="in",message="msgPositionReport"}', REPORTS),
                             ("kelvora_relay_seconds_count", REPORTS),
                             ('kelvora_messages_total{direction="in",message="unknown"}', 0),
                             ('sum(kelvora_dropped_total)', 0),
                             ("kelvora_connections - kelvora_players", 1)):  # Prometheus' own
            self.assertEqual(prometheus.ask(query), [value], query)
        wait_for(lambda: prometheus.ask("kelvora_bots") == [2], "the bots")
        expressions = re.findall(r'"expr": "(.*)"', (PROJECT / "packaging/grafana/kelvora.json").read_text())
        self.assertGreater(len(expressions), 10)
        for expression in expressions:
            query = json.loads(f'"{expression}"').replace("$instance", ".*").replace("$__rate_interval", "1m")
            numbers = wait_for(lambda: prometheus.ask(query), query)  # a rate needs two scrapes
            self.assertTrue(all(number >= 0 for number in numbers), (query, numbers))


if __name__ == "__main__":
    unittest.main()
