# SPDX-License-Identifier: Apache-2.0
"""What loading passes over and a schema refuses: unknown items, other vocabularies, forms of texts."""
import copy
import json
import unittest

from support import SOURCE, faults, golden_documents

SAMPLES = SOURCE / "samples"
DESCRIPTION = "ostrivel_e7/ostrivel_e7.qpfm"
SOFTWARE = "ostrivel_e7/sw/ostrivel_e7.spfm"
HPFM = "veltrin_h90/archive/veltrin_h90.hpfm"
EMULATION = "tessomar_r2/partition1/hw_emu/hw_emu.xml"

# Schema, file, text, what it is replaced by, what the schema says.
XML_DEFECTS = [
    ("platform-description.xsd", DESCRIPTION, "urn:mav:platform:1", "urn:mav:platform:2", "No matching global"),
    ("platform-description.xsd", DESCRIPTION, 'mav:schemaVersion="1.0"', 'mav:edition="1.0"', "not allowed"),
    ("platform-description.xsd", DESCRIPTION, "<mav:softwarePlatforms>", "<mav:notes/><mav:softwarePlatforms>",
     "not expected"),
    ("software-platform.xsd", SOFTWARE, 'mav:sysRoot="linux', 'mav:sysroot="linux', "not allowed"),
    ("hpfm.xsd", HPFM, "urn:mav:hpfm:1", "urn:mav:hpfm:2", "No matching global"),
    ("hpfm.xsd", HPFM, 'qd:category="stream"/>',
     'qd:category="stream"><qd:addressSegment qd:auto="maybe"/></qd:busInterface>', "'enumeration'"),
    ("hpfm.xsd", HPFM, 'qd:hasTlast="true"', 'hasTlast="true"', "not allowed"),
    ("emulation.xsd", EMULATION, 'Type="DR_BD"', 'Type="BD"', "'enumeration'"),
]
HARDWARE = ["hardwarePlatforms", "hardwarePlatform"]
# Schema: a good document, and where a value is put, the value, what the schema says.
JSON_DEFECTS = {
    "metadata.schema.json": (json.loads((SAMPLES / "veltrin_h90/archive/pka.json").read_text()), [
        (["vendor"], None, "is not of type"),
        (["colour"], "blue", "'colour' was unexpected"),
        (["board"], "h90", "is too long"),
        (["board", "pcie", "lanes"], 16, "'lanes' was unexpected"),
        (["files", 0, "type"], "hpfm", "is not one of"),
        (["busInterfaces", 0, "addressSegments"], [{"auto": "always"}], "is not one of"),
        (["featureRoms"], [{"uuid": "0123"}], "does not match"),
        (["featureRoms"], [{"vbnvName": "x" * 64}], "is too long"),
        (["dpeHardware"], {"arch": "DPE_G"}, "does not match"),
    ]),
    "document.schema.json": (next(json.loads(text.text) for text in golden_documents()
                                  if text.origin == "ostrivel_e7.json"), [
        (["unified"], True, "is not one of"),
        (["vendor"], "", "is too short"),
        (["colour"], "blue", "'colour' was unexpected"),
        (["hardwarePlatforms", "reconfigurablePartitions"], [{"id": "1"}], "False schema"),
        (["hardwarePlatforms"], {}, "does not have enough properties"),
        ([*HARDWARE, "versionMajor"], 1, "is not of type"),
        ([*HARDWARE, "dynamicReload"], "true", "False schema"),
        ([*HARDWARE, "devices"], [], "is too short"),
        ([*HARDWARE, "memories", 0, "lowAddress"], "0x0", "does not match"),
    ]),
    "emulation.schema.json": (
        {"emulations": [{"name": "e", "files": [{"type": "TOP_BD", "name": "a.bd"}]}]}, [
            (["emulations", 0, "files", 0, "type"], "BD", "is not one of"),
            (["emulations", 0, "files", 0, "instPath"], "a", "'instPath' was unexpected"),
        ]),
    "extension-metadata.schema.json": ({"featureRoms": [{"vbnvName": "a"}]}, [
        (["featureRoms", 0, "uuid"], "0", "'uuid' was unexpected"),
        (["featureRoms", 0, "featureBitMap"], "4294967296", "does not match"),
    ]),
    "dpe-partitions.schema.json": (
        {"DPE": {"a": {"startColumn": 0, "numColumns": "8", "partitions": {"b": {"numColumns": 2}}}}}, [
            (["DPE", "a", "numColumns"], "+1", "does not match"),
            (["DPE", "a", "partitions", "b", "partitions"], {}, "was unexpected"),
        ]),
    "vma.schema.json": (
        {"version": {"major": "1", "minor": "0"}, "pfmName": "p", "files": [{"name": "a", "type": "DCP"}]}, [
            (["version", "major"], "one", "does not match"),
            (["files", 0], {"name": "a"}, "'type' is a required property"),
        ]),
}


class Defects(unittest.TestCase):
    def says(self, schema, text, says):
        found = faults(schema, text)
        self.assertTrue(any(says in fault for fault in found), (says, found))

    def test_xml_formats(self):
        for schema, name, old, new, says in XML_DEFECTS:
            with self.subTest(schema=schema, new=new):
                text = (SAMPLES / name).read_text(encoding="utf-8")
                self.assertIn(old, text)
                self.says(schema, text.replace(old, new), says)

    def test_json_formats(self):
        for schema, (good, defects) in JSON_DEFECTS.items():
            self.assertEqual(faults(schema, json.dumps(good)), [])
            for path, value, says in defects:
                with self.subTest(schema=schema, path=path):
                    document = copy.deepcopy(good)
                    node = document
                    for step in path[:-1]:
                        node = node[step]
                    node[path[-1]] = value
                    self.says(schema, json.dumps(document), says)


if __name__ == "__main__":
    unittest.main()
