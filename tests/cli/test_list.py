# SPDX-License-Identifier: Apache-2.0
"""`mav list` and `mav dirs`: platforms found in directories, and where they are looked for."""
import json
import os
import pty
import re
import select
import signal
import subprocess
import time
import unittest
import zipfile

from support import MAV, SAMPLES, CommandTest

DESCRIPTION = """<?xml version="1.0"?>
<mav:platform xmlns:mav="urn:mav:platform:1" mav:vendor="v" mav:library="l" mav:name="{name}"
 mav:version="1.0"><mav:hardwarePlatforms><mav:hardwarePlatform mav:path="." mav:name="{archive}"/>
</mav:hardwarePlatforms></mav:platform>"""


class ListTest(CommandTest):
    def archive(self, path, name="card", major="1", vendor="tarvek", part="XC-1", members=None):
        path = self.dir / path
        path.parent.mkdir(parents=True, exist_ok=True)
        with zipfile.ZipFile(path, "w") as archive:
            archive.writestr(path.suffix[1:] + ".json", json.dumps({
                "vendor": vendor, "boardId": "b1", "name": name, "versionMajor": major,
                "versionMinor": "0", "platformState": "impl",
                "devices": [{"name": "fpga0", "fpgaPart": part}],
                "files": [{"name": member, "type": kind}
                          for kind, member, _ in members or []]}))
            for _, member, content in members or []:
                archive.writestr(member, content)

    def describe(self, path, archive):
        path = self.dir / path
        path.write_text(DESCRIPTION.format(name=path.stem, archive=archive))

    def listed(self, *arguments):
        output, errors = self.mav("list", self.dir, "--json", *arguments)
        return json.loads(output), errors

    def names(self, *arguments):
        return [item["name"] for item in self.listed(*arguments)[0]["platforms"]]


class Listing(ListTest):
    def test_table_and_json(self):
        self.archive("a/one.pka")
        self.describe("a/one.qpfm", "one.pka")
        self.archive("b \u00e4:/bare\n.dsa", name="bare")
        output, errors = self.mav("list", self.dir)
        self.assertEqual(errors, "")
        head, first, second = output.splitlines()
        self.assertEqual(head.split(), "NAME VENDOR VERSION TYPE DEVICE STATE FILE".split())
        self.assertEqual(first.split(None, 6),
                         ["one", "tarvek", "1.0", "undefined", "fpga0", "impl",
                          f"{self.dir}/a/one.qpfm"])
        self.assertTrue(second.endswith("/bare\\x0a.dsa"), "one line whatever the name holds")
        document, _ = self.listed()
        self.assertEqual(document["platforms"][1],
                         {"name": "bare", "vendor": "tarvek", "board": "b1", "version": "1.0",
                          "type": "undefined", "device": "fpga0", "part": "XC-1",
                          "state": "impl", "file": f"{self.dir}/b \u00e4:/bare\n.dsa"})

    def test_filters_and_latest_versions(self):
        self.archive("1.pka", name="n", major="9")
        self.archive("2.pka", name="n", major="10")
        self.archive("3.pka", name="m", part="XC-2", vendor="V")
        self.assertEqual(self.names(), ["n", "n", "m"])
        self.assertEqual(self.names("--part", "xc-2"), ["m"])
        self.assertEqual(self.names("--vendor", "v"), [])
        self.assertEqual(self.names("--vendor", "V", "--board", "b1"), ["m"])
        self.assertEqual(self.names("--type", "Undefined"), ["n", "n", "m"])
        self.assertEqual(self.names("--type", "pellux"), [])
        latest, _ = self.listed("--latest")
        self.assertEqual([item["version"] for item in latest["platforms"]], ["10.0", "1.0"])

    def test_what_was_left_out_is_told_on_request(self):
        self.archive("good.pka")
        (self.dir / "broken.pka").write_text("text")
        (self.dir / "no.qpfm").write_text("<a>")
        self.describe("gone.qpfm", "gone.pka")
        self.archive("odd.pka")
        (self.dir / "odd.pka").write_bytes((self.dir / "odd.pka").read_bytes()[:-9])
        self.describe("odd.qpfm", "odd.pka")
        output, errors = self.mav("list", self.dir)
        self.assertEqual(len(output.splitlines()), 2)
        self.assertEqual(errors, "mav: 4 left out because of faults. 'mav list --all' tells which "
                                 "and why.\n")
        document, errors = self.listed("--all")
        self.assertEqual(errors, "")
        refused = {os.path.basename(item["file"]): item["reason"] for item in document["refused"]}
        self.assertEqual(set(refused), {"broken.pka", "no.qpfm", "gone.qpfm", "odd.qpfm"})
        self.assertIn(f"{self.dir}/gone.pka", refused["gone.qpfm"])
        self.assertIn("ine number:1", refused["no.qpfm"])
        self.assertIn(f"{self.dir}/odd.pka: ", refused["odd.qpfm"])
        output, _ = self.mav("list", self.dir, "--all")
        self.assertIn(f"\nleft out:\n{self.dir}/gone.qpfm\n    Hardware platform file ", output)

    def test_a_fault_of_another_member_leaves_nothing_out_and_is_told(self):
        for i, (kind, content, says) in enumerate((
                ("EMU_JSON", "{}", "74-63"), ("EMU_JSON", "{", "74-64"),
                ("HPFM", "<a>", f"{self.dir}/c2.pka: line 1"))):
            self.archive(f"c{i}.pka", members=[(kind, f"m{i}", content)])
            document, errors = self.listed("--all")
            self.assertEqual((len(document["platforms"]), document["refused"]), (i + 1, []))
            self.assertIn(says, errors)
        self.describe("c0.qpfm", "c0.pka")
        self.describe("again.qpfm", "c0.pka")
        self.assertEqual(self.mav("list", self.dir)[1].count("c0.pka"), 1, "told once")
        self.archive("twice.pka")
        archive = self.dir / "twice.pka"
        with zipfile.ZipFile(archive) as packed:
            text = packed.read("pka.json").decode()
        with zipfile.ZipFile(archive, "w") as packed:
            packed.writestr("pka.json", text.replace("{", '{"vendor": "v", ', 1))
        self.assertIn("'vendor' stands more than once", self.mav("list", self.dir)[1])

    def test_odd_names_repeated_directories_and_empty_answers(self):
        self.assertEqual(self.listed("--all")[0], {"platforms": [], "refused": []})
        self.archive("b\u00e4r/card.pka", name="b\u00e4r")
        self.archive("b\u00e4r/x.pka", name="long")
        head, one, two = self.mav("list", self.dir)[0].splitlines()
        self.assertEqual((one.index("tarvek"), two.index("tarvek")), (head.index("VENDOR"),) * 2)
        (self.dir / "b\u00e4r/no.qpfm").write_text("<a>")
        os.rename(self.dir / "b\u00e4r/x.pka", os.fsencode(self.dir) + b"/x\xc3.pka")
        output, _ = self.mav("list", self.dir, self.dir / "b\u00e4r", self.dir, "--all", "--json")
        document = json.loads(output)
        self.assertEqual([os.path.basename(item["file"]) for item in document["platforms"]],
                         ["card.pka", "x\u00c3.pka"])
        self.assertEqual(len(document["refused"]), 1)

    def test_every_sample_is_listed(self):
        output, errors = self.mav("list", SAMPLES)
        self.assertEqual(errors, "")
        for stem in ("veltrin_h90.pka", "ostrivel_e7.qpfm", "tessomar_r2.qpfm"):
            self.assertIn(f"/{stem}\n", output)


class Directories(ListTest):
    def test_the_default_directories_are_shown_and_searched(self):
        environment = {**os.environ, "MAV_APP_ROOT": f"{self.dir}/r1:{self.dir}/r2"}
        self.archive("r2/platforms/x/card.pka")
        output, _ = self.mav("dirs", env=environment)
        self.assertEqual(output.splitlines()[:4],
                         [f"missing  {self.dir}/r1/platforms",
                          f"missing  {self.dir}/r1/base_platforms",
                          f"found    {self.dir}/r2/platforms",
                          f"missing  {self.dir}/r2/base_platforms"])
        self.assertTrue(output.endswith("  /opt/tarvek/platforms\n"))
        document = json.loads(self.mav("dirs", "--json", env=environment)[0])
        self.assertEqual(document["directories"][2],
                         {"path": f"{self.dir}/r2/platforms", "exists": "true"})
        listed, _ = self.mav("list", env=environment)
        self.assertIn(f"{self.dir}/r2/platforms/x/card.pka", listed)

    def test_a_path_that_is_no_directory(self):
        self.archive("card.pka")
        for path in (self.dir / "card.pka", self.dir / "absent"):
            self.refused("list", path, code=3, says=[f"'{path}'", "no directory"])

    def test_a_long_search_is_shown_on_a_terminal_and_interrupted_without_debris(self):
        for i in range(300):
            (self.dir / f"d/{i}").mkdir(parents=True)
        self.archive("d/0/card.pka")
        for i in range(1, 300):
            os.link(self.dir / "d/0/card.pka", self.dir / f"d/{i}/card{i}.pka")
        scratch = self.dir / "tmp"
        scratch.mkdir()
        terminal, end = pty.openpty()
        # So many directories that the search takes longer than the line needs to appear.
        with subprocess.Popen([MAV, "list", *[self.dir / "d/../d"] * 16000], stderr=end,
                              stdout=subprocess.PIPE, stdin=subprocess.DEVNULL,
                              env={**os.environ, "TMPDIR": str(scratch)}) as process:
            os.close(end)
            shown = b""
            line = re.compile(rb"\d+ names  (card)?\d")
            deadline = time.monotonic() + 60
            while not line.search(shown) and time.monotonic() < deadline:
                if select.select([terminal], [], [], 1)[0]:
                    shown += os.read(terminal, 1000)
            process.send_signal(signal.SIGINT)
            output = process.stdout.read()
        os.close(terminal)
        self.assertRegex(shown, line)
        self.assertEqual(process.returncode, -signal.SIGINT)
        self.assertEqual(output, b"")
        self.assertEqual(list(scratch.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
