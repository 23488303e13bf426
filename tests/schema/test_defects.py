# SPDX-License-Identifier: Apache-2.0
"""Each schema refuses a good file with one defect, and says what is wrong."""
import copy
import json
import unittest

from support import SOURCE, faults, golden_documents

SAMPLES = SOURCE / "samples"
CARD = "veltrin_h90/archive/pka.json"
CARD_HPFM = "veltrin_h90/archive/veltrin_h90.hpfm"
PARTITIONS = "tessomar_r2/tessomar_r2.qpfm"
DESCRIPTION = "ostrivel_e7/ostrivel_e7.qpfm"
EMULATION_ONLY = "ostrivel_e7/ostrivel_e7_emu.qpfm"
SOFTWARE = "ostrivel_e7/sw/ostrivel_e7.spfm"
EMULATION = "tessomar_r2/partition1/hw_emu/hw_emu.xml"

# File, text, what it is replaced by, what the schema says.
XML_DEFECTS = {
    "platform-description.xsd": [
        (DESCRIPTION, 'mav:vendor="ostrivel"', "", "vendor' is required"),
        (DESCRIPTION, 'mav:version="1.4"', 'mav:version="1.4.1"', "'xs:decimal'"),
        (DESCRIPTION, "urn:mav:platform:1", "urn:mav:platform:2", "No matching global declaration"),
        (DESCRIPTION, ' mav:path="hw"', "", "path' is required"),
        (EMULATION_ONLY, '<mav:hwEmuPlatform mav:path="hw_emu" mav:name="ostrivel_e7_emu.pka"/>',
         "", "Missing child element"),
        (DESCRIPTION, "</mav:hardwarePlatforms>",
         '<mav:reconfigurablePartition mav:id="1"/></mav:hardwarePlatforms>', "not expected"),
        (DESCRIPTION, "</mav:softwarePlatforms>",
         '<mav:softwarePlatform mav:path="a" mav:name="b"/></mav:softwarePlatforms>',
         "not expected"),
        (DESCRIPTION, "<mav:softwarePlatforms>", "<mav:notes/><mav:softwarePlatforms>",
         "not expected"),
        (DESCRIPTION, "<mav:description>", "<mav:description/><mav:description>", "not expected"),
        (DESCRIPTION, 'mav:schemaVersion="1.0"', 'mav:edition="1.0"', "not allowed"),
        (PARTITIONS, ' mav:id="1"', "", "id' is required"),
        (PARTITIONS, 'mav:id="1"', 'mav:id="-1"', "not accepted by the pattern"),
        (PARTITIONS, 'mav:defaultRP="1"', 'mav:defaultRP="4294967296"', "greater than the maximum"),
        (PARTITIONS, 'mav:defaultRP="1"', 'mav:defaultRP="one"', "not a valid value"),
    ],
    "software-platform.xsd": [
        (SOFTWARE, "mav:systemConfigurations", "mav:systemConfiguration", "not expected"),
        (SOFTWARE, 'mav:name="linux" mav:displayName="Linux on',
         'mav:displayName="Linux on', "name' is required"),
        (SOFTWARE, 'mav:name="rpu_0"', "", "name' is required"),
        (SOFTWARE, '<mav:os mav:name="standalone"', '<mav:system mav:name="standalone"',
         "not expected"),
        (SOFTWARE, "</mav:bootImages>", '<mav:image mav:name="b"/></mav:bootImages>',
         "not expected"),
        (SOFTWARE, '<mav:prebuilt mav:data="prebuilt/linux"/>',
         '<mav:prebuilt mav:data="a"/><mav:prebuilt mav:data="b"/>', "not expected"),
        (SOFTWARE, "<mav:bootImages ", "<mav:description/><mav:bootImages ", "not expected"),
        (SOFTWARE, "</mav:bootImages>", "</mav:bootImages><mav:prebuilt/>", "not expected"),
        (SOFTWARE, 'mav:sysRoot="linux/sysroot"', 'mav:sysroot="linux/sysroot"', "not allowed"),
    ],
    "hpfm.xsd": [
        (CARD_HPFM, "urn:mav:hpfm:1", "urn:mav:hpfm:2", "No matching global declaration"),
        (CARD_HPFM, 'qd:defaultClock="0"', 'qd:defaultClock="kernel_clk"', "not a valid value"),
        (CARD_HPFM, 'qd:id="3"', 'qd:id="-3"', "not accepted by the pattern"),
        (CARD_HPFM, 'qd:dataWidth="512"', 'qd:dataWidth="wide"', "not a valid value"),
        (CARD_HPFM, 'qd:category="stream"/>',
         'qd:category="stream"><qd:addressSegment qd:auto="maybe"/></qd:busInterface>',
         "'enumeration'"),
        (CARD_HPFM, 'qd:category="stream"/>',
         'qd:category="stream"><qd:addressSegment qd:index="1.5"/></qd:busInterface>',
         "not a valid value"),
        (CARD_HPFM, "<qd:parameter ", "<qd:platformInfo/><qd:parameter ", "not expected"),
        (CARD_HPFM, "<qd:parameter ", '<qd:clock qd:name="c"/><qd:parameter ', "not expected"),
        (CARD_HPFM, " qd:sptag=", " qd:spTag=", "not allowed"),
        (CARD_HPFM, 'qd:hasTlast="true"', 'hasTlast="true"', "not allowed"),
    ],
    "emulation.xsd": [
        (EMULATION, 'VersionMajor="1"', 'VersionMajor="one"', "not a valid value"),
        (EMULATION, ' Type="DR_BD"', "", "Type' is required"),
        (EMULATION, 'Type="DR_BD"', 'Type="BD"', "'enumeration'"),
        (EMULATION, ' Name="emu.hpfm"', "", "Name' is required"),
        (EMULATION, "Emulations>", "Variants>", "not expected"),
        (EMULATION, "</Files>", "</Files><Files/>", "not expected"),
        (EMULATION, "InstPath=", "Instance=", "not allowed"),
    ],
}

REMOVED = object()
# Where a value is put, the value, what the schema says. "REMOVED" takes the member away.
METADATA_DEFECTS = [
    *(([key], REMOVED, f"'{key}' is a required property")
      for key in ("vendor", "boardId", "name", "versionMajor", "versionMinor")),
    (["versionMajor"], "three", "does not match"),
    (["versionMajor"], -1, "less than the minimum"),
    (["versionMinor"], "4294967296", "does not match"),
    (["vendor"], None, "is not of type"),
    (["vendor"], ["a"], "is not of type"),
    (["usesPR"], "yes", "does not match"),
    (["usesPR"], 1, "is not of type"),
    (["colour"], "blue", "'colour' was unexpected"),
    (["board"], [], "is not of type"),
    (["board"], "h90", "is too long"),
    (["board", "pcie", "lanes"], 16, "'lanes' was unexpected"),
    (["files"], {}, "is not of type"),
    (["files", 0, "type"], REMOVED, "'type' is a required property"),
    (["files", 0, "name"], REMOVED, "'name' is a required property"),
    (["files", 0, "type"], "hpfm", "is not one of"),
    (["files", 0, "mode"], "r", "'mode' was unexpected"),
    (["memories", 0, "lowAddress"], "0xZZ", "does not match"),
    (["memories", 0, "highAddress"], "-5", "does not match"),
    (["devices", 0, "numSLRs"], "many", "does not match"),
    (["devices", 0, "core", "ports"], [["a"]], "is not of type"),
    (["systemClocks", 0, "default"], "maybe", "does not match"),
    (["busInterfaces", 0, "dataWidth"], "wide", "does not match"),
    (["busInterfaces", 0, "addressSegments"], [{"auto": "always"}], "is not one of"),
    (["busInterfaces", 0, "addressSegments"], [{"index": "1.5"}], "does not match"),
    (["featureRoms"], [{"uuid": "0123"}], "does not match"),
    (["featureRoms"], [{"vbnvName": "x" * 64}], "is too long"),
    (["featureRoms"], [{"featureBitMap": "0x1ffffffff"}], "does not match"),
    (["featureRoms"], [{"featureBitMap": 4294967296}], "greater than the maximum"),
    (["featureRoms"], [{"cdmaBaseAddress4": 0}], "was unexpected"),
    (["dpeHardware"], {"arch": "DPE_G"}, "does not match"),
    (["dpeHardware"], {"shimRows": 2}, "is not of type"),
    (["dpePartitions"], [{"numColumns": -1}], "less than the minimum"),
    (["dpePartitions"], [{"startColumn": 1}], "'numColumns' is a required property"),
    (["dpePartitions"], [{"numColumns": 2, "partitions": [{"numColumns": 1, "partitions": []}]}],
     "was unexpected"),
    (["designIntent"], {"dataCenter": True}, "is not of type"),
    (["designIDs"], {"designID": "a"}, "does not match"),
    (["designIpInstances"], [{"configuration": {"A": ["1"]}}], "is not of type"),
    (["nocConnectivity"], [{"busInterfaces": [{}]}], "is not of type"),
    (["validAcceleratorBinaryContentValues"], [[]], "is not of type"),
]
HARDWARE = ["hardwarePlatforms", "hardwarePlatform"]
DOCUMENT_DEFECTS = [
    (["unified"], REMOVED, "'unified' is a required property"),
    (["unified"], True, "is not one of"),
    (["vendor"], "", "is too short"),
    (["colour"], "blue", "'colour' was unexpected"),
    (["defaultRPId"], "0", "'reconfigurablePartitions' is a required property"),
    (["hardwarePlatforms", "reconfigurablePartitions"], [{"id": "1"}], "False schema"),
    (["hardwarePlatforms"], {}, "does not have enough properties"),
    ([*HARDWARE, "versionMajor"], 1, "is not of type"),
    ([*HARDWARE, "versionMajor"], "-1", "does not match"),
    ([*HARDWARE, "static"], "false", "was expected"),
    ([*HARDWARE, "maxInterrupts"], REMOVED, "'maxInterrupts' is a required property"),
    ([*HARDWARE, "expandablePlatform"], "false", "False schema"),
    ([*HARDWARE, "dynamicReload"], "true", "False schema"),
    ([*HARDWARE, "dpeHardware", "arch"], "DPE", "is not one of"),
    ([*HARDWARE, "dpeHardware", "shimRows", "start"], "-1", "does not match"),
    ([*HARDWARE, "devices"], [], "is too short"),
    ([*HARDWARE, "memories", 0, "lowAddress"], "0x0", "does not match"),
    ([*HARDWARE, "systemClocks", 0, "default"], REMOVED, "'default' is a required property"),
    ([*HARDWARE, "files", 0, "path"], "a", "'path' was unexpected"),
    ([*HARDWARE, "featureRoms"], [{"featureBitMap": {"bit32": "enabled"}}], "does not match"),
    ([*HARDWARE, "featureRoms"], [{"drBaseAddress": "0x0A"}], "does not match"),
    (["softwarePlatform"], {"systemConfigurations": [{}]}, "'qemu' is a required property"),
]
# A good document of each of the small formats and what may be wrong with it.
SMALL = {
    "emulation.schema.json": (
        {"emulations": [{"name": "e", "files": [{"type": "TOP_BD", "name": "a.bd"}]}]}, [
            (["emulations"], REMOVED, "'emulations' is a required property"),
            (["emulations", 0, "files"], REMOVED, "'files' is a required property"),
            (["emulations", 0, "files", 0, "type"], REMOVED, "'type' is a required property"),
            (["emulations", 0, "files", 0, "name"], REMOVED, "'name' is a required property"),
            (["emulations", 0, "files", 0, "type"], "BD", "is not one of"),
            (["emulations", 0, "files", 0, "instPath"], "a", "'instPath' was unexpected"),
            (["version"], "2.0", "'version' was unexpected"),
        ]),
    "extension-metadata.schema.json": (
        {"featureRoms": [{"vbnvName": "a_b_c_1_0", "featureBitMap": "1"}]}, [
            (["featureRoms"], {}, "is not of type"),
            (["featureRoms", 0, "featureBitMap"], "4294967296", "does not match"),
            (["featureRoms", 0, "cdmaBaseAddress3"], "-1", "does not match"),
            (["featureRoms", 0, "uuid"], "0", "'uuid' was unexpected"),
            (["featureRoms", 0, "vbnvName"], [], "is not of type"),
        ]),
    "dpe-partitions.schema.json": (
        {"DPE": {"a": {"startColumn": 0, "numColumns": "8", "partitions": {
            "b": {"numColumns": 2}}}}}, [
            (["DPE"], [], "is not of type"),
            (["DPE", "a", "numColumns"], REMOVED, "'numColumns' is a required property"),
            (["DPE", "a", "numColumns"], "+1", "does not match"),
            (["DPE", "a", "startColumn"], "left", "does not match"),
            (["DPE", "a", "plInterfaceID"], "1", "'plInterfaceID' was unexpected"),
            (["DPE", "a", "partitions", "b", "partitions"], {}, "was unexpected"),
        ]),
    "vma.schema.json": (
        {"version": {"major": "1", "minor": "0"}, "pfmName": "p",
         "files": [{"name": "a.dcp", "type": "DCP"}]}, [
            (["version", "major"], "one", "does not match"),
            (["files", 0, "name"], REMOVED, "'name' is a required property"),
            (["files", 0, "type"], REMOVED, "'type' is a required property"),
            (["files"], {}, "is not of type"),
            (["owner"], "me", "'owner' was unexpected"),
        ]),
}


def changed(document, path, value):
    document = copy.deepcopy(document)
    node = document
    for step in path[:-1]:
        node = node[step]
    if value is REMOVED:
        del node[path[-1]]
    else:
        node[path[-1]] = value
    return document


class Defects(unittest.TestCase):
    def check_json(self, schema, good, defects):
        self.assertEqual(faults(schema, json.dumps(good)), [])
        for path, value, says in defects:
            with self.subTest(schema=schema, path=path):
                found = faults(schema, json.dumps(changed(good, path, value)))
                self.assertTrue(any(says in fault for fault in found), (says, found))

    def test_xml_formats(self):
        for schema, defects in XML_DEFECTS.items():
            for name, old, new, says in defects:
                with self.subTest(schema=schema, old=old, new=new):
                    text = (SAMPLES / name).read_text(encoding="utf-8")
                    self.assertIn(old, text)
                    self.assertEqual(faults(schema, text), [])
                    # All places, so that both tags of an element change together.
                    found = faults(schema, text.replace(old, new))
                    self.assertTrue(any(says in fault for fault in found), (says, found))

    def test_metadata(self):
        good = json.loads((SAMPLES / CARD).read_text(encoding="utf-8"))
        self.check_json("metadata.schema.json", good, METADATA_DEFECTS)

    def test_document(self):
        good = next(json.loads(text.text) for text in golden_documents()
                    if text.origin == "ostrivel_e7.json")
        self.check_json("document.schema.json", good, DOCUMENT_DEFECTS)

    def test_small_formats(self):
        for schema, (good, defects) in SMALL.items():
            self.check_json(schema, good, defects)

    def test_what_readers_take_is_taken(self):
        """Scalars bare or quoted, empty texts for lists, children in any order."""
        metadata = json.loads((SAMPLES / CARD).read_text(encoding="utf-8"))
        for path, value in ((["versionMajor"], "+3"), (["versionMajor"], 3), (["usesPR"], "TRUE"),
                            (["usesPR"], False), (["vendor"], 7), (["files"], ""), (["board"], ""),
                            (["validAcceleratorBinaryContentValues"], "bitstream, dcp"),
                            (["dpeHardware"], {"arch": "none"}),
                            (["memories"], [{"lowAddress": "0XfF", "highAddress": 12}])):
            with self.subTest(path=path):
                changed_text = json.dumps(changed(metadata, path, value))
                self.assertEqual(faults("metadata.schema.json", changed_text), [])
        namespace = 'xmlns:mav="urn:mav:software-platform:1"'
        children = ["<mav:description/>", "<mav:prebuilt/>", group("a"), group("b"),
                    "<mav:bootImages><mav:image/></mav:bootImages>"]
        for turn in range(len(children)):
            text = "".join(children[turn:] + children[:turn])
            for body in (text, "".join(reversed(children[turn:] + children[:turn]))):
                self.assertEqual(faults("software-platform.xsd", f"""<mav:platform {namespace}>
                    <mav:systemConfigurations><mav:configuration mav:name="c">{body}
                    </mav:configuration></mav:systemConfigurations></mav:platform>"""), [])


def group(name):
    return f'<mav:processorGroup mav:name="{name}"><mav:os/></mav:processorGroup>'


if __name__ == "__main__":
    unittest.main()
