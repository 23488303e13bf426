# SPDX-License-Identifier: Apache-2.0
"""`mav show` keeps within the width of the terminal and loses nothing."""
import re
import unicodedata
import unittest

from support import PLATFORMS, SAMPLES, CommandTest, copied_card, on_terminal

CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"

SECTIONS = ["identity", "device", "targets", "support", "clocks", "memories", "banks", "interfaces",
            "partitions", "array", "software", "emulation", "files"]


def width(line):
    """Columns of a terminal."""
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1
               for c in line)


class Show(CommandTest):
    def show(self, *arguments):
        return self.mav("show", *arguments)[0]

    def test_the_overview_is_one_screen(self):
        text = on_terminal(120, "show", CARD, "--color", "never")
        self.assertLessEqual(len(text.splitlines()), 60)
        # Beside each other they say what they say below each other.
        narrow = on_terminal(90, "show", CARD, "--color", "never")
        self.assertEqual(sorted(text.split()), sorted(narrow.split()))
        heads = [line for line in narrow.splitlines() if line and line[0] != " "]
        self.assertEqual(heads[1:4], ["identity", "device", "targets"])
        coloured = on_terminal(120, "show", CARD, "--color", "always")
        self.assertEqual(re.sub("\033\\[[0-9;]*m", "", coloured), text)

    def test_lines_keep_within_the_width(self):
        for name in PLATFORMS + ["ostrivel_e7/sw/ostrivel_e7.spfm"]:
            for columns, limit in ((20, 60), (60, 60), (80, 80), (200, 200)):
                for section in [(), *(("--section", name) for name in SECTIONS)]:
                    text = on_terminal(columns, "show", SAMPLES / name, *section)
                    plain = re.sub("\033\\[[0-9;]*m", "", text)
                    with self.subTest(platform=name, columns=columns, section=section):
                        self.assertLessEqual(max(map(width, plain.splitlines()), default=0), limit)
        # Nothing is lost: what is cut off goes on below.
        text = on_terminal(60, "show", CARD, "--section", "interfaces", "--color", "never")
        self.assertIn("hbm_m", text)
        self.assertEqual(re.sub(r"\W", "", on_terminal(60, "show", CARD)).count("kernel_clk"),
                         re.sub(r"\W", "", self.show(CARD)).count("kernel_clk"))

    def test_wide_characters(self):
        def edit(metadata):
            clocks = metadata["systemClocks"]
            clocks[0]["name"], clocks[1]["name"], clocks[2]["name"] = "\u6642\u8108", "\U0001f680", "re\u0301f"
            metadata["description"] = "\u5927\u898f\u6a21 " * 60
            metadata["boardId"] = "\u677f" * 90
        card = copied_card(self, edit)
        lines = self.show(card, "--section", "clocks").splitlines()[1:]
        self.assertIn("\u6642\u8108", lines[1])
        self.assertEqual({width(re.split("scalable|fixed|STATUS", line)[0]) for line in lines}, {25})
        for columns in (60, 61, 120):
            text = on_terminal(columns, "show", card, "--color", "never")
            self.assertEqual(text.count("\u5927\u898f\u6a21"), 60)
            self.assertLessEqual(max(map(width, text.splitlines())), columns)
        self.assertGreater(on_terminal(60, "show", card).index("identity"), 100)


if __name__ == "__main__":
    unittest.main()
