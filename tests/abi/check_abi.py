#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the names that the shared library exports with the list in the tree.

Usage: check_abi.py [--update] LIBRARY LIST

Counted are the names that this system defines. Left out are instantiations of library templates,
which the compiler emits or not as it inlines, and inline functions of our own for the same reason.
"""
import subprocess
import sys

TYPE_DATA = ("vtable for ", "typeinfo for ", "typeinfo name for ", "VTT for ")
FOREIGN = ("std::", "boost::", "__gnu_cxx::", "__odr_asan", "_init", "_fini",
           "construction vtable for ")


def exported(library):
    listing = subprocess.run(["nm", "-D", "--defined-only", "--demangle", library],
                             capture_output=True, text=True, check=True).stdout
    names = set()
    for line in listing.splitlines():
        kind, name = line.split(maxsplit=2)[1:] if line[0] in "0123456789abcdef" else ("", "")
        prefix = next((text for text in TYPE_DATA if name.startswith(text)), "")
        if kind in "WwVvu" and not prefix:
            continue
        if name and not name[len(prefix):].startswith(FOREIGN):
            names.add(name)
    return sorted(names)


def main():
    arguments = sys.argv[1:]
    update = arguments[0] == "--update"
    library, path = arguments[-2:]
    names = exported(library)
    if not names:
        print(f"{library} exports no name of this system")
        return 1
    if update:
        with open(path, "w", encoding="utf-8") as file:
            file.writelines(name + "\n" for name in names)
        print(f"{path}: {len(names)} names")
        return 0
    with open(path, encoding="utf-8") as file:
        listed = file.read().splitlines()
    added, gone = sorted(set(names) - set(listed)), sorted(set(listed) - set(names))
    for name in added:
        print(f"exported but not listed: {name}")
    for name in gone:
        print(f"listed but not exported: {name}")
    if added or gone:
        print(f"The exported names changed. When that is intended, run ./dev abi-update, review\n"
              f"the change of {path} and commit it with the code.")
    return 1 if added or gone else 0


if __name__ == "__main__":
    sys.exit(main())
