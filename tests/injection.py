#!/usr/bin/env python3
# Every system call that the programs make fails, each in a run of its own: once, or from then on where that is how a
# machine fails. Whatever fails, a program neither crashes nor hangs, and it says "done" or "complete" only if a fresh
# process that nothing fails finds that it is so.
#
#     injection.py RSVPCTL RSVPSIMD SCENARIO_FOLDER [ROW...]
#
# Not made to fail: what the dynamic loader does before main, which ends in its own message; calls that cannot fail with
# the arguments that they get; and close, which gives its descriptor back whatever it says, while strace would keep it.
import collections
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PATIENCE = 60  # seconds that only a hang takes: an exchange gives up after 10
FIRST_OF_MAIN = "fcntl(0, F_GETFD"
CANNOT_FAIL = set("""arch_prctl close execve exit exit_group futex getegid geteuid getgid getpid getppid gettid getuid
    gettimeofday prctl rseq rt_sigaction rt_sigprocmask rt_sigreturn set_robust_list set_tid_address sigaltstack
    umask""".split())
# The system's brk answers a refusal with the break as it was, never with an error; 0 makes the C library ask for it.
ERRORS = {
    "accept4": ["EMFILE", "ECONNABORTED"], "access": ["EACCES"], "bind": ["ENOMEM"], "brk": ["retval=0"],
    "chdir": ["EACCES"], "clone": ["EAGAIN"], "clone3": ["EAGAIN"], "close_range": ["ENOSYS"],
    "connect": ["ECONNREFUSED", "EINTR"], "dup2": ["EBUSY"], "faccessat2": ["EACCES"], "fchmod": ["EPERM"],
    "fcntl": ["EMFILE"], "flock": ["ENOLCK", "EINTR"], "ftruncate": ["EIO"], "getdents64": ["EIO"],
    "getrandom": ["EAGAIN"], "ioctl": ["EIO"], "kill": ["EPERM"], "listen": ["EADDRINUSE"], "lseek": ["ESPIPE"],
    "mkdir": ["ENOSPC"], "mmap": ["ENOMEM"], "mprotect": ["ENOMEM"], "munmap": ["ENOMEM"],
    "newfstatat": ["EACCES", "ENOMEM"], "openat": ["EMFILE", "EACCES"], "pidfd_open": ["ENOSYS", "EMFILE"],
    "pidfd_send_signal": ["EPERM"], "pipe2": ["EMFILE"], "poll": ["EINTR", "ENOMEM"], "pread64": ["EIO"],
    "prlimit64": ["EPERM"], "read": ["EIO", "EINTR"], "recvfrom": ["ECONNRESET", "EINTR"], "rename": ["ENOSPC"],
    "sendto": ["EPIPE", "ENOBUFS", "EINTR"], "setsid": ["EPERM"], "setsockopt": ["ENOBUFS"],
    "signalfd4": ["EMFILE"], "socket": ["EMFILE"], "timerfd_create": ["EMFILE"], "unlink": ["EACCES"],
    "vfork": ["EAGAIN"], "wait4": ["EINTR", "ECHILD"], "write": ["ENOSPC", "EINTR"],
}
OTHER_ERRORS = ["ENOMEM"]
LASTING = {"EACCES", "EMFILE", "ENOLCK", "ENOSPC"}  # a machine without descriptors is so for the next call as well

rsvpctl, rsvpsimd, scenarios = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
Result = collections.namedtuple("Result", "exit out err")


class Device:
    """A host directory of its own, with the tables of a scenario and the files that commands read."""

    def __init__(self):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="rsvp-injection."))
        self.host = self.path / "host"
        self.host.mkdir(mode=0o700)
        rows = "[rows]\ntunnel = 3\npsb = 2\n"
        (self.host / "scenario.toml").write_text(rows + (scenarios / "p2mp.toml").read_text())
        (self.path / "lines").write_text("set interface 3\nset interface 4\nshow tunnels\n")
        key = {"keyWord0": 500, "keyWord1": "10.0.0.1", "keyWord2": "10.0.0.1", "keyShort0": 50, "keyShort1": 1,
               "keyShort2": 0, "keyShort3": 0, "keyWord3": 0, "keyWord4": 0, "keyWord5": 0, "keyWord6": 0}
        (self.path / "key.json").write_text(json.dumps(key))
        self.environment = dict(os.environ, RSVP_HOST_DIR=str(self.host), RSVP_SIMD=str(rsvpsimd), LC_ALL="C")

    def start(self, words):
        with open(self.path / "out", "wb") as out, open(self.path / "err", "wb") as err:
            return subprocess.Popen(words, cwd=self.path, env=self.environment, stdin=subprocess.DEVNULL, stdout=out,
                                    stderr=err)

    def result(self, process):
        try:
            status = process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            status = None
        return Result(status, *((self.path / name).read_text(errors="replace") for name in ("out", "err")))

    def ctl(self, line):
        return self.result(self.start([rsvpctl, *line.split()]))

    def traced(self, words, options):
        """Under strace, which stays apart (-D): the program is a child of this process and its status its own. What a
        child of it executes is another program, and is left alone (-b)."""
        return self.start(["strace", "-D", "-f", "-b", "execve", "-o", self.path / "trace", *options, *words])

    def trace(self):
        return (self.path / "trace").read_text(errors="replace").splitlines()

    def daemons(self):
        """The processes that serve this device, whatever its lock file says."""
        found = []
        for entry in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                words = entry.read_bytes().split(b"\0")
            except OSError:
                continue
            if words[0] == os.fsencode(rsvpsimd) and os.fsencode(self.host) in words:
                found.append(int(entry.parent.name))
        return found

    def remove(self):
        for pid in self.daemons():
            os.kill(pid, signal.SIGKILL)
        shutil.rmtree(self.path)


def rows_of(device, what):
    return json.loads(device.ctl(f"show {what} --json").out)["rows"]


def answers(device):
    return device.ctl("status").exit == 0 and len(rows_of(device, "tunnels")) == 3


def stopped(device):
    return not device.daemons() and device.ctl("status").exit == 5


def interfaces_are(*wanted):
    return lambda device: [row["ifWord1"] for row in rows_of(device, "interfaces")] == list(wanted)


def figures_are_written(device):
    file = device.path / "figures.prom"
    written = file.exists() and re.search(r"^rsvp_mor_daemon_up [01]\n(.*\n)+\Z", file.read_text(), re.M)
    file.unlink(missing_ok=True)  # the next run is to write it anew
    return written


def without_times(text):
    return re.sub(r'"time":"[^"]*"', "", text)


class Row:
    """A command; what brings the device to where it begins; and what is true outside if it says that it is done."""

    failures_last = True

    def __init__(self, line, setup, true=lambda device: True, shows=False):
        self.line, self.setup, self.true, self.shows = line, setup, true, shows

    def prepare(self, device):
        for line in self.setup:
            if device.ctl(line).exit != 0:
                return f"setup failed: {line}"
        return ""

    def run(self, device, options):
        return device.result(device.traced([rsvpctl, *self.line.split()], options))

    def wrong(self, device, result, clean, call):
        if result.exit == 0 and not self.true(device):
            return "exit status 0, but it is not done"
        if result.exit == 0 and self.shows and without_times(result.out) != without_times(clean.out):
            return "exit status 0, but the document is not the whole one"
        if "--json" in self.line and call not in ("write", "brk", "mmap"):
            try:
                documents = [json.loads(line) for line in result.out.splitlines()] if "watch" in self.line else [
                    json.loads(result.out)]
            except ValueError:
                return "no document"
            if result.exit != 0 and any(document.get("complete") for document in documents):
                return "complete, though it failed"
        return ""


class DaemonRow:
    """The daemon from its start to its end. It may refuse to start; once it serves, no single failure ends it, and who
    asks again gets the answer."""

    line = "rsvpsimd"
    failures_last = False  # without a descriptor from now on it can answer nobody

    def prepare(self, device):
        return ""

    def run(self, device, options):
        (device.host / "rsvpsimd.sock").unlink(missing_ok=True)
        daemon = device.traced([rsvpsimd, "--host-dir", device.host, "--scenario", device.host / "scenario.toml"],
                               options)
        said = device.path / "err"
        said.rename(device.path / "daemon")
        self.problem = ""
        begin = time.monotonic()
        while daemon.poll() is None and device.ctl("status").exit != 0:
            if time.monotonic() - begin > PATIENCE:
                self.problem = "it neither answers nor ends"
                break
        if daemon.poll() is None:
            self.problem = self.problem or self.ask(device)
            if daemon.poll() is not None:
                self.problem = "it ended while it served"
            daemon.terminate()
        status = device.result(daemon).exit
        return Result(status, "", (device.path / "daemon").read_text(errors="replace"))

    @staticmethod
    def ask(device):
        lines = {"set interface 3 --json": None, "show interfaces --json": 1, "show tunnels --json": 3}
        for line, count in lines.items():
            results = [device.ctl(line) for _ in range(2)]
            done = [json.loads(result.out) for result in results if result.exit == 0]
            if not done:
                return f"no answer to {line}"
            if any(document.get("count") != count for document in done):
                return f"not the whole answer to {line}"
        return ""

    def wrong(self, device, result, clean, call):
        silent = result.exit and not result.err and call != "write"
        return self.problem or ("it did not start, and says nothing of it" if silent else "")


SERVES = ["disable", "enable"]
ROWS = [
    Row("enable", ["disable"], answers),
    Row("disable", ["enable"], stopped),
    Row("status --json", ["enable"], answers),
    Row("set interface 3 --json", [*SERVES], interfaces_are(3)),
    Row("undo interface 3", [*SERVES, "set interface 3"], interfaces_are()),
    Row("show tunnels", ["enable"], shows=True),
    Row("show tunnels --json", ["enable"], shows=True),
    Row("show psb --detail", ["enable"], shows=True),
    Row("tree --key-file key.json --json", ["enable"], shows=True),
    Row("watch show tunnels --initial --json --interval 100ms --count 2", ["enable"], shows=True),
    Row("batch lines --json", [*SERVES], interfaces_are(3, 4), shows=True),
    Row("metrics --output figures.prom", ["enable"], figures_are_written),
    DaemonRow(),
]


def calls_of(trace):
    """The calls after the begin of main, and those of child processes: name, and number within the process."""
    calls = []
    numbers = collections.Counter()
    main = None
    in_main = False
    for line in trace:
        match = re.match(r"(\d+)\s+((\w+)\(.*)", line)
        if not match:
            continue
        pid, text, name = match.groups()
        main = main or pid
        in_main = in_main or text.startswith(FIRST_OF_MAIN)
        numbers[pid, name] += 1
        call = (name, numbers[pid, name])
        if in_main and name not in CANNOT_FAIL and call not in calls:
            calls.append(call)
    return calls


def ways_of(call, number, may_last):
    for error in ERRORS.get(call, OTHER_ERRORS):
        how = error if "=" in error else f"error={error}"
        yield f"{how}:when={number}"
        if may_last and error in LASTING:
            yield f"{how}:when={number}+"


def inject(row):
    device = Device()
    counts = collections.Counter()
    exits = collections.Counter()
    try:
        problem = row.prepare(device)
        clean = row.run(device, [])
        if problem or clean.exit != 0 or row.wrong(device, clean, clean, ""):
            sys.exit(f"{row.line}: fails without a failure: {problem} {clean}")
        for call, number in calls_of(device.trace()):
            for how in ways_of(call, number, row.failures_last):
                problem = row.prepare(device)
                result = row.run(device, ["-e", f"trace={call},execve", "-e", f"inject={call}:{how}"])
                if not any("(INJECTED)" in line for line in device.trace()):
                    continue  # another run, other times: this call was not made
                counts["injected"] += 1
                exits[result.exit] += 1
                if result.exit is None:
                    problem = "it hangs"
                elif result.exit < 0:
                    problem = f"it crashes: signal {-result.exit}"
                problem = problem or row.wrong(device, result, clean, call)
                if problem:
                    counts["violations"] += 1
                    where = next(line for line in device.trace() if "(INJECTED)" in line)
                    print(f"{row.line}: {call} {how}: {problem}\n    {where}\n    exit {result.exit}, "
                          f"{result.err.strip()!r}", file=sys.stderr, flush=True)
    finally:
        device.remove()
    statuses = ", ".join(f"{status}: {count}" for status, count in sorted(exits.items(), key=str))
    print(f"| `{row.line}` | {counts['injected']} | {statuses} | {counts['violations']} |", flush=True)
    return counts["violations"]


def main():
    wanted = sys.argv[4:]
    print("| Command | Injected | Exit statuses | Violations |\n|---|---|---|---|", flush=True)
    violations = sum(inject(row) for row in ROWS if not wanted or row.line.split()[0] in wanted)
    return 1 if violations else 0


sys.exit(main())
