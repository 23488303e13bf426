# SPDX-License-Identifier: Apache-2.0
"""The recipes of docs/ci.md, run as they stand in a repository with a good and a bad platform."""
import json
import os
import pathlib
import re
import shutil
import unittest

from support import MAV, SOURCE, CommandTest, run

BLOCK = re.compile(r"^## (.*?)$|```\w+\n(.*?)```", re.M | re.S)


def recipes():
    """The blocks of the page by the heading that they stand under."""
    found, heading = {}, ""
    for match in BLOCK.finditer((SOURCE / "docs/ci.md").read_text(encoding="utf-8")):
        if match[1]:
            heading = match[1]
        else:
            found.setdefault(heading, []).append(match[2])
    return found


class Recipes(CommandTest):
    def sh(self, script, code=0):
        environment = {**os.environ, "HOME": str(self.dir), "BASE": "main", "MAV_TOOL_RELEASE": "2026.1",
                       "PATH": f"{pathlib.Path(MAV).parent}:{os.environ['PATH']}"}
        done = run("sh", "-c", script, cwd=self.dir, env=environment)
        self.assertEqual(done.returncode, code, script + done.stderr.decode())
        return done.stdout.decode() + done.stderr.decode()

    def bad(self):
        metadata = self.dir / "card/pka.json"
        document = json.loads(metadata.read_text(encoding="utf-8"))
        document["systemClocks"][1]["name"] = document["systemClocks"][0]["name"]
        metadata.write_text(json.dumps(document), encoding="utf-8")

    def test_recipes(self):
        blocks = recipes()
        (pull,), (night, accepted), (hook,), (make,), (attributes, config), (verdicts,) = blocks.values()
        shutil.copytree(SOURCE / "samples/veltrin_h90/archive", self.dir / "card")
        (self.dir / "Makefile").write_text(make, encoding="utf-8")
        (self.dir / ".gitattributes").write_text(attributes, encoding="utf-8")
        self.sh("git init -q -b main && git config user.name n && git config user.email e && make -s &&"
                "git add card.pka .gitattributes && git commit -qm good && git checkout -qb work")
        self.sh(config)
        (self.dir / ".git/hooks/pre-commit").write_text(hook, encoding="utf-8")
        (self.dir / ".git/hooks/pre-commit").chmod(0o755)
        self.assertEqual(self.sh(verdicts), "card.pka unified\n")

        self.sh(night, code=1)
        (self.dir / ".mavcheck").write_text(accepted, encoding="utf-8")
        self.sh(night)
        self.assertIn("<testsuite", (self.dir / "platforms.xml").read_text(encoding="utf-8"))

        self.sh(pull)
        self.assertFalse((self.dir / "platforms.sarif").exists(), "nothing has changed")
        self.bad()
        self.assertIn("[duplicate]", self.sh("make -s", code=2))
        self.sh("mav verify card.pka && cmp -s new.pka card.pka", code=1)
        self.sh("mv new.pka card.pka && git add card.pka")
        self.assertIn("[duplicate]", self.sh("git commit -qm bad", code=1))
        self.sh("git commit -qnm bad")
        self.sh(pull, code=123)
        rules = [result["ruleId"] for result in json.loads(
            (self.dir / "platforms.sarif").read_text(encoding="utf-8"))["runs"][0]["results"]]
        self.assertIn("duplicate", rules)
        difference = self.sh("git diff main work -- card.pka")
        self.assertRegex(difference, r"(?m)^-.*kernel2_clk")
        self.assertNotIn("Binary", difference)


if __name__ == "__main__":
    unittest.main()
