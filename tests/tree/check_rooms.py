#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads the #include lines and fails when an arrow between the rooms runs the wrong way.

Usage: check_rooms.py [ROOT]. The rules, as docs/architecture.md draws them:
- a room includes itself and the rooms before it;
- a source, never a header, may include a class from above that its own header forward-declares;
- headers form a graph without cycles;
- the command includes installed headers and its own alone;
- the libraries that know a syntax (zip, XML, ciphers) appear in host/src alone;
- texts are not hashed without a seed, but where a signature asks for it.
"""
import pathlib
import re
import sys

ORDER = ["host", "json", "model", "archive", "formats", "load", "repository", "services", "check",
         "capi", "cli"]
LEVEL = {room: level for level, room in enumerate(ORDER)}
SYNTAX_LIBRARIES = {"zip.h", "zlib.h", "expat.h", "sodium.h", "libdeflate.h"}
UNSEEDED = re.compile(r"unordered_(set<std::string>|map<std::string, (?!HMAVPlatform\*>))")
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)


class Tree:
    """The files of the product, the rooms they stand in, and what each of them includes."""

    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.files = sorted(path for top in ("host", "platform", "cli")
                            for path in (self.root / top).rglob("*")
                            if path.suffix in (".h", ".cpp", ".c"))
        self.text = {path: path.read_text(encoding="utf-8") for path in self.files}
        self.sources = {path.stem: path for path in self.files if path.suffix == ".cpp"}
        self.includes = {path: self._resolve_all(path) for path in self.files}
        self.rooms = {}
        for path in self.files:
            self._room(path)

    def name(self, path):
        return path.relative_to(self.root).as_posix()

    def _resolve_all(self, path):
        found = []
        for quote, name in INCLUDE.findall(self.text[path]):
            folders = [path.parent] if quote == '"' else []
            folders += [self.root / "host/include", self.root / "platform/include"]
            folders.append(self.root / path.relative_to(self.root).parts[0] / "src")
            hits = (folder / name for folder in folders if (folder / name) in self.text)
            found.append((name, next(hits, None)))
        return found

    def _room(self, path, seen=()):
        """An installed header stands where its source does; without one, where its includes do."""
        if path in self.rooms or path in seen:
            return self.rooms.get(path, "json")
        parts = path.relative_to(self.root).parts
        if parts[0] != "platform":
            room = parts[0]
        elif parts[1] == "src":
            room = parts[2]
        elif path.stem in self.sources:
            room = self._room(self.sources[path.stem])
        else:
            below = [self._room(header, (*seen, path))
                     for _, header in self.includes[path] if header]
            room = max([*below, "json"], key=lambda one: LEVEL.get(one, 0))
        self.rooms[path] = room
        return room

    def own_header(self, source):
        return next((path for path in self.files
                     if path.suffix == ".h" and path.stem == source.stem), None)


def forward_declared(tree, source, header):
    own = tree.own_header(source)
    declared = rf"^\s*(class|struct)\s+{re.escape(header.stem)}\s*;"
    return own is not None and re.search(declared, tree.text[own], re.MULTILINE)


def wrong_arrows(tree):
    for path in tree.files:
        room = tree.rooms[path]
        if room not in LEVEL:
            yield f"{tree.name(path)}: '{room}' is no room of the house"
            continue
        for _, header in tree.includes[path]:
            above = header and LEVEL.get(tree.rooms[header], 0) > LEVEL[room]
            if above and not (path.suffix != ".h" and forward_declared(tree, path, header)):
                yield (f"{tree.name(path)} ({room}) includes {tree.name(header)} "
                       f"({tree.rooms[header]}), which stands above it")


def wrong_libraries(tree):
    for path in tree.files:
        name = tree.name(path)
        for included, header in tree.includes[path]:
            if included in SYNTAX_LIBRARIES and not name.startswith("host/src/"):
                yield f"{name} includes <{included}>, which belongs in host/src"
            if name.startswith("cli/") and header and "/src/" in tree.name(header):
                yield f"{name} includes {tree.name(header)}, which is not installed"


def unseeded_tables(tree):
    """Whoever chooses names can make them fall together in a table that hashes without a seed."""
    for path in tree.files:
        if path.suffix == ".cpp" and UNSEEDED.search(tree.text[path]):
            yield f"{tree.name(path)} hashes texts without a seed; take an ordered container"


def cycles(tree):
    done, trail = set(), []

    def visit(path):
        if path in trail:
            chain = trail[trail.index(path):] + [path]
            yield "headers in a circle: " + " -> ".join(tree.name(one) for one in chain)
            return
        if path in done:
            return
        trail.append(path)
        for _, header in tree.includes[path]:
            if header:
                yield from visit(header)
        trail.pop()
        done.add(path)

    for path in tree.files:
        yield from visit(path)


def main():
    tree = Tree(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2])
    arrows = sum(1 for includes in tree.includes.values() for _, header in includes if header)
    faults = [*wrong_arrows(tree), *wrong_libraries(tree), *unseeded_tables(tree),
              *cycles(tree)]
    for fault in faults:
        print(fault)
    if not arrows:
        print("found no #include between files of the tree")
    print(f"{len(tree.files)} files, {arrows} arrows, {len(faults)} faults")
    return 1 if faults or not arrows else 0


if __name__ == "__main__":
    sys.exit(main())
