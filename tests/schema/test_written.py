# SPDX-License-Identifier: Apache-2.0
"""What the library writes fits the schemas."""
import os
import pathlib
import subprocess
import tempfile
import unittest

from support import (MAV, SAMPLES, TOOL, faults, packed_samples, page_examples,
                     unpacked_samples)

PLATFORMS = (".qpfm", ".pka", ".dsa")


class Written(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.dir = pathlib.Path(os.path.realpath(scratch.name))

    def write(self, *arguments):
        subprocess.run([TOOL, *arguments], check=True, capture_output=True, timeout=60)

    def test_what_the_command_writes(self):
        platforms = [path for path in sorted(SAMPLES.rglob("*")) if path.suffix in PLATFORMS]
        self.assertGreater(len(platforms), 4)
        for path in platforms:
            with self.subTest(platform=path.name):
                done = subprocess.run([MAV, "json", path], capture_output=True, check=True)
                self.assertEqual(faults("document.schema.json", done.stdout.decode()), [])

    def test_rewritten_hpfm(self):
        """A document whose memory banks are preferred in part, as the format page has one."""
        changed = 0
        for text in [*page_examples(), *unpacked_samples()]:
            if text.schema != "hpfm.xsd":
                continue
            with self.subTest(file=text.origin):
                file = self.dir / "a.hpfm"
                file.write_text(text.text, encoding="utf-8")
                self.write("hpfm", file)
                written = file.read_text(encoding="utf-8")
                changed += written != text.text
                self.assertEqual(faults("hpfm.xsd", written), [])
        self.assertGreater(changed, 0)

    def test_emulation_metadata(self):
        texts = [text for text in [*page_examples(), *packed_samples()]
                 if text.schema == "emulation.schema.json"]
        self.assertGreater(len(texts), 2)
        for text in texts:
            with self.subTest(file=text.origin):
                (self.dir / "a.json").write_text(text.text, encoding="utf-8")
                self.write("emulation", self.dir / "a.json", self.dir / "a.xml")
                written = (self.dir / "a.xml").read_text(encoding="utf-8")
                self.assertEqual(faults("emulation.xsd", written), [])

    def test_archive_index(self):
        """Read and written again, an index stays the text that it was."""
        texts = [text for text in packed_samples() if text.schema == "vma.schema.json"]
        self.assertTrue(texts)
        for text in texts:
            with self.subTest(file=text.origin):
                archive = SAMPLES / text.origin.partition("!")[0]
                done = subprocess.run([TOOL, "index", archive], check=True, capture_output=True)
                self.assertEqual(done.stdout.decode(), text.text)
                self.assertEqual(faults("vma.schema.json", text.text), [])


if __name__ == "__main__":
    unittest.main()
