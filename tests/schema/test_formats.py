# SPDX-License-Identifier: Apache-2.0
"""Samples, format pages and documents fit their schemas."""
import json
import subprocess
import unittest

from jsonschema import Draft202012Validator

from support import (GOLDEN, MAV, NAMES, PAGE_SCHEMAS, PAGES, SAMPLES, SCHEMAS, faults,
                     golden_documents, load, packed_samples, page_examples, unpacked_samples)

PLATFORMS = (".qpfm", ".pka", ".dsa")


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
        listed = sorted(path.name for path in SCHEMAS.iterdir())
        self.assertEqual(listed, sorted([*NAMES, "document.schema.json"]))
        for name in listed:
            if name.endswith(".json"):
                Draft202012Validator.check_schema(load(name))

    def test_samples(self):
        self.fit(unpacked_samples(), IN_SAMPLES)

    def test_packed_samples(self):
        self.fit(packed_samples(), IN_SAMPLES)

    def test_format_pages(self):
        pages = {page.name for page in PAGES.glob("*.md")}
        self.assertEqual(sorted(pages - set(PAGE_SCHEMAS)), [], "pages without a schema")
        schemas = {schema for page in pages for schema in PAGE_SCHEMAS[page]}
        self.fit(page_examples(), schemas)

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

    def test_what_the_command_writes(self):
        platforms = [path for path in sorted(SAMPLES.rglob("*")) if path.suffix in PLATFORMS]
        self.assertGreater(len(platforms), 4)
        for path in platforms:
            with self.subTest(platform=path.name):
                done = subprocess.run([MAV, "json", path], capture_output=True, check=True)
                self.assertEqual(faults("document.schema.json", done.stdout.decode()), [])


# No sample carries an archive index or a project of the array engine; their pages have examples.
IN_SAMPLES = [name for name in NAMES
              if name not in ("vma.schema.json", "dpe-partitions.schema.json")]

if __name__ == "__main__":
    unittest.main()
