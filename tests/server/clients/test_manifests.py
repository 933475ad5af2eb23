"""The manifests in packaging/kubernetes, as far as they can be checked without a cluster: every field is one that the
documentation of Agones or Kubernetes names, has a value of its kind, and fits the program."""

import re
import subprocess
import unittest

import yaml

from realServer import PROJECT, SERVER, VERSION

FOLDER = PROJECT / "packaging/kubernetes"


class Each:
    """A list whose entries have this form."""

    def __init__(self, form):
        self.form = form


class Named:
    """An object with names of the operator's choice, whose values have this form."""

    def __init__(self, form):
        self.form = form


def text(pattern):
    return lambda value: isinstance(value, str) and re.fullmatch(pattern, value) is not None


def whole(low, high):
    return lambda value: type(value) is int and low <= value <= high


NAME = text("[a-z]([-a-z0-9]*[a-z0-9])?")
LABELS = Named(text("[A-Za-z0-9]([-A-Za-z0-9_.]*[A-Za-z0-9])?"))
SHARE = text("[0-9]+%")
CPU, MEMORY = text("[0-9]+m?"), text("[0-9]+(Ki|Mi|Gi)")
FLAG = lambda value: type(value) is bool
METADATA = {"name": NAME, "labels": LABELS}

CONTAINER = {
    "name!": NAME, "image!": text("[a-z0-9.]+(/[-a-z0-9]+)+:[A-Za-z0-9.]+"), "args": Each(text("--.*")),
    "resources": {"requests": {"cpu": CPU, "memory": MEMORY}, "limits": {"cpu": CPU, "memory": MEMORY}},
    "securityContext": {"allowPrivilegeEscalation": FLAG, "readOnlyRootFilesystem": FLAG,
                        "capabilities": {"drop": Each(text("ALL")), "add": Each(text("[A-Z_]+"))}},
}
POD = {
    "metadata": METADATA,
    "spec!": {"terminationGracePeriodSeconds": whole(0, 86400), "containers!": Each(CONTAINER),
              "securityContext": {"runAsNonRoot": FLAG, "runAsUser": whole(1, 65535), "runAsGroup": whole(1, 65535),
                                  "seccompProfile": {"type!": text("RuntimeDefault|Unconfined|Localhost")}}},
}
GAME_SERVER = {
    "ports": Each({"name!": NAME, "portPolicy": text("Dynamic|Static|Passthrough"), "containerPort": whole(1, 65535),
                   "hostPort": whole(1, 65535), "protocol": text("TCP|UDP|TCPUDP"), "container": NAME}),
    "health": {"disabled": FLAG, "initialDelaySeconds": whole(0, 3600), "periodSeconds": whole(1, 3600),
               "failureThreshold": whole(1, 100)},
    "counters": Named({"count": whole(0, 2**31), "capacity": whole(0, 2**31)}),
    "template!": POD,
}
FLEET = {
    "apiVersion!": text("agones.dev/v1"), "kind!": text("Fleet"), "metadata!": METADATA,
    "spec!": {"replicas": whole(0, 100000), "scheduling": text("Packed|Distributed"),
              "strategy": {"type": text("RollingUpdate|Recreate"),
                           "rollingUpdate": {"maxSurge": SHARE, "maxUnavailable": SHARE}},
              "template!": {"metadata": METADATA, "spec!": GAME_SERVER}},
}
AUTOSCALER = {
    "apiVersion!": text("autoscaling.agones.dev/v1"), "kind!": text("FleetAutoscaler"), "metadata!": METADATA,
    "spec!": {"fleetName!": NAME,
              "policy!": {"type!": text("Buffer"), "buffer!": {"bufferSize!": whole(1, 100000),
                                                               "minReplicas": whole(0, 100000),
                                                               "maxReplicas!": whole(1, 100000)}},
              "sync": {"type!": text("FixedInterval"), "fixedInterval!": {"seconds!": whole(1, 86400)}}},
}
ALLOCATION = {
    "apiVersion!": text("allocation.agones.dev/v1"), "kind!": text("GameServerAllocation"),
    "spec!": {"scheduling": text("Packed|Distributed"),
              "selectors": Each({"matchLabels": LABELS, "gameServerState": text("Ready|Allocated"),
                                 "counters": Named({"minCount": whole(0, 2**31), "maxCount": whole(0, 2**31),
                                                    "minAvailable": whole(0, 2**31),
                                                    "maxAvailable": whole(0, 2**31)})})},
}


def faults(value, form, place=""):
    """Returns where the value doesn't fit the form, as texts. A field whose name ends with an exclamation mark is
    required."""
    if callable(form):
        return [] if form(value) else [f"{place}: {value!r}"]
    if isinstance(form, Each):
        if not isinstance(value, list) or not value:
            return [f"{place}: not a list"]
        return [fault for index, one in enumerate(value) for fault in faults(one, form.form, f"{place}[{index}]")]
    if not isinstance(value, dict):
        return [f"{place}: not an object"]
    if isinstance(form, Named):
        return [fault for name, one in value.items() for fault in faults(one, form.form, f"{place}.{name}")]
    fields = {name.rstrip("!"): inner for name, inner in form.items()}
    found = [f"{place}.{name[:-1]}: missing" for name in form if name.endswith("!") and name[:-1] not in value]
    for name, one in value.items():
        found += faults(one, fields[name], f"{place}.{name}") if name in fields else [f"{place}.{name}: unknown"]
    return found


class Manifests(unittest.TestCase):
    def load(self, name):
        return yaml.safe_load((FOLDER / name).read_text(encoding="utf-8"))

    def setUp(self):
        self.fleet, self.autoscaler = self.load("fleet.yaml"), self.load("autoscaler.yaml")
        self.allocation = self.load("allocation.yaml")
        self.game_server = self.fleet["spec"]["template"]["spec"]
        self.pod = self.game_server["template"]["spec"]
        self.container = self.pod["containers"][0]

    def test_every_field_is_known_and_fits(self):
        for manifest, form in ((self.fleet, FLEET), (self.autoscaler, AUTOSCALER), (self.allocation, ALLOCATION)):
            self.assertEqual(faults(manifest, form), [])

    def test_unfit_fields_are_found(self):
        for change, fault in ((lambda: self.game_server["ports"][0].update(protocol="SCTP"), "protocol"),
                              (lambda: self.game_server.update(port=2010), "port: unknown"),
                              (lambda: self.pod.pop("containers"), "containers: missing"),
                              (lambda: self.fleet["spec"].update(replicas="4"), "replicas")):
            self.setUp()
            change()
            [found] = faults(self.fleet, FLEET)
            self.assertIn(fault, found)

    def test_the_program_takes_the_arguments(self):
        arguments = [argument.replace("=", "\0", 1).split("\0") for argument in self.container["args"]]
        # --version ends the program after it has read the others.
        result = subprocess.run([SERVER, *self.container["args"], "--version"], capture_output=True, text=True,
                                check=False)
        self.assertEqual((result.returncode, result.stdout.split()[-1:]), (0, [VERSION]), result.stderr)
        drain = dict(arguments)["--drain"]
        self.assertGreater(self.pod["terminationGracePeriodSeconds"], int(drain) + 10)

    def test_the_user_is_the_one_of_the_image(self):
        containerfile = (PROJECT / "packaging/container/Containerfile").read_text(encoding="utf-8")
        context = self.pod["securityContext"]
        self.assertIn(f"USER {context['runAsUser']}:{context['runAsGroup']}\n", containerfile)
        self.assertTrue(self.container["securityContext"]["readOnlyRootFilesystem"])

    def test_the_manifests_belong_together(self):
        name = self.fleet["metadata"]["name"]
        self.assertEqual(self.autoscaler["spec"]["fleetName"], name)
        for selector in self.allocation["spec"]["selectors"]:
            self.assertEqual(selector["matchLabels"], {"agones.dev/fleet": name})
        self.assertEqual(set(self.game_server["counters"]), {"players"})
        self.assertEqual(self.game_server["counters"]["players"]["capacity"], 6)
        self.assertGreaterEqual(self.game_server["health"]["periodSeconds"], 4, "two reports of the server")


if __name__ == "__main__":
    unittest.main()
