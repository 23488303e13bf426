# SPDX-License-Identifier: Apache-2.0
"""Directories, validation, key documentation and protected files."""
from __future__ import annotations

import os
from collections.abc import Iterable, Iterator, Sequence
from dataclasses import dataclass, field, fields
from pathlib import Path
from typing import Any, overload

from mav_platform import _c, _library
from mav_platform._c import Severity
from mav_platform._library import PathText, Progress, Watch, text_of
from mav_platform._platform import Platform, load
from mav_platform._view import _grid


@dataclass(frozen=True, slots=True)
class Entry:
    """A platform that was found, with what tells it apart from others."""

    file: Path
    name: str = ""
    vendor: str = ""
    board: str = ""
    version: str = ""
    type: str = ""
    device: str = ""
    part: str = ""
    state: str = ""

    def load(self) -> Platform:
        """The platform itself."""
        return load(self.file)


@dataclass(frozen=True, slots=True)
class Refusal:
    """A file that looked like a platform and could not be loaded."""

    file: Path
    reason: str


@dataclass(frozen=True, slots=True)
class Found(Sequence[Entry]):
    """The platforms in some directories, and what was refused there."""

    entries: tuple[Entry, ...]
    refused: tuple[Refusal, ...] = field(default=())

    @overload
    def __getitem__(self, index: int) -> Entry: ...

    @overload
    def __getitem__(self, index: slice) -> Sequence[Entry]: ...

    def __getitem__(self, index: int | slice) -> Entry | Sequence[Entry]:
        return self.entries[index]

    def __len__(self) -> int:
        return len(self.entries)

    def __repr__(self) -> str:
        return f"<Found {len(self.entries)} platforms, {len(self.refused)} refused>"

    def _repr_html_(self) -> str:
        heads = ("name", "vendor", "board", "version", "type", "device", "part", "state")
        return _grid(heads, [[getattr(one, head) for head in heads] for one in self.entries])


def _listed(paths: PathText | Iterable[PathText]) -> list[PathText]:
    return [paths] if isinstance(paths, (str, os.PathLike)) else list(paths)


def find(directories: PathText | Iterable[PathText] = (), *, part: str | None = None,
         board: str | None = None, vendor: str | None = None, type: str | None = None,
         latest: bool = False) -> Found:
    """The platforms in the directories, by default those of the host, that match what is given.

    >>> found = find(samples / "veltrin_h90", type="pellux", latest=True)
    >>> found[0].name, found[0].load().hardware.fpga_device
    ('gen3x16_hbm', 'xq-h90')
    """
    raw = [_library.path_of(one) for one in _listed(directories)]
    options = _library.options_of(
        _c.FindOptions, part=_library.optional(part), board=_library.optional(board),
        vendor=_library.optional(vendor), type=_library.optional(type), latest=latest)
    made = _library.json_from("hmav_find", _library.session, _library.text_array(raw), len(raw), options)
    return Found(tuple(_entry(one) for one in made["platforms"]),
                 tuple(Refusal(Path(one["file"]), one["reason"] or "") for one in made["refused"]))


def _entry(one: dict[str, Any]) -> Entry:
    """What a newer library tells beyond the fields is left out."""
    names = {each.name for each in fields(Entry)} - {"file"}
    return Entry(Path(one["file"]), **{key: one[key] or "" for key in names & one.keys()})


@dataclass(frozen=True, slots=True)
class Finding:
    """Something that is not as it should be, or may not be meant, and where."""

    #: A member of an archive stands behind its path and a "/".
    file: str
    #: From 1; 0: about the file as a whole.
    line: int
    #: In bytes from 1; 0: only the line is known.
    column: int
    severity: Severity
    #: Its name; docs/rules holds a page for each.
    rule: str
    text: str
    #: Not 0: so many more of the rule are not shown; this one stands for them.
    more: int = 0

    def __str__(self) -> str:
        place = "".join(f":{one}" for one in (self.line, self.column) if one)
        return f"{self.file}{place}: {self.severity}: {self.text} [{self.rule}]"


def validate(paths: PathText | Iterable[PathText], *, progress: Progress | None = None) -> Iterator[Finding]:
    """Every finding about the platforms and all that they refer to, platform by platform.

    A bad file is a finding and no exception. Work on the next platform starts when its findings are
    asked for.

    >>> list(validate(samples / "ostrivel_e7/ostrivel_e7.qpfm"))
    []
    """
    for path in _listed(paths):
        yield from _findings(_library.path_of(path), progress)


def _findings(path: bytes, progress: Progress | None) -> list[Finding]:
    found: list[Finding] = []

    def keep(pointer: Any) -> None:
        raw = pointer.contents
        found.append(Finding(text_of(raw.file), raw.line, raw.column, _library.at(Severity, raw.severity),
                             text_of(raw.rule), text_of(raw.text), raw.more))

    with Watch(progress) as watch:
        callback = _c.FindingCallback(lambda pointer, _: watch.guard(keep, pointer))
        options = _library.options_of(_c.ProgressOptions, on_progress=watch.on_progress)
        _library.call("hmav_validate", _library.session, path, callback, None, options, None)
    return found


def doc(key: str | None = None) -> dict[str, Any]:
    """What a key means: "CLASS", "CLASS.MEMBER" or a path into the document; without a key, all of them.

    >>> doc("hardwarePlatform.systemClocks[].frequency")["unit"]
    'MHz'
    """
    made: dict[str, Any] = _library.json_from("hmav_key_documentation", _library.session,
                                              _library.optional(key))
    return made


def protect(source: PathText, target: PathText) -> None:
    """Enciphers a file with the host's key."""
    _library.call("hmav_protect", _library.session, _library.path_of(source), _library.path_of(target))


def unprotect(source: PathText, target: PathText) -> None:
    """Deciphers a file with the host's key, for its owner alone."""
    _library.call("hmav_unprotect", _library.session, _library.path_of(source), _library.path_of(target))
