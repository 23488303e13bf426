# SPDX-License-Identifier: Apache-2.0
"""The loaded library: finding it, calling it, and turning its answers into Python's."""
from __future__ import annotations

import ctypes
import json
import logging
import os
import re
import threading
import weakref
from collections.abc import Callable, Sequence
from enum import StrEnum
from pathlib import Path
from types import TracebackType
from typing import Any, NoReturn, Self, TypeVar

from mav_platform import _c
from mav_platform.errors import CLASSES, PlatformError, Report, WrongArgument

#: Told how far long work has come: the file or member at work, and 0 to 1, or None where nobody
#: knows. A true answer ends the work with :class:`Stopped`; an exception ends it and goes on.
Progress = Callable[[str, float | None], object]
PathText = str | os.PathLike[str]

logger = logging.getLogger("mav_platform")
logger.addHandler(logging.NullHandler())
LEVELS = {_c.Severity.NOTE: logging.INFO, _c.Severity.WARNING: logging.WARNING,
          _c.Severity.CRITICAL_WARNING: logging.WARNING, _c.Severity.ERROR: logging.ERROR}
E = TypeVar("E", bound=StrEnum)
NAME = "libmav_platform.so.1"


def _load() -> ctypes.CDLL:
    """The one of MAV_PLATFORM_LIBRARY, of the wheel, of the installed tree that this file is in, or
    the system's. CDLL lets other threads run meanwhile."""
    here = Path(__file__).resolve()
    near = (place / NAME for place in (here.parent / "native" / "lib", *here.parents[3:4]))
    name = os.environ.get("MAV_PLATFORM_LIBRARY") or next((str(one) for one in near if one.exists()), NAME)
    try:
        found = ctypes.CDLL(name)
        for function, (answer, takes) in _c.FUNCTIONS.items():
            bound = getattr(found, function)
            bound.restype, bound.argtypes = answer, takes
    except (OSError, AttributeError) as failure:
        raise ImportError(f"The platform library cannot be used: {failure}. Install libmav-platform1, or "
                          "name a library in MAV_PLATFORM_LIBRARY.") from failure
    if found.hmav_api_version() < _c.API_VERSION:
        raise ImportError(f"The platform library '{name}' is too old. Install the one of this package.")
    return found


library = _load()


def text_of(raw: bytes | None) -> str:
    """A text of the library. Bytes that are no UTF-8 survive, as in file names."""
    return (raw or b"").decode("utf-8", "surrogateescape")


def _whole(raw: bytes) -> bytes:
    if b"\0" in raw:
        raise WrongArgument(f"The text {text_of(raw)!r} holds a null character", "Take it out.")
    return raw


def bytes_of(text: str) -> bytes:
    """A text for the library."""
    return _whole(text.encode("utf-8", "surrogateescape"))


def path_of(path: PathText) -> bytes:
    """A path for the library, as the file system has it."""
    return _whole(os.fsencode(os.fspath(path)))


def optional(text: str | None) -> bytes | None:
    return None if text is None else bytes_of(text)


def at(made: type[E], number: int) -> E:
    """The member of an enumeration that the library tells by its number."""
    members: tuple[E, ...] = tuple(made)
    return members[number]


def number_of(member: StrEnum) -> int:
    """What the library calls it."""
    return list(type(member)).index(member)


def report_of(raw: _c.Report) -> Report:
    arguments = tuple(text_of(raw.arguments[index]) for index in range(raw.argument_count))
    return Report(at(_c.Severity, raw.severity), text_of(raw.id), text_of(raw.text), arguments)


def _log(pointer: Any, _user: object) -> None:
    report = report_of(pointer.contents)
    text = f"{report.id}: {report.text}" if report.id else report.text
    logger.log(LEVELS[report.severity], "%s", text, extra={"report": report})


_ON_REPORT = _c.ReportCallback(_log)  # as long as the process, for the library keeps it


# What hints call by the names of C.
_PYTHON_NAMES = {"hmav_platform_keys": "Platform.keys()", "hmav_validate": "mav_platform.validate()",
                 "hmav_archive_member": "list(Archive)", "hmav_protect": "mav_platform.protect()",
                 "hmav_key_documentation": "mav_platform.doc()"}


def _hint_of(raw: bytes | None) -> str:
    return re.sub(r"hmav_\w+", lambda name: _PYTHON_NAMES.get(name[0], name[0]), text_of(raw))


def _raise(error: ctypes.c_void_p, code: int) -> NoReturn:
    """Raises what the error object says, and frees it."""
    try:
        count = library.hmav_error_report_count(error)
        reports = tuple(report_of(library.hmav_error_report(error, one).contents) for one in range(count))
        text, hint = (text_of(library.hmav_error_text(error)), _hint_of(library.hmav_error_hint(error)))
    finally:
        library.hmav_error_free(error)
    raise CLASSES.get(code, PlatformError)(text or text_of(library.hmav_code_text(code)), hint, reports)


def call(function: str, *arguments: Any) -> None:
    """Calls a function whose last argument takes an error; raises when it fails."""
    error = ctypes.c_void_p()
    code = getattr(library, function)(*arguments, ctypes.byref(error))
    if code != _c.Code.DONE:
        _raise(error, code)


class Text:
    """Room for a text that the library hands over, which is taken and freed once."""

    def __init__(self) -> None:
        self.pointer = ctypes.c_void_p()

    def take(self, size: int = -1) -> str:
        try:
            return text_of(ctypes.string_at(self.pointer, size)) if self.pointer else ""
        finally:
            library.hmav_free_text(self.pointer)
            self.pointer = ctypes.c_void_p()


def text_from(function: str, *arguments: Any) -> str:
    """Calls a function whose last argument but the error takes a text."""
    made = Text()
    call(function, *arguments, ctypes.byref(made.pointer))
    return made.take()


def json_from(function: str, *arguments: Any) -> Any:
    return json.loads(text_from(function, *arguments))


def _new_session() -> ctypes.c_void_p:
    made = ctypes.c_void_p()
    options = _c.SessionOptions(ctypes.sizeof(_c.SessionOptions), _ON_REPORT)
    call("hmav_session_new", ctypes.byref(options), ctypes.byref(made))
    return made


#: Its reports go to the logger. All threads share it; it lives as long as the process.
session = _new_session()


def options_of(made: type[ctypes.Structure], **fields: Any) -> Any:
    return ctypes.byref(made(size=ctypes.sizeof(made), **fields))


def text_array(texts: Sequence[bytes]) -> Any:
    return (ctypes.c_char_p * len(texts))(*texts)


class Watch:
    """Carries exceptions of a callback over the library, which must not see them.

    An interrupt from the keyboard is one of them, so long work can be ended with it.
    """

    def __init__(self, progress: Progress | None = None) -> None:
        self._progress = progress
        self._failure: BaseException | None = None
        self.on_progress = _c.ProgressCallback(self._told) if progress else _c.ProgressCallback(0)

    def _told(self, what: bytes, done: float, _user: object) -> int:
        assert self._progress
        return self.guard(self._progress, text_of(what), done if done >= 0 else None)

    def guard(self, work: Callable[..., object], *arguments: Any) -> int:
        """Runs what a callback has to do: 1 when the library shall end its work."""
        if self._failure is not None:
            return 1
        try:
            return 1 if work(*arguments) else 0
        except BaseException as failure:  # pylint: disable=broad-exception-caught
            self._failure = failure
            return 1

    def __enter__(self) -> Self:
        return self

    def __exit__(self, kind: type[BaseException] | None, value: BaseException | None,
                 trace: TracebackType | None) -> None:
        if self._failure is not None:
            raise self._failure from None


class Handle:
    """An object of the library, used by one thread at a time and freed once."""

    def __init__(self, free: str, opening: Callable[[Any], None]) -> None:
        pointer = ctypes.c_void_p()
        opening(ctypes.byref(pointer))
        self._pointer = pointer
        self._lock = threading.RLock()
        self._free = weakref.finalize(self, getattr(library, free), pointer)
        self._free.atexit = False  # other threads may be at work still

    def __enter__(self) -> ctypes.c_void_p:
        self._lock.acquire()
        if not self._free.alive:
            self._lock.release()
            raise ValueError("it is closed already")
        return self._pointer

    def __exit__(self, *_: object) -> None:
        self._lock.release()

    @property
    def pointer(self) -> ctypes.c_void_p:
        """For a caller that has entered already."""
        return self._pointer

    @property
    def closed(self) -> bool:
        return not self._free.alive

    def close(self) -> None:
        with self._lock:
            self._free()
