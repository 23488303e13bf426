# SPDX-License-Identifier: Apache-2.0
"""The schemas name the items that the readers and writers name, object by object."""
import collections
import re
import unittest
import xml.etree.ElementTree as ElementTree

from support import SCHEMAS, SOURCE, load

PLATFORM = SOURCE / "platform/src"
XS = "{http://www.w3.org/2001/XMLSchema}"
QUOTED = re.compile(r'"((?:[^"\\]|\\.)*)"')


def source(*paths):
    """The files' text without comments."""
    texts = [(PLATFORM / path).read_text(encoding="utf-8") for path in paths]
    return re.sub(r"//.*", "", "\n".join(texts))


def counted(sets):
    return collections.Counter(frozenset(items) for items in sets if items)


# --- XML ------------------------------------------------------------------------------------------

def bound_items(text):
    """For each table of a binding its items as "@attribute" and "element"."""
    tables = []
    for body in re.findall(r"^Items<\w+> \w+\([^)]*\) \{$(.*?)^\}", text, re.MULTILINE | re.DOTALL):
        current = {}
        for statement in body.split(";"):
            declared = re.search(r"Items<\w+> (\w+)(?: = .*)?$", statement)
            if declared:
                current[declared.group(1)] = set()
                tables.append(current[declared.group(1)])
                continue
            statement = statement.split("return")[0]
            looped = re.search(r"for \(const char\* \w+ :(.*?)\)", statement, re.DOTALL)
            accepted = re.search(r"accept\((\w+), \{(.*)\}\)", statement, re.DOTALL)
            target = re.search(r"(\w+)\s*\.(?:attribute|element|either|order|line|text)\(", statement)
            if looped or accepted:
                names = QUOTED.findall(looped.group(1) if looped else accepted.group(2))
                table = current[accepted.group(1) if accepted else target.group(1)]
                table.update("@" + name for name in names)
            elif target:
                table = current[target.group(1)]
                for kind, name in re.findall(r'\.(attribute|element|either)\("([^"]+)"', statement):
                    if kind != "element":
                        table.add("@" + name)
                    if kind != "attribute":
                        table.add(name)
    return tables


def schema_items(path, prefix):
    """For each complex type its items, in the same spelling."""
    root = ElementTree.parse(path).getroot()
    groups = {group.get("name"): group for group in root.findall(XS + "group")}

    def items(node, seen):
        for child in node.iter():
            name = child.get("name")
            if child.tag == XS + "attribute":
                yield "@" + prefix + name
            elif child.tag == XS + "element":
                yield prefix + name
            elif child.tag == XS + "group" and child.get("ref"):
                group = child.get("ref").rpartition(":")[2]
                if group not in seen:
                    yield from items(groups[group], seen | {group})

    return [set(items(node, frozenset())) for node in root.findall(XS + "complexType")]


# --- JSON -----------------------------------------------------------------------------------------

def field_tables(text):
    """The keys of each table of a metadata reader."""
    return [set(re.findall(r'\{\s*"(\w+)",', body))
            for body in re.findall(r"Field<\w+> \w+\[\] = \{$(.*?)^ *\};", text,
                                   re.MULTILINE | re.DOTALL)]


def schema_objects(node):
    """The property names of each object in a JSON Schema."""
    if isinstance(node, dict):
        if "additionalProperties" in node and isinstance(node.get("properties"), dict):
            yield set(node["properties"])
        for value in node.values():
            yield from schema_objects(value)
    elif isinstance(node, list):
        for value in node:
            yield from schema_objects(value)


def written_keys():
    """The keys that each class writes into the document, by class."""
    texts = source(*(path.relative_to(PLATFORM) for path in sorted(PLATFORM.rglob("model/**/*.cpp"))))
    keys = collections.defaultdict(set)
    body = re.compile(r"^void (?:\w+::)*?(\w+)::(toJSON|write\w+)\((.*?)^\}", re.MULTILINE | re.DOTALL)
    constants = dict(re.findall(r'std::string (\w+_KEY|[A-Z_]+) = "(\w+)";', texts))
    for name, _, text in body.findall(texts):
        keys[name] |= set(re.findall(
            r'(?:addKey|addObject|addList|rows)\("(\w+)"', text))
        keys[name] |= set(re.findall(r'(?:addIfTrue|writeList|writePairs)\(\w+, "(\w+)"', text))
        keys[name] |= {constants[key] for key in re.findall(
            r"(?:addKey|addObject|addList)\((\w+),", text) if key in constants}
    return keys


def own_properties(node):
    """The property names of a definition and of the objects that stand in it."""
    if isinstance(node, dict):
        for key, value in node.items():
            if key == "properties":
                yield from value
            if key not in ("if", "then", "else"):
                yield from own_properties(value)


class Names(unittest.TestCase):
    maxDiff = None

    def same_tables(self, tables, schemas):
        self.assertGreater(len(tables), 2)
        missing, surplus = counted(tables), counted(schemas)
        self.assertEqual([sorted(items) for items in (missing - surplus).elements()], [],
                         "tables that no schema type matches")
        self.assertEqual([sorted(items) for items in (surplus - missing).elements()], [],
                         "schema types that no table matches")

    def test_xml_formats(self):
        for schema, binding, prefix in (
                ("platform-description.xsd", "description/MAVPlatformLMX.cpp", "mav:"),
                ("software-platform.xsd", "software/MAVSoftwarePlatformLMX.cpp", "mav:"),
                ("hpfm.xsd", "hpfm/MAVHpfmLMX.cpp", "qd:"),
                ("emulation.xsd", "emulation/MAVEmulationLMX.cpp", "")):
            with self.subTest(schema=schema):
                self.same_tables(bound_items(source("formats/" + binding)),
                                 schema_items(SCHEMAS / schema, prefix))

    def test_metadata(self):
        files = sorted((PLATFORM / "formats/metadata").glob("HMAVDsaJson*.cpp"))
        text = source(*(path.relative_to(PLATFORM) for path in files))
        tables = field_tables(text)
        # The only key that is looked up by itself.
        self.assertEqual(re.findall(r'find\("(\w+)"\)', text), ["default"])
        next(table for table in tables if "origName" in table).add("default")
        # Partitions below partitions are skipped, so the schema has the inner ones without.
        partition = next(table for table in tables if "dpeInst" in table)
        tables.append(partition - {"partitions"})
        # The root is read in two steps, with the hpfm member's records between them.
        late = next(table for table in tables if "extensions" in table)
        tables.remove(late)
        next(table for table in tables if "boardId" in table).update(late)
        self.same_tables(tables, schema_objects(load("metadata.schema.json")))

    def test_emulation(self):
        readers = ("HMAVEmulationJsonReader.cpp", "HMAVEmulationExtMetaJsonReader.cpp")
        tables = field_tables(source(*("formats/emulation/" + name for name in readers)))
        schemas = ("emulation.schema.json", "extension-metadata.schema.json")
        self.same_tables(tables, [names for schema in schemas
                                  for names in schema_objects(load(schema))])

    def test_archive_index(self):
        text = source("archive/HVMAArchive.cpp", "archive/HVMAFiles.cpp")
        schema = list(schema_objects(load("vma.schema.json")))
        listed = set().union(*schema)
        read = set(re.findall(r'(?:textOf\(\w+, |find\()"(\w+)"', text))
        written = set(re.findall(r'(?:addKey|addObject|addList)\("(\w+)"', text))
        # The version is written and not read.
        self.assertEqual(read, listed - {"version", "major", "minor"})
        self.assertEqual(written, listed)

    def test_partitions(self):
        text = source("formats/array_engine/HMAVDpePartitionsJsonReader.cpp")
        read = set(re.findall(r'(?:textOf\(\w+, |numberOf\(\w+, |find\()"(\w+)"', text))
        self.assertEqual(read, set().union(*schema_objects(load("dpe-partitions.schema.json"))))

    def test_document(self):
        schema = load("document.schema.json")
        written = written_keys()
        definitions = dict(schema["$defs"], HMAVPlatform={"properties": schema["properties"]})
        # The hardware platform's members follow those of the archive's platform.
        written["HPLPlatform"] |= written.pop("HMAVHardwarePlatform")
        # And the platform adds a member to each clock.
        written["HPLPlatform"].remove("default")
        written["HMAVSystemClock"].add("default")
        compared = 0
        for name, keys in sorted(written.items()):
            with self.subTest(name=name):
                self.assertIn(name, definitions)
                listed = set(own_properties(definitions[name]))
                if name == "HMAVDpeHardware":
                    listed |= set(definitions["rows"]["properties"])
                # A number is put behind this key.
                listed = {re.sub(r"(cdmaBaseAddress)\d", r"\1", key) for key in listed}
                self.assertEqual(sorted(keys), sorted(listed))
                compared += 1
        self.assertGreater(compared, 25)

    def test_file_types(self):
        types = re.findall(r'^ +"([A-Z0-9_]+)",$', source("model/HMAVPfmFileTypes.cpp"),
                           re.MULTILINE)
        self.assertGreater(len(types), 50)
        self.assertEqual(load("metadata.schema.json")["$defs"]["fileType"]["enum"], types)
        emulation = ["EMU_HPFM", *types]
        self.assertEqual(load("emulation.schema.json")["$defs"]["fileType"]["enum"], emulation)
        root = ElementTree.parse(SCHEMAS / "emulation.xsd").getroot()
        self.assertEqual([node.get("value") for node in root.iter(XS + "enumeration")], emulation)


if __name__ == "__main__":
    unittest.main()
