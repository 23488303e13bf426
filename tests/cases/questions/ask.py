# SPDX-License-Identifier: Apache-2.0
"""Answers questions through the Python package; questions and answers as in ask.c."""
import json
import sys

import mav_platform

PLATFORM = {
    "get": lambda platform, argument: platform.get(argument),
    "dict": lambda platform, argument: platform.flat(argument),
    "transform": lambda platform, argument: platform.transform(argument),
    "keys": lambda platform, _: {"keys": [{"path": path, "count": str(count)}
                                          for path, count in platform.keys().items()]},
    "supported": lambda platform, argument: bool(platform.support(tool_release=argument)),
}
OTHER = {
    "doc": lambda _, argument: mav_platform.doc(argument),
    "errors": lambda file, _: sum(max(one.more, 1) for one in mav_platform.validate(file)
                                  if one.severity is mav_platform.Severity.ERROR),
    "digest": lambda file, _: mav_platform.Archive(file).verify().digest,
    "members": lambda file, _: len(mav_platform.Archive(file)),
}


def ask(what, file, argument):
    try:
        if what in OTHER:
            return mav_platform.Code.DONE, json.dumps(OTHER[what](file, argument))
        with mav_platform.load(file) as platform:
            return mav_platform.Code.DONE, json.dumps(PLATFORM[what](platform, argument))
    except mav_platform.PlatformError as error:
        return error.code, ""


for line in sys.stdin:
    code, text = ask(*line.rstrip("\n").split("\t"))
    print(f"{code} {len(text.encode())}\n{text}")
