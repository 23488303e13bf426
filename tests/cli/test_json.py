# SPDX-License-Identifier: Apache-2.0
"""`mav json`: the documents of the samples, byte for byte, for every caller.

With MAV_UPDATE_GOLDEN=1 the documents in tests/cases/golden are written anew."""
import json
import os
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


if __name__ == "__main__":
    unittest.main()
