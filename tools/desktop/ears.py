"""A sound server without a device. It records what programs play."""

import array
import os
import shutil
import subprocess
import tempfile

import harness

RATE = 44_100


class Ears:
    """PulseAudio with a sink that nobody hears, and a recorder. Give `environment` to the clients."""

    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="kelvora-ears-")
        self.recording = os.path.join(self.folder, "recording")
        socket = os.path.join(self.folder, "socket")
        self.environment = {"SDL_AUDIODRIVER": "pulseaudio", "PULSE_SERVER": f"unix:{socket}"}
        variables = dict(os.environ, HOME=self.folder, XDG_CONFIG_HOME=self.folder, XDG_RUNTIME_DIR=self.folder,
                         **self.environment)
        variables.pop("DISPLAY", None)
        self.programs = []
        harness.opened.append(self)
        self.start(variables, "pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                   "--high-priority=no", "--realtime=no",
                   "-L", f"module-native-protocol-unix auth-anonymous=1 socket={socket}",
                   "-L", f"module-null-sink sink_name=ears rate={RATE} channels=2 format=s16le")
        harness.wait_for(lambda: os.path.exists(socket), "the sound server")
        with open(self.recording, "wb") as output:
            self.start(variables, "parec", "--device=ears.monitor", "--latency-msec=20",
                       "--format=s16le", f"--rate={RATE}", "--channels=2",
                       output=output)
        harness.wait_for(lambda: os.path.getsize(self.recording), "the recorder")

    def start(self, variables, *command, output=subprocess.DEVNULL):
        self.programs.append(subprocess.Popen(command, env=variables, stdin=subprocess.DEVNULL, stdout=output,
                                              stderr=subprocess.DEVNULL))

    def heard(self, begin=0):
        """The samples of the left speaker since this sample."""
        with open(self.recording, "rb") as file:
            file.seek(4 * begin)
            data = file.read()
        return array.array("h", data[:len(data) // 4 * 4])[0::2]

    def now(self):
        """The number of samples so far."""
        return os.path.getsize(self.recording) // 4

    def close(self):
        if not harness.take_out(self):
            return
        for program in reversed(self.programs):
            harness.stop(program)
        shutil.rmtree(self.folder, ignore_errors=True)
