#!/usr/bin/env python3
"""The figures of rsvpctl as those see them who read them: promtool, a node_exporter, and a Prometheus server that is set
up as examples/monitoring has it, on ports of this machine that are free. What the server answers is held against the
documents of the same tool, and docs/monitoring.md against the figures that there are.

    monitoring_test.py RSVPCTL RSVPSIMD ROOT COUNTERPARTS
"""
import http.server
import json
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import urllib.error
import urllib.parse
import urllib.request

rsvpctl, rsvpsimd, root, counterparts = (pathlib.Path(word).resolve() for word in sys.argv[1:5])
programs = counterparts / "usr/bin"
examples = root / "examples/monitoring"
work = pathlib.Path(tempfile.mkdtemp(prefix="rsvp-monitoring."))
started = []
HOSTILE = 'a"b\\c\nd\x07é'
TWICE = f"""
[[crlsp]]
key = {{ keyWord0 = "10.9.9.9", keyShort0 = 1, keyShort1 = 1 }}
name = {json.dumps(HOSTILE)}
[[crlsp]]
key = {{ keyWord0 = "10.9.9.9", keyShort0 = 1, keyShort1 = 2 }}
name = {json.dumps(HOSTILE)}
tailByte0 = 77
"""


def check(what, truth):
    if not truth:
        raise AssertionError(what)


def device(name, scenario):
    """Makes a device whose daemon has the scenario, and makes it that of the programs from now on."""
    folder = work / name
    folder.mkdir(mode=0o700)
    (folder / "scenario.toml").write_text(scenario)
    os.environ.update(RSVP_HOST_DIR=str(folder), RSVP_SIMD=str(rsvpsimd), LC_ALL="C")
    run("enable")


def run(*words, status=0, **how):
    result = subprocess.run([rsvpctl, *words], stdin=subprocess.DEVNULL, capture_output=True, text=True, **how)
    check(f"{words}: {result}", result.returncode == status)
    return result


def metrics(*words):
    return run("metrics", *words).stdout


def values(text):
    """Series of a document with their values."""
    series = (line.rpartition(" ") for line in text.splitlines() if not line.startswith("#"))
    return {name: float(value) for name, _, value in series}


def promtool(*words, text=None):
    result = subprocess.run([programs / "promtool", *words], input=text, capture_output=True, text=True)
    check(f"promtool {words}: {result.stdout}{result.stderr}", result.returncode == 0 and not result.stderr)


def rows(*words):
    return json.loads(run("show", *words, "--json").stdout)["rows"]


def await_value(what, ask):
    """Asks until there is an answer, while the programs that give it live."""
    while not (value := ask()):
        check(f"a program ended before there was {what}", all(one.poll() is None for one in started))
        time.sleep(0.1)
    return value


def serve(name, *words):
    """Starts a server on a free port and gives its address, which its log tells."""
    log = work / f"{name}.log"
    with open(log, "wb") as file:
        started.append(subprocess.Popen([programs / name, *words, "--web.listen-address=127.0.0.1:0"], cwd=work,
                                        stdout=file, stderr=file))
    found = await_value(f"an address of {name}", lambda: re.search(r'"Listening on" address=(\S+)', log.read_text()))
    return found[1]


class Page(http.server.BaseHTTPRequestHandler):
    """Serves a document of the other format."""
    document = b""

    def do_GET(self):
        self.send_response(200)
        self.send_header("Content-Type", "application/openmetrics-text; version=1.0.0; charset=utf-8")
        self.end_headers()
        self.wfile.write(self.document)

    def log_message(self, *_):
        pass


def examples_are_in_order():
    promtool("check", "config", str(examples / "prometheus.yml"))
    promtool("test", "rules", str(examples / "rsvp_mor.rules.test.yml"))
    units = work / "units"
    units.mkdir()
    for name in ("rsvp-mor-metrics.service", "rsvp-mor-metrics.timer"):
        text = (examples / name).read_text()
        # The program and its page are not installed here.
        text = re.sub("ExecStart=/usr/bin/rsvpctl metrics ", f"ExecStart={rsvpctl} metrics ", text)
        (units / name).write_text(re.sub("^Documentation=.*\n", "", text, flags=re.M))
    result = subprocess.run(["systemd-analyze", "verify", *units.iterdir()], capture_output=True, text=True)
    check(f"systemd-analyze: {result}", result.returncode == 0 and not result.stderr)


def page_tells_of_every_figure():
    page = (root / "docs/monitoring.md").read_text()
    told = {row[0]: row[1:] for row in re.findall(r"^\| `(rsvp_mor_\w+)` \| (\w+) \| (.*?) ?\|", page, re.M)}
    text = metrics("--rows", "--tables", "tunnels,frr facility,crlsp,interfaces", "--format", "prometheus")
    tables = [name.replace(" ", "_") for name in ("global", "tunnels", "frr facility", "crlsp", "interfaces")]
    used = set()
    for name, kind in re.findall(r"^# TYPE (\S+) (\S+)", text, re.M):
        table = "" if name in told else next(one for one in tables if name.startswith(f"rsvp_mor_{one}"))
        end = "_total" if kind == "counter" else "_info" if name.endswith("_info") else ""
        rest = "" if name == f"rsvp_mor_{table}" else end if end == "_info" else "_NAME" + end
        row = f"rsvp_mor_TABLE{rest}" if table else name
        check(f"docs/monitoring.md tells of {name} as {told.get(row)}", row in told and told[row][0] == kind)
        used.add(row)
        if not table:
            series = re.search(rf"^{name}(\{{.*\}})? ", text, re.M)[1] or ""
            labels = re.findall(r'(\w+)="', series)
            check(f"{name} has the labels {labels}, not {told[row][1]}", re.findall(r"`(\w+)`", told[row][1]) == labels)
    check(f"docs/monitoring.md tells of {told.keys() - used}, which nothing is", used == told.keys())


def documents_are_taken():
    for words in ([], ["--rows"], ["--dictionary", "none"]):
        promtool("check", "metrics", text=metrics("--format", "prometheus", *words))
    check("the usual format is OpenMetrics", metrics().endswith("# EOF\n"))
    unnamed = run("metrics", "--dictionary", "none")
    check(f"no dictionary: {unnamed}", unnamed.stderr.count("no dictionary") == 1)
    check("words without a dictionary", not re.search("rsvp_mor_(tunnels|global|interfaces)", unnamed.stdout))


def rows_are_bounded():
    text = metrics("--rows", "--rows-limit", "2", "--tables", "crlsp,interfaces")
    found = values(text)
    check(text, found['rsvp_mor_table_rows{table="crlsp"}'] == len(rows("crlsp")) == 6)
    check(text, found['rsvp_mor_rows_left_out{table="crlsp"}'] == 4)
    check(text, found['rsvp_mor_rows_left_out{table="interfaces"}'] == 1)
    check(text, sum(name.startswith("rsvp_mor_crlsp_info") for name in found) == 2)
    check(text, 'state="other"' in text and '"77"' not in text)


def file_is_replaced():
    folder = work / "replaced"
    folder.mkdir()
    file = folder / "rsvp_mor.prom"
    os.umask(0o077)
    run("metrics", "--output", file)
    before = file.stat()
    check(f"{before}", before.st_mode & 0o777 == 0o644)
    old = open(file, encoding="utf-8")
    run("metrics", "--output", file)
    check("the file was written into, not replaced", os.fstat(old.fileno()).st_nlink == 0 and old.read())
    text = file.read_text()
    result = run("metrics", "--output", file, status=7,
                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000)))
    check(f"{result}", str(file) in result.stderr)
    check("a failed run changed the file, or left one", file.read_text() == text and list(folder.iterdir()) == [file])
    run("metrics", "--output", folder, status=2)
    check("a folder is gone", list(folder.iterdir()) == [file])


def half_a_table_is_none():
    device("broken", (root / "host/scenarios/demo.toml").read_text() +
           '[[fault]]\nkind = "stuck"\nop = 5\nitem = 101\n')
    result = run("metrics", "--tables", "tunnels,crlsp")
    found = values(result.stdout)
    check(f"{result}", found['rsvp_mor_read_success{table="tunnels"}'] == 0 and "tunnels: " in result.stderr)
    check(f"{result}", found['rsvp_mor_read_success{table="crlsp"}'] == found["rsvp_mor_daemon_up"] == 1)
    check(f"{result}", "rsvp_mor_tunnels" not in result.stdout and 'table_rows{table="tunnels"}' not in result.stdout)
    run("disable")


def time_is_bounded():
    device("silent", '[[fault]]\nkind = "silent"\nitem = 101\nop = 4\n')
    result = run("metrics", "--timeout", "200ms", "--tables", "tunnels,psb")
    found = values(result.stdout)
    read = [found[f'rsvp_mor_read_success{{table="{name}"}}'] for name in ("tunnels", "psb")]
    check(f"{result}", read == [0, 0] and re.search("time (is|was) over", result.stderr))
    run("disable")


def server_takes_them():
    """One server with the example's rules, but short times; what it answers is what the tool's documents say."""
    texts = work / "texts"
    texts.mkdir()
    file = texts / "rsvp_mor.prom"
    run("metrics", "--rows", "--output", file)
    page = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Page)
    Page.document = metrics("--rows").encode()
    threading.Thread(target=page.serve_forever, daemon=True).start()
    exporter = serve("prometheus-node-exporter", "--collector.disable-defaults", "--collector.textfile",
                     f"--collector.textfile.directory={texts}")
    config = (examples / "prometheus.yml").read_text().replace("30s", "1s")
    config = re.sub(r"targets: .*", f'targets: ["{exporter}"]', config)
    config += f'  - job_name: openmetrics\n    static_configs: [{{ targets: ["127.0.0.1:{page.server_port}"] }}]\n'
    (work / "prometheus.yml").write_text(config)
    rules = (examples / "rsvp_mor.rules.yml").read_text()
    (work / "rsvp_mor.rules.yml").write_text(re.sub(r"^( *for:) .*", r"\1 0s", rules, flags=re.M))
    server = serve("prometheus", "--config.file=prometheus.yml", "--storage.tsdb.path=data")

    def get(path):
        """What the server gives; nothing while it does not serve yet."""
        try:
            with urllib.request.urlopen(f"http://{server}/{path}") as answer:
                return answer.read()
        except urllib.error.HTTPError as error:
            check(f"{path}: {error}", error.code == 503)
            return b""

    def ask(what, **arguments):
        return json.loads(get(f"api/v1/{what}?{urllib.parse.urlencode(arguments)}"))["data"]

    def query(text):
        return ask("query", query=text)["result"]

    def value(text):
        return float(await_value(text, lambda: query(text))[0]["value"][1])

    await_value("a server that is ready", lambda: get("-/ready"))
    for job in ("routers", "openmetrics"):
        await_value(f"an answer for {job}", lambda: query(f'up{{job="{job}"}}'))
        problem = [one["lastError"] for one in ask("targets")["activeTargets"] if one["labels"]["job"] == job]
        check(f"{job}: {problem}", problem == [""])
    check("the text file has a fault", value("node_textfile_scrape_error") == 0)
    count = 'count({{job="{}", __name__=~"rsvp_mor_.*"}})'
    check("the formats differ", value(count.format("routers")) == value(count.format("openmetrics")))

    job = 'job="routers"'
    tunnels = [one["named"] for one in rows("tunnels")]
    heads = [one for one in tunnels if (one["role"], one["operStatus"]) == ("head", "up")]
    check("tunnels", heads and value(f'sum(rsvp_mor_tunnels{{{job},role="head",oper_status="up"}})') == len(heads))
    for one in tunnels:
        key = f'{job},index="{one["index"]}",exported_instance="{one["instance"]}",ingress="{one["ingress"]}"'
        check(f"{one}", value(f"rsvp_mor_tunnels_up_time_seconds{{{key}}}") == one["upTime"])
        check(f"{one}", value(f"rsvp_mor_tunnels_bandwidth_bytes_per_second{{{key}}}") == one["bandwidth"] * 125)
    twice = [one["metric"]["name"] for one in query(f'rsvp_mor_crlsp_info{{{job},end_point="10.9.9.9"}}')]
    check(f"{twice}", twice == ['a"b\\c\\x0ad\\x07é'] * 2)

    run("disable")
    run("metrics", "--output", file)
    await_value("word of the daemon's end", lambda: query(f"rsvp_mor_daemon_up{{{job}}} == 0"))
    await_value("an alert", lambda: any(alert["labels"]["alertname"] == "RsvpDaemonDown" and alert["state"] == "firing"
                                        for alert in ask("alerts")["alerts"]))


def main():
    for name in ("promtool", "prometheus", "prometheus-node-exporter"):
        check(f"{programs / name} is missing: ./build.sh test unpacks it", (programs / name).exists())
    try:
        examples_are_in_order()
        half_a_table_is_none()
        time_is_bounded()
        device("device", (root / "host/scenarios/demo.toml").read_text() + TWICE)
        page_tells_of_every_figure()
        documents_are_taken()
        rows_are_bounded()
        file_is_replaced()
        server_takes_them()
    except BaseException:
        for log in sorted(work.glob("*.log")):
            print(f"---- {log.name}\n{log.read_text()}", file=sys.stderr)
        raise
    finally:
        for one in started:
            one.terminate()
            one.wait()
        for folder in work.glob("*/rsvpsimd.lock"):
            subprocess.run([rsvpctl, "disable"], env=dict(os.environ, RSVP_HOST_DIR=str(folder.parent)),
                           stdout=subprocess.DEVNULL, check=False)
        shutil.rmtree(work)


main()
