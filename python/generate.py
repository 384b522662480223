#!/usr/bin/env python3
"""Makes the parts of the package that repeat what stands elsewhere: the declarations come from the public headers, all
else from the document that describe.cpp prints. Only the names of the tables' methods are decided here.

    generate.py --compiler CC --include DIR --description FILE --dictionary FILE --project FILE --package DIR
                --version VERSION OUTPUT
"""
from __future__ import annotations

import argparse
import json
import re
import shutil
import subprocess
import sys
import tomllib
from pathlib import Path
from typing import Any

import cffi
from pycparser import c_ast, c_parser

# What a walk and a read of one row are called in Python. A table without a line has the words of its show.
METHODS = {
    "interfaces": ("interfaces", "interface"),
    "interface-config": ("interface_configs", "interface_config"),
    "neighbours": ("neighbours", None),
    "auth": ("auth_entries", None),
    "resources": ("resources", "resource"),
    "tunnels": ("tunnels", "tunnel"),
    "ingress tunnels": ("ingress_tunnels", None),
    "frr facility": ("frr_facilities", "frr_facility"),
    "frr general": ("frr_generals", "frr_general"),
    "hops computed": ("computed_hops", "computed_hop"),
    "hops actual": ("actual_hops", "actual_hop"),
    "hops extended": ("extended_hops", "extended_hop"),
    "psb": ("path_states", None),
    "rsb": ("reservation_states", None),
    "phsb": ("previous_hop_states", None),
    "crlsp": ("cr_lsps", None),
    "p2mp psb": ("p2mp_path_states", "p2mp_path_state"),
    "p2mp rsb": ("p2mp_reservation_states", "p2mp_reservation_state"),
    "p2mp crlsp": ("p2mp_cr_lsps", "p2mp_cr_lsp"),
    "global": (None, "global_info"),
    "debug": (None, "debug_switches"),
}

MARKER = re.compile(r'# \d+ "([^"]*)"')
DEFINE = re.compile(r"#define (\w+) (0x[0-9a-fA-F]+|\d+)u?$")
COMMENT = re.compile(r"/\*\*((?:(?!\*/).)*)\*/\s*(?:struct )?[\w ]+?\**(\w+)\(", re.DOTALL)
GENERATED = '"""Made by generate.py: do not edit."""\n'


def declarations(compiler: str, include: Path) -> tuple[str, dict[str, int]]:
    """What the public headers declare, without the system's, and their constants."""
    command = [compiler, "-E", "-dD", "-x", "c", "-std=c11", "-I", str(include), "-D__extension__=",
               str(include / "rsvp_mor.h")]
    text = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
    lines: list[str] = []
    constants: dict[str, int] = {}
    ours = False
    for line in text.splitlines():
        if marker := MARKER.match(line):
            ours = marker[1].startswith(str(include))
        elif not ours or line.startswith(("#pragma", "#undef")):
            continue
        elif line.startswith("#define"):
            if constant := DEFINE.match(line):
                constants[constant[1]] = int(constant[2], 0)
        else:
            lines.append(line)
    return "\n".join(line for line in lines if line.strip()) + "\n", constants


def parameters(text: str) -> dict[str, list[tuple[str, str]]]:
    """The parameters of each function: name, and the type in Python."""
    kinds = "".join(f"typedef int {name}_t;\n" for name in ("int32", "uint8", "uint16", "uint32", "uint64"))
    found = {}
    for node in c_parser.CParser().parse(kinds + text).ext:
        if not isinstance(node, c_ast.Decl) or not isinstance(node.type, c_ast.FuncDecl):
            continue
        given = node.type.args.params if node.type.args else []
        found[node.name] = [(one.name, "Pointer" if isinstance(one.type, c_ast.PtrDecl) else "int")
                            for one in given if one.name]
    return found


def comments(include: Path) -> dict[str, str]:
    """The comment above each function."""
    found = {}
    for header in sorted(include.glob("rsvp_mor/*.h")):
        for text, name in COMMENT.findall(header.read_text()):
            lines = [line.strip().removeprefix("*").removeprefix(" ") for line in text.strip().splitlines()]
            found[name] = "\n".join(f"    {line}".rstrip() for line in lines).replace("\\", "\\\\").strip()
    return found


def keys_of_tables(description: dict[str, Any], text: str) -> str:
    """Structures for the keys that no public record is: the library takes their fields one by one."""
    declared = set(re.findall(r"\} (\w+);", text))
    out = ""
    for record in description["records"]:
        if record["name"] in declared:
            continue
        members = "".join(f"    {field['record']} {field['name']};\n" if field["record"] else
                          f"    uint{8 * field['width']}_t {field['name']};\n" for field in record["fields"])
        out += f"typedef struct {record['name']} {{\n{members}}} {record['name']};\n"
    return out


def class_name(record: str) -> str:
    return record.removeprefix("RSVP_MOR_")


def annotation(field: dict[str, Any], is_always: bool) -> str:
    kinds = {"number": "int", "netNumber": "int", "address": "IPv4Address", "netAddress": "IPv4Address",
             "bytes": "bytes", "rate": "float", "float": "float", "secret": "Secret", "text": "str | None"}
    kind = class_name(field["record"]) if field["record"] else kinds[field["kind"]]
    if field["count"] or field["kind"] in ("list", "chain"):
        kind = f"tuple[{kind}, ...]"
    return kind if is_always else f"{kind} | None"


def records_module(description: dict[str, Any]) -> str:
    out = GENERATED + "from __future__ import annotations\n\nfrom ipaddress import IPv4Address\n\n"
    out += "from rsvp_mor.record import Record\nfrom rsvp_mor.value import Secret\n"
    for record in description["records"]:
        out += f'\n\nclass {class_name(record["name"])}(Record):\n    """{record["name"]}"""\n\n    __slots__ = ()\n'
        members: dict[str, list[dict[str, Any]]] = {}
        for field in record["fields"]:
            members.setdefault(field["name"], []).append(field)
        for name, fields in members.items():
            is_always = len(fields) == 2 or fields[0]["when"] is None
            out += f"    {name}: {annotation(fields[0], is_always)}\n"
    return out


def tables_module(description: dict[str, Any]) -> str:
    out = GENERATED + "from __future__ import annotations\n\nfrom abc import ABC, abstractmethod\n"
    out += "from collections.abc import Iterator\nfrom typing import Any\n\n"
    out += "from rsvp_mor import records\nfrom rsvp_mor.call import Key\n\n\nclass Tables(ABC):\n"
    out += '    """A method for each table and each record."""\n\n    __slots__ = ()\n\n    @abstractmethod\n'
    out += "    def walk(self, table: str, after: Key | None = None) -> Iterator[Any]: ...\n\n    @abstractmethod\n"
    out += "    def read(self, table: str, key: Key | None = None) -> Any: ...\n"
    for table in description["tables"]:
        words = re.sub(r"\W", "_", table["name"])
        many, one = METHODS.get(table["name"], (words, f"{words}_row"))
        row = "records." + class_name(table["row"])
        if table["next"]:
            out += f"\n    def {many}(self, after: Key | None = None) -> Iterator[{row}]:\n"
            out += f'        """The rows of `{table["name"]}`; from the row after the key in `after`, if it is given."""\n'
            out += f'        return self.walk("{table["name"]}", after)\n'
        if table["get"]:
            key = class_name(table["key"]) if table["key"] else ""
            text = f"The row of `{table['name']}` with this key ({key})." if key else f"The record `{table['name']}`."
            out += f"\n    def {one}(self{', key: Key' if key else ''}) -> {row}:\n"
            out += f'        """{text}"""\n        found: {row} = self.read("{table["name"]}"{", key" if key else ""})\n'
            out += "        return found\n"
    return out


def settings_module(description: dict[str, Any]) -> str:
    out = GENERATED + "from __future__ import annotations\n\nfrom rsvp_mor.commands import Address, setting\n"
    settings: dict[str, list[dict[str, Any]]] = {}
    for row in description["settings"]:
        settings.setdefault(row["name"], []).append(row)
    for name, rows in settings.items():
        first = rows[0]
        levels = {row["level"] for row in rows}
        given = {level: f"{level}: {kind}" + ("" if levels == {level} else " | None = None")
                 for level, kind in (("interface", "int"), ("peer", "Address")) if level in levels}
        number = (first["argument"] or "").replace("-", "_")
        value = ["key: bytes"] if first["isKey"] else [f"{number}: int"] if number else []
        if first["isPair"]:
            value.append("second: int")
        # What has a default comes last.
        given_all = sorted([*value, *given.values()], key=lambda one: "=" in one)
        text = first["help"] + (f"; 0 to {first['most']}" if number else "") + (
            f", in {first['unit']}" if first["unit"] else "") + (
            "; up to 68 bytes, padded with zeros" if first["isKey"] else "")
        for verb in ("set", "undo"):
            if verb == "undo" and all(row["undo"] == "none" for row in rows):
                continue
            names = [one.split(":")[0] for one in given_all]
            passed = "".join(f", {one}={one}" for one in names)
            arguments = f"*, {', '.join(given_all)}" if given_all else ""
            out += f"\n\ndef {verb}_{name.replace('-', '_')}({arguments}) -> None:\n"
            out += f'    """{text if verb == "set" else f"Takes set_{name} back".replace("-", "_")}."""\n'
            out += f'    setting("{name}", {verb == "undo"}{passed})\n'
    return out


def raw_module(functions: dict[str, list[tuple[str, str]]], constants: dict[str, int], results: dict[str, str],
               texts: dict[str, str]) -> str:
    out = '"""The functions and constants of the library under their own names, with arguments that are checked."""\n'
    out += '# Made by generate.py: do not edit.\nfrom __future__ import annotations\n\n'
    out += "from rsvp_mor.library import Pointer, call, ffi, new, status_of\n\n"
    names = sorted([*functions, *constants, "ffi", "new"])
    out += "__all__ = [\n" + "".join(f'    "{name}",\n' for name in names) + "]\n\n"
    out += "".join(f"{name} = {value:#x}\n" for name, value in constants.items())
    for name, given in functions.items():
        arguments = ", ".join(f"{one}: {kind}" for one, kind in given)
        passed = "".join(f", {one}={one}" for one, _ in given)
        out += f'\n\ndef {name}({arguments}) -> {results[name]}:\n    """{texts[name]}\n    """\n'
        out += f'    call("{name}"{passed})\n' if results[name] == "None" else f'    return status_of("{name}"{passed})\n'
    return out


def installed_as(output: Path, project: dict[str, Any]) -> None:
    """What tells the package's version, and pytest where the plug-in is."""
    folder = output / f"{project['name'].replace('-', '_')}-{project['version']}.dist-info"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "METADATA").write_text(f"Metadata-Version: 2.1\nName: {project['name']}\n"
                                     f"Version: {project['version']}\nSummary: {project['description']}\n")
    (folder / "entry_points.txt").write_text("".join(
        f"[{group}]\n" + "".join(f"{name} = {place}\n" for name, place in entries.items())
        for group, entries in project["entry-points"].items()))


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("output", type=Path)
    parser.add_argument("--compiler", required=True)
    for name in ("include", "description", "dictionary", "project", "package"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    parser.add_argument("--version", required=True)
    options = parser.parse_args()
    project = tomllib.loads(options.project.read_text())["project"]
    if project["version"] != options.version:
        sys.exit(f"{options.project} has version {project['version']}, and the tree is {options.version}")
    description = json.loads(options.description.read_text())
    text, constants = declarations(options.compiler, options.include)
    functions = parameters(text)
    text += keys_of_tables(description, text)
    texts = comments(options.include)
    if missing := functions.keys() - texts.keys():
        sys.exit(f"no comment was found for {', '.join(sorted(missing))}")
    results = {name: "None" if re.search(rf"\bvoid {name}\(", text) else "int" for name in functions}
    package = options.output / "rsvp_mor"
    shutil.copytree(options.package, package, dirs_exist_ok=True,
                    ignore=shutil.ignore_patterns("__pycache__", "*.pyc"))
    options.description.with_name("declarations.h").write_text(text)
    ffi = cffi.FFI()
    ffi.cdef(text)
    ffi.set_source("rsvp_mor.declarations", None)
    ffi.emit_python_code(str(package / "declarations.py"))
    description["constants"] = constants
    description["parameters"] = {name: [one for one, _ in given] for name, given in functions.items()}
    (package / "description.json").write_text(json.dumps(description, indent=1) + "\n")
    (package / "records.py").write_text(records_module(description))
    (package / "tables.py").write_text(tables_module(description))
    (package / "settings.py").write_text(settings_module(description))
    (package / "raw.py").write_text(raw_module(functions, constants, results, texts))
    shutil.copyfile(options.dictionary, package / "rsvpsimd.toml")
    installed_as(options.output, project)


main()
