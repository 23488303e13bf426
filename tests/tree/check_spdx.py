#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Fails when a source file does not open with its licence line. Usage: check_spdx.py ROOT"""
import os
import sys

LINE = "SPDX-License-Identifier: Apache-2.0"
SUFFIXES = (".cpp", ".h", ".c", ".cmake", ".py", ".sh", ".xsd", ".java", ".i")
NAMES = ("CMakeLists.txt", "dev", "run", ".clang-tidy")
SKIPPED = ("build", ".git", ".cache", "__pycache__")


def sources(root):
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in SKIPPED]
        for name in names:
            if name.endswith(SUFFIXES) or name in NAMES:
                yield os.path.join(folder, name)


def has_line(path):
    """The first line, or the second where an interpreter or an XML declaration comes first."""
    with open(path, encoding="utf-8", errors="replace") as file:
        first = file.readline()
        if LINE in first:
            return True
        return first.startswith(("#!", "<?xml")) and LINE in file.readline()


def main():
    paths = sorted(sources(sys.argv[1]))
    bad = [path for path in paths if not has_line(path)]
    for path in bad:
        print(f"{path}:1: the line '{LINE}' is missing")
    if not paths:
        print("found no source file to check")
    print(f"{len(paths)} files, {len(bad)} without the licence line")
    return 1 if bad or not paths else 0


if __name__ == "__main__":
    sys.exit(main())
