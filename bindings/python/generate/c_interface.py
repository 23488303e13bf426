#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the ctypes side of the C header, so that the two cannot drift.

Usage: c_interface.py HEADER OUTPUT. Functions that let exceptions pass (without HMAV_NOEXCEPT) are
left out. A declaration that is not understood ends the work.
"""
import os
import pathlib
import re
import sys

SCALARS = {"int": "ctypes.c_int", "size_t": "ctypes.c_size_t", "uint64_t": "ctypes.c_uint64",
           "double": "ctypes.c_double", "void": "None"}
# Texts of the library stay pointers, to be given back.
OWNED = {"*": "ctypes.c_void_p", "**": "ctypes.POINTER(ctypes.c_void_p)"}
CLASS_OF_ENUM = {"hmav_code": "IntEnum"}


def class_name(name):
    return "".join(word.capitalize() for word in name.removeprefix("hmav_").split("_"))


class Header:
    """The declarations of the header, in its order."""

    def __init__(self, text):
        text = re.sub(r"/\*.*?\*/", " ", text, flags=re.DOTALL)
        self.version = re.search(r"#define HMAV_API_VERSION (\d+)", text)[1]
        text = re.sub(r"^\s*#.*$", "", text, flags=re.MULTILINE)
        self.enums = re.findall(r"typedef enum (\w+) \{(.*?)\}", text, re.DOTALL)
        self.structs = re.findall(r"typedef struct (\w+) \{(.*?)\}", text, re.DOTALL)
        self.callbacks = re.findall(r"typedef (\w+) \(\*(\w+)\)\((.*?)\);", text, re.DOTALL)
        self.functions = re.findall(r"MAV_API ([\w\s*]+?)(\w+)\(([^()]*)\) HMAV_NOEXCEPT;", text)
        self.known = {name for name, _ in self.structs} | {name for _, name, _ in self.callbacks}
        self.handles = set(re.findall(r"typedef struct (\w+) \w+;", text)) - self.known

    def type(self, text):
        """The ctypes of a C type."""
        stars = text.count("*")
        text = re.sub(r"\*|\bconst\b", " ", text)
        name = text.strip()
        if name in self.handles:
            made, stars = "ctypes.c_void_p", stars - 1
        elif name == "char" and stars:
            made, stars = "ctypes.c_char_p", stars - 1
        elif name == "void" and stars:
            made, stars = "ctypes.c_void_p", stars - 1
        elif name in self.known:
            made = class_name(name)
        else:
            made = SCALARS[name]
        for _ in range(stars):
            made = f"ctypes.POINTER({made})"
        return made

    def fields(self, text, separator):
        """Names and ctypes of the members of a struct or of the arguments of a function."""
        for part in filter(str.strip, text.split(separator)):
            declared, name = re.fullmatch(r"\s*(.*?)(\w+)\s*", part, re.DOTALL).groups()
            if declared.strip():
                yield name, self.type(declared)

    def arguments(self, text):
        for (_, made), part in zip(self.fields(text, ","), text.split(",")):
            owned = re.match(r"\s*char(\*+) ", part)
            yield made if owned is None else OWNED[owned[1]]


def enum_lines(header):
    for name, body in header.enums:
        members = re.findall(r"(\w+) = (\d+)", body)
        shared = os.path.commonprefix([member for member, _ in members]).rfind("_") + 1
        kind = CLASS_OF_ENUM.get(name, "StrEnum")
        if [int(value) for _, value in members] != list(range(len(members))):
            raise SystemExit(f"{name}: the values of an enumeration count from 0")
        yield f"\n\nclass {class_name(name)}({kind}):\n    \"\"\"``{name}``\"\"\"\n\n"
        for member, value in members:
            member = member[shared:]
            text = value if kind == "IntEnum" else repr(member.lower().replace("_", " "))
            yield f"    {member} = {text}\n"


def struct_and_callback_lines(header):
    """In an order in which each name stands before its use."""
    waiting = {name: ("struct", list(header.fields(body, ";"))) for name, body in header.structs}
    for result, name, arguments in header.callbacks:
        waiting[name] = ("callback", [("", SCALARS[result]), *header.fields(arguments, ",")])
    while waiting:
        unmade = {class_name(name) for name in waiting}
        ready = [name for name, (_, fields) in waiting.items() if not any(
            set(re.findall(r"\w+", made)) & (unmade - {class_name(name)}) for _, made in fields)]
        for name in ready:
            kind, fields = waiting.pop(name)
            made = class_name(name)
            if kind == "struct":
                yield f"\n\nclass {made}(ctypes.Structure):\n    \"\"\"``{name}``\"\"\"\n\n    _fields_ = [\n"
                yield "".join(f"        ({field!r}, {text}),\n" for field, text in fields) + "    ]\n"
            else:
                yield f"\n\n{made} = ctypes.CFUNCTYPE({', '.join(text for _, text in fields)})\n"


def write(header):
    yield "# Made by the build from mav_platform_c.h.\n# SPDX-License-Identifier: Apache-2.0\n"
    yield '"""The C interface as ctypes sees it: enumerations, structs, callbacks and functions."""\n'
    yield "from __future__ import annotations\n\nimport ctypes\nfrom enum import IntEnum, StrEnum\n"
    yield f"from typing import Any\n\nAPI_VERSION = {header.version}\n"
    yield from enum_lines(header)
    yield from struct_and_callback_lines(header)
    yield "\n\n#: Name of each function: what it answers and takes.\nFUNCTIONS: dict[str, tuple[Any, list[Any]]] = {\n"
    for result, name, arguments in header.functions:
        yield f"    {name!r}: ({header.type(result)}, [{', '.join(header.arguments(arguments))}]),\n"
    yield "}\n"


def main():
    header = Header(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    if not (header.functions and header.structs and header.enums and header.callbacks):
        raise SystemExit(f"{sys.argv[1]} declares nothing that is understood")
    pathlib.Path(sys.argv[2]).write_text("".join(write(header)), encoding="utf-8")


if __name__ == "__main__":
    main()
