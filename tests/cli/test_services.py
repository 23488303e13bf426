# SPDX-License-Identifier: Apache-2.0
"""`mav get` and the other questions about a platform's description."""
import json
import os

from support import SAMPLES, CommandTest

CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"
BOARD = SAMPLES / "tessomar_r2/tessomar_r2.qpfm"
EMBEDDED = SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm"
ROOT = "hardwarePlatforms.hardwarePlatform"


class Get(CommandTest):
    def test_values_objects_and_lists(self):
        document = json.loads(self.mav("json", CARD)[0])
        hardware = document["hardwarePlatforms"]["hardwarePlatform"]
        self.assertEqual(self.mav("get", CARD, "type")[0], document["type"] + "\n")
        self.assertEqual(json.loads(self.mav("get", CARD, "type", "--json")[0]), document["type"])
        self.assertEqual(json.loads(self.mav("get", CARD, "hardwarePlatform")[0]), hardware)
        clocks = hardware["systemClocks"]
        self.assertGreater(len(clocks), 1)
        self.assertEqual(json.loads(self.mav("get", CARD, ROOT + ".systemClocks")[0]), clocks)
        for every in ("[*].", "[].", ".."):
            names, _ = self.mav("get", CARD, f"hardwarePlatform.systemClocks{every}name")
            self.assertEqual(json.loads(names), [clock["name"] for clock in clocks])
        last = f"hardwarePlatform.systemClocks[{len(clocks) - 1}].name"
        self.assertEqual(self.mav("get", CARD, last)[0], clocks[-1]["name"] + "\n")

    def test_what_is_not_there(self):
        self.refused("get", CARD, ROOT + ".nothing", code=1,
                     says=["nothing is at '" + ROOT + ".nothing'"])
        self.refused("get", self.dir / "no.qpfm", "vendor", code=3, says=["nothing is there"])
        self.refused("get", "", "vendor", code=2, says=["FILE is empty"])


class Policy(CommandTest):
    def setUp(self):
        super().setUp()
        (self.dir / "key").write_bytes(b"0123456789abcdef0123456789abcdef")
        self.env = {**os.environ, "MAV_KEY_FILE": str(self.dir / "key"),
                    "MAV_APP_ROOT": str(self.dir)}
        self.env.pop("MAV_TOOL_RELEASE", None)

    def check(self, *arguments, code):
        return self.mav("check", *arguments, code=code, env=self.env)[0]

    def test_info_as_text_and_as_json(self):
        summary = json.loads(self.mav("info", BOARD, "--json", env=self.env)[0])
        table, _ = self.mav("info", BOARD, env=self.env)
        lines = [line.split(None, 1) for line in table.splitlines()]
        self.assertEqual({key: "" if value == "-" else value for key, value in lines}, summary)
        self.assertEqual(summary["baseName"], "tessomar_r2")
        self.assertNotIn("reconfigurablePartitions", summary)
        table, _ = self.mav("info", BOARD, "--partitions", env=self.env)
        self.assertIn("reconfigurablePartitions\n    id ", table)

    def test_check_tells_of_each_platform_and_answers_with_the_worst(self):
        self.assertEqual(self.check(EMBEDDED, code=0), f"{EMBEDDED}: supported\n")
        text = self.check(EMBEDDED, BOARD, code=1)
        self.assertRegex(text, r"qpfm: supported\n.*r2.qpfm: not supported. Platform 'tessomar")
        self.assertEqual(self.check(BOARD, "--tool-release", "2027.2", code=0),
                         f"{BOARD}: supported\n")
        self.assertIn("calendar year", self.check(BOARD, "--tool-release", "2028.1", code=1))
        self.assertIn("is not a PRE_SYNTH", self.check(BOARD, "--presynth", code=1))
        self.assertIn("DSA 'tessomar_r2.qpfm'", self.check(BOARD, "--archive", code=1))
        answers = json.loads(self.check(EMBEDDED, BOARD, "--json", code=1))["platforms"]
        self.assertEqual([answer["supported"] for answer in answers], ["true", "false"])
        output, errors = self.mav("check", self.dir / "none.pka", EMBEDDED, code=3, env=self.env)
        self.assertEqual(output, f"{EMBEDDED}: supported\n")
        self.assertIn("cannot load", errors)

    def test_wrong_use(self):
        for arguments, says in ((["--presynth", "--archive"], "different questions"),
                                (["--tool-release", "new"], "'new' is no release"),
                                (["--tool-release", "2026"], "'2026' is no release")):
            self.refused("check", EMBEDDED, *arguments, code=2, says=[says])

    def test_a_support_list_from_text_to_decision(self):
        clear = self.dir / "list.json"
        clear.write_text(json.dumps({"white_list": [
            {"products": ["orrery"], "key": "name", "value": "tessomar_r2", "reason": "Tested."}]}))
        protected = self.dir / "platforms/achromatic"
        protected.parent.mkdir()
        self.mav("protect", clear, protected, env=self.env)
        self.assertNotIn(b"orrery", protected.read_bytes())
        self.assertEqual(self.mav("unprotect", protected, env=self.env)[0], clear.read_text())
        self.mav("unprotect", protected, self.dir / "again.json", env=self.env)
        self.assertEqual((self.dir / "again.json").read_text(), clear.read_text())
        late = [BOARD, "--tool-release", "2030.1"]
        self.check(*late, code=1)
        self.assertIn("explicitly enabled for this release. Reason: Tested.",
                      self.check(*late, "--product", "orrery", code=0))
        for arguments, says in ((["protect", protected, "x"], "protected already"),
                                (["protect", self.dir / "none", "x"], "none"),
                                (["unprotect", clear, "x"], "list.json")):
            _, errors = self.mav(*arguments, code=3, env=self.env)
            self.assertIn(says, errors)
        self.env["MAV_KEY_FILE"] = ""
        self.assertIn("key", self.mav("protect", clear, "x", code=3, env=self.env)[1])


class Queries(CommandTest):
    def test_keys(self):
        listed = json.loads(self.mav("keys", BOARD, "--json")[0])["keys"]
        lines = [line.split() for line in self.mav("keys", BOARD)[0].splitlines()]
        self.assertEqual(lines, [[key["count"], key["path"]] for key in listed])
        partitions = "hardwarePlatforms.reconfigurablePartitions"
        self.assertIn(["2", partitions + "[]"], lines)
        self.assertIn(["2", partitions + "[].id"], lines)

    def test_dict(self):
        clocks = "hardwarePlatform.systemClocks[*]"
        text, _ = self.mav("dict", CARD, clocks, "--name", "name", "--name", "id")
        names = [line.split(" = ") for line in text.splitlines()]
        self.assertEqual([name for name, _ in names[:3]], ["[0].name", "[0].id", "[1].name"])
        as_json = json.loads(self.mav("dict", CARD, clocks, "--name", "name", "--name", "id",
                                      "--json")[0])
        self.assertEqual(as_json, dict(names))
        self.assertEqual(self.mav("dict", CARD, "type")[0], "Pellux\n")
        self.refused("dict", CARD, "nowhere", code=1, says=["nothing is at 'nowhere'"])
        self.refused("dict", CARD, clocks, "--name", "x", code=1, says=["none of the names"])

    def test_transform(self):
        spec = ('{"card": "hardwarePlatform.name", "clocks": {"each": '
                '"hardwarePlatform.systemClocks", "select": {"of": "name"}}}')
        made = json.loads(self.mav("transform", CARD, spec)[0])
        self.assertEqual(made["card"], "gen3x16_hbm")
        self.assertEqual(len(made["clocks"]), 4)
        (self.dir / "spec.json").write_text(spec)
        self.assertEqual(json.loads(self.mav("transform", CARD, self.dir / "spec.json")[0]), made)
        self.refused("transform", CARD, '{"a": {"each": "b"}}', code=2,
                     says=["at 'a': 'select' is missing"])
        self.refused("transform", CARD, self.dir / "none.json", code=3, says=["none.json"])


class Doc(CommandTest):
    def test_keys_by_class_and_path(self):
        text, _ = self.mav("doc", "hardwarePlatform.systemClocks[0].frequency")
        self.assertIn("meaning: Frequency of the clock\n", text)
        self.assertIn("unit: MHz\n", text)
        self.assertEqual(self.mav("doc", "HMAVSystemClock.frequency")[0], text)
        self.assertIn("HMAVSystemClock.name  Name of the clock\n",
                      self.mav("doc", "HMAVSystemClock")[0])
        everything = json.loads(self.mav("doc", "all", "--json")[0])
        listed = self.mav("doc")[0].splitlines()
        self.assertEqual([line.split("  ")[0] for line in listed],
                         [f"{name}.{key}" for name, keys in everything.items() for key in keys])
        _, errors = self.mav("doc", "nothing", code=1)
        self.assertIn("Could not find the specified key: <nothing>.", errors)

    def test_without_the_file(self):
        env = {**os.environ, "MAV_APP_ROOT": str(self.dir)}
        _, errors = self.mav("doc", code=3, env=env)
        self.assertIn("Check the install area.", errors)
