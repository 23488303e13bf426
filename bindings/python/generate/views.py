#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes a class of typed properties for each object of the document.

Usage: views.py SCHEMA KEY_DOCUMENTATION OUTPUT. The schema says what there is, the documentation of
the keys what it means and in which unit. What is not understood ends the work.
"""
import json
import pathlib
import re
import sys

# Where the document's own name would mislead or collide in Python.
CLASSES = {"HMAVPlatform": "Description", "HPLPlatform": "HardwarePlatform", "rows": "Rows",
           "nameValues": "NameValue", "typeCounts": "TypeCount"}
ATTRIBUTES = {"HMAVPlatform.hardware": "runs_on_hardware", "HPLPlatform.hardware": "runs_on_hardware",
              "HPLPlatform.systemClocks": "clocks"}
ENUMS = {"HMAVPlatform.type": "PlatformType", "HMAVDpeHardware.arch": "DpeArchitecture",
         "HMAVDpeHardware.archMap": "DpeArchitecture",
         "HMAVHardwareFeatureRom.featureBitMap": "FeatureBit"}
# Objects that the schema writes in place, as the documentation of the keys calls them.
INLINE = {"hardwarePlatforms": "HardwarePlatforms", "flash": "Flash", "dpengineIDs": "DpengineIDs"}
INTEGERS = {"unsigned", "unsigned64", "integer", "hex"}
FLAGS = {"boolean", "onlyTrue"}
DECIMAL_UNITS = {"MHz": "mhz", "ns": "ns"}
WHOLE_UNITS = {"bits", "beats", "bytes, as text", "bytes, as 0x text"}


def class_name(name):
    return CLASSES.get(name) or re.sub(r"^(HMAVHardware|HMAV|HPL)", "", name)


def attribute_name(owner, key):
    words = re.sub(r"(ID|SLR)s$", lambda plural: plural[1].capitalize() + "s", key)
    words = re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", words)
    words = re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", words)
    return ATTRIBUTES.get(f"{owner}.{key}", words.lower())


class Views:
    def __init__(self, schema, documentation):
        self.schema, self.documentation = schema, documentation
        self.definitions = schema["$defs"]
        self.enums, self.classes, self.names = {}, {}, set()

    def make(self):
        self.add_class("HMAVPlatform", self.schema)
        return self

    def add_class(self, name, schema):
        if name not in self.classes:
            self.classes[name] = []  # known before its members are looked at: some hold themselves
            self.classes[name] = [line for key, value in schema["properties"].items()
                                  for line in self.property_lines(name, key, value)]
        return class_name(name)

    def add_enum(self, owner, key, values):
        name = ENUMS[f"{owner}.{key}"]
        if self.enums.setdefault(name, values) != values:
            raise SystemExit(f"{owner}.{key}: {name} has other values elsewhere")
        return name

    def entry(self, owner, key):
        entry = self.documentation.get(owner, {}).get(key)
        if entry is None:
            raise SystemExit(f"{owner}.{key} is in the schema and not documented")
        return entry

    def property_lines(self, owner, key, schema):
        entry, name = self.entry(owner, key), attribute_name(owner, key)
        unit = entry.get("unit", "")
        for attribute, made, read in self.readings(owner, key, schema, name, unit):
            if (owner, attribute) in self.names:
                raise SystemExit(f"{owner}.{attribute} stands for two keys")
            self.names.add((owner, attribute))
            told = entry["meaning"] + (f", in {unit}" if unit and made != "str" else "")
            yield (attribute, key, made, read, told)

    def readings(self, owner, key, schema, name, unit):
        """Each property over the key: its name, its type and how it is read."""
        kind = schema.get("$ref", "").rpartition("/")[2]
        if kind in FLAGS:
            yield name, "bool", f"self._flag({key!r})"
        elif kind in INTEGERS or (kind == "text" and unit in WHOLE_UNITS):
            yield name, "int | None", f"self._integer({key!r})"
        elif kind == "text" or schema.get("type") == "string":
            yield name, "str", f"self._text({key!r})"
            if unit in DECIMAL_UNITS:
                yield f"{name}_{DECIMAL_UNITS[unit]}", "float | None", f"self._number({key!r})"
        elif kind == "texts":
            yield name, "tuple[str, ...]", f"self._texts({key!r})"
        elif "enum" in schema:
            made = self.add_enum(owner, key, schema["enum"])
            yield name, f"{made} | None", f"self._member({key!r}, {made})"
        else:
            yield self.structure(owner, key, self.definitions.get(kind, schema), kind, name)

    def structure(self, owner, key, schema, kind, name):
        """A list of objects, an object, or a mapping whose names the document chooses."""
        if schema["type"] == "array":
            item = schema["items"]
            item_kind = item.get("$ref", "").rpartition("/")[2]
            made = self.add_class(item_kind or kind, self.definitions.get(item_kind, item))
            return name, f"Views[{made}]", f"self._views({key!r}, {made})"
        if "properties" in schema:
            made = self.add_class(kind or INLINE[key], schema)
            return name, f"{made} | None", f"self._view({key!r}, {made})"
        values = schema.get("additionalProperties", {})
        if "enum" in values:
            made = self.add_enum(owner, key, values["enum"])
            return name, f"Mapping[str, {made}]", f"self._members({key!r}, {made})"
        made = "str" if values else "Any"
        return name, f"Mapping[str, {made}]", f"self._mapping({key!r})"

    def required(self, name):
        schema = self.schema if name == "HMAVPlatform" else self.definitions.get(name)
        return (schema or self.inline(name)).get("required", [])

    def inline(self, name):
        for owner in (self.schema, *self.definitions.values()):
            for key, value in owner.get("properties", {}).items():
                if INLINE.get(key) == name:
                    return value
        return {}


def enum_lines(name, values):
    yield f'\n\nclass {name}(StrEnum):\n    """One of {", ".join(values)}."""\n\n'
    yield "".join(f"    {value.upper()} = {value!r}\n" for value in values)


def class_lines(name, required, members):
    shown = [(attribute, key) for attribute, key, *_ in members]
    yield f'\n\nclass {class_name(name)}(View):\n    """``{name}`` of the document."""\n\n    __slots__ = ()\n'
    yield f"    _keys = {tuple(shown)!r}\n" if len(shown) > 1 else f"    _keys = ({shown[0]!r},)\n"
    for attribute, key, made, read, told in members:
        if key in required and made.endswith(" | None") and made != "float | None":
            made, read = made.removesuffix(" | None"), read.replace("self._", "self._required_", 1)
        yield f"\n    @property\n    def {attribute}(self) -> {made}:\n"
        yield f'        """{told} (``{key}``)."""\n        return {read}\n'


def write(views):
    yield "# Made by the build from the schema of the document and the documentation of its keys.\n"
    yield "# SPDX-License-Identifier: Apache-2.0\n"
    yield '"""Typed read-only views of a platform\'s document, a class for each kind of object in it."""\n'
    yield "from __future__ import annotations\n\nfrom collections.abc import Mapping\nfrom enum import StrEnum\n"
    yield "from typing import Any\n\nfrom mav_platform._view import View, Views\n"
    for name, values in views.enums.items():
        yield from enum_lines(name, values)
    for name, members in views.classes.items():
        yield from class_lines(name, views.required(name), members)


def main():
    schema, documentation = (json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
                             for path in sys.argv[1:3])
    views = Views(schema, documentation["documentation_keys"]).make()
    pathlib.Path(sys.argv[3]).write_text("".join(write(views)), encoding="utf-8")


if __name__ == "__main__":
    main()
