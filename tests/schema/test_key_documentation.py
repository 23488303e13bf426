# SPDX-License-Identifier: Apache-2.0
"""The documentation of keys that ships explains each key of the document's schema, and no other."""
import json
import re
import unittest

from support import SCHEMAS, SOURCE

FILE = SOURCE / "platform/share/platforms/platform_keys_doc.json"
TOP = "HMAVPlatform"
FACTS = ["meaning", "type", "unit", "values", "object", "example"]
# Classes of objects that the schema describes inside another one.
INLINE = {"hardwarePlatforms": "HardwarePlatforms", "flash": "Flash",
          "dpengineIDs": "DpengineIDs", "featureBitMap": "FeatureBitMap"}
def documented(classes):
    return {f"{name}/{key}" for name, members in classes.items() for key in members}


def admitted(schema):
    """CLASS/KEY of everything that the schema admits."""
    def members(name, node):
        for key, inner in node.get("properties", {}).items():
            yield f"{name}/{key}"
            if key in INLINE:
                yield from members(INLINE[key], inner)
        pattern = node.get("propertyNames", {}).get("pattern")
        for bit in (f"bit{number:02}" for number in range(100)):
            if pattern and re.search(pattern, bit):
                yield f"{name}/{bit}"
    yield from members(TOP, schema)
    for name, node in schema["$defs"].items():
        yield from members(name, node.get("items", node))


class KeyDocumentation(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.classes = json.loads(FILE.read_text())["documentation_keys"]
        self.keys = documented(self.classes)

    def test_schema_and_documentation_name_the_same_keys(self):
        schema = json.loads((SCHEMAS / "document.schema.json").read_text())
        self.assertEqual(sorted(self.keys ^ set(admitted(schema))), [])

    def test_each_key_is_explained_in_full(self):
        for name, members in self.classes.items():
            for key, entry in members.items():
                with self.subTest(key=f"{name}.{key}"):
                    self.assertEqual(list(entry), [fact for fact in FACTS if fact in entry])
                    self.assertGreater(len(entry["meaning"]), 7)
                    self.assertNotEqual(entry["meaning"][-1], ".")
                    if "object" in entry:
                        self.assertIn(entry["object"], self.classes)
                        self.assertIn(entry["type"], ("object", "list of objects"))
                    elif "values" in entry:
                        self.assertIn(entry["example"], entry["values"].split(", "))


if __name__ == "__main__":
    unittest.main()
