# SPDX-License-Identifier: Apache-2.0
"""What the generated views stand on: typed reading of one object of a document."""
from __future__ import annotations

import html
import re
from collections.abc import Iterator, Mapping, Sequence
from enum import StrEnum
from types import MappingProxyType
from typing import Any, ClassVar, Generic, TypeVar, overload

_WHOLE = re.compile(r"[+-]?[0-9]+|0[xX][0-9a-fA-F]+", re.ASCII)
_DECIMAL = re.compile(r"[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)", re.ASCII)
_LONGEST = 64  # characters of a number

V = TypeVar("V", bound="View")
E = TypeVar("E", bound=StrEnum)


class View:
    """A read-only view of one object of a document.

    What the document leaves out reads as ``""``, ``False``, an empty sequence or ``None``. A text
    that is no number reads as ``None`` where a number is asked for; :meth:`to_dict` has it as it is.
    """

    __slots__ = ("_json",)
    _keys: ClassVar[tuple[tuple[str, str], ...]] = ()

    def __init__(self, json: Mapping[str, Any]) -> None:
        self._json = json

    @property
    def _of(self) -> Mapping[str, Any]:
        return self._json

    def to_dict(self) -> dict[str, Any]:
        """The object as the document prints it. It belongs to the caller."""
        copied: dict[str, Any] = _copy(self._of)
        return copied

    def __eq__(self, other: object) -> bool:
        return isinstance(other, View) and type(self) is type(other) and self._of == other._of

    def __hash__(self) -> int:
        return hash((type(self), len(self._of), str(self._of.get("name", ""))))

    def __repr__(self) -> str:
        said = [f"{key}={self._of[key]!r}" for key in ("name", "id", "type") if key in self._of]
        return f"{type(self).__name__}({', '.join(said)})"

    def _repr_html_(self) -> str:
        rows = ((name, self._of[key]) for name, key in self._keys if key in self._of)
        return _table(("", type(self).__name__), dict(rows).items())

    def _text(self, key: str) -> str:
        return str(self._of.get(key, ""))

    def _texts(self, key: str) -> tuple[str, ...]:
        return tuple(self._of.get(key, ()))

    def _flag(self, key: str) -> bool:
        return bool(self._of.get(key) == "true")

    def _integer(self, key: str) -> int | None:
        text = self._text(key)
        if len(text) > _LONGEST or not _WHOLE.fullmatch(text):
            return None
        return int(text, 16 if text[:2] in ("0x", "0X") else 10)

    def _required_integer(self, key: str) -> int:
        return self._integer(key) or 0

    def _number(self, key: str) -> float | None:
        text = self._text(key)
        return float(text) if len(text) <= _LONGEST and _DECIMAL.fullmatch(text) else None

    def _member(self, key: str, made: type[E]) -> E | None:
        return made(self._of[key]) if key in self._of else None

    def _required_member(self, key: str, made: type[E]) -> E:
        return made(self._of[key])

    def _mapping(self, key: str) -> Mapping[str, Any]:
        return MappingProxyType(self._of.get(key, {}))

    def _members(self, key: str, made: type[E]) -> Mapping[str, E]:
        return MappingProxyType({name: made(text) for name, text in self._of.get(key, {}).items()})

    def _view(self, key: str, made: type[V]) -> V | None:
        return made(self._of[key]) if key in self._of else None

    def _required_view(self, key: str, made: type[V]) -> V:
        return made(self._of[key])

    def _views(self, key: str, made: type[V]) -> Views[V]:
        return Views(made, self._of.get(key, ()))


class Views(Sequence[V], Generic[V]):
    """A read-only sequence of views; in a notebook a table."""

    __slots__ = ("_made", "_items")

    def __init__(self, made: type[V], items: Sequence[Mapping[str, Any]]) -> None:
        self._made, self._items = made, items

    @overload
    def __getitem__(self, index: int) -> V: ...

    @overload
    def __getitem__(self, index: slice) -> Views[V]: ...

    def __getitem__(self, index: int | slice) -> V | Views[V]:
        if isinstance(index, slice):
            return Views(self._made, self._items[index])
        return self._made(self._items[index])

    def __len__(self) -> int:
        return len(self._items)

    def __iter__(self) -> Iterator[V]:
        return map(self._made, self._items)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Views) and list(self._items) == list(other._items)

    def __hash__(self) -> int:
        return hash((self._made, len(self._items)))

    def __repr__(self) -> str:
        return f"<{len(self)} of {self._made.__name__}>"

    def _repr_html_(self) -> str:
        keys = dict((key, name) for name, key in reversed(self._made._keys))
        used = [key for _, key in self._made._keys if any(key in item for item in self._items)]
        heads = dict.fromkeys(used)
        return _grid([keys[key] for key in heads],
                     [[item.get(key, "") for key in heads] for item in self._items])


def _copy(value: Any) -> Any:
    if isinstance(value, dict):
        return {key: _copy(one) for key, one in value.items()}
    return [_copy(one) for one in value] if isinstance(value, list) else value


def _cell(value: object) -> str:
    """Texts as they are; what is nested by its size, so that a table stays a table."""
    if isinstance(value, (dict, list)):
        if isinstance(value, list) and all(isinstance(one, str) for one in value):
            return html.escape(", ".join(value))
        return f"{len(value)} entries"
    return html.escape(str(value))


def _grid(heads: Sequence[str], rows: Sequence[Sequence[object]]) -> str:
    head = "".join(f"<th>{html.escape(one)}</th>" for one in heads)
    body = "".join("<tr>" + "".join(f"<td>{_cell(one)}</td>" for one in row) + "</tr>" for row in rows)
    return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>"


def _table(heads: Sequence[str], pairs: Any) -> str:
    return _grid(heads, [list(pair) for pair in pairs])
