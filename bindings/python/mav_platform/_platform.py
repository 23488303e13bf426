# SPDX-License-Identifier: Apache-2.0
"""Platforms: loading one, asking it, comparing two."""
from __future__ import annotations

import ctypes
import json
import os
from collections.abc import Iterator, Mapping
from dataclasses import dataclass
from enum import StrEnum
from pathlib import Path
from typing import Any, Final, Self

from mav_platform import _c, _library
from mav_platform._c import MetadataMode, SupportQuestion
from mav_platform._library import PathText
from mav_platform._view import _table
from mav_platform.errors import NotFound
from mav_platform.views import Description, HardwarePlatform, SoftwarePlatform


class _Nothing:
    """Stands for a default that was not given."""

    def __repr__(self) -> str:
        return "<none>"


_NOTHING: Final = _Nothing()


@dataclass(frozen=True, slots=True)
class Verdict:
    """Whether a tool release supports a platform; true when it does."""

    supported: bool
    #: Empty when there is nothing to explain.
    reason: str

    def __bool__(self) -> bool:
        return self.supported


class Platform(Description):
    """A loaded platform, and a typed view of its document.

    Any thread may use it. :meth:`close` or leaving a ``with`` gives its memory back early; views
    that were taken from it stay usable.

    >>> platform = load(samples / "veltrin_h90/veltrin_h90.pka")
    >>> platform
    <Platform 'gen3x16_hbm' of veltrin, xqh90-bga2612-2L-e>
    >>> platform.hardware.clocks[0].frequency_mhz
    300.0
    >>> platform.type
    <PlatformType.PELLUX: 'Pellux'>
    """

    __slots__ = ("_handle", "_path", "__weakref__")

    def __init__(self, path: PathText, *, metadata: MetadataMode = MetadataMode.AUTO) -> None:
        super().__init__({})
        self._path = Path(path)
        options = _library.options_of(_c.OpenOptions, metadata_mode=_library.number_of(metadata))
        self._handle = _library.Handle("hmav_platform_free", lambda made: _library.call(
            "hmav_platform_open", _library.session, _library.path_of(path), options, made))

    @property
    def _of(self) -> Mapping[str, Any]:
        """The document, which is asked for once."""
        if not self._json:
            self._json = self.document()
        return self._json

    @property
    def path(self) -> Path:
        """As it was given."""
        return self._path

    @property
    def hardware(self) -> HardwarePlatform:
        """The hardware platform, wherever the document holds it; :class:`NotFound` without one."""
        return HardwarePlatform(self.get("hardwarePlatform"))

    @property
    def software(self) -> SoftwarePlatform:
        """The software platform; :class:`NotFound` without one."""
        return SoftwarePlatform(self.get("softwarePlatform"))

    def document(self) -> dict[str, Any]:
        """The whole description, as ``mav json`` prints it: every scalar is a text."""
        with self._handle as handle:
            made: dict[str, Any] = _library.json_from("hmav_platform_document", handle)
        return made

    def get(self, path: str, *, default: Any = _NOTHING) -> Any:
        """What is at a path of the document; without a default, :class:`NotFound` when nothing is.

        >>> platform = load(samples / "veltrin_h90/veltrin_h90.pka")
        >>> platform.get("hardwarePlatform.systemClocks[*].name")
        ['kernel_clk', 'kernel2_clk', 'pcie_ref_clk', 'ctrl_clk']
        >>> platform.get("hardwarePlatform.nowhere", default="?")
        '?'
        """
        made, size = _library.Text(), ctypes.c_size_t()
        raw = _library.bytes_of(path)
        form = _library.number_of(_c.Form.JSON)
        try:
            with self._handle as handle:
                _library.call("hmav_platform_get", handle, raw, form,
                              ctypes.byref(made.pointer), ctypes.byref(size))
        except NotFound:
            if default is _NOTHING:
                raise
            return default
        return json.loads(made.take(size.value))

    def keys(self) -> dict[str, int]:
        """Every path that occurs in the document, and how often.

        >>> load(samples / "veltrin_h90/veltrin_h90.pka").keys()["hardwarePlatforms.hardwarePlatform.systemClocks[]"]
        4
        """
        with self._handle as handle:
            made = _library.json_from("hmav_platform_keys", handle)
        return {one["path"]: int(one["count"]) for one in made["keys"]}

    def flat(self, path: str = "", *names: str) -> dict[str, str]:
        """Every value below a path by its own path from there; with names, only those.

        >>> load(samples / "veltrin_h90/veltrin_h90.pka").flat("hardwarePlatform.board.pcie")["vendor"]
        '0xf1e9'
        """
        wanted = _library.text_array([_library.bytes_of(name) for name in names])
        with self._handle as handle:
            made: dict[str, str] = _library.json_from(
                "hmav_platform_dict", handle, _library.bytes_of(path), wanted, len(names))
        return made

    def transform(self, specification: str | Mapping[str, Any]) -> Any:
        """What a transform specification makes of the document; see docs/services.md.

        >>> load(samples / "veltrin_h90/veltrin_h90.pka").transform({"part": "hardwarePlatform.fpgaPart"})
        {'part': 'xqh90-bga2612-2L-e'}
        """
        text = specification if isinstance(specification, str) else json.dumps(specification)
        with self._handle as handle:
            return _library.json_from("hmav_platform_transform", handle, _library.bytes_of(text))

    def summary(self, *, support: bool = False, partitions: bool = False) -> dict[str, Any]:
        """What one wants to know first, in a flat dict whose members always stand in the same order."""
        options = _library.options_of(_c.SummaryOptions, with_support=support, with_partitions=partitions)
        with self._handle as handle:
            made: dict[str, Any] = _library.json_from("hmav_platform_summary", handle, options)
        return made

    def support(self, *, tool_release: str | None = None, product: str | None = None,
                question: SupportQuestion = SupportQuestion.PLATFORM) -> Verdict:
        """Whether the tool release (default: the host's) supports the platform.

        >>> bool(load(samples / "ostrivel_e7/ostrivel_e7.qpfm").support(tool_release="2026.1"))
        True
        """
        options = _library.options_of(
            _c.SupportOptions, question=_library.number_of(question),
            tool_release=_library.optional(tool_release), product=_library.optional(product))
        supported, reason = ctypes.c_int(), _library.Text()
        with self._handle as handle:
            _library.call("hmav_platform_support", handle, options, ctypes.byref(supported),
                          ctypes.byref(reason.pointer))
        return Verdict(bool(supported.value), reason.take())

    def close(self) -> None:
        """Gives the memory back. What is asked afterwards is a :class:`ValueError`."""
        self._handle.close()

    def __enter__(self) -> Self:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    __eq__ = object.__eq__
    __hash__ = object.__hash__

    def __repr__(self) -> str:
        if self._handle.closed:
            return f"<Platform {os.fspath(self._path)!r}, closed>"
        hardware = self.get("hardwarePlatform", default={})
        name, vendor = (self._of.get(key) or hardware.get(key, "") for key in ("name", "vendor"))
        part = f", {hardware['fpgaPart']}" if "fpgaPart" in hardware else ""
        return f"<Platform {name or self._path.name!r}{f' of {vendor}' if vendor else ''}{part}>"

    def _repr_html_(self) -> str:
        return _table(("", "Platform"), ((key, value) for key, value in self.summary().items() if value))


def load(path: PathText, *, metadata: MetadataMode = MetadataMode.AUTO) -> Platform:
    """Loads a platform with all that it refers to: a description, a hardware archive (.pka, .dsa) or
    a software platform (.spfm).

    >>> load("none.qpfm")
    Traceback (most recent call last):
    ...
    mav_platform.errors.NotFound: Nothing is at 'none.qpfm'
    """
    return Platform(path, metadata=metadata)


class ChangeKind(StrEnum):
    """How something differs."""

    CHANGED = "changed"
    ADDED = "added"
    REMOVED = "removed"


@dataclass(frozen=True, slots=True)
class Change:
    """One place in which two platforms differ, and what each has there."""

    kind: ChangeKind
    path: str
    before: Any = None
    after: Any = None


@dataclass(frozen=True, slots=True)
class Difference:
    """What differs between two platforms; true when something does."""

    changes: tuple[Change, ...]

    def __bool__(self) -> bool:
        return bool(self.changes)

    def __len__(self) -> int:
        return len(self.changes)

    def __iter__(self) -> Iterator[Change]:
        return iter(self.changes)

    def __repr__(self) -> str:
        return f"<Difference of {len(self.changes)} changes>"

    def _repr_html_(self) -> str:
        return _table(("path", "change"), (
            (one.path, f"{one.before} → {one.after}" if one.kind == "changed" else one.kind.value)
            for one in self.changes))


def diff(first: Platform | PathText, second: Platform | PathText) -> Difference:
    """What differs between two platforms, which may be given by their paths.

    >>> path = samples / "ostrivel_e7/ostrivel_e7.qpfm"
    >>> bool(diff(path, path))
    False
    """
    one, other = (each if isinstance(each, Platform) else load(each) for each in (first, second))
    # In one order, so that two threads that compare the same two never wait for each other.
    with sorted((one, other), key=id)[0]._handle, sorted((one, other), key=id)[1]._handle:
        made = _library.json_from("hmav_difference", one._handle.pointer, other._handle.pointer)
    return Difference(tuple(Change(ChangeKind(each["kind"]), each["path"], each.get("from"), each.get("to"))
                            for each in made["changes"]))
