# SPDX-License-Identifier: Apache-2.0
"""Archives: their members, reading, extracting, adding, verifying, packing."""
from __future__ import annotations

import ctypes
import io
import os
from collections.abc import Iterator, Mapping
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Self

from mav_platform import _c, _library
from mav_platform._c import Digest
from mav_platform._library import PathText, Progress, Watch, text_of
from mav_platform._view import _grid


@dataclass(frozen=True, slots=True)
class Member:
    """A member of an archive. Sizes are in bytes."""

    name: str
    #: Those that it is listed under; empty when it is not listed.
    types: tuple[str, ...]
    #: As the archive's directory claims.
    size: int
    packed_size: int


@dataclass(frozen=True, slots=True)
class Verification:
    """Whether an archive is what its digest says; true when it is and every member is readable."""

    digest: Digest
    #: A line for each member that cannot be read or is listed and absent.
    faults: tuple[str, ...]

    def __bool__(self) -> bool:
        return self.digest is Digest.VALID and not self.faults


class _Raw(io.RawIOBase):
    """A member in pieces."""

    def __init__(self, handle: _library.Handle) -> None:
        self._handle = handle

    def readable(self) -> bool:
        return True

    def readinto(self, buffer: Any) -> int:
        room, got = memoryview(buffer).cast("B"), ctypes.c_size_t()
        if not room:
            return 0
        target = (ctypes.c_char * len(room)).from_buffer(room)
        with self._handle as handle:
            _library.call("hmav_reader_read", handle, target, len(room), ctypes.byref(got))
        return got.value

    def close(self) -> None:
        if not self.closed:
            self._handle.close()
        super().close()


class Archive(Mapping[str, Member]):
    """An archive opened for reading: a mapping from names to members, in the archive's order.

    >>> with Archive(samples / "veltrin_h90/veltrin_h90.pka") as archive:
    ...     len(archive), archive["pka.json"].types, archive.verify().digest
    (61, (), <Digest.VALID: 'valid'>)
    """

    def __init__(self, path: PathText) -> None:
        self._path = Path(path)
        self._known: dict[str, Member] | None = None
        self._handle = _library.Handle("hmav_archive_free", lambda made: _library.call(
            "hmav_archive_open", _library.session, _library.path_of(path), made))

    @property
    def path(self) -> Path:
        """As it was given."""
        return self._path

    def _members(self) -> dict[str, Member]:
        with self._handle as handle:
            if self._known is None:
                listed = (self._member(handle, one) for one in range(_library.library.hmav_archive_count(handle)))
                self._known = {one.name: one for one in listed}
            return self._known

    @staticmethod
    def _member(handle: ctypes.c_void_p, index: int) -> Member:
        found = ctypes.POINTER(_c.Member)()
        _library.call("hmav_archive_member", handle, index, ctypes.byref(found))
        raw = found.contents
        types = text_of(raw.types)
        return Member(text_of(raw.name), tuple(types.split(",")) if types else (), raw.bytes, raw.packed)

    def __getitem__(self, name: str) -> Member:
        return self._members()[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._members())

    def __len__(self) -> int:
        return len(self._members())

    def open(self, name: str) -> io.BufferedReader:
        """A member as a binary stream, read in pieces. It may outlive the archive.

        A member that is damaged is :class:`NotLoadable`, which may show behind pieces that were given.

        >>> with Archive(samples / "veltrin_h90/veltrin_h90.pka").open("pka.json") as stream:
        ...     stream.read(1)
        b'{'
        """
        raw = _library.bytes_of(name)
        with self._handle as archive:
            reader = _library.Handle("hmav_reader_free", lambda made: _library.call(
                "hmav_reader_open", archive, raw, made))
        return io.BufferedReader(_Raw(reader), 1 << 16)

    def read(self, name: str) -> bytes:
        """The whole member."""
        with self.open(name) as stream:
            return stream.read()

    def extract(self, what: str, directory: PathText, *, progress: Progress | None = None) -> Path:
        """Extracts a type, a member or a folder of members below the directory, and answers the path
        of what was made. Names that climb out and links on the way are :class:`Refused`."""
        made = _library.Text()
        with Watch(progress) as watch, self._handle as handle:
            options = _library.options_of(_c.ProgressOptions, on_progress=watch.on_progress)
            _library.call("hmav_archive_extract", handle, _library.bytes_of(what),
                          _library.path_of(directory), options, ctypes.byref(made.pointer))
        return Path(made.take())

    def add(self, type: str, file: PathText, *, member: str | None = None, resign: bool = False,
            progress: Progress | None = None) -> None:
        """Adds a file under a type, lists it and puts a new digest over the archive, in one step.

        :class:`Refused` when the present digest does not vouch for the members and `resign` is not
        set. The archive then stands for the new file.
        """
        with Watch(progress) as watch, self._handle as handle:
            options = _library.options_of(_c.AddOptions, member=_library.optional(member), resign=resign,
                                          on_progress=watch.on_progress)
            _library.call("hmav_archive_add", handle, _library.bytes_of(type), _library.path_of(file), options)
            self._known = None

    def verify(self, *, progress: Progress | None = None) -> Verification:
        """Reads every member and compares the digest."""
        digest, faults = ctypes.c_int(), _library.Text()
        with Watch(progress) as watch, self._handle as handle:
            options = _library.options_of(_c.ProgressOptions, on_progress=watch.on_progress)
            _library.call("hmav_archive_verify", handle, options, ctypes.byref(digest),
                          ctypes.byref(faults.pointer))
        return Verification(_library.at(Digest, digest.value), tuple(faults.take().splitlines()))

    def close(self) -> None:
        """Gives the archive back. What is asked afterwards is a :class:`ValueError`."""
        self._handle.close()

    def __enter__(self) -> Self:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    __eq__ = object.__eq__
    __hash__ = object.__hash__

    def __repr__(self) -> str:
        told = "closed" if self._handle.closed else f"{len(self)} members"
        return f"<Archive {os.fspath(self._path)!r}, {told}>"

    def _repr_html_(self) -> str:
        return _grid(("name", "types", "size", "packed"), [
            [one.name, list(one.types), one.size, one.packed_size] for one in self.values()])


def pack(directory: PathText, archive: PathText, *, without_metadata: bool = False,
         progress: Progress | None = None) -> Archive:
    """Packs the files below a folder into an archive (.pka or .dsa) with a digest, and opens it.

    The same files give the same bytes.
    """
    with Watch(progress) as watch:
        options = _library.options_of(_c.PackOptions, without_metadata=without_metadata,
                                      on_progress=watch.on_progress)
        _library.call("hmav_pack", _library.session, _library.path_of(directory),
                      _library.path_of(archive), options)
    return Archive(archive)
