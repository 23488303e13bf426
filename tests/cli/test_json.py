# SPDX-License-Identifier: Apache-2.0
"""`mav json`: the documents of the samples, byte for byte, and what happens to bad input.

With MAV_UPDATE_GOLDEN=1 the documents in tests/cases/golden are written anew."""
import json
import os
import shutil
import sys
import unittest

from support import MAV, PLATFORMS, SAMPLES, SOURCE, CommandTest, run

GOLDEN = SOURCE / "tests/cases/golden"
HERE = SOURCE / "tests/cli"

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

    def test_standard_output_is_one_json_document(self):
        for sample in PLATFORMS:
            document = json.loads(self.mav("json", SAMPLES / sample)[0])
            self.assertEqual(document["file"], str(SAMPLES / sample))
            self.assertIn("hardwarePlatforms", document)

    def test_a_description_is_named_as_given(self):
        output = self.mav("json", "ostrivel_e7.qpfm", "--short", cwd=SAMPLES / "ostrivel_e7")[0]
        self.assertEqual(json.loads(output)["uniqueName"], "ostrivel_e7.qpfm")


class Metadata(CommandTest):
    """Which member counts, with a folder that holds the alternative metadata and maybe both."""

    def pack(self, *names):
        folder = self.dir / "in"
        folder.mkdir()
        for name in names:
            shutil.copy(SOURCE / "samples/ostrivel_e7/hw/archive" / name, folder)
        self.mav("pack", folder, self.dir / "made.pka")
        return self.dir / "made.pka"

    def minor(self, archive, *options):
        document = json.loads(self.mav("json", archive, *options)[0])
        return document["hardwarePlatforms"]["hardwarePlatform"]["versionMinor"]

    def test_the_alternative_counts_and_json_asks_for_the_primary_to_be_there(self):
        both = self.pack("pka.json", "alt_pka.json")
        for options in ([], ["--metadata", "auto"], ["--metadata", "json"]):
            self.assertEqual(self.minor(both, *options), "5")

    def test_the_primary_alone(self):
        primary = self.pack("pka.json")
        for options in ([], ["--metadata", "json"]):
            self.assertEqual(self.minor(primary, *options), "4")

    def test_the_alternative_alone(self):
        alternative = self.pack("alt_pka.json")
        self.assertEqual(self.minor(alternative), "5")
        self.refused("json", alternative, "--metadata", "json", code=3,
                     says=["Failed to parse Hardware Platform metadata file"])


class Callers(CommandTest):
    def test_command_c_program_and_ctypes_give_the_same_bytes(self):
        preload = os.environ.get("MAV_ASAN_RUNTIME")
        python_environment = dict(os.environ)
        if preload:  # the interpreter's own leaks are not ours
            python_environment.update(LD_PRELOAD=preload, ASAN_OPTIONS="detect_leaks=0")
        for sample in PLATFORMS:
            for options in ([], ["--short"]):
                with self.subTest(sample=sample, options=options):
                    path = SAMPLES / sample
                    command = run(MAV, "json", path, *options)
                    self.assertEqual(command.returncode, 0, command.stderr)
                    self.assertGreater(len(command.stdout), 2)
                    program = run(os.environ["MAV_C_CLIENT"], path, *options)
                    self.assertEqual((program.returncode, program.stdout), (0, command.stdout))
                    script = run(sys.executable, HERE / "ctypes_client.py",
                                 os.environ["MAV_LIBRARY"], path, *options, env=python_environment)
                    self.assertEqual((script.returncode, script.stdout), (0, command.stdout),
                                     script.stderr)


class BadInput(CommandTest):
    def cannot_load(self, path, *says):
        return self.refused("json", path, code=3, says=[f"mav: cannot load '{path}'", *says])

    def write(self, name, content):
        path = self.dir / name
        path.write_bytes(content)
        return path

    def test_missing_files(self):
        for name in ("none.qpfm", "none.pka", "none.spfm", "none"):
            self.cannot_load(self.dir / name, "nothing is there", "Check the path")

    def test_directories(self):
        for name in ("dir", "dir.pka"):
            (self.dir / name).mkdir()
            self.cannot_load(self.dir / name, "it is a directory", "Name the platform file in it")

    def test_archives_that_are_none(self):
        sample = (SAMPLES / "veltrin_h90/veltrin_h90.pka").read_bytes()
        for content in (b"", b"not a zip archive", sample[:len(sample) // 2]):
            self.cannot_load(self.write("bad.pka", content), "bad.pka")

    def test_console_lines_of_the_library_stay_off_standard_output(self):
        path = self.write("bad.qpfm", b"<?xml version='1.0'?>\n<mav:platform>\n")
        errors = self.cannot_load(path, "Error parsing platform file: ", "Line number:")
        self.assertIn("failed to parse the QPFM file", errors)

    def test_references_that_lead_nowhere(self):
        path = self.write("lost.qpfm", (SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm").read_bytes())
        self.cannot_load(path, f"hardware platform file '{self.dir}/hw/ostrivel_e7.pka'")

    def test_archives_without_json_metadata(self):
        self.refused("json", SAMPLES / "veltrin_h90/veltrin_h90.pka", "--metadata", "xml", code=3,
                     says=["Failed to parse Hardware Platform metadata file"])


if __name__ == "__main__":
    unittest.main()
