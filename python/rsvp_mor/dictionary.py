"""Dictionaries: what one daemon means by the words of its records, read from the same files as every other program
reads. A file is checked against the records when it is read, and one with a mistake is refused as a whole."""
from __future__ import annotations

import os
import re
import stat
import tomllib
from collections.abc import Iterable
from dataclasses import dataclass, field as default
from pathlib import Path
from typing import Any, NoReturn

from rsvp_mor import records as _records  # every record must be known before a file names it
from rsvp_mor.library import description, status_codes
from rsvp_mor.meaning import NOTHING, Form, Meaning, RecordMeanings
from rsvp_mor.record import Field, Record

NONE = "none"
"""In place of a file: no dictionary, so that words have no names."""

_MOST_BYTES = 1 << 20
_SYSTEM_FILE = Path("/etc/rsvp-mor/dictionary.toml")
_UNITS = ("s", "ms", "us", "B", "B/s", "bit/s", "kbit/s", "count")
_ROUTE = _records.RouteEntry.c_name
_USUAL = {"address": Form.ADDRESS, "rate": Form.RATE, "float": Form.SINGLE, "text": Form.TEXT, "bytes": Form.BYTES}
_KEYS_OF_A_VALUE = {"name", "as", "unit", "counter", "mib", "setting"}
_NAME = re.compile(r"[A-Za-z][A-Za-z0-9]*")
_PLAIN = re.compile(r'[ -~]*')


class DictionaryError(ValueError):
    """A dictionary that cannot be used: file, key, what is wrong."""


class _Mistake(Exception):
    def __init__(self, key: str, problem: str) -> None:
        super().__init__(f"{key}: {problem}")


def _refuse(key: str, problem: str) -> NoReturn:
    raise _Mistake(key, problem)


@dataclass(frozen=True)
class KeyPart:
    """A run of a row's bytes that is part of the key of the next row."""

    at: int
    size: int
    key_at: int


@dataclass(frozen=True)
class Leaf:
    """A scalar of a record, found through the records inside it."""

    path: str
    field: Field
    at: int


def leaves(kind: type[Record], prefix: str = "", base: int = 0) -> list[Leaf]:
    """The leaves of a record in its order; arrays, lists and conditional fields are not among them."""
    found: list[Leaf] = []
    for field in kind.fields:
        if field.count or field.when or field.is_list:
            continue
        if field.record is not None:
            found += leaves(Record.kinds[field.record], f"{prefix}{field.name}.", base + field.at)
        else:
            found.append(Leaf(prefix + field.name, field, base + field.at))
    return found


def find_path(kind: type[Record], path: str) -> tuple[Field, int] | None:
    """A field of a record, or of a record inside it, and where it lies."""
    name, _, rest = path.partition(".")
    field = next((one for one in kind.fields if one.name == name and not one.count and not one.when), None)
    if field is None:
        return None
    if not rest:
        return field, field.at
    inside = find_path(Record.kinds[field.record], rest) if field.kind == "record" and field.record else None
    return inside and (inside[0], field.at + inside[1])


def _table(key: str, value: object) -> dict[str, Any]:
    if not isinstance(value, dict):
        _refuse(key, "must be a table")
    return value


def _plain(key: str, value: object) -> str:
    if not isinstance(value, str) or not _PLAIN.fullmatch(value) or '"' in value or "\\" in value:
        _refuse(key, "must be printable characters without quotes and backslashes")
    return value


def _list(key: str, value: object, what: str) -> list[Any]:
    if not isinstance(value, list):
        _refuse(key, f"must be a list of {what}")
    return value


def _name(key: str, value: object) -> str:
    if not isinstance(value, str) or not _NAME.fullmatch(value):
        _refuse(key, f"must be letters and digits, not '{value}'")
    return value


def _number(key: str, value: object, most: int) -> int:
    if not isinstance(value, int) or isinstance(value, bool) or not 0 <= value <= most:
        _refuse(key, f"must be a whole number from 0 to {most}")
    return value


def _allow_only(table: dict[str, Any], names: Iterable[str]) -> None:
    for key in table.keys() - set(names):
        _refuse(key, f"there is no such key here, only {', '.join(sorted(names))}")


def _words(table: dict[str, Any], most: int) -> dict[int, str]:
    words: dict[int, str] = {}
    for key, value in sorted(table.items()):
        if not re.fullmatch(r"\d+|0[xX][0-9a-fA-F]+", key) or (number := int(key, 16 if "x" in key.lower() else 10)) > most:
            _refuse(key, f"must be a number from 0 to {most}")
        word = _plain(key, value)
        if not word or word in words.values():
            _refuse(key, f"the word '{word}' is {'taken' if word else 'empty'}")
        if number in words:
            _refuse(key, f"the number {number} has a word already")
        words[number] = word
    return words


def _misfit(form: Form, kind: str, width: int) -> str:
    """Why a form cannot be that of a value; an empty text if it can."""
    if kind == "text" and form is not Form.TEXT:
        return "takes a number, and here is a text"
    if form in (Form.ADDRESS, Form.SINGLE, Form.RATE):
        return "" if width == 4 else f"takes 4 bytes, and here are {width}"
    if form in (Form.BYTES, Form.TEXT):
        if kind == "secret":
            return "would show a key"
        return "" if kind in ("bytes", "text") else "takes bytes, and here is a number"
    return f"takes at most 8 bytes, and here are {width}" if width > 8 else ""


def _form(value: object, width: int) -> tuple[Form, dict[int, str]]:
    if isinstance(value, dict):
        if "bits" in value:
            _allow_only(value, {"bits"})
            return Form.BITS, _words(_table("bits", value["bits"]), 8 * width - 1)
        return Form.WORDS, _words(value, (1 << 8 * min(width, 8)) - 1)
    known = [form.value for form in Form if form not in (Form.BITS, Form.WORDS)]
    if value not in known:
        _refuse("as", f"there is no form '{value}', only {', '.join(known)}")
    return Form(value), {}


def _meaning(key: str, said: dict[str, Any], field: Field, place: str, at: int, width: int, is_part: bool) -> Meaning:
    if "name" not in said:
        _refuse(key, "has no name")
    usual = Form.NUMBER if is_part and field.kind == "bytes" else _USUAL.get(field.kind, Form.NUMBER)
    form, words = _form(said["as"], width) if "as" in said else (usual, {})
    if problem := _misfit(form, field.kind, width):
        _refuse("as" if "as" in said else key, f"the form '{form.value}' {problem}")
    unit = "B/s" if form is Form.RATE else ""
    if "unit" in said:
        unit = said["unit"]
        if unit not in _UNITS:
            _refuse("unit", f"there is no unit '{unit}', only {', '.join(_UNITS)}")
        if form not in (Form.NUMBER, Form.SIGNED, Form.SINGLE):
            _refuse("unit", "only numbers and singles have a unit")
    counter = said.get("counter", False)
    if not isinstance(counter, bool):
        _refuse("counter", "must be true or false")
    return Meaning(_name("name", said["name"]), place, form, at, width,
                   field.kind in ("bytes", "secret", "rate"), words, unit, counter,
                   _name("mib", said["mib"]) if "mib" in said else "", _plain("setting", said.get("setting", "")))


def _part(key: str, field: Field, said: dict[str, Any]) -> Meaning:
    """One of several things that a field holds: an element of an array of numbers, or some of its bytes."""
    if "at" not in said:
        _refuse(key, "a part has no 'at'")
    if field.count:
        _allow_only(said, _KEYS_OF_A_VALUE | {"at"})
        at = _number("at", said["at"], field.count - 1)
        return _meaning(key, said, field, f"{field.name}[{at}]", field.at + at * field.width, field.width, True)
    _allow_only(said, _KEYS_OF_A_VALUE | {"at", "width"})
    at = _number("at", said["at"], field.width - 1)
    width = _number("width", said.get("width", 1), 0xFFFF)
    if not 0 < width <= field.width - at:
        _refuse(key, f"a part of {width} bytes from byte {at} is beyond its field, which has {field.width}")
    place = f"{field.name}[{at}]" if width == 1 else f"{field.name}[{at}..{at + width - 1}]"
    return _meaning(key, said, field, place, field.at + at, width, True)


def _field(key: str, field: Field, said: dict[str, Any]) -> list[Meaning]:
    if "parts" in said:
        _allow_only(said, {"parts"})
        if not field.count and field.kind not in ("bytes", "secret"):
            _refuse(key, "only bytes and arrays have parts")
        return [_part(key, field, _table(key, part)) for part in _list("parts", said["parts"], "tables")]
    if field.count:
        _refuse(key, "an array takes 'parts', a table for each element that has a name")
    if field.kind == "secret":
        _refuse(key, "key material has no meaning as a whole, only 'parts' around it")
    _allow_only(said, _KEYS_OF_A_VALUE)
    return [_meaning(key, said, field, field.name, field.at, field.width, False)]


def _record(kind: type[Record], said: dict[str, Any]) -> RecordMeanings:
    own: list[Meaning] = []
    inside: dict[str, RecordMeanings] = {}
    fields = {field.name: field for field in kind.fields}
    taken: set[str] = set()

    def take(name: str, key: str, where: str) -> None:
        if name in taken:
            _refuse(where, f"the name '{name}' is taken")
        if name != key and name in fields:
            _refuse(where, f"the name '{name}' is that of another field")
        taken.add(name)

    for key, value in sorted(said.items()):
        field = fields.get(key)
        if field is None:
            _refuse(key, f"{kind.c_name} has no such field")
        table = _table(key, value)
        if field.kind == "list" and field.record == _ROUTE:
            _allow_only(table, {"name"})
            if "name" not in table:
                _refuse(key, "has no name")
            inside[key] = RecordMeanings(name=_name("name", table["name"]))
            take(inside[key].name, key, "name")
        elif field.record is not None:
            inside[key] = _record(Record.kinds[field.record], table)
        else:
            for meaning in _field(key, field, table):
                take(meaning.name, key, key)
                own.append(meaning)
    return RecordMeanings("", tuple(sorted(own, key=lambda one: one.at)), inside)


def _complete(kind: type[Record], given: dict[str, RecordMeanings], meanings: RecordMeanings) -> RecordMeanings:
    """Gives the records inside a record the meanings that their type has everywhere, unless this place has its own."""
    inside = dict(meanings.inside)
    for field in kind.fields:
        if field.record is None:
            continue
        own = inside.get(field.name, given.get(field.record, NOTHING))
        completed = _complete(Record.kinds[field.record], given, own)
        if completed.name or completed.own or completed.inside:
            inside[field.name] = completed
    return RecordMeanings(meanings.name, meanings.own, inside)


def _next_key(said: list[Any], row: type[Record], key: type[Record]) -> tuple[KeyPart, ...]:
    """A field of the row for each field of the key or for a run of them; 0 for one that stays 0."""
    places = leaves(key)
    parts: list[KeyPart] = []
    done = 0
    for name in said:
        if done == len(places):
            _refuse("next-key", f"the key has no more than {len(places)} fields")
        if name == 0 and not isinstance(name, bool):
            done += 1
            continue
        found = find_path(row, name) if isinstance(name, str) else None
        if found is None:
            _refuse("next-key", f"{row.c_name} has no field '{name}'")
        field, at = found
        begin = places[done].at
        given = leaves(Record.kinds[field.record]) if field.record else [Leaf(name, field, 0)]
        filled = places[done : done + len(given)]
        done += len(given)
        fits = len(filled) == len(given) and all(
            place.at == begin + one.at and place.field.width == one.field.width
            and (place.field.kind in ("bytes", "secret")) == (one.field.kind in ("bytes", "secret"))
            for place, one in zip(filled, given))
        if not fits or sum(one.field.width for one in given) != field.width:
            _refuse("next-key", f"'{name}' does not fit the key")
        parts.append(KeyPart(at, field.width, begin))
    return tuple(parts)


def _names_in(kind: type[Record], meanings: RecordMeanings) -> list[tuple[str, int]]:
    """The names in a record and in the records inside it, with their places."""
    found = [(one.name, one.at) for one in meanings.own]
    for field in kind.fields:
        if field.kind == "record" and not field.count and field.record:
            inside = _names_in(Record.kinds[field.record], meanings.inside_of(field.name))
            found += [(name, field.at + at) for name, at in inside]
    return found


def _check_columns(said: list[Any], row: type[Record], meanings: RecordMeanings) -> None:
    """The columns are for programs that print tables; a file that names what is not there is refused here as well."""
    names = {name for name, _ in _names_in(row, meanings)}
    for i, name in enumerate(said):
        if not isinstance(name, str) or (name not in names and find_path(row, name) is None):
            _refuse("columns", f"{row.c_name} has nothing of the name '{name}'")
        if name in said[:i]:
            _refuse("columns", f"'{name}' is given twice")


@dataclass(frozen=True)
class Dictionary:
    """The meanings of one daemon. Without arguments it is the one that names nothing."""

    daemon: str = ""
    ends: frozenset[int] = frozenset({status_codes["RSVP_MOR_ERR_NOT_EXIST"]})
    records: dict[str, RecordMeanings] = default(default_factory=dict)
    next_keys: dict[str, tuple[KeyPart, ...]] = default(default_factory=dict)

    def of(self, kind: type[Record]) -> RecordMeanings:
        return self.records.get(kind.c_name, NOTHING)

    def names_in(self, kind: type[Record]) -> list[tuple[str, int]]:
        """The names in a record and in the records inside it, with their places."""
        return _names_in(kind, self.of(kind))

    @classmethod
    def parse(cls, text: str, file: str) -> Dictionary:
        """Reads the text of a dictionary; `file` is its name in what is refused."""
        try:
            if not text.isascii():
                _refuse("file", "must be plain ASCII text")
            return cls._from(tomllib.loads(text))
        except (_Mistake, tomllib.TOMLDecodeError, RecursionError) as mistake:
            raise DictionaryError(f"{file}: {mistake}") from None

    @classmethod
    def _from(cls, top: dict[str, Any]) -> Dictionary:
        _allow_only(top, {"dictionary", "daemon", "end-of-table", "record", "table"})
        if _number("dictionary", top.get("dictionary", 0), 0xFFFFFFFF) != 1:
            _refuse("dictionary", "must be 1, the version of this form")
        if not (daemon := _plain("daemon", top.get("daemon", ""))):
            _refuse("daemon", "must be the daemon's name")
        if not (ends := _list("end-of-table", top.get("end-of-table", []), "statuses")):
            _refuse("end-of-table", "must be the statuses that end a walk in order")
        given: dict[str, RecordMeanings] = {}
        for name, said in _table("record", top.get("record", {})).items():
            if name not in Record.kinds or not name.startswith("RSVP_MOR_"):
                _refuse(name, "there is no such record")
            given[name] = _record(Record.kinds[name], _table(name, said))
        records = {name: _complete(kind, given, given.get(name, NOTHING)) for name, kind in Record.kinds.items()}
        next_keys: dict[str, tuple[KeyPart, ...]] = {}
        tables = {one["name"]: one for one in description["tables"] if one["key"]}
        for name, said in _table("table", top.get("table", {})).items():
            if name not in tables:
                _refuse(name, "there is no such table")
            _allow_only(_table(name, said), {"next-key", "columns"})
            row, key = Record.kinds[tables[name]["row"]], Record.kinds[tables[name]["key"]]
            if "next-key" in said:
                next_keys[name] = _next_key(_list("next-key", said["next-key"], "fields"), row, key)
            _check_columns(_list("columns", said.get("columns", []), "names"), row, records[row.c_name])
        return cls(daemon, frozenset(_number("end-of-table", end, 0xFFFFFFFF) for end in ends), records, next_keys)

    @classmethod
    def read(cls, file: str | os.PathLike[str]) -> Dictionary:
        """Reads a dictionary from a file, which has at most 1 MiB."""
        try:
            with open(os.open(file, os.O_RDONLY | os.O_NONBLOCK | os.O_CLOEXEC), "rb") as opened:
                if not stat.S_ISREG(os.fstat(opened.fileno()).st_mode):
                    raise DictionaryError(f"{file}: is not a file")
                text = opened.read(_MOST_BYTES + 1)
        except OSError as error:
            raise DictionaryError(f"{file}: {error.strerror}") from None
        if len(text) > _MOST_BYTES:
            raise DictionaryError(f"{file}: is larger than 1 MiB")
        return cls.parse(text.decode("latin-1"), str(file))

    @classmethod
    def find(cls, chosen: str | os.PathLike[str] = "", directory: str = "") -> Dictionary:
        """The dictionary of this device: `chosen`, else that of RSVP_DICTIONARY, each a file or "none", else
        `dictionary.toml` in the host directory, else /etc/rsvp-mor/dictionary.toml, else that of the simulated
        daemon."""
        file = os.fspath(chosen) or os.environ.get("RSVP_DICTIONARY", "")
        if file == NONE:
            return cls()
        if file:
            return cls.read(file)
        for usual in (Path(directory or host_directory(), "dictionary.toml"), _SYSTEM_FILE):
            # One that is there and cannot be looked at is not skipped: reading it says why.
            if _is_there(usual):
                return cls.read(usual)
        return cls.read(Path(__file__).with_name("rsvpsimd.toml"))


def _is_there(file: Path) -> bool:
    try:
        file.stat()
    except (FileNotFoundError, NotADirectoryError):
        return False
    except OSError:
        return True
    return True


def host_directory() -> str:
    """Where the files are that play the device on a machine without one."""
    if chosen := os.environ.get("RSVP_HOST_DIR"):
        return chosen
    runtime = os.environ.get("XDG_RUNTIME_DIR")
    return f"{runtime}/rsvp-host" if runtime else f"/tmp/rsvp-host-{os.getuid()}"
