# SPDX-License-Identifier: Apache-2.0
"""`mav diff`: what changed between two platforms, by meaning."""
import json
import pathlib
import re
import shutil
import unittest

from support import SAMPLES, CommandTest, copied_card


class Diff(CommandTest):
    def test_the_same_platform_elsewhere_does_not_differ(self):
        original = SAMPLES / "veltrin_h90/veltrin_h90.pka"
        elsewhere = pathlib.Path(shutil.copy(original, self.dir / "other.pka"))
        self.assertEqual(self.mav("diff", original, elsewhere)[0], "")
        self.assertEqual(json.loads(self.mav("diff", "--json", original, elsewhere)[0]),
                         {"differ": "false", "changes": []})

    def test_a_copied_folder_does_not_differ(self):
        copies = pathlib.Path(shutil.copytree(SAMPLES, self.dir / "copies"))
        (self.dir / "link").symlink_to(SAMPLES)
        files = [path.relative_to(SAMPLES) for suffix in ("qpfm", "spfm", "pka", "dsa")
                 for path in SAMPLES.glob(f"**/*.{suffix}")]
        self.assertGreater(len(files), 8)
        for file in files:
            for other in (copies, self.dir / "link"):
                with self.subTest(platform=file, other=other.name):
                    self.assertEqual(self.mav("diff", SAMPLES / file, other / file)[0], "")
        platform = pathlib.Path("ostrivel_e7/ostrivel_e7.qpfm")
        (copies / "ostrivel_e7/hw").rename(copies / "ostrivel_e7/logic")
        text = (copies / platform).read_text(encoding="utf-8")
        (copies / platform).write_text(re.sub(r'(path=")hw(?=")', r"\1logic", text), encoding="utf-8")
        self.assertEqual(self.mav("diff", SAMPLES / platform, copies / platform, code=1)[0],
                         "~ hwFile: 'hw/ostrivel_e7.pka' -> 'logic/ostrivel_e7.pka'\n")

    def test_numbers_are_compared_by_value(self):
        def edit(metadata):
            metadata["systemClocks"][0]["frequency"] = "0300"
            metadata["systemClocks"][1]["frequency"] = "500.0001"
            metadata["generatedVersion"] = "2026.10"
        original = SAMPLES / "veltrin_h90/veltrin_h90.pka"
        self.assertEqual(set(self.mav("diff", original, copied_card(self, edit), code=1)[0].splitlines()), {
            "~ hardwarePlatform.systemClocks[kernel2_clk].frequency: '500.000' -> '500.0001'",
            "~ hardwarePlatform.generatedVersion: '2026.1' -> '2026.10'"})

    def test_changes_by_meaning(self):
        def edit(metadata):
            metadata["systemClocks"][0]["frequency"] = "250.000"
            del metadata["memories"][31]
            metadata["memories"].reverse()
            metadata["interfaces"].append({"id": "x", "name": "NEW", "type": "serial"})
            metadata["files"].insert(0, {"name": "bit/full.bit", "type": "DCP"})
        other = copied_card(self, edit)
        original = SAMPLES / "veltrin_h90/veltrin_h90.pka"
        output = self.mav("diff", original, other, code=1)[0].splitlines()
        head = "hardwarePlatform."
        self.assertIn(f"~ {head}systemClocks[kernel_clk].frequency: '300.000' -> '250.000'", output)
        self.assertEqual([line for line in output if "memories" in line and line[0] != "~"],
                         [f"- {head}memories[HBM[31]]: name HBM[31], type hbm, size 256MB, "
                          "lowAddress 8321499136, .."])
        self.assertIn(f"+ {head}interfaces[NEW]: id x, name NEW, type serial", output)
        backwards = json.loads(self.mav("diff", "--json", other, original, code=1)[0])["changes"]
        self.assertEqual(len(backwards), len(output))
        self.assertIn({"kind": "added", "path": "hardwarePlatforms.hardwarePlatform.memories[HBM[31]]",
                       "to": "name HBM[31], type hbm, size 256MB, lowAddress 8321499136, .."},
                      backwards)

    def test_what_does_not_load(self):
        self.refused("diff", self.dir / "a.pka", SAMPLES / "veltrin_h90/veltrin_h90.pka", code=3,
                     says=["a.pka"])
        self.refused("diff", self.dir / "a.pka", code=2, says=["B is required"])


if __name__ == "__main__":
    unittest.main()
