# SPDX-License-Identifier: Apache-2.0
"""Walks over schemas, and over documents beside their schema."""
import json
import xml.etree.ElementTree as ElementTree

from support import load

XS = "{http://www.w3.org/2001/XMLSchema}"


class XmlSchema:
    """The items of each type of a schema, and which of them a document uses."""

    def __init__(self, path):
        root = ElementTree.parse(path).getroot()
        self.types = {node.get("name"): node for node in root.findall(XS + "complexType")}
        self.groups = {node.get("name"): node for node in root.findall(XS + "group")}
        self.root = root.find(XS + "element").get("type").rpartition(":")[2]
        self.elements = {name: dict(self._elements(node, ())) for name, node in self.types.items()}

    def _elements(self, node, seen):
        for child in node.iter():
            if child.tag == XS + "element":
                yield child.get("name"), child.get("type").rpartition(":")[2]
            elif child.tag == XS + "group" and child.get("ref"):
                name = child.get("ref").rpartition(":")[2]
                if name not in seen:
                    yield from self._elements(self.groups[name], (*seen, name))

    def items(self):
        for name, node in self.types.items():
            for attribute in node.iter(XS + "attribute"):
                yield f"{name}/@{attribute.get('name')}"
            for element in self.elements[name]:
                yield f"{name}/{element}"

    def used(self, text):
        yield from self._used(ElementTree.fromstring(text), self.root)

    def _used(self, element, kind):
        if kind not in self.types:
            return
        for attribute in element.attrib:
            yield f"{kind}/@{attribute.rpartition('}')[2]}"
        for child in element:
            name = child.tag.rpartition("}")[2]
            yield f"{kind}/{name}"
            yield from self._used(child, self.elements[kind][name])


class JsonSchema:
    """The properties of each object of a schema, and which of them a document uses."""

    def __init__(self, name):
        self.schema = load(name)

    def resolved(self, node, place):
        while "$ref" in node:
            place = node["$ref"].rpartition("/")[2]
            node = self.schema["$defs"][place]
        return node, place

    def items(self):
        yield from self._items(self.schema, "")

    def _items(self, node, place):
        if not isinstance(node, dict):
            return
        for key, value in node.get("properties", {}).items():
            yield f"{place}/{key}"
            yield from self._items(value, f"{place}/{key}")
        for key in ("items", "additionalProperties"):
            yield from self._items(node.get(key), place + "/[]")
        if node is self.schema:
            for name, definition in node["$defs"].items():
                yield from self._items(definition, name)

    def used(self, text):
        yield from self._used(json.loads(text), self.schema, "")

    def _used(self, value, node, place):
        node, place = self.resolved(node, place)
        if isinstance(value, list):
            for item in value:
                yield from self._used(item, node.get("items", {}), place + "/[]")
        elif isinstance(value, dict):
            properties = node.get("properties", {})
            rest = node.get("additionalProperties", False)
            for key, item in value.items():
                if key in properties:
                    yield f"{place}/{key}"
                    yield from self._used(item, properties[key], f"{place}/{key}")
                elif isinstance(rest, dict):
                    yield from self._used(item, rest, place + "/[]")
