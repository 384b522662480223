#!/usr/bin/env python3
# The subagent as its users meet it: Net-SNMP's own commands ask a real snmpd, which runs for this test alone, on a port and
# a socket of its own. What they get is held against what rsvpctl prints of the same daemon; nothing is taken from the
# agent's own word.
#
#     agentx_test.py BIN_FOLDER SNMPD SOURCE_FOLDER [TEST...]
import collections
import itertools
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys
import unittest

from support.snmp_device import OWN, Device, Value, until

binaries, snmpd, source = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
scenarios = source / "host/scenarios"
own_module = source / "tools/agentx/RSVP-MOR-MIB.txt"
base_modules = source / "tests/support/smi"
MOST = 2**31 - 1
MPLS, RSVP, GENERAL, FACILITY = (
    "1.3.6.1.2.1.10.166.3", "1.3.6.1.2.1.51.1", "1.3.6.1.2.1.202.1", "1.3.6.1.2.1.204.1")


# ---- Values as Net-SNMP's commands print them -------------------------------------------------------------------------

def integer(number):
    return None if number is None else Value("INTEGER", str(number))


def gauge(number):
    return Value("Gauge32", str(number))


def counter(number):
    return Value("Counter32", str(number))


def ticks(seconds):
    return Value("", str(seconds * 100))


def octets(raw):
    return Value("Hex-STRING", raw.hex().upper())


def truth(value):
    return integer(1 if value else 2)


def dotted(text):
    return socket.inet_aton(text)


def number_of(address):
    return struct.unpack(">I", dotted(address))[0]


def bits_per_second(rate):
    return integer(min(int(rate * 8), MOST))


def bits(words, names):
    value = sum(0x80 >> names.index(word) for word in words)
    return octets(bytes([value]))


def oid_index(*numbers):
    return ".".join(str(number) for number in numbers)


# ---- What the tables must hold, from the JSON of rsvpctl --------------------------------------------------------------

STATES = ["", "up", "down", "testing", "unknown", "dormant", "notPresent", "lowerLayerDown"]
ROLES = ["", "head", "transit", "tail"]
KINDS = ["unknown", "ipv4", "ipv6", "asnumber", "unnum", "lspid"]
SESSION_FLAGS = ["unsupported", "localProtectionDesired", "labelRecordingDesired", "sestyleDesired",
                 "bandwidthProtectionDesired", "nodeProtectionDesired"]
ROUTE_FLAGS = ["unsupported", "localProtectionAvailable", "localProtectionInUse", "bandwidthProtection", "nodeProtection"]


def word(words, text):
    return integer(words.index(text)) if text in words else None


def tunnels(device):
    paths = {(row["session"]["tunnelId"], row["sender"]["lspId"], row["sender"]["senderAddress"],
              row["session"]["tunnelEndpoint"]): row["sessionAttr"] for row in device.rows("psb")}
    names = {(row["key"]["named"]["tunnelId"], row["key"]["named"]["lspId"], row["key"]["named"]["sender"],
              row["key"]["named"]["endPoint"]): row["name"] for row in device.rows("crlsp")}
    for row in device.rows("tunnels"):
        named = row["named"]
        name = (named["index"], named["instance"], named["ingress"], named["egress"])
        attribute = paths.get(name, {"kind": 0})
        form = attribute.get("affinityForm") or attribute.get("shortForm") if attribute["kind"] else None
        affinities = attribute.get("affinityForm") if attribute["kind"] == 1 else None
        setup, holding = (named["setupPriority"], named["holdingPriority"]) if form is None else (
            form["setupPriority"], form["holdingPriority"])
        resource = f".{MPLS}.2.6.1.2.{named['resource']}" if named["resource"] else ".0.0"
        yield oid_index(*name[:2], *map(number_of, name[2:])), {
            5: octets(names[name].encode()) if name in names else None,
            9: integer(6), 10: word(ROLES, named["role"]), 12: integer(2),
            13: integer(setup) if setup <= 7 else None, 14: integer(holding) if holding <= 7 else None,
            15: form and octets(b"\x80" if form["flags"] & 1 else b"\0"),
            16: truth(named["protectionInUse"]), 17: Value("OID", resource),
            22: gauge(named["actualHops"]), 23: gauge(named["computedHops"]),
            24: affinities and gauge(affinities["includeAny"]), 25: affinities and gauge(affinities["includeAll"]),
            26: affinities and gauge(affinities["excludeAny"]),
            27: ticks(named["totalUpTime"]), 28: ticks(named["upTime"]), 30: counter(named["pathChanges"]),
            31: ticks(named["lastPathChange"]), 33: counter(named["stateTransitions"]),
            34: word(STATES[:4], named["adminStatus"]), 35: word(STATES, named["operStatus"]),
            36: integer(1), 37: integer(2)}


def resources(device):
    for row in device.rows("resources"):
        columns = dict(enumerate(map(gauge, (row["named"][name] for name in (
            "maxRate", "meanRate", "maxBurst", "meanBurst", "excessBurst"))), 2))
        yield oid_index(row["resourceIndex"]), {**columns, 9: integer(1), 10: integer(2)}


def actual_hops(device):
    for row in device.rows("hops actual"):
        yield oid_index(row["hopListIndex"], row["hopIndex"]), {
            3: word(KINDS, row["named"]["addressKind"]), 4: octets(dotted(row["named"]["address"]))}


def computed_hops(device):
    for row in device.rows("hops computed"):
        prefix = row["named"]["prefixLength"]
        yield oid_index(row["hopListIndex"], row["hopIndex"]), {
            3: word(KINDS, row["named"]["addressKind"]), 4: octets(dotted(row["named"]["address"])),
            5: gauge(prefix) if prefix <= 2040 else None, 9: word(["", "strict", "loose"], row["named"]["hopType"])}


def constraints(device):
    for row in device.rows("frr general"):
        named = row["named"]
        small = [gauge(named[name]) if named[name] <= most else None for name, most in (
            ("setupPriority", 7), ("holdingPriority", 7), ("hopLimit", 255))]
        affinities = [gauge(int(named[name], 0)) for name in ("includeAny", "includeAll", "excludeAny")]
        yield oid_index(named["interface"], named["tunnel"], named["instance"]), {
            4: word(["", "linkProtection", "nodeProtection"], named["protection"]), 5: small[0], 6: small[1],
            7: affinities[0], 8: affinities[1], 9: affinities[2], 10: small[2], 11: gauge(named["bandwidth"]),
            12: integer(2), 13: integer(1)}


def extended_hops(device):
    for row in device.rows("hops extended"):
        named = row["named"]
        yield oid_index(named["listIndex"], named["index"]), {
            1: bits([one for one in named["sessionFlags"] if one in SESSION_FLAGS], SESSION_FLAGS),
            2: bits([one for one in named["routeFlags"] if one in ROUTE_FLAGS], ROUTE_FLAGS)}


def facility(device):
    for row in device.rows("frr facility"):
        named = row["named"]
        yield oid_index(named["protectedInterface"], named["protectingTunnel"], named["tunnel"], named["instance"],
                        named["ingress"], named["egress"]), {
            7: gauge(named["protectingTunnels"]), 8: gauge(named["protectedLsps"]), 9: gauge(named["protectedTunnels"]),
            10: word(["", "active", "ready", "partial"], named["status"]), 11: gauge(named["reservedBandwidth"])}


def interfaces(device):
    settings = device.show("global")["record"]["named"]
    known = collections.Counter(row["named"]["interface"] for row in device.rows("neighbours"))
    for row in device.rows("interfaces"):
        yield oid_index(row["named"]["interface"]), {
            3: gauge(known[row["named"]["interface"]]), 5: integer(settings["keepMultiplier"]), 7: integer(settings["refreshInterval"] * 100),
            9: truth(row["named"]["rsvp"]), 11: integer(1)}


def neighbours(device):
    for row in device.rows("neighbours"):
        yield oid_index(row["named"]["interface"], 4, row["named"]["address"]), {3: integer(1)}


PLAIN_TABLES = {
    f"{MPLS}.2.2.1": tunnels, f"{MPLS}.2.6.1": resources, f"{MPLS}.2.7.1": actual_hops, f"{MPLS}.2.8.1": computed_hops,
    f"{GENERAL}.3.1": constraints, f"{GENERAL}.4.1": extended_hops, f"{FACILITY}.7.1": facility,
    f"{RSVP}.6.1": interfaces, f"{RSVP}.7.1": neighbours}


# Rows of RSVP-MIB have numbers of the agent's own making. So they are compared without them, and beside the row of their
# session.
def session_columns(session):
    return {2: integer(7), 3: octets(dotted(session["tunnelEndpoint"])), 4: integer(32),
            6: octets(struct.pack(">H", session["tunnelId"]))}


def sessions(device):
    counts = collections.defaultdict(lambda: [0, 0, 0])
    for place, show in enumerate(("psb", "rsb", "phsb")):
        for row in device.rows(show):
            session = row["session"]
            counts[session["tunnelEndpoint"], session["tunnelId"], session["extendedTunnelId"]][place] += 1
    for (end, tunnel, _), (senders, receivers, requests) in counts.items():
        yield {**session_columns({"tunnelEndpoint": end, "tunnelId": tunnel}), 7: gauge(senders), 8: gauge(receivers),
               9: gauge(requests)}


def signed(number):
    return integer(number - 2**32 if number > MOST else number)


def parameter(parameters, number):
    for one in parameters:
        kind, flags = bytes.fromhex(one["paramHeader"])
        if kind != number or flags & 0x80:
            continue
        value = one["paramValue"]
        if number == 6:
            return bits_per_second(struct.unpack(">f", struct.pack(">I", value))[0])
        if number in (4, 10):
            return integer(value) if value <= 65535 else None
        if number == 8:
            return integer(value) if value <= MOST else None
        return integer(min(value, MOST))
    return None


def senders(device):
    for row in device.rows("psb"):
        session, sender, tspec, adspec = row["session"], row["sender"], row["tspec"], row["adspec"]
        general, guaranteed, load = (bytes.fromhex(adspec[name + "Header"]) for name in ("general", "guaranteed", "load"))
        told = general[0] == 1
        common = [adspec[name] for name in ("hopCount", "pathBandwidth", "minPathLatency", "composedMtu")]
        numbers = (4, 6, 8, 10)
        yield {
            2: integer(7), 3: octets(dotted(session["tunnelEndpoint"])), 4: octets(dotted(sender["senderAddress"])),
            5: integer(32), 6: integer(32), 8: octets(struct.pack(">H", session["tunnelId"])),
            9: octets(struct.pack(">H", sender["lspId"])), 11: octets(dotted(row["hop"]["hopAddress"])),
            12: signed(row["hop"]["logicalIfHandle"]), 13: integer(row["ifRef"]["ifRefNumber"]),
            14: bits_per_second(tspec["tokenRate"]), 15: bits_per_second(tspec["peakRate"]),
            16: integer(min(int(tspec["bucketSize"]), MOST)), 17: integer(tspec["minPolicedUnit"]),
            18: integer(tspec["maxPacketSize"]), 23: truth(general[1] & 0x80) if told else None,
            **{column: parameter([one], number) for column, number, one in zip(range(24, 28), numbers, common)},
            28: truth(guaranteed[0] == 2) if told else None, 29: truth(guaranteed[1] & 0x80) if told else None,
            **{column: parameter(adspec["guaranteedParams"], column + 103) for column in range(30, 34)},
            **{column: parameter(adspec["guaranteedOverrides"], number) for column, number in zip(range(34, 38), numbers)},
            38: truth(load[0] == 5) if told else None, 39: truth(load[1] & 0x80) if told else None,
            **{column: parameter(adspec["loadOverrides"], number) for column, number in zip(range(40, 44), numbers)},
            44: integer(1)}


def reservation(row, sender, flow):
    service = bytes.fromhex(flow["serviceHeader"])[0]
    told = bytes.fromhex(flow["rspecParamHeader"])[0] == 130
    return {
        2: integer(7), 3: octets(dotted(row["session"]["tunnelEndpoint"])), 4: octets(dotted(sender["senderAddress"])),
        5: integer(32), 6: integer(32), 8: octets(struct.pack(">H", row["session"]["tunnelId"])),
        9: octets(struct.pack(">H", sender["lspId"])), 10: octets(dotted(row["hop"]["hopAddress"])),
        11: signed(row["hop"]["logicalIfHandle"]), 12: integer(row["ifRef"]["ifRefNumber"]),
        13: integer(service) if service in (2, 5) else None, 14: bits_per_second(flow["tokenRate"]),
        15: bits_per_second(flow["peakRate"]), 16: integer(min(int(flow["bucketSize"]), MOST)),
        17: integer(flow["minPolicedUnit"]), 18: integer(flow["maxPacketSize"]),
        19: bits_per_second(flow["rspecRate"]) if told else None, 20: integer(flow["slackTerm"]) if told else None,
        23: truth(row["named"]["style"] in ("SE", "WF")), 24: truth(row["named"]["style"] in ("SE", "FF")), 28: integer(1)}


def reservations(device):
    return (reservation(row, row["filter"], row["flowSpec"]) for row in device.rows("rsb"))


def requests(device):
    return (reservation(row, one["filter"], flow["flowSpec"]) for row in device.rows("phsb") for flow in row["fdList"]
            for one in flow["fsList"])


def key(oid):
    return [int(part) for part in oid.split(".")]


class Agent(unittest.TestCase):
    def setUp(self):
        self.device = Device(binaries, snmpd)
        self.addCleanup(self.device.end)

    def start(self, *daemon, agent=("--interval", "200ms")):
        self.device.daemon(*daemon)
        self.device.master()
        self.device.agent(*agent)

    def check_tables(self):
        device = self.device
        for entry, rows in PLAIN_TABLES.items():
            expected = {f"{entry}.{column}.{index}": value for index, columns in rows(device)
                        for column, value in columns.items() if value is not None}
            self.assertTrue(expected, entry)
            self.assertEqual(device.walk(entry), expected)
        numbered = {}
        for table, rows in (1, sessions), (2, senders), (4, reservations), (5, requests):
            entry = f"{RSVP}.{table}.1"
            numbered[table] = collections.defaultdict(dict)
            for oid, value in device.walk(entry).items():
                column, index = oid.removeprefix(entry + ".").split(".", 1)
                numbered[table][index][int(column)] = value
            expected = [{column: value for column, value in row.items() if value is not None} for row in rows(device)]
            self.assertTrue(expected, entry)
            self.assertEqual(sorted(map(repr, (sorted(row.items()) for row in numbered[table].values()))),
                             sorted(map(repr, (sorted(row.items()) for row in expected))))
        for table in 2, 4, 5:
            for index, row in numbered[table].items():
                session = numbered[1][index.split(".")[0]]
                self.assertEqual((row[3], row[8]), (session[3], session[6]))

    def test_every_value_is_that_of_the_daemon(self):
        kinds = ("tunnel", "resource", "chop", "arhop", "exthop", "psb", "rsb", "phsb", "crlsp", "nbr")
        demo, network = ("--scenario", scenarios / "demo.toml"), ("--generate", "network", "--serve")
        made = (*demo, *itertools.chain(*(("--rows", f"{kind}=60") for kind in kinds)))
        for daemon in demo, made, (*network, "--tunnels", "120"), (*network, "--seed", "2", "--routers", "5"):
            with self.subTest(daemon=daemon):
                self.setUp()
                self.start(*daemon)
                self.device.read_anew()
                self.check_tables()
                counters = self.device.show("counters")["record"]
                rows = self.device.rows("tunnels")
                self.assertEqual(self.device.walk(f"{MPLS}.1"), {
                    f"{MPLS}.1.1.0": gauge(len(rows)),
                    f"{MPLS}.1.2.0": gauge(sum(row["named"]["operStatus"] == "up" for row in rows))})
                self.assertEqual([self.device.get(f"{FACILITY}.{number}.0") for number in (1, 2, 3, 4)], [
                    integer(counters["frrInterfaces"]), gauge(counters["activeFrrInterfaces"]),
                    Value("", "No Such Object available on this agent at this OID"), gauge(counters["activeBypassTunnels"])])

    def test_a_row_keeps_its_number_as_long_as_it_lives(self):
        device, scenario = self.device, self.device.path / "network.toml"
        whole = subprocess.run([binaries / "rsvpsimd", "--generate", "network"], capture_output=True, text=True).stdout
        before, block, after = whole.partition("[[psb]]\n")
        first, rest = after.split("[[", 1)
        def numbers(blocks):
            scenario.write_text(blocks)
            device.running["daemon"].send_signal(signal.SIGHUP)
            until(lambda: len(device.rows("psb")) == blocks.count(block))
            device.read_anew()
            rows = collections.defaultdict(dict)
            for oid, value in device.walk(f"{RSVP}.2.1").items():
                column, index = oid.removeprefix(f"{RSVP}.2.1.").split(".", 1)
                rows[index][int(column)] = value
            return {index: (row[3], row[4], row[8], row[9]) for index, row in rows.items()}
        scenario.write_text(whole)
        self.start("--scenario", scenario)
        all_rows = numbers(whole)
        without_one = numbers(before + "[[" + rest)
        [gone] = all_rows.keys() - without_one.keys()
        self.assertEqual({**without_one, gone: all_rows[gone]}, all_rows)
        again = numbers(whole)
        self.assertEqual(sorted(map(repr, again.values())), sorted(map(repr, all_rows.values())))
        self.assertEqual(again.items() & without_one.items(), without_one.items())
        self.assertNotIn(gone, again)

    def test_order_and_ends(self):
        self.start("--scenario", scenarios / "demo.toml", "--rows", "tunnel=10000")
        device, entry = self.device, f"{MPLS}.2.2.1"
        until(lambda: device.caches()["mplsTunnelTable"][3] == "10004")
        oids = [key(oid) for oid, _ in device.ask("snmpbulkwalk", f"{entry}.10", options=["-Cr100"])]
        self.assertEqual(len(oids), 10004)
        self.assertEqual(oids, sorted(oids))
        # One by one and many at once give the same, from within a table, between two, and at a name that is none.
        for start in entry, f"{entry}.36", f"{entry}.10.5", f"{entry}.10.5.2.7", f"{RSVP}.6.1.11.2", f"{GENERAL}.3":
            steps, oid = [], start
            for _ in range(12):
                [(oid, value)] = device.ask("snmpgetnext", oid)
                steps.append((oid, value))
            self.assertEqual(device.ask("snmpbulkget", start, options=["-Cn0", "-Cr12"]), steps)
            self.assertLess(key(start), key(steps[0][0]))
        beyond = device.ask("snmpgetnext", f"{OWN}.2.1.8.99999")[0][0]
        self.assertFalse(beyond.startswith(OWN + "."))
        instance, thing = "No Such Instance currently exists at this OID", "No Such Object available on this agent at this OID"
        for oid, answer in (f"{entry}.10.1.2.3.4", instance), (f"{entry}.10.5", instance), (f"{entry}.99.1", thing), \
                (f"{entry}.1.1.1.1.1", thing), (f"{MPLS}.1.1.1", instance):
            self.assertEqual(device.get(oid), Value("", answer), oid)

    def test_sets(self):
        self.start("--scenario", scenarios / "demo.toml")
        device, enabled = self.device, f"{RSVP}.6.1.9"
        until(lambda: device.get(f"{enabled}.2") == truth(True))
        on_device = lambda: sorted(row["named"]["interface"] for row in device.rows("interfaces") if row["named"]["rsvp"])
        refused = lambda *words: device.snmp("snmpset", *map(str, words)).stderr.partition("Reason: ")[2].split()[0]
        for words, reason in (((f"{enabled}.2", "i", 3), "wrongValue"), ((f"{enabled}.2", "s", "on"), "wrongType"),
                              ((f"{enabled}.77", "i", 2), "noCreation"), ((f"{RSVP}.6.1.7.2", "i", 1), "notWritable"),
                              ((f"{MPLS}.2.2.1.5.100.1.167772161.167772164", "s", "x"), "notWritable"),
                              ((f"{enabled}.2", "i", 2, f"{RSVP}.6.1.7.2", "i", 1), "notWritable")):
            self.assertEqual(refused(*words), reason, words)
        self.assertEqual(on_device(), [1, 2, 3])
        self.assertEqual(device.ask("snmpset", f"{enabled}.2", "i", "2"), [(f"{enabled}.2", truth(False))])
        self.assertEqual(on_device(), [1, 3])
        self.assertNotEqual(device.get(f"{enabled}.2"), truth(True))
        self.assertEqual(len(device.ask("snmpset", f"{enabled}.2", "i", "1", f"{enabled}.3", "i", "2")), 2)
        self.assertEqual(on_device(), [1, 2])
        # The second of two commands fails, so the first is taken back.
        device.stop("daemon")
        device.daemon("--scenario", scenarios / "demo.toml", "--fault", "status=0x60010008,class=1,item=18,after=1,once")
        until(lambda: device.get(f"{enabled}.3") == truth(True))
        self.assertEqual(refused(f"{enabled}.2", "i", 2, f"{enabled}.3", "i", 2), "commitFailed")
        self.assertEqual(on_device(), [1, 2, 3])
        # A daemon that hangs: what it makes of the command nobody knows, but the agent goes on and reads it in the end.
        daemon = device.running["daemon"]
        daemon.send_signal(signal.SIGSTOP)
        def is_answered_during_a_set():
            with subprocess.Popen(["snmpset", "-v2c", "-c", "private", "-r0", "-t60", device.address, f"{enabled}.2", "i",
                                   "2"], env=device.environment, stderr=subprocess.PIPE, text=True) as setting:
                self.assertEqual(device.get(f"{OWN}.1.2.0"), ticks(60))
                was_during = setting.poll() is None
                self.assertIn("undoFailed", setting.stderr.read())
            return was_during
        until(is_answered_during_a_set)
        daemon.send_signal(signal.SIGCONT)
        device.read_anew()
        self.assertEqual(device.get(f"{enabled}.2"), truth(2 in on_device()))
        device.stop("daemon", signal.SIGKILL)
        self.assertEqual(refused(f"{enabled}.2", "i", 1), "commitFailed")

    def test_neighbours_are_not_counted_while_they_cannot_be_read(self):
        self.start("--scenario", scenarios / "demo.toml", "--fault", "close,class=3,item=3")
        until(lambda: self.device.caches()["rsvpIfTable"][5] == "1")
        self.assertEqual(self.device.walk(f"{RSVP}.6.1.3"), {})
        self.assertEqual(self.device.caches()["rsvpNbrTable"][5], "2")

    def test_the_daemon_goes_and_comes_back(self):
        max_age = ("--interval", "100ms", "--max-age", "3s")
        self.start("--scenario", scenarios / "demo.toml", agent=max_age)
        device, name = self.device, f"{MPLS}.2.2.1.36"
        until(lambda: device.served() == {"1"})
        rows = device.walk(name)
        daemon = device.running["daemon"]
        # A daemon that hangs: the last whole copy, then none; and the agent goes on to answer.
        daemon.send_signal(signal.SIGSTOP)
        until(lambda: not (now := device.walk(name)) or self.assertEqual(now, rows))
        self.assertEqual(device.caches()["mplsTunnelTable"][5], "2")
        self.assertGreater(int(device.caches()["mplsTunnelTable"][4]), 300)
        daemon.send_signal(signal.SIGCONT)
        until(lambda: device.walk(name) == rows)
        # One that dies, and another in its place.
        device.stop("daemon", signal.SIGKILL)
        until(lambda: device.served() == {"2"})
        self.assertEqual(device.get(f"{OWN}.1.1.0"), truth(False))
        self.assertIn("RSVP", bytes.fromhex(device.get(f"{OWN}.1.5.0").value).decode())
        device.daemon("--scenario", scenarios / "demo.toml")
        until(lambda: device.served() == {"1"})
        self.assertEqual(device.walk(name), rows)
        self.assertEqual(device.get(f"{OWN}.1.1.0"), truth(True))

    def test_a_broken_walk_replaces_nothing(self):
        # Ends in order at first; from then on the walk breaks at a row in its middle.
        faults = {"silent": "item=101,op=5", "close": "item=101,op=5", "cut-item": "item=101,op=5",
                  "stuck": "item=101,op=5", "status=0x60010099": "item=101,op=5"}
        for kind, where in faults.items():
            with self.subTest(fault=kind):
                self.setUp()
                device = self.device
                self.start("--scenario", scenarios / "demo.toml", agent=("--interval", "100ms", "--max-age", "1h"))
                until(lambda: device.served() == {"1"})
                rows = device.walk(f"{MPLS}.2.2.1")
                device.stop("daemon")
                device.daemon("--scenario", scenarios / "demo.toml", "--fault", f"{kind},{where}")
                failed = lambda: int(device.caches()["mplsTunnelTable"][7])
                seen = failed()
                if kind != "silent":
                    until(lambda: failed() > seen + 2)
                self.assertEqual(device.walk(f"{MPLS}.2.2.1"), rows)
                self.assertEqual(device.stop("agent"), 0)  # also while a worker waits

    def test_the_master_goes_and_comes_back(self):
        self.start("--scenario", scenarios / "demo.toml", "--rows", "tunnel=2000")
        device = self.device
        until(lambda: device.caches()["mplsTunnelTable"][3] == "2004")
        with subprocess.Popen(["snmpwalk", "-v2c", "-c", "private", "-r", "0", device.address, f"{MPLS}.2.2.1"],
                              env=device.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as walk:
            walk.stdout.readline()
            device.stop("master", signal.SIGKILL)
            walk.stdout.read()
        self.assertNotEqual(walk.returncode, 0)
        device.master()
        until(lambda: device.get(f"{MPLS}.1.1.0") == gauge(2004))
        self.assertEqual(device.stop("agent"), 0)
        # An agent that is there first waits for its master.
        device.stop("master")
        device.start("agent", binaries / "rsvp-agentx", "--foreground", "--agentx-socket", device.master_socket)
        device.master()
        until(lambda: device.get(f"{MPLS}.1.1.0") == gauge(2004))

    def test_many_reads_leave_nothing_behind(self):
        # The address sanitizer would keep what was given back, and let it look like growth.
        self.device.environment["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1"
        self.start("--scenario", scenarios / "demo.toml", agent=("--interval", "1ms"))
        device = self.device
        agent = f"/proc/{device.running['agent'].pid}"
        def used():
            status = dict(line.split(":", 1) for line in pathlib.Path(agent + "/status").read_text().splitlines())
            return int(status["VmRSS"].split()[0]), len(os.listdir(agent + "/fd")), int(status["Threads"])
        rounds = int(os.environ.get("AGENTX_ROUNDS", "300"))
        reads = lambda: min(device.reads().values())
        until(lambda: reads() > rounds // 3)
        memory, descriptors, threads = used()
        until(lambda: reads() > rounds)
        now = used()
        self.assertLess(now[0], memory * 1.1 + 1024)
        self.assertLessEqual(now[1], descriptors + 3)  # sessions of the moment
        self.assertEqual(now[2], threads)

    def test_mappings_that_cannot_be(self):
        head = 'dictionary = 1\ndaemon = "d"\nend-of-table = [0x40010005]\n[record.RSVP_MOR_ReplyTunnel]\n'
        cases = [
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelNoSuch" }', "no table that is served has an object"),
            ('tunnelWord4 = { name = "a", mib = "rsvpIfEnabled", as = "bool" }', "cannot be taken from this place"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelTotalUpTime" }', "wants a number in one of the units"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelTotalUpTime", unit = "B" }', "wants a number in one of the"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelPathChanges" }', "counter = true"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelLocalProtectInUse" }', "the form 'bool'"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelName" }', "the form 'text'"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelRole", as = { 1 = "middle" } }', "has no word 'middle'"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelOwner" }', "it is always 6"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelSetupPrio", as = "address" }', "without a unit of measure"),
            ('tunnelWord4 = { name = "a", mib = "mplsTunnelIfIndex" }\ntunnelWord5 = { name = "b", mib = "mplsTunnelIfIndex" }',
             "is another field of"),
        ]
        file = self.device.path / "wrong.toml"
        for lines, problem in cases:
            file.write_text(head + lines + "\n")
            ended = subprocess.run([binaries / "rsvp-agentx", "--check", "--dictionary", file], env=self.device.environment,
                                   capture_output=True, text=True)
            self.assertEqual(ended.returncode, 2, lines)
            self.assertIn(f"{file}:{len((head + lines).splitlines())}: mib: ", ended.stderr)
            self.assertIn(problem, ended.stderr)

    def test_the_check(self):
        agent = lambda: subprocess.run([binaries / "rsvp-agentx", "--check"], env=self.device.environment,
                                       capture_output=True, text=True)
        self.assertEqual(agent().returncode, 1)
        self.device.daemon("--scenario", scenarios / "demo.toml")
        ended = agent()
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        self.assertIn("mplsTunnelTable (1.3.6.1.2.1.10.166.3.2.2.1): rows 4,", ended.stdout)

    def snmptable(self, module, table, *folders):
        device = self.device
        environment = {**device.environment, "MIBS": module, "MIBDIRS": ":".join(map(str, (base_modules, *folders)))}
        printed = subprocess.run(["snmptable", "-v2c", "-c", "private", "-Ci", "-Cf", ";", "-Ot", "-Ox", device.address,
                                  f"{module}::{table}"], env=environment, capture_output=True, text=True)
        header, *rows = [line.split(";") for line in printed.stdout.splitlines() if ";" in line] or [printed.stderr]
        return header, rows

    def test_the_own_module(self):
        lint = subprocess.run(["smilint", "-l", "6", "-s", own_module], capture_output=True, text=True,
                              env={**os.environ, "SMIPATH": str(base_modules)})
        self.assertEqual((lint.returncode, lint.stdout + lint.stderr), (0, ""))
        self.start("--scenario", scenarios / "demo.toml")
        until(lambda: self.device.served() == {"1"})
        header, rows = self.snmptable("RSVP-MOR-MIB", "rsvpMorCacheTable", own_module.parent)
        self.assertEqual(header, ["index"] + ["rsvpMorCache" + name for name in (
            "Name", "Rows", "Age", "Served", "ReadsDone", "ReadsFailed", "LastError")])
        self.assertEqual([row[4] for row in rows], ["true"] * 15)

    def test_the_unit(self):
        unit = self.device.path / "rsvp-agentx.service"
        text = (source / "tools/agentx/rsvp-agentx.service.in").read_text()
        unit.write_text(text.replace("@CMAKE_INSTALL_FULL_BINDIR@", str(binaries)))
        for words in ("verify", "--man=no"), ("security", "--offline=true", "--threshold=20", "--no-pager"):
            ended = subprocess.run(["systemd-analyze", *words, unit], capture_output=True, text=True)
            self.assertEqual(ended.returncode, 0, ended.stdout + ended.stderr)

    def test_whole_tables(self):
        # The standard modules are not free to be shipped, so a module is made of the numbers that snmptable needs.
        self.start("--scenario", scenarios / "demo.toml")
        device = self.device
        device.read_anew()
        tables = [*PLAIN_TABLES, *(f"{RSVP}.{number}.1" for number in (1, 2, 4, 5))]
        walks = {entry: device.walk(entry) for entry in tables}
        lines = ["TABLES-MIB DEFINITIONS ::= BEGIN", "IMPORTS OBJECT-TYPE, Counter32, Gauge32, TimeTicks FROM SNMPv2-SMI;"]
        define = lambda name, syntax, rest, place, access="not-accessible": lines.append(
            f'{name} OBJECT-TYPE SYNTAX {syntax} MAX-ACCESS {access} STATUS current DESCRIPTION "-" {rest} ::= {{ {place} }}')
        for number, (entry, walk) in enumerate(walks.items()):
            define(f"t{number}", f"SEQUENCE OF E{number}", "", "iso " + " ".join(entry.split(".")[1:-1]))
            define(f"e{number}", f"E{number}", f"INDEX {{ IMPLIED i{number} }}", f"t{number} 1")
            define(f"i{number}", "OBJECT IDENTIFIER", "", f"e{number} 999")
            syntaxes = {int(oid.removeprefix(entry + ".").split(".")[0]): value.type for oid, value in walk.items()}
            for column, kind in syntaxes.items():
                syntax = {"OID": "OBJECT IDENTIFIER", "Hex-STRING": "OCTET STRING", "": "TimeTicks"}.get(kind, kind)
                define(f"c{number}-{column}", syntax, "", f"e{number} {column}", "read-only")
        (device.path / "modules").mkdir()
        (device.path / "modules/TABLES-MIB").write_text("\n".join([*lines, "END", ""]))
        for number, (entry, walk) in enumerate(walks.items()):
            header, rows = self.snmptable("TABLES-MIB", f"t{number}", device.path / "modules")
            columns = [int(name.partition("-")[2]) for name in header[1:]]
            cells = {(column, row): value.value for oid, value in walk.items()
                     for column, row in [oid.removeprefix(entry + ".").split(".", 1)]}
            indexes = sorted({row for _, row in cells}, key=key)
            self.assertEqual(len(rows), len(indexes), entry)
            for index, row in zip(indexes, rows):
                for column, cell in zip(columns, row[1:]):
                    expected = cells.get((str(column), index), "?")
                    if walk.get(f"{entry}.{column}.{index}", Value("", "")).type != "OID":
                        self.assertEqual(cell.replace(" ", "").strip('"'), expected, (entry, column, index))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
