# A daemon, a master and an agent for one test or one measurement, on a port, a socket and a device of their own; and what
# Net-SNMP's commands print of them, taken apart.
import collections
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time

OWN = "1.3.6.1.3.20650.1"
Value = collections.namedtuple("Value", "type value")


def until(condition):
    while not (value := condition()):
        time.sleep(0.05)
    return value


class Device:
    """A daemon, a master and an agent, each of which can be ended and started again."""

    def __init__(self, binaries, snmpd):
        self.binaries, self.snmpd = binaries, snmpd
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="agentx."))
        (self.path / "host").mkdir(mode=0o700)
        self.environment = {**os.environ, "RSVP_HOST_DIR": str(self.path / "host"), "MIBS": "", "MIBDIRS": "",
                            "SNMPCONFPATH": str(self.path), "SNMP_PERSISTENT_DIR": str(self.path / "state")}
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
            probe.bind(("127.0.0.1", 0))
            self.address = f"127.0.0.1:{probe.getsockname()[1]}"
        self.master_socket = f"unix:{self.path}/master"
        (self.path / "master.conf").write_text(
            f"agentaddress udp:{self.address}\nrwcommunity private 127.0.0.1\n"
            f"master agentx\nagentXSocket {self.master_socket}\n")
        self.running = {}

    def start(self, name, *words):
        with open(self.path / f"{name}.log", "ab") as log:
            self.running[name] = subprocess.Popen(words, env=self.environment, stdout=log, stderr=log,
                                                  stdin=subprocess.DEVNULL)

    def daemon(self, *words):
        self.start("daemon", self.binaries / "rsvpsimd", *words)
        until(lambda: self.rsvpctl("show", "counters").returncode == 0)

    def master(self):
        (self.path / "master").unlink(missing_ok=True)
        self.start("master", self.snmpd, "-f", "-Lo", "-C", "-c", self.path / "master.conf")
        until(lambda: (self.path / "master").exists())

    def agent(self, *words):
        self.start("agent", self.binaries / "rsvp-agentx", "--foreground", "--agentx-socket", self.master_socket, *words)
        until(lambda: self.get(f"{OWN}.1.1.0").type == "INTEGER")

    def stop(self, name, how=signal.SIGTERM):
        process = self.running.pop(name)
        process.send_signal(how)
        return process.wait()

    def end(self):
        for process in self.running.values():
            process.send_signal(signal.SIGCONT)
            process.kill()
            process.wait()
        shutil.rmtree(self.path)

    def log(self, name):
        return (self.path / f"{name}.log").read_text(errors="replace")

    def rsvpctl(self, *words):
        return subprocess.run([self.binaries / "rsvpctl", "--json", *words], env=self.environment, capture_output=True,
                              text=True)

    def show(self, what):
        return json.loads(self.rsvpctl("show", *what.split()).stdout)

    def rows(self, what):
        return self.show(what)["rows"]

    def snmp(self, command, *words, options=()):
        return subprocess.run([command, "-v2c", "-c", "private", "-r", "20", "-On", "-Ot", "-Ox", *options, self.address,
                               *words], env=self.environment, capture_output=True, text=True)

    def ask(self, command, *words, options=()):
        found = []
        for line in self.snmp(command, *words, options=options).stdout.splitlines():
            if line.startswith("."):
                oid, _, text = line.partition(" = ")
                kind, colon, value = text.partition(": ")
                found.append([oid[1:], kind if colon else "", value if colon else text])
            elif found:
                found[-1][2] += line
        return [(oid, Value(kind, value.replace(" ", "") if kind == "Hex-STRING" else value.strip('"')))
                for oid, kind, value in found]

    def get(self, oid):
        answer = self.ask("snmpget", oid)
        return answer[0][1] if answer else Value("", "")

    def walk(self, entry):
        return {oid: value for oid, value in self.ask("snmpbulkwalk", entry, options=["-Cr50"])
                if oid.startswith(entry + ".")}

    def caches(self):
        """The rows of the agent's own table, by the name of the table that they tell of."""
        rows = collections.defaultdict(dict)
        for oid, value in self.walk(f"{OWN}.2.1").items():
            column, row = oid.removeprefix(f"{OWN}.2.1.").split(".")
            rows[row][int(column)] = value.value
        return {bytes.fromhex(row[2]).decode(): row for row in rows.values()}

    def reads(self):
        return {name: int(row[6]) for name, row in self.caches().items()}

    def read_anew(self):
        """Waits until each table was read from begin to end after this call."""
        before = self.reads()
        until(lambda: all(done >= before[name] + 2 for name, done in self.reads().items()))

    def served(self):
        return {row[5] for row in self.caches().values()}
