# SPDX-License-Identifier: Apache-2.0
"""A mistyped name in a path is answered with the nearest one that the platform has."""
import unittest

from support import SAMPLES, CommandTest

SAMPLE = SAMPLES / "veltrin_h90/veltrin_h90.pka"


class HintTest(CommandTest):
    def test_nearest_key(self):
        for command, path, meant in [("get", "hardwarePlatform.fpgaPrt", "fpgaPart"),
                                     ("get", "hardwarePlatfrm.fpgaPart", "hardwarePlatform"),
                                     ("dict", "hardwarePlatform.systemClcks[0]", "systemClocks")]:
            self.refused(command, SAMPLE, path, code=1, says=[path, f"Did you mean '{meant}'?"])
        errors = self.refused("get", SAMPLE, "hardwarePlatform.qqqqqq", code=1, says=["mav keys"])
        self.assertNotIn("Did you mean", errors)


if __name__ == "__main__":
    unittest.main()
