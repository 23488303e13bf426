# SPDX-License-Identifier: Apache-2.0
"""`mav show`: sections, cut lists, colour and width."""
import fcntl
import os
import pty
import re
import struct
import subprocess
import termios
import unicodedata
import unittest

from support import MAV, PLATFORMS, SAMPLES, CommandTest, copied_card

CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"
EMBEDDED = SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm"
PARTED = SAMPLES / "tessomar_r2/tessomar_r2.qpfm"


SECTIONS = ["identity", "device", "targets", "support", "clocks", "memories", "banks", "interfaces",
            "partitions", "array", "software", "emulation", "files"]


def width(line):
    """Columns of a terminal."""
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1
               for c in line)


def on_terminal(columns, *arguments, **variables):
    """What the command writes to a terminal of that width."""
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 50, columns, 0, 0))
    environment = {key: value for key, value in os.environ.items() if key != "NO_COLOR"}
    environment.update(TERM="xterm", **variables)
    with subprocess.Popen([MAV, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=slave,
                          stderr=subprocess.DEVNULL, env=environment) as process:
        os.close(slave)
        text = b""
        while True:
            try:
                piece = os.read(master, 65536)
            except OSError:
                break
            if not piece:
                break
            text += piece
    os.close(master)
    return text.decode().replace("\r\n", "\n")


class Show(CommandTest):
    def show(self, *arguments):
        return self.mav("show", *arguments)[0]

    def test_every_sample_shows_what_it_has(self):
        for name in PLATFORMS:
            with self.subTest(platform=name):
                text = self.show(SAMPLES / name)
                self.assertRegex(text, r"\nidentity +device\n")
                self.assertNotIn("\033", text)
        card = self.show(CARD)
        self.assertTrue(card.startswith("veltrin:h90:gen3x16_hbm:3.1\n"))
        self.assertRegex(card, r"\n +0  kernel_clk +300\.000  scalable  default  ")
        self.assertIn("and 36 more: --section memories\n", card)
        self.assertRegex(card, r"\n  axis +master +4 +512  M_AXIS_C2H_0 \.\. M_AXIS_C2H_3\n")
        self.assertNotIn("\npartitions\n", card)
        self.assertRegex(self.show(EMBEDDED), r"\nprocessor groups\n  CONFIGURATION ")
        self.assertRegex(self.show(PARTED), r"\n   1  partition1  partition1/tessomar_r2_p1.dsa  default ")
        array = self.show(SAMPLES / "tessomar_r2/partition0/tessomar_r2_p0.pka", "--section", "array")
        self.assertRegex(array, r"\n  - dpe_0_west +0 +10  0x0101\n")

    def test_sections_are_whole_and_in_order(self):
        text = self.show(CARD, "--section", "memories", "--section", "clocks")
        self.assertTrue(text.startswith("clocks\n"))
        self.assertNotIn("more:", text)
        self.assertIn("HBM[31]", text)
        self.assertEqual(re.findall(r"^\S.*", text, re.MULTILINE), ["clocks", "memories"])

    def test_support_is_the_verdict_for_the_release_in_force(self):
        def support(name, release):
            return self.mav("show", SAMPLES / name, "--section", "support",
                            env={**os.environ, "MAV_TOOL_RELEASE": release})
        good = support("tessomar_r2/tessomar_r2.qpfm", "2027.4")[0]
        self.assertEqual(good, "support\n  verdict       supported\n  tool release  2027.4\n")
        bad = support("tessomar_r2/tessomar_r2.qpfm", "2028.1")[0]
        self.assertIn("verdict       refused\n", bad)
        self.assertIn("tool release  2028.1\n", bad)
        reason = self.mav("info", PARTED, "--json",
                          env={**os.environ, "MAV_TOOL_RELEASE": "2028.1"})[0]
        words = re.search(r"  reason +((?:.*\n)*?)  tool release", bad)[1].split()
        self.assertIn(" ".join(words), reason)
        self.assertRegex(support(PARTED, "0.3")[0], r"\n  tool release  versionless\n")
        # Judged once and where it is asked for: no message of the policy when it is not.
        self.assertIn("versionless", support(PARTED, "0.3")[1])
        self.assertNotIn("versionless", self.mav("show", PARTED, "--section", "clocks",
                                                 env={**os.environ, "MAV_TOOL_RELEASE": "0.3"})[1])
        software = next(SAMPLES.glob("**/*.spfm"))
        self.assertEqual(support(software, "2028.1")[0], "")
        self.assertNotIn("support", re.findall(r"^\S.*", self.show(software), re.MULTILINE))

    def test_wrong_choices(self):
        self.refused("show", CARD, "--section", "clock", code=2,
                     says=["unknown section 'clock': use identity", "Did you mean 'clocks'?"])
        self.refused("show", CARD, "--color", "alway", code=2, says=["Did you mean 'always'?"])
        self.refused("show", self.dir / "none.pka", code=3, says=["none.pka"])

    def test_colour(self):
        self.assertIn("\033[1;36mmemory banks\033[0m\n", self.show(CARD, "--color", "always"))
        self.assertIn("\033[1;36mmemory banks\033[0m\n", on_terminal(100, "show", CARD))
        self.assertNotIn("\033", on_terminal(100, "show", CARD, NO_COLOR="1"))
        self.assertNotIn("\033", on_terminal(100, "show", CARD, "--color", "never"))

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
        embedded = self.show(EMBEDDED)
        self.assertIn("\n  hardware      hw/ostrivel_e7.pka\n", embedded)
        self.assertIn("\n  software      sw/ostrivel_e7.spfm\n", embedded)

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

    def test_software_alone_and_empty_sections(self):
        software = SAMPLES / "ostrivel_e7/sw/ostrivel_e7.spfm"
        text = self.show(software)
        self.assertTrue(text.startswith("ostrivel_e7.spfm\n\nidentity\n  file  ostrivel_e7.spfm\n"), text)
        self.assertEqual([line for line in text.splitlines()[1:] if line and line[0] != " "],
                         ["identity", "processor groups", "boot images"])
        output, errors = self.mav("show", software, "--section", "device", "--section", "software")
        self.assertTrue(output.startswith("processor groups\n"))
        self.assertEqual(errors, f"mav: '{software}' has nothing in the section 'device'. Without "
                         "--section all that it has is shown.\n")

        def edit(metadata):
            for key in ("fpgaPart", "fpgaDevice", "systemClocks"):
                metadata.pop(key, None)
        self.assertEqual(re.findall("clocks", self.show(copied_card(self, edit))), [])


if __name__ == "__main__":
    unittest.main()
