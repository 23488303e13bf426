# SPDX-License-Identifier: Apache-2.0
"""`mav validate`: each rule finds the bad example of its page and not the good one."""
import json
import os
import pathlib
import re
import shutil
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

from jsonschema import Draft202012Validator

from support import MAV, PLATFORMS, SAMPLES, SOURCE, CommandTest, run

PAGES = SOURCE / "docs/rules"
IDENTITY = {"vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1", "versionMinor": "0",
            "files": [{"name": "a.txt", "type": "DCP"}]}
NEXT = (r"\Amav: \d+ files? looked at: (no findings|\d+ errors?, \d+ warnings?, \d+ notes?"
        r"\. 'mav validate --explain RULE' tells what a rule asks for)\.\n\Z")


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
        """The rules of the findings."""
        done = run(MAV, "validate", "--json", *files)
        self.assertIn(done.returncode, (0, 1) if code is None else (code,), done.stderr)
        document = json.loads(done.stdout)
        found = document.get("findings", [])
        self.assertEqual(document["errors"],
                         sum(item["severity"] == "error" for item in found))
        return {item["rule"] for item in found}

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
        self.assertRegex(last, r"^(\w+=\S+ )?mav validate (--rule \S+ )?\S+$")
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
        self.assertRegex(done.stderr.decode(), NEXT)
        self.assertFalse(good and errors, answer)
        return {rule[2] for rule in rules}

    def test_examples_of_the_pages(self):
        rules = {page.stem: page.read_text(encoding="utf-8") for page in PAGES.glob("*.md")}
        source = (SOURCE / "platform/src/check/CheckRules.cpp").read_text()
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
                             self.findings(self.example(kind, text)))
                    (self.assertIn if name == "Bad" else self.assertNotIn)(rule, found, name)

    def test_samples_have_no_errors(self):
        for name in PLATFORMS:
            with self.subTest(platform=name):
                rules = self.findings(SAMPLES / name, code=0)
                self.assertEqual(rules - {"release", "unlisted-member", "hbm-preferred"}, set())

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

    def test_sarif(self):
        """By the parts of the published schema that we use; nested files, columns and fingerprints."""
        schema = json.loads((SOURCE / "tests/cli/sarif.schema.json").read_text(encoding="utf-8"))

        def log(text):
            with zipfile.ZipFile(self.dir / "p.pka", "w") as out:
                out.writestr("pka.json", text)
            document = json.loads(run(MAV, "validate", "--sarif", "p.pka", cwd=self.dir).stdout)
            Draft202012Validator(schema).validate(document)
            return document["runs"][0]
        text = '{"vendor": "v", "boardId": "\u00e9\U0001f600", "name": "n", "versionMajor": "x", "versionMinor": 0}'
        first, moved = log(text), log("\n\n" + text)

        def finding(made):
            return next(result for result in made["results"] if result["ruleId"] == "schema")
        place = finding(first)["locations"][0]["physicalLocation"]
        self.assertEqual(place["region"], {"startLine": 1, "startColumn": text.index('"versionMajor') + 2})
        artifact = first["artifacts"][place["artifactLocation"]["index"]]
        self.assertEqual(artifact, {"location": {"uri": "/pka.json"}, "parentIndex": 0})
        self.assertEqual(first["artifacts"][0], {"location": {"uri": "p.pka"}})
        self.assertEqual(finding(moved)["locations"][0]["physicalLocation"]["region"]["startLine"], 3)
        self.assertEqual(finding(moved)["partialFingerprints"], finding(first)["partialFingerprints"])
        prints = [result["partialFingerprints"]["place/v1"] for result in first["results"]]
        self.assertEqual(len(set(prints)), len(prints))

    def test_junit(self):
        self.pack({"busInterfaces": [{"name": "a"}, {"name": "a"}], "platformState": "<&"})
        for level, failures in (("error", "1"), ("warning", "2")):
            run(MAV, "validate", "--junit", self.dir / "r.xml", "--fail-on", level, "--rule", "release=off",
                self.dir / "p.pka")
            root = ElementTree.parse(self.dir / "r.xml").getroot()
            self.assertEqual((root.get("failures"), root.tag), (failures, "testsuites"))
            cases = {case.get("name"): case for case in root.iter("testcase")}
            self.assertIn("duplicate", cases)
            self.assertIn("'<&'", "".join(cases["vocabulary"].itertext()))

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


if __name__ == "__main__":
    unittest.main()
