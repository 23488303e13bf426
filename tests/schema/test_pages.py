# SPDX-License-Identifier: Apache-2.0
"""The format pages name every item of their schemas, and the two large examples belong together."""
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from support import MAV, PAGES, PAGE_SCHEMAS, SCHEMAS, load, page_examples

# Sections of a page that are not headed by the name of a definition.
ROOTS = {"metadata.md": {"The root": ""},
         "document.md": {"The platform: `HMAVPlatform`": "",
                         "The hardware platform: `HPLPlatform`": "HPLPlatform"}}
# Described inside the tables of others.
INLINE = {"rows", "configuration"}


def quoted(text):
    return re.findall(r"`([^`\s]+)`", text)


def sections(page):
    """The rows of the first table of each section, by the section's heading, cell by cell."""
    for part in re.split(r"^##+ ", (PAGES / page).read_text(encoding="utf-8"), flags=re.M)[1:]:
        heading, _, body = part.partition("\n")
        table = re.search(r"(?:^\|.*\n)+", body, re.MULTILINE)
        if table:
            rows = [line.strip("|\n").split("|") for line in table.group().splitlines()[2:]]
            yield heading, rows


def names_of(schema):
    """Every item name of a schema."""
    if schema.endswith(".xsd"):
        root = ElementTree.parse(SCHEMAS / schema).getroot()
        kinds = tuple("{http://www.w3.org/2001/XMLSchema}" + kind for kind in ("element", "attribute"))
        return {node.get("name") for node in root.iter() if node.tag in kinds}
    found = set()

    def walk(node):
        if isinstance(node, dict):
            found.update(node.get("properties", {}))
            for value in node.values():
                walk(value)
    walk(load(schema))
    return found


class Pages(unittest.TestCase):
    maxDiff = None

    def test_every_item_is_named(self):
        pages = [page.name for page in PAGES.glob("*.md")]
        self.assertGreater(len(pages), 3)
        for page in pages:
            words = set()
            for word in quoted((PAGES / page).read_text(encoding="utf-8")):
                words.update(re.split(r"[.\[\]:]+", word))
            for schema in PAGE_SCHEMAS[page]:
                with self.subTest(page=page, schema=schema):
                    numbered = {f"cdmaBaseAddress{number}" for number in range(5)}
                    self.assertEqual(sorted(names_of(schema) - words - numbered), [])

    def check_sections(self, page, schema_name):
        """One section for each object of the schema, whose first column holds its properties."""
        schema = load(schema_name)
        objects = {name: node for name, node in schema["$defs"].items()
                   if "properties" in node or "properties" in node.get("items", {})}
        objects[""] = schema
        described = set()
        for heading, rows in sections(page):
            name = ROOTS[page].get(heading, heading.strip("`"))
            if name not in objects:
                continue
            described.add(name)
            node = objects[name] if "properties" in objects[name] else objects[name]["items"]
            with self.subTest(page=page, section=heading):
                listed = [key for row in rows for key in quoted(row[0])]
                self.assertEqual(sorted(listed), sorted(node["properties"]))
                if page == "document.md":
                    self.assertEqual(listed, list(node["properties"]), "the order of the members")
                else:
                    required = [key for row in rows if row[2].strip() == "yes"
                                for key in quoted(row[0])]
                    required += [key for row in rows for key in quoted(row[2])]
                    self.assertEqual(sorted(required), sorted(node.get("required", [])))
        self.assertEqual(sorted(set(objects) - described - INLINE), [], "objects without a section")

    def test_sections_of_the_metadata(self):
        self.check_sections("metadata.md", "metadata.schema.json")

    def test_sections_of_the_document(self):
        self.check_sections("document.md", "document.schema.json")

    def test_examples_of_metadata_and_document(self):
        """The example of the document is what the command writes of the metadata's example."""
        metadata, document = (next(text.text for text in page_examples()
                                   if text.origin == f"{page}[0]")
                              for page in ("metadata.md", "document.md"))
        with tempfile.TemporaryDirectory() as scratch:
            folder = pathlib.Path(os.path.realpath(scratch))
            (folder / "in").mkdir()
            (folder / "in/pka.json").write_text(metadata, encoding="utf-8")
            archive = folder / "ridge200.pka"
            subprocess.run([MAV, "pack", folder / "in", archive], check=True, capture_output=True)
            done = subprocess.run([MAV, "json", archive], check=True, capture_output=True)
            self.assertEqual(done.stderr, b"")
            place = str(folder).replace("/", "\\/")
            self.assertEqual(done.stdout.decode().replace(place, "\\/platforms"), document)
            self.assertTrue(json.loads(document))


if __name__ == "__main__":
    unittest.main()
