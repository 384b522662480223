"""Records as Python values. A record is a copy of the library's bytes, which are decoded when a field is asked for: a
walk costs a copy for each row, and nobody pays for fields that he does not look at. Lists and texts, which the library
keeps apart, are copied with the record, so that nothing of the library's memory is left in it."""
from __future__ import annotations

import functools
import struct
import sys
from collections.abc import Callable, Iterator, Mapping
from typing import Any, ClassVar, Final

from rsvp_mor.library import Pointer, description, ffi
from rsvp_mor.meaning import NOTHING, Meaning, RecordMeanings, StandardMeanings
from rsvp_mor.value import Secret, address, dotted, single, to_json


class Named(Mapping[str, Any]):
    """What a daemon, or a standard, means by the words of a record: `row.named.role`, or `row.named["role"]`."""

    __slots__ = ("_values",)

    def __init__(self, values: dict[str, Any]) -> None:
        self._values = values

    def __getattr__(self, name: str) -> Any:
        if name in Named.__slots__:  # of an object that is not made yet
            raise AttributeError(name)
        try:
            return self._values[name]
        except KeyError:
            raise AttributeError(f"nothing here is named {name!r}; there are: {', '.join(self._values)}") from None

    def __getitem__(self, name: str) -> Any:
        return self._values[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._values)

    def __len__(self) -> int:
        return len(self._values)

    def __repr__(self) -> str:
        return f"Named({self._values})"


NUMBERS: Final = {width: struct.Struct(code) for width, code in ((1, "=B"), (2, "=H"), (4, "=I"), (8, "=Q"))}
_POINTER = struct.Struct("P")
_COUNT = NUMBERS[2]


def _loads(kind: str, width: int) -> tuple[Callable[[bytes, int], Any], Callable[[bytes, int], Any]]:
    """How a scalar is read, as Python has it and as a document has it."""
    if kind in ("number", "address"):
        unpack = NUMBERS[width].unpack_from
        if kind == "address":
            return lambda image, at: address(*unpack(image, at)), lambda image, at: dotted(*unpack(image, at))
        return (lambda image, at: unpack(image, at)[0],
                (lambda image, at: unpack(image, at)[0]) if width < 8 else lambda image, at: str(unpack(image, at)[0]))
    if kind == "bytes":
        return lambda image, at: image[at : at + width], lambda image, at: image[at : at + width].hex()
    decoders: dict[str, Callable[[bytes], Any]] = {
        "netNumber": lambda raw: int.from_bytes(raw, "big"),
        "netAddress": lambda raw: address(int.from_bytes(raw, "big")),
        "rate": single,
        "float": lambda raw: single(raw if sys.byteorder == "big" else raw[::-1]),
        "secret": Secret,
    }
    decode = decoders[kind]
    return lambda image, at: decode(image[at : at + width]), lambda image, at: to_json(decode(image[at : at + width]))


class Condition:
    """Limits a field to records with a certain tag."""

    __slots__ = ("at", "tag", "equal")

    def __init__(self, record: str, said: dict[str, Any]) -> None:
        self.at = ffi.offsetof(record, said["field"])
        self.tag = said["tag"]
        self.equal = said["equal"]

    def holds(self, image: bytes, at: int) -> bool:
        return bool((image[at + self.at] == self.tag) == self.equal)


class Field:
    """A field as it lies in the record, and its value in Python and in JSON."""

    __slots__ = ("name", "kind", "at", "width", "count", "record", "when", "quiet", "is_list", "is_pointer",
                 "_load", "_load_json")

    def __init__(self, record: str, said: dict[str, Any]) -> None:
        self.name: str = said["name"]
        self.kind: str = said["kind"]
        self.at: int = ffi.offsetof(record, self.name)
        self.record: str | None = said["record"]
        self.is_list = self.kind in ("list", "chain")
        self.width: int = said["width"] or (ffi.sizeof(self.record) if self.kind == "record" else _POINTER.size)
        self.count: int = said["count"]
        self.when = Condition(record, said["when"]) if said["when"] else None
        self.quiet: bool = said["quiet"]
        self.is_pointer = self.is_list or self.kind == "text"
        is_scalar = not self.is_pointer and self.record is None
        self._load, self._load_json = _loads(self.kind, self.width) if is_scalar else (None, None)

    def is_there(self, image: bytes, at: int) -> bool:
        return self.when is None or self.when.holds(image, at)

    def _all(self, record: Record, load: Callable[[bytes, int], Any]) -> list[Any]:
        at = record._at + self.at
        return [load(record._image, at + i * self.width) for i in range(self.count)]

    def value(self, record: Record) -> Any:
        if self.is_pointer:
            return record._pointed[record._at + self.at]
        load = self._load
        if load is None:
            kind, inside = Record.kinds[self.record or ""], record._meanings.inside_of(self.name)
            load = lambda image, at: kind(image, at, record._pointed, inside)
        return tuple(self._all(record, load)) if self.count else load(record._image, record._at + self.at)

    def json(self, record: Record) -> Any:
        if (load := self._load_json) is not None:  # most fields, so by the shortest way
            return self._all(record, load) if self.count else load(record._image, record._at + self.at)
        value = self.value(record)
        if isinstance(value, tuple):
            return [one.to_dict() for one in value]
        return value.to_dict() if isinstance(value, Record) else to_json(value)

    # The descriptor that a class has for a field that its record describes once.
    def __get__(self, record: Record | None, owner: type[Record]) -> Any:
        if record is None:
            return self
        return self.value(record) if self.is_there(record._image, record._at) else None


class Choice:
    """The descriptor of a field that is described twice, for one tag and for all others."""

    __slots__ = ("fields",)

    def __init__(self, fields: list[Field]) -> None:
        self.fields = fields

    def __get__(self, record: Record | None, owner: type[Record]) -> Any:
        if record is None:
            return self
        return next(one.value(record) for one in self.fields if one.is_there(record._image, record._at))


class Record:
    """A record of the library, which nobody can change. Its fields have the names of the header; `named` has what the
    daemon means by them."""

    __slots__ = ("_image", "_at", "_pointed", "_meanings")

    kinds: ClassVar[dict[str, type[Record]]] = {}
    c_name: ClassVar[str]
    size: ClassVar[int]
    fields: ClassVar[tuple[Field, ...]]
    standard: ClassVar[StandardMeanings]

    def __init_subclass__(cls) -> None:
        said = _SAID.get(cls.__name__) or _SAID[f"RSVP_MOR_{cls.__name__}"]
        cls.c_name = said["name"]
        cls.size = ffi.sizeof(cls.c_name)
        cls.fields = tuple(Field(cls.c_name, field) for field in said["fields"])
        cls.standard = StandardMeanings(cls.c_name, said)
        Record.kinds[cls.c_name] = cls
        for field in cls.fields:
            same = [one for one in cls.fields if one.name == field.name]
            setattr(cls, field.name, field if len(same) == 1 else Choice(same))

    def __init__(self, image: bytes, at: int = 0, pointed: dict[int, Any] | None = None,
                 meanings: RecordMeanings = NOTHING) -> None:
        self._image = image
        self._at = at
        self._pointed = {} if pointed is None else pointed
        self._meanings = meanings

    @classmethod
    def copy(cls, memory: Pointer, meanings: RecordMeanings = NOTHING) -> Record:
        """Copies a record out of the library's memory, with all that it points to."""
        image = ffi.buffer(ffi.cast("char *", memory), cls.size)[:]
        pointed: dict[int, Any] = {}
        cls._copy_pointed(image, 0, pointed, meanings)
        return cls(image, 0, pointed, meanings)

    @classmethod
    def _copy_pointed(cls, image: bytes, at: int, pointed: dict[int, Any], meanings: RecordMeanings) -> None:
        for field, offset, names in cls._pointers():
            place = at + offset
            address = _POINTER.unpack_from(image, place)[0]
            if field.kind == "text":
                text = ffi.cast("char *", address)
                pointed[place] = ffi.string(text).decode(errors="surrogateescape") if address else None
                continue
            inside = meanings
            for name in names:
                inside = inside.inside_of(name)
            kind = Record.kinds[field.record or ""]
            pointed[place] = (kind._copy_array if field.kind == "list" else kind._copy_chain)(
                address, image, place, inside)

    @classmethod
    @functools.cache
    def _pointers(cls) -> list[tuple[Field, int, tuple[str, ...]]]:
        """What a record and those inside it point to: the field, where it is, and the names that lead to it."""
        found: list[tuple[Field, int, tuple[str, ...]]] = []
        for field in cls.fields:
            if field.is_list or field.kind == "text":
                found.append((field, field.at, (field.name,)))
            elif field.record is not None:
                inside = Record.kinds[field.record]._pointers()
                found += [(one, field.at + i * field.width + at, (field.name, *names))
                          for i in range(max(field.count, 1)) for one, at, names in inside]
        return found

    @classmethod
    def _copy_array(cls, address: int, image: bytes, place: int, meanings: RecordMeanings) -> tuple[Record, ...]:
        count = _COUNT.unpack_from(image, place + _POINTER.size)[0] if address else 0
        entries = ffi.buffer(ffi.cast("char *", address), count * cls.size)[:] if count else b""
        return tuple([cls(entries, i * cls.size, None, meanings) for i in range(count)])

    @classmethod
    def _copy_chain(cls, address: int, image: bytes, place: int, meanings: RecordMeanings) -> tuple[Record, ...]:
        nodes = []
        while address:
            nodes.append(cls.copy(ffi.cast("char *", address), meanings))
            address = _POINTER.unpack_from(nodes[-1]._image)[0]
        return tuple(nodes)

    @property
    def named(self) -> Named:
        """What the words of this record mean, by name."""
        return Named({name: meaning.value(self) if meaning else value for name, meaning, value in self._named()})

    def _named(self) -> Iterator[tuple[str, Meaning | None, Any]]:
        """Names in the order of a document; a route has no meaning but its addresses."""
        for meaning in self._meanings.own:
            yield meaning.name, meaning, None
        for field, inside in self._meanings.inside.items():
            if inside.name:
                yield inside.name, None, tuple(entry.named.address for entry in getattr(self, field))
        for meaning in self.standard.of(self):
            yield meaning.name, meaning, None

    def to_dict(self) -> dict[str, Any]:
        """The row as `rsvpctl --json` has it."""
        document: dict[str, Any] = {}
        image, start = self._image, self._at
        for field in self.fields:
            if field.when is not None and not field.when.holds(image, start):
                continue
            at = start + field.at
            if field.quiet and not any(image[at : at + field.width * max(field.count, 1)]):
                continue
            document[field.name] = value = field.json(self)
            if field.kind == "text" and value != (text := self._pointed[at]):
                document[f"{field.name}Bytes"] = text.encode(errors="surrogateescape").hex()
        if self.standard or self._meanings is not NOTHING:
            named = {name: meaning.to_json(meaning.value(self)) if meaning else to_json(value)
                     for name, meaning, value in self._named()}
            if named or not self._meanings.is_empty():
                document["named"] = named
        return document

    def _values(self) -> dict[str, Any]:
        return {field.name: getattr(self, field.name) for field in self.fields}

    def __eq__(self, other: object) -> bool:
        return type(self) is type(other) and isinstance(other, Record) and self._values() == other._values()

    def __hash__(self) -> int:
        return hash((type(self), tuple(self._values().values())))

    def __repr__(self) -> str:
        return f"{type(self).__name__}({', '.join(f'{name}={value!r}' for name, value in self._values().items())})"


_SAID: dict[str, dict[str, Any]] = {record["name"]: record for record in description["records"]}
