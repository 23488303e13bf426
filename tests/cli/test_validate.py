# SPDX-License-Identifier: Apache-2.0
"""`mav validate`: each rule finds the bad example of its page and not the good one."""
import json
import os
import pathlib
import re
import shutil
import unittest
import zipfile

from support import MAV, PLATFORMS, SAMPLES, SOURCE, CommandTest, run

PAGES = SOURCE / "docs/rules"
IDENTITY = {"vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1", "versionMinor": "0",
            "files": [{"name": "a.txt", "type": "DCP"}]}
NEXT = (r"\Amav: \d+ errors? in \d+ files?\. 'mav validate --explain RULE' tells what a rule asks "
        r"for\.\n\Z")


class Validate(CommandTest):
    def pack(self, metadata, **members):
        """An archive p.pka with the identity, this metadata, a.txt and these members."""
        folder = self.dir / "folder"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        (folder / "pka.json").write_text(json.dumps(dict(IDENTITY, **metadata)), encoding="utf-8")
        for member, content in dict({"a.txt": b"a"}, **members).items():
            (folder / member).write_bytes(content)
        (self.dir / "p.pka").unlink(missing_ok=True)
        self.mav("pack", folder, self.dir / "p.pka")
        return self.dir / "p.pka"

    def findings(self, *files, code=None):
        """The findings as (rule, severity, file name, line)."""
        codes = (0, 1) if code is None else (code,)
        output = self.mav("validate", "--json", *files, codes=codes)[0]
        document = json.loads(output)
        found = document.get("findings", [])
        self.assertEqual(int(document["errors"]),
                         sum(item["severity"] == "error" for item in found))
        return [(item["rule"], item["severity"], item["file"].removeprefix(str(self.dir) + "/"),
                 int(item["line"])) for item in found]

    def mav(self, *arguments, code=0, codes=None, **options):
        for allowed in (codes or (code,))[:-1]:
            try:
                return super().mav(*arguments, code=allowed, **options)
            except AssertionError:
                continue
        return super().mav(*arguments, code=(codes or (code,))[-1], **options)

    def example(self, kind, text):
        if kind == "json metadata":
            return self.pack(json.loads(text))
        self.pack({})
        path = self.dir / ("p." + kind.split()[1])
        path.write_text(text, encoding="utf-8")
        return path

    def transcript(self, script, good):
        """The rules that the last command of the shell's lines finds; the others succeed. A good
        example has no error at all, so that none hides another."""
        *steps, last = script.splitlines()
        self.assertRegex(last, r"^(\w+=\S+ )?mav validate \S+$")
        folder = self.dir / "transcript"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        environment = dict(os.environ, SAMPLES=str(SAMPLES), MAV_TOOL_RELEASE="2026.1",
                           PATH=f"{pathlib.Path(MAV).parent}:{os.environ['PATH']}")
        environment.pop("MAV_KEY_FILE", None)
        script = "\n".join(["set -e", *steps, "echo '<STEPS>'", last])
        done = run("sh", "-c", script, cwd=folder, env=environment)
        before, mark, answer = done.stdout.decode().partition("<STEPS>\n")
        self.assertTrue(mark, f"{before}{done.stderr.decode()}")
        lines = answer.splitlines()
        rules = [re.fullmatch(r".*: (error|warning|note): .* \[([a-z-]+)\]", line)
                 for line in lines]
        self.assertNotIn(None, rules, answer)
        errors = any(rule[1] == "error" for rule in rules)
        self.assertEqual(done.returncode, int(errors), answer)
        self.assertRegex(done.stderr.decode(), NEXT if errors else r"\A\Z")
        self.assertFalse(good and errors, answer)
        return {rule[2] for rule in rules}

    def test_examples_of_the_pages(self):
        rules = {page.stem: page.read_text(encoding="utf-8") for page in PAGES.glob("*.md")}
        source = (SOURCE / "platform/src/services/check/CheckReport.cpp").read_text()
        known = dict(re.findall(r'\{"([a-z-]+)", (ERROR|WARNING|NOTE),', source))
        self.assertEqual(sorted(rules), sorted(known))
        for rule, page in rules.items():
            with self.subTest(rule=rule):
                self.assertIn(f"# {rule} ({known[rule].lower()})\n", page)
                self.assertEqual(self.mav("validate", "--explain", rule)[0],
                                 page[page.index("# "):])
                examples = re.findall(r"## (Bad|Good)\n\n```(.*)\n((?:.*\n)*?)```", page)
                self.assertEqual([name for name, _, _ in examples], ["Bad", "Good"])
                for name, kind, text in examples:
                    found = (self.transcript(text, good=name == "Good") if kind == "sh" else
                             {finding[0] for finding in self.findings(self.example(kind, text))})
                    (self.assertIn if name == "Bad" else self.assertNotIn)(rule, found, name)

    def test_samples_have_no_errors(self):
        for name in PLATFORMS:
            with self.subTest(platform=name):
                rules = {rule for rule, *_ in self.findings(SAMPLES / name, code=0)}
                self.assertEqual(rules - {"release", "unlisted-member", "hbm-preferred"}, set())

    def test_every_finding_with_its_place(self):
        archive = self.dir / "p.pka"
        text = ('{"vendor": "v", "boardId": "b", "name": "n",\n'
                '"versionMajor": "1", "versionMinor": "x",\n'
                '"systemClocks": [{"name": "c", "id": "0"},\n'
                '  {"name": "c", "id": "0", "old": "1"}],\n'
                '"files": [{"name": "gone", "type": "HPFM"},\n'
                '  {"name": "h", "type": "HPFM"}]}')
        with zipfile.ZipFile(archive, "w") as out:
            out.writestr("pka.json", text)
            out.writestr("h", "<qd:repository>\n<qd:busInterface qd:dataWidth='wide'/>"
                              "</qd:repository>")
        found = self.findings(archive, code=1)
        self.assertEqual(sorted(found), sorted([
            ("schema", "error", "p.pka/pka.json", 2),
            ("duplicate", "error", "p.pka/pka.json", 4),
            ("duplicate", "error", "p.pka/pka.json", 4),
            ("unknown-item", "warning", "p.pka/pka.json", 4),
            ("missing-member", "error", "p.pka/pka.json", 5),
            ("schema", "error", "p.pka/h", 2),
            ("digest", "error", "p.pka", 0)] + [item for item in found if item[0] == "release"]))
        self.assertEqual([line for _, _, file, line in found if file == "p.pka/pka.json"],
                         [2, 4, 4, 4, 5], "by line")
        plain = self.mav("validate", archive, code=1)[0]
        self.assertIn(f"{archive}/pka.json:4:28: warning: 'systemClocks[1].old' is not part of the "
                      "format; loading ignores it [unknown-item]\n", plain)
        log = json.loads(self.mav("validate", "--sarif", archive, code=1)[0])
        self.assertEqual(log["version"], "2.1.0")
        results = log["runs"][0]["results"]
        self.assertEqual(len(results), len(found))
        self.assertEqual(results[0]["locations"][0]["physicalLocation"]["region"]["startLine"], 2)

    def test_every_fault_of_a_description_and_what_it_names(self):
        (self.dir / "bad.pka").write_text("xx")
        (self.dir / "s.spfm").write_text("<mav:platform>\n  <mav:odd/></mav:platform>")
        (self.dir / "x.qpfm").write_text("""<mav:platform mav:vendor="v" mav:library="l"
  mav:version="abc"><mav:hardwarePlatforms mav:defaultRP="x">
    <mav:reconfigurablePartition mav:id="1"><mav:hardwarePlatform mav:path="." mav:name="p.pka"/>
    </mav:reconfigurablePartition>
    <mav:reconfigurablePartition mav:id="1"><mav:hardwarePlatform mav:path="." mav:name="bad.pka"/>
    </mav:reconfigurablePartition></mav:hardwarePlatforms>
  <mav:softwarePlatforms><mav:softwarePlatform mav:path="." mav:name="s.spfm"/>
  </mav:softwarePlatforms></mav:platform>""")
        found = self.findings(self.dir / "x.qpfm", code=1)
        self.assertEqual([(rule, line) for rule, _, file, line in found if file == "x.qpfm"],
                         [("schema", 1), ("schema", 1), ("schema", 2), ("missing-file", 3),
                          ("duplicate", 5)])
        self.assertEqual({rule for rule, _, file, _ in found if "bad.pka" in file}, {"unreadable"})
        self.assertEqual([(rule, line) for rule, _, file, line in found if "s.spfm" in file],
                         [("schema", 1), ("unknown-item", 2)])

    def lines(self, *arguments, code=1, **options):
        """What is printed, without the folder of the test."""
        output = self.mav("validate", *arguments, code=code, **options)[0]
        return output.replace(f"{self.dir}/", "").splitlines()

    def test_no_finding_goes_unsaid(self):
        unknown = {f"u{i}": "x" for i in range(12000)}
        archive = self.pack(dict(unknown, memories=[{"name": "m"}] * 103))
        document = json.loads(self.mav("validate", "--json", archive, code=1)[0])
        self.assertEqual(document["errors"], "102")
        told = [(item["rule"], item["severity"], item["text"]) for item in document["findings"]
                if " more like " in item["text"]]
        self.assertEqual(told, [
            ("duplicate", "error", "2 more like these are not shown"),
            ("unknown-item", "warning", "11900 more like these are not shown")])
        rules = [item["rule"] for item in document["findings"]]
        self.assertEqual((rules.count("unknown-item"), rules.count("duplicate")), (101, 101))
        self.assertIn("mav: 102 errors in 1 file.", self.mav("validate", archive, code=1)[1])

    def test_references_of_listed_documents(self):
        document = (
            "<qd:repository><qd:component>\n"
            "<qd:platformInfo><qd:systemClocks qd:defaultClock='7'>\n"
            "<qd:clock qd:name='own' qd:id='1'/></qd:systemClocks></qd:platformInfo>\n"
            "<qd:busInterface qd:name='R' qd:busTypeRef='reset'/>\n"
            "<qd:busInterface qd:name='A' qd:clockRef='own' qd:resetRef='R'/>\n"
            "<qd:busInterface qd:name='B' qd:clockRef='clk' qd:resetRef='rst'/>\n"
            "<qd:busInterface qd:name='C' qd:clockRef='gone' qd:resetRef='none'>\n"
            "<qd:addressSegment qd:name='s'/>\n<qd:addressSegment qd:name='s' qd:index='1'/>\n"
            "<qd:addressSegment qd:name='s' qd:index='0'/>\n"
            "</qd:busInterface></qd:component></qd:repository>")
        metadata = {
            "files": [{"name": "a.txt", "type": "DCP"}, {"name": "h", "type": "HPFM"}],
            "systemClocks": [{"name": "clk", "id": "0"}],
            "busInterfaces": [{"name": "rst", "typeRef": "reset"},
                              {"name": "M", "clockRef": "clk", "resetRef": "R"}]}
        archive = self.pack(metadata, h=document.encode())
        found = [(rule, file, line) for rule, _, file, line in self.findings(archive)
                 if rule != "release"]
        self.assertEqual(found, [("default-clock", "p.pka/h", 2), ("clock-reference", "p.pka/h", 7),
                                 ("reset-reference", "p.pka/h", 7), ("duplicate", "p.pka/h", 10)])
        clockless = self.pack({"busInterfaces": [{"name": "M", "clockRef": "clk"}]})
        self.assertIn("clock-reference", [rule for rule, *_ in self.findings(clockless)])

    def test_places_and_faults_of_items(self):
        text = ('{"vendor": "v", "boardId": "b", "name": "n",\n'
                '"versionMajor": "1", "versionMinor": "0",\n'
                '"systemClocks": [{"name": "c", "id": "0", "default": true}, {"name": "d",\n'
                '  "id": "1", "default": "true"}],\n'
                '"busInterfaces": [{"name": "M", "dataWidth": "wide",\n'
                '  "clockRef": "gone", "addressSegments": [{"name": "s"},\n'
                '    {"index": "0", "name": "s"}]}, {"mode": "x",\n'
                '  "name": "M"}],\n'
                '"memories": [{"name": "a", "lowAddress": "0x10",\n  "highAddress": "0xf"},\n'
                '  {"name": "b", "lowAddress": "64", "highAddress": "0x40"}, {"name": "c",\n'
                '   "lowAddress": "0x40", "highAddress": "0x50"}],\n'
                '"files": [{"type": "DCP",\n  "name": ""}, {"type": "DCP",\n  "name": "x"}]}')
        archive = self.dir / "p.pka"
        with zipfile.ZipFile(archive, "w") as out:
            out.writestr("pka.json", text)
        found = [line.removeprefix("p.pka/pka.json:") for line in self.lines(archive)
                 if line.startswith("p.pka/pka.json")]
        self.assertEqual(found, [
            "4:14: warning: the clock 'd' is marked as default, and so is the one before it, 'c', "
            "on line 3 [default-clock]",
            "5:33: error: 'busInterfaces[0].dataWidth': 'wide' is not a whole number of at most ten "
            "digits [schema]",
            "6:3: error: the bus interface 'M' refers to the clock 'gone', which the platform does "
            "not have [clock-reference]",
            "7:20: error: the address segment 's' with the index '0' of the bus interface 'M' stands "
            "on line 6 already [duplicate]",
            "8:3: error: the name 'M' in 'busInterfaces' stands on line 5 already [duplicate]",
            "10:3: error: the addresses of 'a' end before they begin [memory-overlap]",
            "12:4: error: the addresses of 'c' overlap those of 'b' on line 11 [memory-overlap]",
            "14:3: error: a file of type 'DCP' has an empty name [missing-member]",
            "15:3: error: 'x' of type 'DCP' is not in the archive [missing-member]"])
        with zipfile.ZipFile(archive, "w") as out:
            out.writestr("pka.json", '{"name": "n",\n  "x" 5}')
        self.assertIn("p.pka/pka.json:2:7: error: expected ':' [syntax]", self.lines(archive))

    def test_emulations_of_one_name(self):
        files = [{"name": "a.txt", "type": "DCP"}, {"name": "e", "type": "EMU_JSON"},
                 {"name": "x", "type": "EMU_XML"}]
        variant = {"name": "one", "files": []}
        document = ("<e><Emulations>\n<Emulation Name='one'><Files/></Emulation>\n"
                    "<Emulation Name='one'><Files>\n<File Type='t' Name='gone'/></Files></Emulation>"
                    "</Emulations></e>")
        archive = self.pack({"files": files}, x=document.encode(),
                            e=json.dumps({"emulations": [variant, variant]}).encode())
        found = [(rule, file, line) for rule, _, file, line in self.findings(archive)
                 if rule in ("duplicate", "missing-member")]
        self.assertEqual(found, [("duplicate", "p.pka/e", 1), ("duplicate", "p.pka/x", 3),
                                 ("missing-member", "p.pka/x", 4)])

    def test_answers_are_utf8(self):
        for folder in (b"d\xc3\xa9", b"d\xe9"):
            path = os.fsencode(self.dir) + b"/" + folder
            os.mkdir(path)
            with open(path + b"/p.qpfm", "wb") as out:
                out.write(b"<mav:platform mav:vendor='v' mav:library='l' mav:name='n' mav:version='1'>"
                          b"<mav:hardwarePlatforms><mav:hardwarePlatform mav:path='.'"
                          b" mav:name='gone.pka'/></mav:hardwarePlatforms></mav:platform>")
            for form in ("--json", "--sarif"):
                done = run(MAV, "validate", form, os.fsdecode(path + b"/p.qpfm"))
                self.assertEqual(done.returncode, 1)
                self.assertIn("d\u00e9/gone.pka' is no file",
                              json.dumps(json.loads(done.stdout), ensure_ascii=False))

    def test_paths_are_spelled_as_given(self):
        shutil.copytree(SAMPLES / "ostrivel_e7", self.dir / "o")
        archive = self.dir / "o/hw/ostrivel_e7.pka"
        archive.chmod(0o644)
        with zipfile.ZipFile(archive, "a") as out:
            out.writestr("late", "x")
        for given, prefix in (("o/ostrivel_e7.qpfm", "o/"), ("./o//ostrivel_e7.qpfm", "o/"),
                              (str(self.dir / "o/ostrivel_e7.qpfm"), f"{self.dir}/o/")):
            with self.subTest(given=given):
                found = json.loads(self.mav("validate", "--json", given, cwd=self.dir, code=1)[0])
                self.assertEqual({item["file"] for item in found["findings"]
                                  if item["rule"] == "digest"}, {prefix + "hw/ostrivel_e7.pka"})
        archive.unlink()
        self.assertIn("'o/hw/ostrivel_e7.pka' is no file",
                      self.mav("validate", "./o/ostrivel_e7.qpfm", cwd=self.dir, code=1)[0])

    def test_software_alone_is_not_judged_by_the_policy(self):
        self.assertEqual(self.lines(SAMPLES / "ostrivel_e7/sw/ostrivel_e7.spfm", code=0), [])

    def test_patterns_are_told_in_words(self):
        def patterns(schema):
            if isinstance(schema, dict):
                if "pattern" in schema:
                    yield schema
                for name, below in schema.items():
                    if name != "propertyNames":
                        yield from patterns(below)
            elif isinstance(schema, list):
                for below in schema:
                    yield from patterns(below)
        found = [schema for path in (SOURCE / "platform/schema").glob("*.json")
                 for schema in patterns(json.loads(path.read_text(encoding="utf-8")))]
        self.assertGreater(len(found), 10)
        self.assertEqual([schema for schema in found if not schema.get("description")], [])

    def test_what_cannot_be_read(self):
        nothing = self.dir / "none.pka"
        self.assertEqual(self.findings(nothing, code=1), [("unreadable", "error", "none.pka", 0)])
        broken = self.dir / "broken.pka"
        broken.write_bytes(b"PK no zip")
        self.assertEqual(self.findings(broken, self.dir, code=1)[0][0], "unreadable")
        bare = self.dir / "bare.pka"
        with zipfile.ZipFile(bare, "w") as out:
            out.writestr("x", "y")
        self.assertIn("metadata", [rule for rule, *_ in self.findings(bare, code=1)])

    def test_digest_release_and_array(self):
        archive = self.pack({})
        self.assertNotIn("digest", [rule for rule, *_ in self.findings(archive)])
        with zipfile.ZipFile(archive, "a") as out:
            out.writestr("late", "x")
        self.assertIn("digest", [rule for rule, *_ in self.findings(archive, code=1)])
        listed = {"files": [{"name": "a.txt", "type": "DCP"}, {"name": "e.zip", "type": "DPEPRJ"}]}
        inner = self.dir / "inner.zip"
        with zipfile.ZipFile(inner, "w") as out:
            out.writestr("dpearchive/arch/dpe_partition.json", "no JSON")
        project = {"e.zip": inner.read_bytes()}
        self.assertIn("array-engine", [rule for rule, *_ in
                                       self.findings(self.pack(listed, **project), code=1)])
        future = self.pack({"generatedVersion": "2999.1", "unifiedPlatform": "true",
                            "designIntent": {"dataCenter": {"value": "true"}}})
        self.assertIn("release", [rule for rule, *_ in self.findings(future, code=0)])

    def test_wrong_use(self):
        self.refused("validate", code=2, says=["FILE is missing"])
        self.refused("validate", "--explain", "shema", code=2, says=["Did you mean 'schema'?"])
        self.refused("validate", "--json", "--sarif", "x", code=2, says=["give one of them"])
        self.refused("validate", "--explain", "schema", "x", code=2, says=["leave out FILE"])
        self.refused("validate", "", code=2, says=["FILE is empty"])


if __name__ == "__main__":
    unittest.main()
