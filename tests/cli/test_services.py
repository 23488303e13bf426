# SPDX-License-Identifier: Apache-2.0
"""`mav get` and the other questions about a platform's description."""
import json

from support import SAMPLES, CommandTest

CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"
ROOT = "hardwarePlatforms.hardwarePlatform"


class Get(CommandTest):
    def test_values_objects_and_lists(self):
        document = json.loads(self.mav("json", CARD)[0])
        hardware = document["hardwarePlatforms"]["hardwarePlatform"]
        self.assertEqual(self.mav("get", CARD, "type")[0], document["type"] + "\n")
        self.assertEqual(json.loads(self.mav("get", CARD, "type", "--json")[0]), document["type"])
        self.assertEqual(json.loads(self.mav("get", CARD, "hardwarePlatform")[0]), hardware)
        clocks = hardware["systemClocks"]
        self.assertGreater(len(clocks), 1)
        self.assertEqual(json.loads(self.mav("get", CARD, ROOT + ".systemClocks")[0]), clocks)
        for every in ("[*].", "[].", ".."):
            names, _ = self.mav("get", CARD, f"hardwarePlatform.systemClocks{every}name")
            self.assertEqual(json.loads(names), [clock["name"] for clock in clocks])
        last = f"hardwarePlatform.systemClocks[{len(clocks) - 1}].name"
        self.assertEqual(self.mav("get", CARD, last)[0], clocks[-1]["name"] + "\n")

    def test_what_is_not_there(self):
        self.refused("get", CARD, ROOT + ".nothing", code=1,
                     says=["nothing is at '" + ROOT + ".nothing'"])
        self.refused("get", self.dir / "no.qpfm", "vendor", code=3, says=["nothing is there"])
        self.refused("get", "", "vendor", code=2, says=["FILE is empty"])
