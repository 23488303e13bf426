# SPDX-License-Identifier: Apache-2.0
"""Item by item, readers and schemas judge alike. A reader refuses an XML file exactly when the schema
does, unknown items and vocabularies aside; what a JSON Schema takes its reader takes in silence."""
import copy
import json
import os
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from jsonschema import Draft202012Validator

from support import SCHEMAS, TOOL, load, page_examples, packed_samples
from walk import XS, JsonSchema, XmlSchema

PREFIXES = {"platform-description.xsd": "mav", "software-platform.xsd": "mav", "hpfm.xsd": "qd",
            "emulation.xsd": ""}
TEXTS = ("x", "", " +1 ", "-1", "1.5", "4294967295", "4294967296")
VALUES = ("x", "", "1", "-1", "+1", "1.5", "0x1F", "4294967295", "4294967296", "true", "False",
          "18446744073709551615", "99999999999999999999", "x" * 63, "x" * 64, "DPE_A", "preferred",
          "f47ac10b-58cc-4372-a567-0e02b2c3d479", "HPFM", "EMU_HPFM",
          1, 0, -1, 1.5, 4294967295, 4294967296, True, False, None, [], {}, ["a"], [1], [["a"]],
          [{}], {"a": "b"}, {"a": {}})


class Scratch(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.dir = pathlib.Path(os.path.realpath(scratch.name))

    def read(self, schema, texts):
        """What the reader says of each text."""
        paths = []
        for index, text in enumerate(texts):
            paths.append(self.dir / str(index))
            paths[-1].write_text(text, encoding="utf-8")
        done = subprocess.run([TOOL, "read", schema, *paths], capture_output=True, check=True,
                              timeout=120)
        return done.stdout.decode().split()

    def xmllint(self, schema, count):
        """Whether each of the texts that were read fits."""
        paths = [str(self.dir / str(index)) for index in range(count)]
        done = subprocess.run(["xmllint", "--nonet", "--noout", "--schema", SCHEMAS / schema, *paths],
                              capture_output=True, check=False, timeout=120)
        lines = set(done.stderr.decode().splitlines())
        for path in paths:
            self.assertEqual((f"{path} validates" in lines) + (f"{path} fails to validate" in lines),
                             1, done.stderr)
        return [f"{path} validates" in lines for path in paths]


class Xml(Scratch):
    def edits(self, schema, node, kind):
        """Edits of one element: what is edited, and what is done to a copy of the element."""
        elements = schema.elements.get(kind, {})
        for name in node.attrib:
            item = f"{kind}/@{name.rpartition('}')[2]}"
            yield item + " removed", lambda copied, name=name: copied.attrib.pop(name)
            for text in TEXTS:
                yield f"{item}={text!r}", lambda copied, name=name, text=text: copied.set(name, text)
        for name in elements:
            children = [child for child in node if child.tag.rpartition("}")[2] == name]
            if not children:
                continue
            where = list(node).index(children[0])
            yield f"{kind}/{name} removed", lambda copied, name=name: [
                copied.remove(child) for child in list(copied)
                if child.tag.rpartition("}")[2] == name]
            yield f"{kind}/{name} twice", lambda copied, where=where: copied.insert(
                len(copied), copy.deepcopy(copied[where]))
            if elements[name] not in schema.types:
                for text in TEXTS:
                    yield f"{kind}/{name}={text!r}", lambda copied, where=where, text=text: setattr(
                        copied[where], "text", text)
        if len(node) > 1:
            yield f"{kind} reversed {sorted({child.tag for child in node})}", lambda copied: (
                copied.__setitem__(slice(None), list(copied)[::-1]))

    def variants(self, name):
        """Each edit once, as its name and the edited text."""
        schema = XmlSchema(SCHEMAS / name)
        namespace = ElementTree.parse(SCHEMAS / name).getroot().get("targetNamespace")
        ElementTree.register_namespace(PREFIXES[name], namespace)
        done = {}
        texts = [text.text for text in [*packed_samples(), *page_examples()] if text.schema == name]
        for text in texts:
            for place, (node, kind) in enumerate(self.walk(schema, ElementTree.fromstring(text))):
                for what, edit in self.edits(schema, node, kind):
                    if what in done:
                        continue
                    root = ElementTree.fromstring(text)
                    edit(list(self.walk(schema, root))[place][0])
                    done[what] = ElementTree.tostring(root, encoding="unicode")
        return done

    def walk(self, schema, root):
        def below(node, kind):
            yield node, kind
            for child in node:
                inner = schema.elements[kind][child.tag.rpartition("}")[2]]
                if inner in schema.types:
                    yield from below(child, inner)
        yield from below(root, schema.root)

    def vocabularies(self, name):
        """The items whose texts the schema lists; their readers keep any text."""
        root = ElementTree.parse(SCHEMAS / name).getroot()
        listed = {node.get("name") for node in root.findall(XS + "simpleType")
                  if node.find(f".//{XS}enumeration") is not None}
        return {f"{kind.get('name')}/@{attribute.get('name')}"
                for kind in root.findall(XS + "complexType")
                for attribute in kind.iter(XS + "attribute")
                if attribute.get("type").rpartition(":")[2] in listed}

    def test_xml_formats(self):
        for name in PREFIXES:
            variants = self.variants(name)
            self.assertGreater(len(variants), 20)
            verdicts = self.read(name, variants.values())
            fits = self.xmllint(name, len(variants))
            loose = self.vocabularies(name)
            self.assertGreater(fits.count(True), 5)
            self.assertGreater(fits.count(False), 5)
            for what, fit, verdict in zip(variants, fits, verdicts, strict=True):
                with self.subTest(schema=name, edit=what):
                    if what.partition("=")[0] not in loose:
                        self.assertEqual(verdict != "refused", fit)


class Json(Scratch):
    """Small documents: what is required, and one member more."""

    def documents(self, schema):
        """Each property's place with a function that puts a value there."""
        def required(node):
            node, _ = schema.resolved(node, "")
            filled = {}
            for key in node.get("required", []):
                inner, _ = schema.resolved(node["properties"][key], "")
                kind = inner.get("type", "")
                filled[key] = (inner["enum"][0] if "enum" in inner else
                               [] if "array" in kind else 1 if "integer" in kind else "a")
            return filled

        def below(node, place, wrap, depth):
            node, _ = schema.resolved(node, place)
            if depth > 8:
                return
            for key, inner in node.get("properties", {}).items():
                def put(value, key=key, wrap=wrap, node=node):
                    return wrap({**required(node), key: value})
                yield f"{place}.{key}", put
                yield from below(inner, f"{place}.{key}", put, depth + 1)
            if isinstance(node.get("items"), dict):
                yield from below(node["items"], place + "[]", lambda value: wrap([value]), depth + 1)

        yield from below(schema.schema, "", lambda value: value, 0)

    def test_json_formats(self):
        for name in ("metadata.schema.json", "emulation.schema.json",
                     "extension-metadata.schema.json"):
            schema = JsonSchema(name)
            validator = Draft202012Validator(schema.schema)
            places = dict(self.documents(schema))
            self.assertGreater(len(places), 5)
            texts, what = [], []
            for place, put in places.items():
                fitting = [value for value in VALUES if validator.is_valid(put(value))]
                with self.subTest(schema=name, place=place):
                    self.assertTrue(fitting, "no value fits")
                texts += [json.dumps(put(value)) for value in fitting]
                what += [f"{place} = {json.dumps(value)}" for value in fitting]
            for case, verdict in zip(what, self.read(name, texts), strict=True):
                with self.subTest(schema=name, case=case):
                    self.assertEqual(verdict, "silent")


if __name__ == "__main__":
    unittest.main()
