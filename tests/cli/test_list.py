# SPDX-License-Identifier: Apache-2.0
"""`mav list` on a terminal, interrupted."""
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

from support import MAV, CommandTest


class Interrupted(CommandTest):
    def test_a_long_search_is_shown_on_a_terminal_and_interrupted_without_debris(self):
        for i in range(300):
            (self.dir / f"d/{i}").mkdir(parents=True)
        with zipfile.ZipFile(self.dir / "d/0/card.pka", "w") as archive:
            archive.writestr("pka.json", json.dumps({"vendor": "v", "boardId": "b", "name": "n",
                                                     "versionMajor": "1", "versionMinor": "0"}))
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
