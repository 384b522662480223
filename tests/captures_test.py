#!/usr/bin/env python3
"""Captures, from both ends. What a daemon keeps while it is asked everything that the library can ask, and while it is
attacked and misbehaves itself, is read by rsvpsimd --decode and by tshark with our dissector: every field of every frame
must be the same in both. The names that the dissector takes from the dictionary are held against those of rsvpctl. A
daemon that is killed leaves a capture that can be read, and continues it when it is started again.

    captures_test.py RSVPCTL RSVPSIMD MAKE_SEEDS DISSECTOR ROOT
"""
import collections
import datetime
import json
import math
import os
import pathlib
import random
import re
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import threading

rsvpctl, rsvpsimd, make_seeds, dissector, root = (pathlib.Path(word).resolve() for word in sys.argv[1:])
SECRET = b"a key that nobody may see"
KEY = SECRET.ljust(68, b"\0")
GET_FIRST, GET_NEXT = 4, 5
work = tempfile.TemporaryDirectory(prefix="rsvp-captures.")
os.environ.update(HOME=work.name, XDG_CONFIG_HOME=work.name, RSVP_SIMD=str(rsvpsimd), LC_ALL="C.UTF-8")


def run(*words, exits=(0,)):
    result = subprocess.run(words, capture_output=True, check=False)
    assert result.returncode in exits, f"{words}: exit {result.returncode}: {result.stderr.decode()}"
    return result


class Device:
    """A host directory whose daemon captures."""

    def __init__(self, name, scenario):
        self.path = pathlib.Path(work.name, name)
        self.path.mkdir(mode=0o700)
        self.file = self.path / "rsvpsimd.pcapng"
        (self.path / "scenario.toml").write_text("capture = true\n" + scenario)
        os.environ["RSVP_HOST_DIR"] = str(self.path)
        self.enable()

    def enable(self):
        run(rsvpctl, "enable")
        self.pid = int((self.path / "rsvpsimd.lock").read_text())

    def connect(self):
        client = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        client.connect(str(self.path / "lipc-0ae18000"))
        return client

    def ask(self, request):
        """The reply, or nothing if the daemon hangs up."""
        with self.connect() as client:
            client.send(request)
            client.shutdown(socket.SHUT_WR)  # a daemon that does not answer hangs up
            return client.recv(65536)

    def decode(self):
        return [json.loads(line) for line in run(rsvpsimd, "--decode", self.file, "--json").stdout.splitlines()]


def frame(msg_class, op, item=None, value=b""):
    body = b"" if item is None else struct.pack(">HH", item, len(value)) + value
    return struct.pack(">BBHI", msg_class, op, len(body), 0) + body


def seeds(folder):
    """The requests of the inputs of the daemon's fuzzer: a byte, then each after its length."""
    for path in sorted(folder.iterdir()):
        rest = path.read_bytes()[1:]
        while len(rest) >= 2:
            length = struct.unpack(">H", rest[:2])[0]
            yield rest[2:2 + length]
            rest = rest[2 + length:]


# ---- The two readers ------------------------------------------------------------------------------------------------

def dissect(file):
    """What tshark has to say of each packet: the values of each field, in their order."""
    result = run("tshark", "-X", f"lua_script:{dissector}", "-r", file, "-T", "json")
    for output in (result.stdout, result.stderr):
        found = re.search(rb"(?i)lua.{0,20}error", output)
        assert not found, output[found.start() - 200:found.start() + 500]
    packets = []

    def collect(pairs):
        for key, value in pairs:
            if isinstance(value, list):
                collect(value)
            elif key.startswith("rsvp_mor.") or key == "frame.time_epoch":
                packets[-1][key].append(value)

    for packet in json.loads(result.stdout, object_pairs_hook=lambda pairs: pairs):
        packets.append(collections.defaultdict(list))
        collect(packet)
    return packets


def expected(packet):
    """The same of a packet that --decode has printed."""
    fields = collections.defaultdict(list)

    def add(name, value):
        fields["rsvp_mor." + re.sub(r"\[(\d+)\]", r".\1", name)].append(value)

    def add_fields(layout, values):
        for name, value in values.items():
            for one in value if isinstance(value, list) else [value]:
                add(f"{layout}.{name}", one)

    for name in ("direction", "client", "process", "exchange", "masked", "class", "op", "bodyLength", "status", "problem"):
        if name in packet:
            add(name, packet[name])
    for item in packet.get("items", []):
        add("item", item["name"])
        add("item.type", item["type"])
        add("item.length", item["length"])
        if "fields" in item:
            add_fields(item["layout"], item["fields"])
        for name in ("count", "text", "bytes"):
            if item.get(name, "") != "":
                add("item." + name, item[name])
        for entry in item.get("entries", []):
            add_fields(item["layout"], entry)
    return fields


def same(wanted, found):
    if isinstance(wanted, bool):
        return found == str(int(wanted))
    if isinstance(wanted, int) or str(wanted).startswith("0x"):
        return int(found, 0) == int(str(wanted), 0)
    if isinstance(wanted, float):
        return math.isclose(float(found), wanted, rel_tol=1e-5, abs_tol=1e-37)
    return wanted == found or wanted == found.replace(":", "") or not wanted.isprintable() or "\ufffd" in wanted


EXPERT = "rsvp_mor.malformed"  # marks a frame that has a problem
DICTIONARY = (root / "host/dictionaries/rsvpsimd.toml").read_text()
NAMES = set(re.findall(r'\bname = "(\w+)"', DICTIONARY))
OF_ITEMS = {"name", *re.findall(r'^routeList\d = { name = "(\w+)"', DICTIONARY, re.M)}  # not of fields


def compare(device):
    """Every packet of a capture, by both readers. Returns what they say."""
    decoded, dissected = device.decode(), dissect(device.file)
    assert len(decoded) == len(dissected) > 0
    for packet, found in zip(decoded, dissected):
        wanted = expected(packet)
        seconds = datetime.datetime.fromisoformat(packet["time"][:26] + "+00:00").timestamp()
        assert math.isclose(float(found.pop("frame.time_epoch")[0]), seconds, abs_tol=1e-5)
        for name, values in wanted.items():
            assert len(values) == len(found[name]) and all(map(same, values, found[name])), \
                f"{device.path.name}: packet {packet['packet']}: {name}: {values} is {found[name]}"
        assert (EXPERT in found) == ("problem" in packet), packet
        more = [name for name in found.keys() - {*wanted, EXPERT} if name.rpartition(".")[2] not in NAMES]
        assert not more, f"packet {packet['packet']}: {more}"
    return decoded, dissected


# ---- The tests ------------------------------------------------------------------------------------------------------

def ask_everything(device, requests):
    """Each request, and the first rows of the tables that it reads: whichever first key the table takes."""
    for request in requests:
        device.ask(request)
        if request[0] == 3 and len(request) >= 12:
            item, length = struct.unpack(">HH", request[8:12])
            for key in (b"", bytes(length)):
                device.ask(frame(3, GET_FIRST, item, key))
            for start in (length * b"\0", length * b"\x7f"):
                device.ask(frame(3, GET_NEXT, item, start))


def test_every_kind_of_frame(requests, kinds):
    device = Device("all", "[rows]\n" + "".join(f"{kind} = 9\n" for kind in kinds))
    ask_everything(device, requests)
    device.ask(frame(0, 0, 3, KEY))
    decoded, dissected = compare(device)
    layouts = {item["layout"] for packet in decoded for item in packet.get("items", ()) if "layout" in item}
    listed = re.findall(r"^(\w+) \(\d+ bytes\)$", run(rsvpsimd, "--list-layouts").stdout.decode(), re.M)
    assert layouts >= set(listed) - {"none"}, set(listed) - layouts
    shown = {name for packet in dissected for name in packet}
    assert {name.rpartition(".")[2] for name in shown} >= NAMES - OF_ITEMS
    assert SECRET not in device.file.read_bytes()
    words = run(rsvpsimd, "--decode", device.file).stdout.decode().splitlines()
    assert len(words) == len(decoded)
    assert any(line.endswith("> global set authKey(3) 68 {authKey=********}") for line in words)
    run(rsvpctl, "disable")


def test_attack(requests, kinds):
    faults = [("cut-item", 0, GET_FIRST), ("wrong-body-length", 0, GET_NEXT), ("short", 9, 3), ("long", 7, 6),
              ("item-type", 7, 7)]
    device = Device("attack", "[rows]\n" + "".join(f"{kind} = 5\n" for kind in kinds) + "".join(
        f'[[fault]]\nkind = "{kind}"\nop = {op}\n' + (f"number = {number}\n" if number else "")
        for kind, number, op in faults))
    ask_everything(device, requests)
    chance = random.Random(17)
    for request in requests:
        device.ask(request[:chance.randrange(1, len(request) + 1)])
        for _ in range(3):
            spoilt = bytearray(request)
            for _ in range(chance.randrange(1, 4)):
                spoilt[chance.randrange(len(spoilt))] = chance.choice((0, 1, 4, 0x7f, 0xff, chance.randrange(256)))
            device.ask(bytes(spoilt))
        device.ask(chance.randbytes(chance.randrange(1, 600)))
    device.ask(frame(3, 3, 8) + bytes(20000))
    for cut in range(1, 12 + len(KEY)):  # wherever a key is cut off, and whatever its item claims
        device.ask(frame(0, 0, 3, KEY)[:cut])
        device.ask(frame(0, 0, 3, KEY).replace(struct.pack(">HH", 3, 68), struct.pack(">HH", 3, cut)))
    decoded, _ = compare(device)
    assert {packet["length"] for packet in decoded} >= {3, 9, 20012}
    assert sum("problem" in packet for packet in decoded) > 200
    content = device.file.read_bytes()
    assert all(SECRET[at:at + 8] not in content for at in range(len(SECRET) - 7))
    run(rsvpctl, "disable")

    # The file itself is cut off anywhere, or spoilt: what is before the place is printed, and the block is named.
    spoilt = device.path / "spoilt"
    for at in chance.sample(range(len(content)), 25):
        for bad in (content[:at], content[:at] + bytes([content[at] ^ 0xff]) + content[at + 1:]):
            spoilt.write_bytes(bad)
            result = run(rsvpsimd, "--decode", spoilt, "--json", exits=(0, 2))
            lines = result.stdout.decode().splitlines()
            packets = [json.loads(line) for line in lines]
            assert result.returncode == 0 or re.search(r"spoilt: block \d+ at byte \d+: ", result.stderr.decode())
            assert packets[:-1] == decoded[:len(packets) - 1] or result.returncode == 0


def test_kill():
    device = Device("kill", "")
    answered = 0

    def ask():
        nonlocal answered
        with device.connect() as client:
            while client.send(frame(3, 3, 6)) and client.recv(65536):
                answered += 1

    def until_killed():
        try:
            ask()
        except OSError:
            pass

    client = threading.Thread(target=until_killed)
    client.start()
    while device.file.stat().st_size < 200000:
        client.join(0.01)
    os.kill(device.pid, signal.SIGKILL)
    client.join()
    result = run(rsvpsimd, "--decode", device.file, "--json", exits=(0, 2))  # 2: killed inside a write
    assert result.stdout.count(b'"reply"') >= answered - 1
    device.enable()
    run(rsvpctl, "disable")
    decoded, _ = compare(device)
    assert decoded[-2]["items"][0]["name"] == "globalDisable" and len(decoded) > 2 * answered


def named_in(value, path=""):
    """The names of the dictionary in a row of rsvpctl, records inside included."""
    for name, inner in value.items():
        if name == "named":
            yield from ((path + key, one) for key, one in inner.items() if key in NAMES)
        elif isinstance(inner, dict):
            yield from named_in(inner, f"{path}{name}.")


def test_names():
    tables = {"tunnels": "tunnel", "neighbours": "nbr", "interfaces": "ifInfo", "interface-config": "ifConfig",
              "auth": "auth", "resources": "resource", "hops computed": "cHop", "hops actual": "arHop",
              "hops extended": "extArHop", "frr facility": "facility", "frr general": "general", "crlsp": "crlsp"}
    device = Device("names", (root / "host/scenarios/demo.toml").read_text())
    (device.path / "key").write_bytes(b"secret")
    run(rsvpctl, "set", "auth-lifetime", "77", "--peer", "10.0.0.9")
    compared = 0
    for show, layout in tables.items():
        before = len(device.decode())
        rows = json.loads(run(rsvpctl, "show", *show.split(), "--json").stdout)["rows"]
        packets = [packet for packet in dissect(device.file)[before:] if packet["rsvp_mor.direction"] == ["reply"]
                   and any(name.startswith(f"rsvp_mor.{layout}.") for name in packet)]
        assert len(packets) == len(rows) > 0, show
        for row, packet in zip(rows, packets):
            for name, value in named_in(row):
                found = packet[f"rsvp_mor.{layout}.{name}"]
                if name == "name":
                    found = packet["rsvp_mor.item.text"]
                value = ", ".join(value) if isinstance(value, list) else value
                assert len(found) == 1 and same(value, found[0]), f"{show}: {name}: {value} is {found}"
                compared += 1
    assert compared > 200, compared
    run(rsvpctl, "disable")


def main():
    folder = pathlib.Path(work.name, "seeds")
    run(make_seeds, folder)
    requests = [*seeds(folder / "fuzz_daemon"), *seeds(root / "fuzz/corpus/fuzz_daemon")]
    requests = [request for request in requests if request]
    unknown = run(rsvpsimd, "--check", "--rows", "unknown=1", exits=(2,)).stderr.decode()
    kinds = re.search(r"the kinds are (.*)", unknown)[1].replace(",", "").rstrip(".").split()
    try:
        test_every_kind_of_frame(requests, kinds)
        test_attack(requests, kinds)
        test_kill()
        test_names()
    finally:
        for lock in pathlib.Path(work.name).glob("*/rsvpsimd.lock"):
            os.environ["RSVP_HOST_DIR"] = str(lock.parent)
            run(rsvpctl, "disable", exits=(0, 1, 2, 3, 4, 5))
        work.cleanup()


main()
