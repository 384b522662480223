"""Dictionaries: this package reads them by itself, and must take and refuse what every other program does."""
from __future__ import annotations

import re
import subprocess
from pathlib import Path

import pytest

from conftest import ROOT, RSVPCTL
from rsvp_mor import Dictionary, DictionaryError, dictionary

HEAD = 'dictionary = 1\ndaemon = "d"\nend-of-table = [1]\n'
TUNNEL = HEAD + "[record.RSVP_MOR_ReplyTunnel]\n"
FILES = [
    "", "dictionary = 2", 'dictionary = 1\ndaemon = ""', 'dictionary = 1\ndaemon = "d"\nend-of-table = []',
    'dictionary = 1\ndaemon = "d"\nend-of-table = 5', 'dictionary = 1\ndaemon = "d"\nend-of-table = [1, -1]',
    HEAD, HEAD + "[other]", HEAD + "[record.RSVP_MOR_Nothing]", HEAD + "[table.nothing]", HEAD + "record = 1",
    *(TUNNEL + line for line in (
        'tunnelWord99 = { name = "x" }', 'tunnelWord0 = "x"', 'tunnelWord0 = { unit = "s" }',
        'tunnelWord0 = { name = "two words" }', 'tunnelWord0 = { name = "x", colour = 1 }',
        'tunnelWord0 = { name = "x" }\ntunnelWord1 = { name = "x" }', 'tunnelWord0 = { name = "tunnelRole" }',
        'tunnelRole = { name = "tunnelRole" }', 'tunnelWord0 = { name = "x", mib = "a-b" }',
        'tunnelWord0 = { name = "x", counter = 1 }', 'tunnelWord0 = { name = "x", unit = "h" }',
        'tunnelWord0 = { name = "x", as = "address", unit = "s" }', 'tunnelWord0 = { name = "x", as = "ipv6" }',
        'tunnelShort0 = { name = "x", as = "address" }', 'tunnelWord0 = { name = "x", as = "bytes" }',
        'tunnelTail = { name = "x", as = "text" }', 'tunnelTail = { parts = [{ at = 1, width = 2, name = "x" }] }',
        'tunnelTail = { parts = [{ name = "x" }] }', 'tunnelWord0 = { parts = [{ at = 0, name = "x" }] }',
        'tunnelRole = { name = "x", as = { 1 = "up", 0x01 = "on" } }', 'tunnelRole = { name = "x", as = { a = "up" } }',
        'tunnelRole = { name = "x", as = { 1 = "up", 2 = "up" } }', 'tunnelRole = { name = "x", as = { 256 = "up" } }',
        'tunnelRole = { name = "x", as = { bits = { 8 = "up" } } }')),
    HEAD + '[record.RSVP_MOR_GlobalInfo]\nauthKey = { name = "x" }',
    HEAD + '[record.RSVP_MOR_GlobalInfo]\nauthKey = { parts = [{ at = 0, width = 4, name = "x", as = "bytes" }] }',
    HEAD + '[record.RSVP_MOR_GlobalInfo.counters1]\ncountsA = { name = "x" }',
    HEAD + '[record.RSVP_MOR_ReplyPsb]\nrouteList4 = { name = "halfC" }',
    HEAD + '[table.tunnels]\nnext-key = ["tunnelShort0"]', HEAD + '[table.tunnels]\nnext-key = ["nothing"]',
    HEAD + '[table.tunnels]\nnext-key = [0, 0, 0, 0, 0]', HEAD + '[table.tunnels]\nnext-key = [0, "tunnelWord2"]',
    HEAD + '[table.tunnels]\ncolumns = ["owner"]', HEAD + '[table.tunnels]\ncolumns = ["tunnelRole", "tunnelRole"]',
    HEAD + '[table."p2mp psb"]\nnext-key = ["pathState.session"]',
    HEAD + '[table."p2mp psb"]\nnext-key = ["pathState.session.p2mpId", 0, "pathState.session.extendedTunnelId"]',
]


def test_files_are_taken_and_refused_as_by_rsvpctl(tmp_path: Path) -> None:
    taken = 0
    for text in FILES:
        file = tmp_path / "d.toml"
        file.write_text(text)
        checked = subprocess.run([RSVPCTL, "dictionary", "check", file], stderr=subprocess.PIPE, text=True)
        try:
            Dictionary.read(file)
            mine = ""
            taken += 1
        except DictionaryError as error:
            mine = str(error)
        assert (checked.returncode != 0) == bool(mine), text
        # The same words, but that this reader knows no lines and lists keys in another order.
        if mine:
            said = re.search(r"d\.toml:\d+: (.*?)(, only .*)?$", checked.stderr, re.MULTILINE)
            assert said is not None, checked.stderr
            assert mine.removeprefix(f"{file}: ").split(", only")[0] == said[1], text
    assert 5 <= taken < len(FILES) / 4


def test_where_a_dictionary_is_found(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    device = tmp_path / "dictionary.toml"
    chosen = tmp_path / "chosen.toml"
    for file in (device, chosen):
        file.write_text(HEAD.replace('"d"', f'"{file.stem}"'))
    monkeypatch.setenv("RSVP_HOST_DIR", str(tmp_path))
    assert Dictionary.find().daemon == "dictionary"
    monkeypatch.setenv("RSVP_DICTIONARY", str(chosen))
    assert Dictionary.find().daemon == "chosen"
    assert Dictionary.find(device).daemon == "dictionary"
    assert Dictionary.find(dictionary.NONE) == Dictionary()
    for wrong in (tmp_path, tmp_path / "missing", "/dev/null"):
        with pytest.raises(DictionaryError):
            Dictionary.find(wrong)
    monkeypatch.setenv("RSVP_DICTIONARY", "")
    device.unlink()
    assert Dictionary.find() == Dictionary.read(ROOT / "host/dictionaries/rsvpsimd.toml")
