# SPDX-License-Identifier: Apache-2.0
"""What the library answers when it cannot do what was asked."""
from __future__ import annotations

from dataclasses import dataclass

from mav_platform._c import Code, Severity


@dataclass(frozen=True, slots=True)
class Report:
    """What the library told on its way. A line that it printed has an empty id."""

    severity: Severity
    id: str
    text: str
    arguments: tuple[str, ...] = ()

    def __str__(self) -> str:
        return self.text


class PlatformError(Exception):
    """The base of everything that the library refuses.

    ``str()`` gives a sentence that names the file, member, key or line.
    """

    #: What kind of failure it is.
    code: Code = Code.INTERNAL

    def __init__(self, text: str, hint: str = "", reports: tuple[Report, ...] = ()) -> None:
        super().__init__(text)
        #: What to do: a sentence, or empty.
        self.hint = hint
        #: What was told during the call, in order.
        self.reports = reports

    def __reduce__(self) -> tuple[type[PlatformError], tuple[str, str, tuple[Report, ...]]]:
        return type(self), (str(self), self.hint, self.reports)


class WrongArgument(PlatformError, ValueError):
    """A malformed argument, such as a faulty transform specification."""

    code = Code.WRONG_ARGUMENT


class NotFound(PlatformError, LookupError):
    """No such file, path of a document, key or member."""

    code = Code.NOT_FOUND


class NotLoadable(PlatformError):
    """A file is there and is unusable."""

    code = Code.NOT_LOADABLE


class Refused(PlatformError):
    """Possible but not allowed: a digest that does not vouch, a wrong key."""

    code = Code.REFUSED


class CannotWrite(PlatformError):
    """What was there before is there still."""

    code = Code.CANNOT_WRITE


class OutOfMemory(PlatformError, MemoryError):
    """Memory ran out."""

    code = Code.OUT_OF_MEMORY


class Stopped(PlatformError):
    """A progress callback asked for it; files are what they were."""

    code = Code.STOPPED


#: The class of each code.
CLASSES: dict[int, type[PlatformError]] = {
    one.code: one for one in (WrongArgument, NotFound, NotLoadable, Refused, CannotWrite, OutOfMemory,
                              Stopped)}
