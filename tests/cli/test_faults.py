# SPDX-License-Identifier: Apache-2.0
"""Faults and harmless variants of the samples, made by script: each fault is found at its line by its rule,
and no harmless variant has a finding that its sample does not have. One call looks at all of them."""
import collections
import copy
import json
import pathlib
import random
import re
import unittest
import zipfile

from support import MAV, SOURCE, CommandTest, run

SAMPLES = SOURCE / "samples"
CARD = SAMPLES / "veltrin_h90/archive"
SCHEMA = json.loads((SOURCE / "platform/schema/metadata.schema.json").read_text(encoding="utf-8"))
MARK = "@MARK@"
# What a value of the schema's form may not be.
WRONG = {"unsigned": "x", "integer": "x", "integer64": "x", "unsigned64": "x", "address": "0xx", "bits": "y",
         "boolean": "maybe", "columns": "-1", "dpeArch": "DPE_Z", "fileType": "hpfm", "text63": "n" * 64, "text": ["a"]}
FILE_TYPE = "fileType"

# Rule, path of the value in the card's metadata, what is put there.
SEMANTIC = [
    ("duplicate", ["systemClocks", 1, "name"], "kernel_clk"), ("duplicate", ["systemClocks", 1, "id"], "00"),
    ("duplicate", ["memories", 1, "name"], "HBM[0]"), ("duplicate", ["busInterfaces", 5, "name"], "S_AXIS_H2C_0"),
    ("duplicate", ["board", "connectors", 1, "name"], "dimm0"), ("duplicate", ["resources", 1, "type"], "LUT"),
    ("duplicate", ["devices", 0, "core", "ports", 1, "name"], "s_axi_hbm_00"),
    ("duplicate", ["devices", 0, "core", "pBlocks", 1, "name"], "pblock_dynamic_SLR0"),
    ("duplicate", ["devices", 0, "core", "resources", 1, "name"], "LUT"),
    ("duplicate", ["files", 5, "type"], "HPFM"), ("file-type", ["files", 5, "type"], "DCQ"),
    ("clock-reference", ["busInterfaces", 5, "clockRef"], "no_clk"),
    ("memory-overlap", ["memories", 1, "lowAddress"], "0xfffffff"),
    ("memory-overlap", ["memories", 1, "highAddress"], "0x1"),
    ("missing-member", ["files", 5, "name"], "dcp/gone.dcp"), ("missing-member", ["files", 5, "name"], ""),
    ("missing-member", ["board", "imageFileHdpi"], "images/gone.svg"),
    ("value-change", ["systemClocks", 0, "frequency"], "fast"), ("value-change", ["systemClocks", 0, "period"], "3.5"),
    ("value-change", ["generatedVersion"], "v26"), ("value-change", ["memories", 1, "size"], "512MB"),
    ("vocabulary", ["platformState"], "implemented"), ("vocabulary", ["systemClocks", 0, "status"], "Scalable"),
    ("vocabulary", ["busInterfaces", 5, "mode"], "slve"), ("vocabulary", ["busInterfaces", 5, "category"], "memroy"),
    ("vocabulary", ["files", 5, "usedIn"], "implementaton"), ("vocabulary", ["files", 5, "processingOrder"], "first"),
    ("dangling-name", ["busInterfaces", 5, "slr"], "SLR3"), ("dangling-name", ["devices", 0, "core", "validSlrs", 1], "SLR7"),
    ("dangling-name", ["nocConnectivity"], [{"instRef": "ctrl_switch_0", "busInterfaces": [MARK + "gone"]}]),
    ("dangling-name", ["nocConnectivity"], [{"instRef": MARK + "no_switch", "busInterfaces": []}]),
    ("contradiction", ["devices", 0, "fpgaPart"], "xqh90-bga2612-1L-e"),
    ("contradiction", ["devices", 0, "part", "name"], "xqh91"), ("contradiction", ["featureRoms", 0, "fpgaPartName"], "x"),
    ("contradiction", ["featureRoms", 0, "vbnvName"], "veltrin_h90_gen3x16_hbm_3_2"),
    ("array-geometry", ["dpePartitions"], [{"dpeInst": "a", "startColumn": 0, "numColumns": 4},
                                           {"dpeInst": "b", "startColumn": MARK + "3", "numColumns": 4}]),
    ("array-geometry", ["dpePartitions"], [{"dpeInst": "a", "startColumn": 0, "numColumns": 4, "partitions": [
        {"dpeInst": "b", "startColumn": MARK + "2", "numColumns": 3}]}]),
    ("array-geometry", ["dpeHardware"], {"arch": "DPE_A", "axiBaseAddress": "0x20", "axiHighAddress": MARK + "0x10"}),
    ("default-clock", ["systemClocks", 1, "default"], True), ("schema", ["files", 5], {}),
]
# Keys without which nothing else in the metadata is worse.
SPARE = {"description", "detailedDescription", "generatedTimestamp", "generatedName", "idCode", "extendedIdCode", "spTag",
         "compRef", "normalizedPeriod", "maxMasters", "displayName", "connectedDisplayName", "hostInterface", "flash",
         "usedIn", "processingOrder", "timeSinceEpoch", "maxTempLimit", "maxPowerLimit", "designIDs", "drivers", "pcie",
         "period", "size", "topModuleName", "numIdBits", "readBwUsed", "writeBwUsed", "configParams"}
NUMBERS = {"versionMajor", "versionMinor", "id", "index", "numIdBits", "maxMasters", "numSLRs", "numComputeUnits",
           "designID", "parentID", "nodeID", "functionID", "majorVersion", "minorVersion", "ddrChannelCount"}


def resolved(schema):
    return SCHEMA["$defs"][schema["$ref"].rpartition("/")[2]] if "$ref" in schema else schema


def form(schema):
    return schema.get("$ref", "").rpartition("/")[2]


def rows(node, schema, path=(), seen=None):
    """Each key of each object of the schema once: where it stands in the document, and its schema."""
    seen = set() if seen is None else seen
    schema = resolved(schema)
    if isinstance(node, list):
        for index, item in enumerate(node):
            yield from rows(item, schema.get("items", {}), (*path, index), seen)
    elif isinstance(node, dict) and "properties" in schema:
        for key, value in node.items():
            if (id(schema), key) not in seen:
                seen.add((id(schema), key))
                yield (*path, key), schema["properties"][key]
            yield from rows(value, schema["properties"][key], (*path, key), seen)


def placed(document, path, value):
    made = copy.deepcopy(document)
    node = made
    for step in path[:-1]:
        node = node[step]
    node[path[-1]] = value
    return made


def lined(document):
    """The text, each item on a line of its own, and the line with the mark, which is taken out."""
    text = json.dumps(document, indent=1)
    return text.replace(MARK, ""), text[:text.index(MARK)].count("\n") + 1 if MARK in text else None


def misspelt(key):
    return key[:-2] + key[-1] + key[-2] if key[-1] != key[-2] else key + "x"


def renamed(document, path):
    """The key at the path with two letters swapped, marked."""
    made = copy.deepcopy(document)
    node = made
    for step in path[:-1]:
        node = node[step]
    items = [(MARK + misspelt(key) if key == path[-1] else key, value) for key, value in node.items()]
    node.clear()
    node.update(items)
    return made


class Made(CommandTest):
    def setUp(self):
        super().setUp()
        self.members = {folder: {str(path.relative_to(folder)): path.read_bytes() for path in sorted(folder.rglob("*"))
                                 if path.is_file()}
                        for folder in (CARD, SAMPLES / "ostrivel_e7/hw_emu/archive", SAMPLES / "tessomar_r2/partition1/hw")}
        self.count = 0

    def archive(self, folder, **members):
        """The sample's archive with other members in place of its own."""
        self.count += 1
        path = self.dir / f"{self.count:04}{'.dsa' if 'dsa.json' in self.members[folder] else '.pka'}"
        with zipfile.ZipFile(path, "w") as out:
            for name, content in self.members[folder].items():
                out.writestr(name, members.get(name.replace(".", "_").replace("/", "_"), content))
        return path.name

    def file(self, extension, text):
        self.count += 1
        path = self.dir / f"{self.count:04}{extension}"
        path.write_text(text, encoding="utf-8")
        return path.name

    def findings(self):
        """The findings of each file, by the name of the platform file."""
        done = run(MAV, "validate", "--json", "--rule", "digest=off", self.dir, cwd=self.dir)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        found = collections.defaultdict(list)
        for finding in json.loads(done.stdout)["findings"]:
            found[finding["file"].removeprefix(f"{self.dir}/").partition("/")[0]].append(finding)
        return found

    # Faults.

    def metadata_faults(self):
        card = json.loads((CARD / "pka.json").read_text(encoding="utf-8"))
        for path, schema in rows(card, SCHEMA):
            kind = form(schema)
            wrong = WRONG.get(kind, "some text")
            if isinstance(wrong, str):
                marked, line = lined(placed(card, path, MARK + wrong))
            else:
                marked, line = lined(placed(card, path, [MARK + "a"]))
                line -= 1  # the list begins above its item, where its key is
            if kind == FILE_TYPE:
                yield "file-type", marked, line
            elif schema.get("type") != ["array", "string"] or "maxLength" in schema:
                if path[0] not in ("extensions",) and not (kind == "" and "properties" not in resolved(schema)
                                                           and "items" not in resolved(schema) and "enum" not in schema):
                    yield "schema", marked, line
            marked, line = lined(renamed(card, path))
            yield "unknown-item", marked, line
        for key in SCHEMA["required"]:
            yield "schema", json.dumps({name: value for name, value in card.items() if name != key}, indent=1), 2
        yield "schema", "{}", 1
        for rule, path, value in SEMANTIC:
            value = MARK + value if isinstance(value, str) else value
            marked = placed(card, path, value)
            text = json.dumps(marked, indent=1)
            if MARK not in text:
                before = json.dumps(placed(card, path, MARK), indent=1)
                yield rule, text, before[:before.index(MARK)].count("\n") + 1
            else:
                yield (rule, *lined(marked))

    def xml_faults(self, text):
        """Each attribute of each element once with its name misspelt; a number that is none."""
        seen = set()
        for element in re.finditer(r"<([\w:]+)((?:\s+[\w:]+=\"[^\"]*\")+)\s*/?>", text):
            line = text[:element.start()].count("\n") + 1
            for item in re.finditer(r"([\w:]+)=\"([^\"]*)\"", element[2]):
                if item[1].startswith("xmlns") or (element[1], item[1]) in seen:
                    continue
                seen.add((element[1], item[1]))
                at = element.start(2) + item.start(1)
                yield "unknown-item", text[:at] + misspelt(item[1]) + text[at + len(item[1]):], line
                if re.search(r":(id|index|dataWidth|idBits|defaultClock|maxMasters|defaultRP)$", item[1]):
                    at = element.start(2) + item.start(2)
                    yield "schema", text[:at] + "x" + text[at + len(item[2]):], line

    def test_each_fault_is_found(self):
        expected = {}
        for rule, text, line in self.metadata_faults():
            expected[self.archive(CARD, pka_json=text)] = (rule, line)
        hpfm = (CARD / "veltrin_h90.hpfm").read_text(encoding="utf-8")
        for rule, text, line in self.xml_faults(hpfm):
            expected[self.archive(CARD, veltrin_h90_hpfm=text)] = (rule, line)
        for name in ("ostrivel_e7/ostrivel_e7.qpfm", "ostrivel_e7/sw/ostrivel_e7.spfm", "tessomar_r2/tessomar_r2.qpfm"):
            for rule, text, line in self.xml_faults((SAMPLES / name).read_text(encoding="utf-8")):
                expected[self.file(pathlib.Path(name).suffix, text)] = (rule, line)
        found = self.findings()
        missed = [(name, *fault) for name, fault in expected.items()
                  if fault not in {(finding["rule"], finding["line"]) for finding in found[name]}]
        print(f"\n{len(expected) - len(missed)} of {len(expected)} single faults are found at their lines")
        self.assertEqual(missed, [], [found[name] for name, *_ in missed[:3]])
        self.assertGreaterEqual(len(expected), 200)

    # Harmless variants.

    def harmless_json(self, node, chance, key=""):
        """Other orders, forms of numbers and booleans, without what is optional."""
        if isinstance(node, dict):
            keys = [name for name in node if name not in SPARE or chance.random() < 0.8]
            chance.shuffle(keys)
            return {name: self.harmless_json(node[name], chance, name) for name in keys}
        if isinstance(node, list):
            return [self.harmless_json(item, chance, "") for item in node]
        if isinstance(node, bool):
            return chance.choice([node, str(node), str(node).lower(), str(node).upper()])
        if key in NUMBERS and str(node).isdigit():
            return chance.choice([int(node), str(node), "+" + str(node), "00" + str(node)])
        if key in ("lowAddress", "highAddress"):
            number = int(str(node), 0)
            return chance.choice([number, str(number), hex(number), "0x" + format(number, "X"), "0x00" + format(number, "x")])
        if key == "frequency" and isinstance(node, str) and re.fullmatch(r"[0-9.]+", node):
            return chance.choice([node, "+" + node, node + " MHz", node + "MHz", (node + "0") if "." in node else node + ".0"])
        return node

    def harmless_xml(self, text, chance):
        def element(match):
            items = re.findall(r"[\w:]+=\"[^\"]*\"", match[2])
            chance.shuffle(items)
            made = []
            for item in items:
                name, _, value = item.partition("=")
                if re.search(r":(id|index|dataWidth|idBits|defaultClock|maxMasters)$", name) and value[1:-1].isdigit():
                    value = chance.choice(['"+%s"', '"0%s"', '" %s "', '"%s"']) % value[1:-1]
                if "'" not in value and chance.random() < 0.3:
                    value = "'" + value[1:-1] + "'"
                made.append(name + chance.choice(["=", " = "]) + value)
            blank = chance.choice([" ", "\n    ", "\t"])
            note = chance.choice(["", "", "<!-- a note -->"]) if not text[:match.start()].strip().endswith("?>") else ""
            return f"{note}<{match[1]}{blank}{blank.join(made)}{chance.choice(['', ' '])}{match[3]}"
        made = re.sub(r"<([\w:]+)((?:\s+[\w:]+=\"[^\"]*\")+)\s*(/?>)", element, text)
        if chance.random() < 0.3:
            made = re.sub(r"\A<\?xml.*?\?>\s*", "", made)
        return made.replace("urn:mav:", chance.choice(["urn:mav:", "urn:other:"]))

    def test_harmless_variants_raise_nothing(self):
        chance = random.Random(12)
        kinds = {}
        for folder, name in ((CARD, "pka.json"), (SAMPLES / "tessomar_r2/partition1/hw", "dsa.json"),
                             (SAMPLES / "ostrivel_e7/hw_emu/archive", "pka.json")):
            kinds[self.archive(folder)] = base = str(folder)
            document = json.loads((folder / name).read_text(encoding="utf-8"))
            for _ in range(100):
                text = json.dumps(self.harmless_json(document, chance), indent=chance.choice([None, 1, 4, "\t"]))
                kinds[self.archive(folder, **{name.replace(".", "_"): text})] = base
            document = next(folder.glob("*.hpfm"))
            for _ in range(35):
                text = self.harmless_xml(document.read_text(encoding="utf-8"), chance)
                kinds[self.archive(folder, **{document.name.replace(".", "_"): text})] = base
        software = (SAMPLES / "ostrivel_e7/sw/ostrivel_e7.spfm").read_text(encoding="utf-8")
        kinds[self.file(".spfm", software)] = "software"
        for _ in range(50):
            kinds[self.file(".spfm", self.harmless_xml(software, chance))] = "software"
        description = (SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm").read_text(encoding="utf-8")
        kinds[self.file(".qpfm", description)] = "description"
        for _ in range(50):
            kinds[self.file(".qpfm", self.harmless_xml(description, chance))] = "description"
        found = self.findings()

        def told(name):
            return {(finding["rule"], re.sub(r"'[^']*\.(pka|dsa|qpfm)'|line \d+", "", finding["text"]))
                    for finding in found[name]}
        first = {kind: told(name) for name, kind in reversed(kinds.items())}
        raised = [(name, told(name) - first[kind]) for name, kind in kinds.items() if told(name) - first[kind]]
        print(f"\n{len(kinds) - len(raised) - len(first)} of {len(kinds) - len(first)} harmless variants raise nothing")
        self.assertEqual(raised, [])
        self.assertGreaterEqual(len(kinds) - len(first), 500)


if __name__ == "__main__":
    unittest.main()
