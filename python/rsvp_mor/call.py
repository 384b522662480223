"""How rows are read: the tables as the C++ side describes them, the arguments of their functions, and keys."""
from __future__ import annotations

import functools
from collections.abc import Callable, Mapping, Sequence
from ipaddress import IPv4Address
from typing import Any, TypeAlias

from rsvp_mor.dictionary import Dictionary, KeyPart, Leaf, find_path, leaves
from rsvp_mor.library import Pointer, description, ffi, lib
from rsvp_mor.record import NUMBERS, Record

Key: TypeAlias = "Record | Mapping[str, Any] | Sequence[Any] | int | str | IPv4Address"
"""A key: a row, whose key is meant; a key record; its values in their order; a mapping of names to values; or the one
value of a key that has only one."""


class Read:
    """A function of the library that reads one row. What each argument is follows from its type."""

    def __init__(self, said: dict[str, Any], table: Table) -> None:
        self.name: str = said["function"]
        self.table = table
        self._function = getattr(lib, self.name)
        self._numbers: list[int] = said["numbers"]
        self._types = ffi.typeof(self._function).args
        self.held = any(kind.cname == "int32_t" for kind in self._types)

    def bind(self, fd: int, key: Pointer, row: Pointer) -> Callable[[], int]:
        """The call, with a key and a row that keep their places; what is in them is looked at when it is made."""
        arguments: list[Any] = []
        prepare: list[Callable[[], None]] = []
        numbers = list(self._numbers)
        at = 0  # of the next part of the key
        for i, kind in enumerate(self._types):
            if kind.cname == "int32_t":
                arguments.append(fd)
            elif kind.kind == "primitive" and numbers:
                arguments.append(numbers.pop(0))
            elif kind.kind == "primitive":
                part = ffi.cast(f"{kind.cname} *", key + at)
                arguments.append(0)
                prepare.append(functools.partial(_set_number, arguments, i, part))
                at += ffi.sizeof(kind)
            elif _record_of(kind) == self.table.row.c_name:
                arguments.append(row)
            elif at == 0 and _record_of(kind) not in self.table.parts_of_key:
                converted = ffi.new(kind)
                arguments.append(converted)
                prepare.append(functools.partial(self._convert, key, Record.kinds[_record_of(kind)], converted))
            else:
                arguments.append(ffi.cast(kind, key + at))
                at += ffi.sizeof(kind.item)
        if at == 0 and self.table.own_key:
            prepare.append(functools.partial(self._put_key, key, row))

        def run() -> int:
            for step in prepare:
                step()
            status: int = self._function(*arguments)
            return status

        return run

    def _convert(self, key: Pointer, wire: type[Record], out: Pointer) -> None:
        """A key in another form than its table's: a number goes into bytes with the most significant one first."""
        own = ffi.buffer(key, self.table.key_size)[:]
        for leaf, field in zip(leaves(self.table.required_key), wire.fields, strict=True):
            number = NUMBERS[leaf.field.width].unpack_from(own, leaf.at)[0]
            setattr(out, field.name, number.to_bytes(field.width, "big") if field.kind == "bytes" else number)

    def _put_key(self, key: Pointer, row: Pointer) -> None:
        """A key that goes to the library inside the row, which the answer replaces."""
        memory = ffi.cast("char *", row)
        for part in self.table.own_key:
            ffi.memmove(memory + part.at, key + part.key_at, part.size)


class Table:
    """A table of the daemon, or a record that stands alone."""

    def __init__(self, said: dict[str, Any]) -> None:
        self.name: str = said["name"]
        self.row = Record.kinds[said["row"]]
        self.key = Record.kinds[said["key"]] if said["key"] else None
        self.key_size = self.key.size if self.key else 0
        self.parts_of_key = {self.key.c_name, *(field.record for field in self.key.fields)} if self.key else set()
        self.own_key = self._own_key(said["ownKey"])
        self.first, self.next, self.get = (
            Read(said[one], self) if said[one] else None for one in ("first", "next", "get"))
        # What gives a row's lists back is the one function that takes such a row and returns nothing.
        release = [name for name in description["parameters"] if _releases(name, self.row.c_name)]
        if len(release) != (1 if self.row._pointers() else 0):
            raise RuntimeError(f"{self.row.c_name} has lists, and these functions release them: {release}")
        self.release: Callable[[Pointer], None] | None = getattr(lib, release[0]) if release else None

    @property
    def required_key(self) -> type[Record]:
        if self.key is None:
            raise TypeError(f"{self.name} has no key")
        return self.key

    def _own_key(self, paths: list[str]) -> tuple[KeyPart, ...]:
        parts: list[KeyPart] = []
        for path in paths:
            found = find_path(self.row, path)
            assert found is not None, path
            parts.append(KeyPart(found[1], found[0].width, sum(part.size for part in parts)))
        return tuple(parts)

    def key_parts(self, dictionary: Dictionary) -> tuple[KeyPart, ...]:
        """Where a row holds the key of the next one: what the dictionary says, else the record itself, else the first
        numbers of the row, which is a guess. Empty if none of these gives a key."""
        return dictionary.next_keys.get(self.name) or self.own_key or self._first_numbers()

    def _first_numbers(self) -> tuple[KeyPart, ...]:
        def is_number(leaf: Leaf) -> bool:
            return leaf.field.width == 4 and leaf.field.kind in ("number", "address")

        of_key = leaves(self.required_key)
        numbers = [leaf for leaf in leaves(self.row) if is_number(leaf)]
        if not all(map(is_number, of_key)) or len(numbers) < len(of_key):
            return ()
        return tuple(KeyPart(row.at, 4, key.at) for row, key in zip(numbers, of_key))

    def key_image(self, key: Key, dictionary: Dictionary) -> bytes:
        """The bytes of a key."""
        kind = self.required_key
        if isinstance(key, kind):
            return key._image[key._at : key._at + kind.size]
        image = bytearray(kind.size)
        if isinstance(key, Record):
            if not isinstance(key, self.row):
                raise TypeError(f"a {type(key).__name__} has no key of {self.name}: {self.key_shape()}")
            copy_key(self.key_parts(dictionary), key._image, image)
            return bytes(image)
        for leaf, value in self._given(key, dictionary):
            _put(image, leaf, value)
        return bytes(image)

    def key_shape(self) -> str:
        return ", ".join(leaf.path for leaf in leaves(self.required_key) if not leaf.field.quiet)

    def _given(self, key: Key, dictionary: Dictionary) -> list[tuple[Leaf, Any]]:
        all_leaves = leaves(self.required_key)
        if isinstance(key, Mapping):
            names = self._names_of_leaves(all_leaves, dictionary)
            if unknown := [name for name in key if name not in names]:
                raise ValueError(f"the key of {self.name} has no {', '.join(unknown)}: it is {self.key_shape()}")
            given = [(names[name], value) for name, value in key.items()]
            told = {leaf.path for leaf, _ in given}
            if missing := [leaf.path for leaf in all_leaves if leaf.path not in told and not leaf.field.quiet]:
                raise ValueError(f"the key of {self.name} lacks {', '.join(missing)}")
            return given
        values = key if isinstance(key, Sequence) and not isinstance(key, str) else [key]
        asked = [leaf for leaf in all_leaves if not leaf.field.quiet]
        if len(values) != len(asked):
            raise ValueError(f"the key of {self.name} has {len(asked)} values, not {len(values)}: {self.key_shape()}")
        return list(zip(asked, values))

    def _names_of_leaves(self, all_leaves: list[Leaf], dictionary: Dictionary) -> dict[str, Leaf]:
        """Paths, their last words, and what the dictionary calls the same places of a row or of the key."""
        found: dict[str, list[Leaf]] = {}
        in_key = {at: name for name, at in dictionary.names_in(self.required_key)}
        in_row = {at: name for name, at in dictionary.names_in(self.row)}
        for leaf in all_leaves:
            aliases = {leaf.path.rpartition(".")[2], in_key.get(leaf.at)}
            for part in self.key_parts(dictionary):
                if part.key_at <= leaf.at < part.key_at + part.size:
                    aliases.add(in_row.get(part.at + leaf.at - part.key_at))
            for alias in aliases - {None}:
                found.setdefault(str(alias), []).append(leaf)
        # A name that two fields would have stands for neither.
        names = {alias: same[0] for alias, same in found.items() if len(same) == 1}
        return names | {leaf.path: leaf for leaf in all_leaves}


def copy_key(parts: tuple[KeyPart, ...], row: bytes, key: bytearray) -> None:
    for part in parts:
        key[part.key_at : part.key_at + part.size] = row[part.at : part.at + part.size]


def _put(image: bytearray, leaf: Leaf, value: Any) -> None:
    width = leaf.field.width
    if leaf.field.kind == "bytes":
        raw = bytes.fromhex(value) if isinstance(value, str) else value
        if not isinstance(raw, bytes) or len(raw) != width:
            raise ValueError(f"{leaf.path} must be {width} bytes, or their hexadecimal digits, not {value!r}")
    else:
        number = int(IPv4Address(value)) if isinstance(value, (str, IPv4Address)) else value
        if not isinstance(number, int):
            raise TypeError(f"{leaf.path} must be a number or an address, not {type(value).__name__}")
        if not 0 <= number < 1 << 8 * width:
            raise OverflowError(f"{leaf.path} must be 0 to {(1 << 8 * width) - 1}, not {number}")
        raw = NUMBERS[width].pack(number)
    image[leaf.at : leaf.at + width] = raw


def _set_number(arguments: list[Any], place: int, part: Pointer) -> None:
    arguments[place] = part[0]


def _record_of(pointer: Any) -> str:
    """The record that a type points to."""
    name: str = pointer.item.cname
    return name.removeprefix("struct ")


def _releases(function: str, record: str) -> bool:
    kind = ffi.typeof(getattr(lib, function))
    return kind.result.kind == "void" and len(kind.args) == 1 and _record_of(kind.args[0]) == record


tables: dict[str, Table] = {said["name"]: Table(said) for said in description["tables"]}
