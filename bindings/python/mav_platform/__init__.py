# SPDX-License-Identifier: Apache-2.0
"""Platforms that FPGA accelerated applications run on: loading, asking, validating, comparing them,
and the archives that hold them.

>>> import mav_platform
>>> platform = mav_platform.load(samples / "veltrin_h90/veltrin_h90.pka")
>>> [(clock.name, clock.frequency_mhz) for clock in platform.hardware.clocks[:2]]
[('kernel_clk', 300.0), ('kernel2_clk', 500.0)]

What cannot be done is a :class:`PlatformError` with a sentence, a hint and reports. What the library
tells on its way goes to the logger ``mav_platform``. Everything may be used from any thread.
"""
from mav_platform import _library, errors, views
from mav_platform._archive import Archive, Member, Verification, pack
from mav_platform._c import Code, Digest, MetadataMode, Severity, SupportQuestion
from mav_platform._library import Progress
from mav_platform._platform import (Change, ChangeKind, Difference, Platform, Verdict, diff, load)
from mav_platform._queries import (Entry, Finding, Found, Refusal, doc, find, protect, unprotect,
                                   validate)
from mav_platform._view import View, Views
from mav_platform.errors import (CannotWrite, NotFound, NotLoadable, OutOfMemory, PlatformError,
                                 Refused, Report, Stopped, WrongArgument)

#: Version of the library.
__version__ = _library.text_of(_library.library.hmav_get_version())

__all__ = [
    "Archive", "CannotWrite", "Change", "ChangeKind", "Code", "Difference", "Digest", "Entry",
    "Finding", "Found", "Member", "MetadataMode", "NotFound", "NotLoadable", "OutOfMemory", "Platform",
    "PlatformError", "Progress", "Refusal", "Refused", "Report", "Severity", "Stopped",
    "SupportQuestion", "Verdict", "Verification", "View", "Views", "WrongArgument", "diff", "doc",
    "errors", "find", "load", "pack", "protect", "unprotect", "validate", "views",
]
