# SPDX-License-Identifier: Apache-2.0
"""A mistyped key or type is answered with the nearest one that there is."""
import unittest

from support import SAMPLES, CommandTest

SAMPLE = SAMPLES / "veltrin_h90/veltrin_h90.pka"


class HintTest(CommandTest):
    def test_nearest_key(self):
        for command, path, meant in [("get", "hardwarePlatform.fpgaPrt", "fpgaPart"),
                                     ("get", "hardwarePlatfrm.fpgaPart", "hardwarePlatform"),
                                     ("get", "hardwarePlatform.memry", "memories"),
                                     # A name of another place is no name here.
                                     ("get", "hardwarePlatform.frequency", None),
                                     ("dict", "hardwarePlatform.memry", "memories"),
                                     ("dict", "hardwarePlatform.memories[0].nam", "name"),
                                     ("dict", "hardwarePlatform.systemClcks[0]", "systemClocks")]:
            if meant is None:
                self.assertNotIn("mean", self.refused(command, SAMPLE, path, code=1, says=[path]))
                continue
            self.refused(command, SAMPLE, path, code=1, says=[path, f"Did you mean '{meant}'?"])
        errors = self.refused("get", SAMPLE, "hardwarePlatform.qqqqqq", code=1, says=["mav keys"])
        self.assertNotIn("Did you mean", errors)

    def test_nearest_documented_key(self):
        for key, meant in [("HMAVSystemClok", "HMAVSystemClock"),
                           ("HMAVSytemClock.frequency", "HMAVSystemClock.frequency"),
                           ("HMAVSystemClock.frequncy", "HMAVSystemClock.frequency"),
                           ("descripton", "description"),
                           ("hardwarePlatfrm.systemClocks.id", "hardwarePlatform.systemClocks.id"),
                           # With two slips the first is told, as far as it leads.
                           ("hardwarePlatform.systemClks[0].frequncy",
                            "hardwarePlatform.systemClocks")]:
            self.refused("doc", key, code=1, says=[f"no key '{key}'", f"Did you mean '{meant}'?"])
        for key in ("qqqqqq", "hardwarePlatform.systemClocks.frequency.more", "HMAVPlatform.", "."):
            errors = self.refused("doc", key, code=1, says=["'mav doc' lists the keys."])
            self.assertNotIn("Did you mean", errors)

    def test_nearest_type(self):
        self.refused("list", SAMPLES, "--type", "Pelux", code=2,
                     says=["use pellux, quorin, acceleration or undefined", "mean 'pellux'?"])
        self.refused("extract", SAMPLE, "FULL_BTI", code=3, says=["Did you mean 'FULL_BIT'?"])
        self.refused("add", SAMPLE, "FULL_BTI", __file__, code=2, says=["mean 'FULL_BIT'?"])


if __name__ == "__main__":
    unittest.main()
