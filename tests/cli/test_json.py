# SPDX-License-Identifier: Apache-2.0
"""`mav json`: the documents of the samples, byte for byte.

With MAV_UPDATE_GOLDEN=1 the documents in tests/cases/golden are written anew."""
import os
import unittest

from support import SAMPLES, SOURCE, CommandTest

GOLDEN = SOURCE / "tests/cases/golden"

DOCUMENTS = {
    "veltrin_h90.json": ["veltrin_h90/veltrin_h90.pka"],
    "ostrivel_e7.json": ["ostrivel_e7/ostrivel_e7.qpfm"],
    "ostrivel_e7_emu.json": ["ostrivel_e7/ostrivel_e7_emu.qpfm"],
    "ostrivel_e7.short.json": ["ostrivel_e7/ostrivel_e7.qpfm", "--short"],
    "tessomar_r2.json": ["tessomar_r2/tessomar_r2.qpfm"],
    "tessomar_r2_p1.json": ["tessomar_r2/partition1/tessomar_r2_p1.dsa"],
}


def placed(text):
    """The document with the samples' directory replaced, as it stands in JSON texts."""
    return text.replace(str(SAMPLES).replace("/", "\\/"), "@SAMPLES@")


class Documents(CommandTest):
    def test_documents_of_the_samples(self):
        self.assertEqual({path.name for path in GOLDEN.glob("*.json")} | set(DOCUMENTS),
                         set(DOCUMENTS), "a document that no sample gives")
        for name, (sample, *options) in DOCUMENTS.items():
            with self.subTest(document=name):
                output, errors = self.mav("json", SAMPLES / sample, *options)
                self.assertEqual(errors, "")
                if os.environ.get("MAV_UPDATE_GOLDEN") == "1":
                    GOLDEN.mkdir(parents=True, exist_ok=True)
                    (GOLDEN / name).write_text(placed(output), encoding="utf-8")
                self.maxDiff = 4000
                self.assertEqual(placed(output), (GOLDEN / name).read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
