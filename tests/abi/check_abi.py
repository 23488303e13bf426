#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the names that the shared library exports with the list in the tree.

Usage: check_abi.py [--update] LIBRARY LIST

Every name carries its version: HMAV_1.0 for the C interface, MAV_CXX_1 for the classes. Inline
functions are not listed, for the compiler emits them or not; names of other libraries are a fault.
"""
import subprocess
import sys

TYPE_DATA = ("vtable for ", "typeinfo for ", "typeinfo name for ", "VTT for ")
FOREIGN = ("std::", "boost::", "__gnu_cxx::", "void std::", "bool std::")
VERSIONS = ("HMAV_1.0", "MAV_CXX_1")


def exported(library):
    """The names to be listed, and a sentence about each that must not be there."""
    listing = subprocess.run(["nm", "-D", "--defined-only", "--demangle", "--with-symbol-versions",
                              library], capture_output=True, text=True, check=True).stdout
    names, faults = set(), []
    for line in listing.splitlines():
        kind, whole = line.split(maxsplit=2)[1:]
        name, _, version = whole.partition("@@")
        if kind == "A" and name in VERSIONS or name.startswith(("__odr_asan", "__asan")):
            continue
        prefix = next((text for text in TYPE_DATA if name.startswith(text)), "")
        wanted = VERSIONS[0] if name.startswith("hmav_") else VERSIONS[1]
        if version != wanted:
            faults.append(f"{name} has the version '{version}' and not {wanted}")
        if name[len(prefix):].startswith(FOREIGN):
            faults.append(f"{name} belongs to another library")
        if kind not in "WwVvu" or prefix:
            names.add(name)
    return sorted(names), faults


def main():
    arguments = sys.argv[1:]
    update = arguments[0] == "--update"
    library, path = arguments[-2:]
    names, faults = exported(library)
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
    for text in faults:
        print(text)
    for name in added:
        print(f"exported but not listed: {name}")
    for name in gone:
        print(f"listed but not exported: {name}")
    if added or gone:
        print(f"The exported names changed. When that is intended, run ./dev abi-update, review\n"
              f"the change of {path} and commit it with the code.")
    return 1 if added or gone or faults else 0


if __name__ == "__main__":
    sys.exit(main())
