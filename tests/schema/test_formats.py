# SPDX-License-Identifier: Apache-2.0
"""Samples, format pages and documents fit their schemas."""
import json
import re
import unittest

from jsonschema import Draft202012Validator

from support import (GOLDEN, NAMES, PAGE_SCHEMAS, PAGES, SCHEMAS, SOURCE, faults,
                     golden_documents, load, packed_samples, page_examples)


class Formats(unittest.TestCase):
    def fit(self, texts, schemas):
        """Every text fits, and each of the schemas has a text to describe."""
        seen = set()
        for text in texts:
            seen.add(text.schema)
            with self.subTest(file=text.origin):
                self.assertEqual(faults(text.schema, text.text), [])
        self.assertEqual(sorted(set(schemas) - seen), [], "schemas without a file")

    def test_schemas_are_schemas(self):
        listed = sorted(path.name for path in SCHEMAS.iterdir() if path.is_file())
        self.assertEqual(listed, sorted([*NAMES, "document.schema.json"]))
        for name in listed:
            if name.endswith(".json"):
                Draft202012Validator.check_schema(load(name))

    def test_packed_samples(self):
        self.fit(packed_samples(), set(NAMES) - {"mavcheck.schema.json"})

    def test_format_pages(self):
        pages = {page.name for page in PAGES.glob("*.md")}
        self.assertEqual(sorted(pages - set(PAGE_SCHEMAS)), [], "pages without a schema")
        schemas = {schema for page in pages for schema in PAGE_SCHEMAS[page]}
        self.fit(page_examples(), schemas)

    def test_file_types(self):
        text = (SOURCE / "platform/include/mav_platform/HMAVPfmFileTypes.h").read_text(encoding="utf-8")
        types = re.findall(r"^ +(?:TYPE|HOOK)\(([A-Z0-9_]+), ", text, re.MULTILINE)
        self.assertGreater(len(types), 50)
        self.assertEqual(load("metadata.schema.json")["$defs"]["fileType"]["enum"], types)
        self.assertEqual(load("emulation.schema.json")["$defs"]["fileType"]["enum"], ["EMU_HPFM", *types])
        listed = re.findall('enumeration value="(.*?)"', (SCHEMAS / "emulation.xsd").read_text())
        self.assertEqual(listed, ["EMU_HPFM", *types])
        used = {item["type"] for text in packed_samples() if text.schema == "metadata.schema.json"
                for item in json.loads(text.text).get("files", [])}
        self.assertEqual(sorted(used ^ set(types)), [], "types that no sample uses")

    def test_golden_documents(self):
        self.fit(golden_documents(), ["document.schema.json"])

    def test_short_documents(self):
        """The short form leaves members out and changes none."""
        schema = Draft202012Validator(dict(load("document.schema.json"), required=[]))
        short = sorted(GOLDEN.glob("*.short.json"))
        self.assertTrue(short)
        for path in short:
            document = json.loads(path.read_text(encoding="utf-8"))
            self.assertGreater(len(document), 1)
            self.assertEqual([error.message for error in schema.iter_errors(document)], [])


if __name__ == "__main__":
    unittest.main()
