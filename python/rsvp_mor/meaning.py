"""What one value of a record means: its name, and the form that it has for programs. Dictionaries make meanings, and
so do the standards."""
from __future__ import annotations

import sys
from dataclasses import dataclass, field as default
from enum import Enum
from typing import TYPE_CHECKING, Any

from rsvp_mor.library import ffi
from rsvp_mor.value import address, single, to_json

if TYPE_CHECKING:
    from rsvp_mor.record import Record


class Form(Enum):
    NUMBER = "number"
    SIGNED = "signed"
    HEX = "hex"
    ADDRESS = "address"
    BYTES = "bytes"
    BOOL = "bool"
    BITS = "bits"
    WORDS = "words"
    SINGLE = "single"
    RATE = "rate"
    TEXT = "text"


@dataclass(frozen=True)
class Meaning:
    name: str
    field: str  # where it is, as a dictionary's listing shows it: "settingBytes[2]"
    form: Form
    at: int  # from the start of the record
    width: int
    raw: bool  # most significant byte first
    words: dict[int, str] = default(default_factory=dict)
    unit: str = ""
    counter: bool = False
    mib: str = ""
    setting: str = ""
    # Of the standards' meanings alone.
    mask: int = -1
    digits: int | None = None  # of what has no word, which is then shown in hexadecimal

    def _word(self, number: int, bits: int, plain: str) -> str:
        if (word := self.words.get(number)) is not None:
            return word
        if self.digits is None:
            return plain
        return f"{bits:#0{self.digits + 2}x}" if self.digits else f"{bits:#x}"

    def value(self, record: Record) -> Any:
        """As Python has it: numbers, addresses, words, a tuple of words for bits."""
        at = record._at + self.at
        raw = record._image[at : at + self.width]
        form = self.form
        if form is Form.TEXT and at in record._pointed:
            return record._pointed[at] or ""
        if form is Form.BYTES:
            return raw
        if form is Form.TEXT:
            return raw.split(b"\0")[0].decode(errors="surrogateescape")
        bits = int.from_bytes(raw, "big" if self.raw else sys.byteorder, signed=form is Form.SIGNED)
        number = bits & self.mask
        if form is Form.ADDRESS:
            return address(number)
        if form is Form.BOOL:
            return number != 0
        if form is Form.WORDS:
            return self._word(number, bits, str(number))
        if form is Form.BITS:
            return tuple(self._word(bit, 1 << bit, f"bit {bit}") for bit in range(8 * self.width) if number >> bit & 1)
        if form in (Form.SINGLE, Form.RATE):
            return single(number.to_bytes(4, "big"))
        return number

    def to_json(self, value: Any) -> Any:
        form = self.form
        if form is Form.NUMBER or form is Form.SIGNED:
            return value if self.width < 8 else str(value)
        if form is Form.WORDS or form is Form.BOOL:
            return value
        return f"{value:#x}" if form is Form.HEX else to_json(value)


@dataclass(frozen=True)
class RecordMeanings:
    """The meanings of a record's own fields, in its order, and of the records inside it, by the name of their field."""

    name: str = ""  # of a route
    own: tuple[Meaning, ...] = ()
    inside: dict[str, RecordMeanings] = default(default_factory=dict)

    def inside_of(self, field: str) -> RecordMeanings:
        return self.inside.get(field, NOTHING)

    def is_empty(self) -> bool:
        """Whether none of the record's own fields has a meaning, and none of its lists."""
        return not self.own and not any(one.name for one in self.inside.values())


NOTHING = RecordMeanings()


class StandardMeanings:
    """What the standards say of a record: of every one, and of those with a certain tag."""

    __slots__ = ("_always", "_by_tag")

    def __init__(self, record: str, said: dict[str, Any]) -> None:
        self._always: list[Meaning] = []
        self._by_tag: dict[int, dict[int, list[Meaning]]] = {}
        kinds = {field["name"]: field["kind"] for field in said["fields"]}
        for one in said["standard"]:
            meaning = Meaning(
                one["name"], one["field"], Form(one["form"]), ffi.offsetof(record, one["field"]) + one["at"],
                one["width"], kinds[one["field"]] == "bytes",
                {int(number): word for number, word in one["words"].items()}, mask=one["mask"], digits=one["digits"])
            when = one["when"]
            if when is None:
                self._always.append(meaning)
            elif when["equal"]:
                tags = self._by_tag.setdefault(ffi.offsetof(record, when["field"]), {})
                tags.setdefault(when["tag"], []).append(meaning)
            else:
                raise NotImplementedError(f"{record}: a standard's name for all tags but one")

    def __bool__(self) -> bool:
        return bool(self._always or self._by_tag)

    def of(self, record: Record) -> list[Meaning]:
        found = self._always
        for place, tags in self._by_tag.items():
            found = found + tags.get(record._image[record._at + place], [])
        return found
