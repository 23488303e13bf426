# SPDX-License-Identifier: Apache-2.0
"""Every item of every format is used among the samples, and every member of the document stands in
a golden document, but for those that are listed here with the reason."""
import unittest

from support import NAMES, SCHEMAS, golden_documents, packed_samples
from walk import JsonSchema, XmlSchema

# Members of the document that no file can fill.
NOT_CARRIED = "the reader of software platforms leaves this item of the operating system out"
UNFILLED = {
    "HMAVProcessorGroup/osBSPIncludePaths": NOT_CARRIED,
    "HMAVProcessorGroup/osBSPLibraryPaths": NOT_CARRIED,
    "HMAVProcessorGroup/osSysRoot": NOT_CARRIED,
    "HMAVSoftwarePlatform/linuxRootFileSystemPath": "the caller sets it; no format has it",
}


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
        for text in packed_samples():
            texts.setdefault(text.schema, []).append(text.text)
        # Exceptions from rules belong to who checks, not to a platform; their page has the example.
        for name in set(NAMES) - {"mavcheck.schema.json"}:
            with self.subTest(schema=name):
                self.covered(name, texts.get(name, []))

    def test_document(self):
        self.covered("document.schema.json", [text.text for text in golden_documents()], UNFILLED)


if __name__ == "__main__":
    unittest.main()
