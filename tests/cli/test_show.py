# SPDX-License-Identifier: Apache-2.0
"""`mav show`: sections, cut lists, colour and width."""
import fcntl
import os
import pty
import re
import struct
import subprocess
import termios
import unittest

from support import MAV, PLATFORMS, SAMPLES, CommandTest

CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"
EMBEDDED = SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm"
PARTED = SAMPLES / "tessomar_r2/tessomar_r2.qpfm"


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
                self.assertIn("\nidentity\n", text)
                self.assertNotIn("\033", text)
        card = self.show(CARD)
        self.assertTrue(card.startswith("veltrin:h90:gen3x16_hbm:3.1\n"))
        self.assertRegex(card, r"\n +0  kernel_clk +300\.000  scalable  default\n")
        self.assertIn("and 34 more: --section memories\n", card)
        self.assertRegex(card, r"\n  interrupt +slave +16 +1  irq_00 \.\. irq_15\n")
        self.assertNotIn("\npartitions\n", card)
        self.assertRegex(self.show(EMBEDDED), r"\nprocessor groups\n  CONFIGURATION ")
        self.assertRegex(self.show(PARTED), r"\n   1  partition1  .* default\n")
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
        self.assertIn("\033[1;36mclocks\033[0m\n", self.show(CARD, "--color", "always"))
        self.assertIn("\033[1;36mclocks\033[0m\n", on_terminal(100, "show", CARD))
        self.assertNotIn("\033", on_terminal(100, "show", CARD, NO_COLOR="1"))
        self.assertNotIn("\033", on_terminal(100, "show", CARD, "--color", "never"))

    def test_lines_keep_within_the_width(self):
        for columns, limit in ((60, 60), (75, 75), (20, 60)):
            text = on_terminal(columns, "show", CARD, "--color", "never")
            self.assertLessEqual(max(map(len, text.splitlines())), limit)
            # Nothing is lost: the words are the same, whatever the width.
            wide = self.show(CARD)
            self.assertEqual(re.sub(r"\W", "", text).count("kernel_clk"),
                             re.sub(r"\W", "", wide).count("kernel_clk"))


if __name__ == "__main__":
    unittest.main()
