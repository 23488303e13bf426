# SPDX-License-Identifier: Apache-2.0
"""What the library writes fits the schemas."""
import os
import pathlib
import subprocess
import tempfile
import unittest

from support import TOOL, faults, packed_samples, page_examples


class Written(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.dir = pathlib.Path(os.path.realpath(scratch.name))

    def test_every_rewritten_text_fits(self):
        """hpfm documents, changed where memory banks are preferred in part, and emulation metadata."""
        for schema, command, fits in (("hpfm.xsd", ["hpfm", "a"], "hpfm.xsd"),
                                      ("emulation.schema.json", ["emulation", "a", "b"], "emulation.xsd")):
            changed = 0
            for text in [*page_examples(), *packed_samples()]:
                if text.schema != schema:
                    continue
                with self.subTest(file=text.origin):
                    (self.dir / "a").write_text(text.text, encoding="utf-8")
                    subprocess.run([TOOL, *command], check=True, capture_output=True, cwd=self.dir)
                    written = (self.dir / command[-1]).read_text(encoding="utf-8")
                    changed += written != text.text
                    self.assertEqual(faults(fits, written), [])
            self.assertGreater(changed, 0)


if __name__ == "__main__":
    unittest.main()
