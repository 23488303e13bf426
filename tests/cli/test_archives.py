# SPDX-License-Identifier: Apache-2.0
"""`mav extract` and `add` where signals and other writers interfere, and what they take."""
import json
import os
import pty
import signal
import subprocess
import time
import unittest
import zipfile

from support import MAV, CommandTest

IDENTITY = {"vendor": "tarvek", "boardId": "b1", "name": "card", "versionMajor": "3",
            "versionMinor": "1"}


class ArchiveTest(CommandTest):
    def setUp(self):
        super().setUp()
        self.archive = self.dir / "p.pka"
        self.file = self.dir / "new.pdi"
        self.file.write_bytes(b"image")

    def pack(self, **members):
        """A platform archive without digest."""
        with zipfile.ZipFile(self.archive, "w") as archive:
            archive.writestr("pka.json", json.dumps(IDENTITY))
            for name, content in members.items():
                archive.writestr(name, content)


class Interference(ArchiveTest):
    def test_a_bomb_is_not_gone_through(self):
        self.pack(x="y")
        content = self.archive.read_bytes()
        entry = content.rindex(b"PK\1\2")
        self.archive.write_bytes(content[:entry + 24] + b"\1\0\0\x40" + content[entry + 28:])
        _, errors = self.mav("verify", self.archive, code=3)
        self.assertIn("claim more than 1073741824 bytes", errors)

    def test_several_at_once_are_all_listed(self):
        self.pack()
        plain = self.dir / "plain.zip"
        with zipfile.ZipFile(plain, "w") as archive:
            archive.writestr("x", "y")
        calls = [[MAV, "add", self.archive, "PDI", self.file, "--as", f"m{i}"] for i in range(8)]
        calls += [[MAV, "add", plain, f"TYPE{i}", self.file, "--as", f"m{i}"] for i in range(8)]
        running = [subprocess.Popen(list(map(str, call))) for call in calls]
        self.assertEqual([process.wait() for process in running], [0] * len(running))
        names = {f"m{i}" for i in range(8)}
        for path, index in ((self.archive, "pka.json"), (plain, "vma.json")):
            with zipfile.ZipFile(path) as archive:
                files = json.loads(archive.read(index))["files"]
                self.assertLessEqual(names, set(archive.namelist()))
            self.assertLessEqual(names, {item["name"] for item in files}, path)
            self.mav("verify", path)

    def test_a_signal_leaves_nothing_behind(self):
        self.pack()
        before = self.archive.read_bytes()
        with open(self.file, "wb") as file:
            file.truncate(8 << 30)  # far more than is packed before the signal comes
        for sent in (signal.SIGINT, signal.SIGTERM):
            process = subprocess.Popen(
                list(map(str, (MAV, "add", self.archive, "PDI", self.file))),
                preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
            while not list(self.dir.glob("*.new-*")):
                self.assertIsNone(process.poll())
                time.sleep(0.01)
            process.send_signal(sent)
            self.assertEqual(process.wait(), 128 + sent)
            self.assertEqual(self.archive.read_bytes(), before)
            self.assertEqual(sorted(entry.name for entry in self.dir.iterdir()),
                             sorted([self.archive.name, self.file.name]))

    @staticmethod
    def sanitizer_memory():
        """What the tool of a sanitized build takes before any work is done; 0 without one."""
        if not os.environ.get("MAV_ASAN_RUNTIME"):
            return 0
        with subprocess.Popen([MAV, "--version"], stdout=subprocess.DEVNULL) as process:
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        return usage.ru_maxrss

    def test_constant_memory_and_progress(self):
        self.pack()
        block = bytes(range(256)) * 16 + os.urandom(12288)
        with open(self.file, "wb") as file:
            for _ in range((200 << 20) // len(block)):
                file.write(block)
        peak = []
        for arguments in (("add", self.archive, "PDI", self.file),
                          ("extract", self.archive, "PDI", "-o", self.dir / "out")):
            terminal, end = pty.openpty()
            process = subprocess.Popen([MAV, *map(str, arguments)], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=end)
            os.close(end)
            shown = b""
            try:
                while chunk := os.read(terminal, 65536):
                    shown += chunk
            except OSError:
                pass  # what reading says when the last writer has gone
            os.close(terminal)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            self.assertEqual(process.returncode, 0, shown)
            peak.append(usage.ru_maxrss)
            self.assertIn(b"50 %", shown)
            self.assertTrue(shown.endswith(b"\r\x1b[K"), shown[-80:])
        self.assertLess(max(peak) - self.sanitizer_memory(), 64 << 10, "kB")
        self.assertEqual((self.dir / "out/new.pdi").stat().st_size, self.file.stat().st_size)
        self.mav("verify", self.archive)


if __name__ == "__main__":
    unittest.main()
