# SPDX-License-Identifier: Apache-2.0
"""Every typed answer fits its JSON Schema, has each member that the schema names, in its order, and
no other; the schemas are those that the command prints."""
import json
import re
import unittest

from support import OUTPUT_SCHEMAS, PLATFORMS, SAMPLES, CommandTest, validate_answer

CARD, EMBEDDED, BOARD, PARTITION = (SAMPLES / name for name in PLATFORMS)
BAD = "none.pka"

# What each command is asked, with the code that it answers.
CALLS = {
    "list": [(0, SAMPLES), (0, SAMPLES, "--all"), (0, ".", "--all", "--latest"),
             (1, SAMPLES, "--why", PARTITION)],
    "dirs": [(0,)],
    "show": [(0, CARD), (0, EMBEDDED), (0, BOARD), (0, BOARD, "--section", "support"), (0, "a.spfm")],
    "info": [(0, CARD), (0, EMBEDDED), (0, BOARD), (0, "a.spfm")],
    "files": [(0, CARD), (0, "b.pka")],
    "verify": [(0, CARD), (1, "b.pka")],
    "validate": [(0, CARD, BOARD), (1, "b.pka", BAD)],
    "check": [(1, CARD, EMBEDDED, BOARD), (0, BOARD, "--tool-release", "2027.1", "--matrix"),
              (3, EMBEDDED, BAD), (1, "b.pka")],
    "diff": [(0, CARD, CARD), (1, CARD, EMBEDDED)],
    "error": [(3, "show", BAD), (3, "files", BAD), (3, "verify", "a.spfm"), (2, "check"),
              (2, "nosuch"), (3, "info", "bad.qpfm"), (1, "get", CARD, "nothing"),
              (3, "list", BAD), (3, "diff", CARD, "bad.qpfm")],
}


class Outputs(CommandTest):
    def test_answers_fit_their_schemas(self):
        self.assertEqual(set(CALLS), {path.name.split(".")[0] for path in OUTPUT_SCHEMAS.iterdir()})
        (self.dir / "a.spfm").write_bytes(next(SAMPLES.rglob("*.spfm")).read_bytes())
        (self.dir / "bad.qpfm").write_text("<a>\n", encoding="utf-8")
        data = bytearray(CARD.read_bytes())
        data[len(data) // 3] ^= 1
        (self.dir / "b.pka").write_bytes(data)
        for command, calls in CALLS.items():
            for code, *arguments in calls:
                with self.subTest(command=command, arguments=arguments):
                    words = arguments if command == "error" else [command, *arguments]
                    output, _ = self.mav(*words, "--json", code=code, cwd=self.dir)
                    self.assertEqual(validate_answer(output)["schema"], f"mav.{command}/1")

    def test_the_command_prints_the_schemas(self):
        for path in OUTPUT_SCHEMAS.iterdir():
            command = path.name.split(".")[0]
            if command != "error":
                self.assertEqual(self.mav(command, "--schema")[0], path.read_text(encoding="utf-8"))

    def test_reports_have_their_numbers(self):
        (self.dir / "bad.qpfm").write_text("<a>\n", encoding="utf-8")
        output, errors = self.mav("show", "bad.qpfm", "--json", code=3, cwd=self.dir)
        reports = json.loads(output)["reports"]
        self.assertEqual([report["id"] for report in reports],
                         re.findall(r"\[platform ([0-9-]+)\]", errors))
        self.assertTrue(reports)


if __name__ == "__main__":
    unittest.main()
