# SPDX-License-Identifier: Apache-2.0
"""Every item of every format is used among the samples, and every member of the document stands in
a golden document, but for those that are listed here with the reason."""
import json
import unittest
import xml.etree.ElementTree as ElementTree

from support import NAMES, SCHEMAS, WITHOUT_SAMPLE, golden_documents, load, unpacked_samples

XS = "{http://www.w3.org/2001/XMLSchema}"

# Members of the document that no file can fill.
NOT_CARRIED = "the reader of software platforms leaves this item of the operating system out"
UNFILLED = {
    "HMAVProcessorGroup/osBSPIncludePaths": NOT_CARRIED,
    "HMAVProcessorGroup/osBSPLibraryPaths": NOT_CARRIED,
    "HMAVProcessorGroup/osSysRoot": NOT_CARRIED,
    "HMAVSoftwarePlatform/linuxRootFileSystemPath": "the caller sets it; no format has it",
}


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

    def _resolved(self, node, place):
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
        node, place = self._resolved(node, place)
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

    def disordered(self, text):
        """Places of objects whose members do not stand in the order of the properties."""
        yield from self._disordered(json.loads(text), self.schema, "")

    def _disordered(self, value, node, place):
        node, place = self._resolved(node, place)
        for item in value if isinstance(value, list) else ():
            yield from self._disordered(item, node.get("items", {}), place)
        properties = node.get("properties", {})
        known = [key for key in value if key in properties] if isinstance(value, dict) else []
        if known != [key for key in properties if key in known]:
            yield place
        for key in known:
            yield from self._disordered(value[key], properties[key], f"{place}/{key}")


class Coverage(unittest.TestCase):
    maxDiff = None

    def covered(self, name, texts, excused=()):
        schema = XmlSchema(SCHEMAS / name) if name.endswith(".xsd") else JsonSchema(name)
        items = set(schema.items())
        used = {item for text in texts for item in schema.used(text)}
        self.assertGreater(len(items), 4)
        self.assertEqual(sorted(items - used - set(excused)), [], "items that nothing uses")
        self.assertEqual(sorted(set(excused) & used), [], "items that are used after all")
        self.assertEqual(sorted(set(excused) - items), [], "excuses for items that are none")

    def test_formats(self):
        texts = {}
        for text in unpacked_samples():
            texts.setdefault(text.schema, []).append(text.text)
        for name in NAMES:
            if name in WITHOUT_SAMPLE and name not in texts:
                continue
            with self.subTest(schema=name):
                self.covered(name, texts.get(name, []))

    def test_document(self):
        self.covered("document.schema.json", [text.text for text in golden_documents()], UNFILLED)

    def test_order_of_the_document(self):
        schema = JsonSchema("document.schema.json")
        documents = list(golden_documents())
        self.assertGreater(len(documents), 2)
        for document in documents:
            self.assertEqual(list(schema.disordered(document.text)), [], document.origin)


if __name__ == "__main__":
    unittest.main()
