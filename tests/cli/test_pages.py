# SPDX-License-Identifier: Apache-2.0
"""The examples of the pages about services, run as they stand."""
import os
import re
import shlex
import unittest

from support import MAV, SAMPLES, SOURCE, CommandTest, run


def examples(text):
    """(command, output) of each "$ mav …" in the console blocks; "> " goes on with a command."""
    for block in re.findall(r"```console\n(.*?)```", text, re.S):
        for example in re.split(r"^\$ mav ", block, flags=re.M)[1:]:
            lines = example.splitlines(keepends=True)
            size = 1
            while size < len(lines) and lines[size].startswith("> "):
                size += 1
            command = lines[0] + "".join(line[2:] for line in lines[1:size])
            yield shlex.split(command), "".join(lines[size:])


class Pages(CommandTest):
    maxDiff = None

    def follow(self, page, least=4):
        text = (SOURCE / "docs" / page).read_text()
        (self.dir / "key").write_bytes(b"0123456789abcdef0123456789abcdef")
        os.chmod(self.dir / "key", 0o600)
        (self.dir / "root/platforms").mkdir(parents=True)
        (self.dir / "samples").symlink_to(SAMPLES)
        for content in re.findall(r"```json\n(.*?)```", text, re.S):
            (self.dir / "list.json").write_text(content)
        env = {**os.environ, "MAV_KEY_FILE": str(self.dir / "key"), "MAV_TOOL_RELEASE": "2026.1"}
        if "root/platforms" in text:
            env["MAV_APP_ROOT"] = str(self.dir / "root")
        count = 0
        for arguments, output in examples(text):
            done = run(MAV, *arguments, cwd=self.dir, env=env)
            self.assertIn(done.returncode, (0, 1, 3), done.stderr.decode())
            self.assertEqual(done.stdout.decode(), output, arguments)
            count += 1
        self.assertGreaterEqual(count, least, "examples on the page")

    def test_services(self):
        self.follow("services.md")

    def test_outputs(self):
        self.follow("outputs.md", least=2)

    def test_support_policy(self):
        self.follow("support-policy.md")


if __name__ == "__main__":
    unittest.main()
