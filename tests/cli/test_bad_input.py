# SPDX-License-Identifier: Apache-2.0
"""Bad input to the command: every message names the file, and the member, key or line."""
import json
import os
import resource
import shutil
import struct
import unittest
import zipfile

from support import MAV, SAMPLES, CommandTest, run


def good(**more):
    """Metadata that loads, with what `more` adds or replaces."""
    return json.dumps({"vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1",
                       "versionMinor": "0", **more})


class BadMetadata(CommandTest):
    """One archive per defect: the report names archive, member and key or line."""

    def archive(self, name, members):
        path = self.dir / name
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
            for member, content in members.items():
                archive.writestr(member, content)
        return path

    def claiming(self, size):
        """An archive whose directory claims `size` bytes for its metadata member."""
        path = self.archive("claim.pka", {"pka.json": good()})
        data = path.read_bytes()
        entry, end = data.index(b"PK\1\2"), data.index(b"PK\5\6")
        name = entry + 46
        wide = struct.pack("<HHQ", 1, 8, size)
        head = bytearray(data[entry:name])
        head[24:28] = b"\xff" * 4
        head[30:32] = struct.pack("<H", len(wide))
        tail = bytearray(data[end:])
        tail[12:16] = struct.pack("<I", end - entry + len(wide))
        path.write_bytes(data[:entry] + head + data[name:name + 8] + wide + tail)
        return path

    def test_metadata_that_cannot_be_used(self):
        for defect, content, says in [
                ("empty", "", ["the member is empty"]),
                ("no_json", "{\n\n  hello\n}", ["line 3: expected key string"]),
                ("deep", '{"a":' + "[" * 100_000, ["line 1: nesting deeper than 512 levels"]),
                ("list", "[1]", ["holds a list where an object is expected"]),
                ("identity", '{"vendor": "v"}', ["'boardId': the required key is missing"]),
                ("type", good(systemClocks="abc"), ["'systemClocks': holds the text 'abc'"]),
                ("range", good(memories=[{"lowAddress": "0x1" + "0" * 16}]),
                 ["'memories[0].lowAddress': '0x10000000000000000'"])]:
            with self.subTest(defect=defect):
                path = self.archive(f"{defect}.pka", {"pka.json": content})
                self.refused("json", path, code=3, says=[f"'{path}'", "pka.json", *says])

    def test_no_metadata_member(self):
        path = self.archive("none.pka", {"other.json": good()})
        self.refused("json", path, code=3, says=[f"'{path}'", "'pka.json'", "'alt_pka.json'"])

    def test_a_file_that_does_not_load_leads_to_validate(self):
        broken = self.dir / "broken.qpfm"
        broken.write_text("<platform>")
        for path in (self.archive("bad.pka", {"pka.json": "{"}), broken):
            errors = self.refused("show", path, code=3, says=[f"mav: cannot load '{path}'"])
            advice = f"'mav validate {path}' finds all that is wrong with it."
            self.assertTrue(errors.splitlines()[-1].endswith(advice), errors)
            self.assertIn("error: ", self.mav("validate", path, code=1)[0])
        missing = self.refused("show", self.dir / "none.pka", code=3, says=["nothing is there"])
        self.assertNotIn("validate", missing)

    def test_a_claim_of_8_gb_takes_no_memory(self):
        path = self.claiming(8 << 30)
        done = run(MAV, "json", path, **({} if os.environ.get("MAV_ASAN_RUNTIME") else {
            "preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))}))
        self.assertEqual((done.returncode, done.stdout), (3, b""))
        for text in (str(path), "pka.json", "is larger than the 1073741824 bytes"):
            self.assertIn(text, done.stderr.decode())

    def test_faults_that_do_not_stop_the_load_are_named(self):
        for defect, content, says in [
                ("twice", good()[:-1] + ', "name": "m"}', ["the key 'name' stands more than once"]),
                ("range", good(generatedChangeList="99999999999"),
                 ["'99999999999'", "the value of 'generatedChangeList'"])]:
            with self.subTest(defect=defect):
                path = self.archive(f"{defect}.pka", {"pka.json": content})
                output, errors = self.mav("json", path)
                self.assertEqual(json.loads(output)["file"], str(path))
                for text in (f"'{path}'", "'pka.json'", *says):
                    self.assertIn(text, errors)


class BadDescriptions(CommandTest):
    """The console line names file and line, the reason what is wrong there."""

    HEAD = '<mav:platform mav:vendor="v" mav:library="l" mav:name="n" mav:version="1">\n'

    def test_descriptions_that_do_not_bind(self):
        for defect, content, line, reason in [
                ("syntax", self.HEAD + "<", 2, "XML syntax error"),
                ("root", "\n<mav:other/>", 2, "the root element must be 'mav:platform'"),
                ("attribute", '<mav:platform mav:vendor="v"/>', 1,
                 "required attribute 'mav:library' is missing"),
                ("value", self.HEAD + "<mav:hardwarePlatforms><mav:reconfigurablePartition "
                 'mav:id="x"/></mav:hardwarePlatforms></mav:platform>', 2,
                 "attribute 'mav:id' of element 'mav:reconfigurablePartition': 'x' is not"),
                ("dtd", '\n<!DOCTYPE x [<!ENTITY a "b">]>' + self.HEAD, 2, "DOCTYPE")]:
            with self.subTest(defect=defect):
                path = self.dir / f"{defect}.qpfm"
                path.write_text(content)
                self.refused("json", path, code=3, says=[
                    f"Error parsing platform file: {path}\nLine number:{line}. ", reason,
                    f"mav: cannot load '{path}'"])

    def test_a_software_platform_that_does_not_bind(self):
        path = self.dir / "s.spfm"
        path.write_text("<mav:platform>\n<mav:other/>\n</mav:platform>")
        self.refused("json", path, code=3, says=[
            f"software platform file: {path}\nLine number:", "'mav:systemConfigurations'"])

    def test_a_missing_software_platform_is_named(self):
        sample = (SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm").read_text()
        shutil.copytree(SAMPLES / "ostrivel_e7/hw", self.dir / "hw")
        path = self.dir / "p.qpfm"
        path.write_text(sample)
        self.refused("json", path, code=3, says=["ostrivel_e7.spfm", "does not exist"])


class WrongPaths(CommandTest):
    """What stands in a file's place: each command says one sentence, which names it and what to do."""

    LOADING = [["show"], ["json"], ["keys"], ["info"], ["check"], ["get", None, "name"],
               ["dict", None, "name"], ["transform", None, '{"a": "name"}'],
               ["diff", None, SAMPLES / "veltrin_h90/veltrin_h90.pka"],
               ["diff", SAMPLES / "veltrin_h90/veltrin_h90.pka", None]]
    ARCHIVES = [["files"], ["verify"], ["extract", None, "DR_BD"],
                ["add", None, "REBUILD_TCL", __file__]]

    def setUp(self):
        super().setUp()
        sample = (SAMPLES / "veltrin_h90/veltrin_h90.pka").read_bytes()
        (self.dir / "cut.pka").write_bytes(sample[:4000])
        for name in ("empty.pka", "empty.qpfm", "empty.spfm", "file"):
            (self.dir / name).write_bytes(b"")
        (self.dir / "folder.pka").mkdir()

    def sentence(self, path, command, codes=(3,), lines=1):
        arguments = [path if part is None else part for part in command]
        if None not in command:
            arguments.append(path)
        done = run(MAV, *arguments, cwd=self.dir)
        errors = done.stderr.decode()
        self.assertIn(done.returncode, codes, errors)
        self.assertEqual(done.stdout, b"")
        if lines:
            self.assertEqual(errors.count("\n"), lines, errors)
        last = errors.splitlines()[-1]
        self.assertRegex(last, rf"^mav: .*'{path}'.*[.;?] ?(Check|Name|Copy|Correct|Create|Nothing "
                               r"was changed; remove|'mav|.*(check|copy|give|set|Try)) .*\.$")
        return last

    def test_every_command(self):
        for command in self.LOADING:
            for path, says in [("none.pka", "nothing is there"), ("none/x.qpfm", "nothing is there"),
                               ("file/x.pka", "nothing is there"), ("folder.pka", "is a directory"),
                               ("empty.pka", "is empty"), ("empty.qpfm", "is empty"),
                               ("empty.spfm", "is empty"), (".", "is a directory")]:
                with self.subTest(command=command, path=path):
                    self.assertIn(says, self.sentence(path, command))
            with self.subTest(command=command, path="cut.pka"):
                self.sentence("cut.pka", command, lines=None)
        for command in self.ARCHIVES:
            for path, says in [("none.pka", "does not exist. Check the path"),
                               ("folder.pka", "is not a file; give the path of an archive."),
                               ("empty.pka", "is not a zip archive; check"),
                               ("cut.pka", "is cut off or damaged: its directory cannot be read; "
                                "copy it afresh.")]:
                with self.subTest(command=command, path=path):
                    self.assertIn(says, self.sentence(path, command))

    def test_other_places(self):
        folder = self.dir / "in"
        folder.mkdir()
        (folder / "pka.json").write_text(good())
        archive = SAMPLES / "veltrin_h90/veltrin_h90.pka"
        for path, command in [
                ("none", ["list"]), ("file", ["list"]), ("none", ["pack", None, "a.pka"]),
                ("file/a.pka", ["pack", "in"]), ("none/a.pka", ["pack", "in"]),
                ("file", ["pack", None, "a.pka"]), ("folder.pka", ["pack", "in"]),
                ("none", ["add", archive, "REBUILD_TCL"]),
                ("folder.pka", ["add", archive, "REBUILD_TCL"]),
                ("file", ["extract", archive, "DR_BD", "-o"]), ("none", ["protect", None, "out"]),
                ("folder.pka", ["protect", None, "out"]), ("none", ["unprotect"]),
                ("folder.pka", ["unprotect"]), ("file", ["unprotect"]), ("file", ["manual"]),
                ("none", ["transform", archive]), ("folder.pka", ["transform", archive]),
                ("file", ["transform", archive])]:
            with self.subTest(path=path, command=command):
                self.sentence(path, command, codes=(2, 3))
        self.assertEqual(sorted(self.dir.glob("*")), sorted(
            self.dir / name for name in ("cut.pka", "empty.pka", "empty.qpfm", "empty.spfm", "file",
                                         "folder.pka", "in")))


class Unreadable(CommandTest):
    """Files that the caller may not read; as root, the command runs as somebody else."""

    def refused_as_somebody(self, *arguments, says):
        options = {"user": 65534, "group": 65534, "extra_groups": []} if os.geteuid() == 0 else {}
        try:
            done = run(MAV, *arguments, **options)
        except PermissionError:
            self.skipTest("the command itself is out of reach for others than root")
        if b"error while loading shared libraries" in done.stderr:
            self.skipTest("the library is out of reach for others than root")
        self.assertEqual((done.returncode, done.stdout), (3, b""), done.stderr)
        for text in says:
            self.assertIn(text, done.stderr.decode())

    def test_files_that_cannot_be_read(self):
        self.dir.chmod(0o755)
        for name in ("a.pka", "a.qpfm", "a.spfm"):
            path = self.dir / name
            path.write_text("content")
            path.chmod(0)
            self.refused_as_somebody("json", path, says=[str(path), "Permission denied"])

    def test_places_where_nothing_can_be_packed(self):
        folder, target = self.dir / "in", self.dir / "out"
        folder.mkdir()
        target.mkdir()
        (folder / "pka.json").write_text(good())
        target.chmod(0o555)
        self.dir.chmod(0o755)
        archive = target / "a.pka"
        self.refused_as_somebody("pack", folder, archive,
                                 says=[f"'{archive}'", "Permission denied"])
        self.assertEqual(list(target.iterdir()), [])
        secret = folder / "secret.bit"
        secret.write_text("x")
        secret.chmod(0)
        self.refused_as_somebody("pack", folder, self.dir / "b.pka",
                                 says=[f"'{secret}' cannot be read: Permission denied"])
        secret.unlink()
        (folder / "closed").mkdir(mode=0)
        self.refused_as_somebody("pack", folder, self.dir / "b.pka",
                                 says=[f"'{folder}/closed' cannot be read: Permission denied"])


if __name__ == "__main__":
    unittest.main()
