# SPDX-License-Identifier: Apache-2.0
"""`mav files`, `extract`, `add` and `verify`: archives looked at, taken apart and added to."""
import json
import os
import pathlib
import pty
import re
import resource
import shutil
import signal
import subprocess
import time
import unittest
import zipfile

from support import MAV, SAMPLES, SOURCE, CommandTest, run

CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"
IDENTITY = {"vendor": "tarvek", "boardId": "b1", "name": "card", "versionMajor": "3",
            "versionMinor": "1"}


class ArchiveTest(CommandTest):
    def setUp(self):
        super().setUp()
        self.archive = self.dir / "p.pka"
        self.file = self.dir / "new.pdi"
        self.file.write_bytes(b"image")

    def pack(self, files=(), **members):
        """A platform archive without digest: metadata that lists `files`, and members."""
        with zipfile.ZipFile(self.archive, "w") as archive:
            archive.writestr("pka.json", json.dumps(
                {**IDENTITY, "files": [{"type": type_, "name": name} for type_, name in files]}))
            for name, content in members.items():
                archive.writestr(name, content)

    def members(self):
        with zipfile.ZipFile(self.archive) as archive:
            return {name: archive.read(name) for name in archive.namelist()}

    def listed(self, archive=None):
        output, _ = self.mav("files", archive or self.archive, "--json")
        document = json.loads(output)
        return document["digest"], {item["name"]: (item.get("type"), int(item["size"]))
                                    for item in document["members"]}


class Looking(ArchiveTest):
    def test_names_alone_need_no_member_to_be_read(self):
        with zipfile.ZipFile(self.archive, "a") as archive:
            archive.writestr("last", b"x" * 99)
        data = self.archive.read_bytes()
        self.archive.write_bytes(data.replace(b"x" * 99, b"y" * 99))
        self.assertEqual(self.mav("files", "--names", self.archive)[0].splitlines(),
                         zipfile.ZipFile(self.archive).namelist())
        self.refused("files", "--names", "--json", self.archive, code=2, says=["--names"])

    def test_members_with_type_and_size(self):
        digest, members = self.listed(CARD)
        self.assertEqual(digest, "valid")
        with zipfile.ZipFile(CARD) as archive:
            self.assertEqual({info.filename: info.file_size for info in archive.infolist()},
                             {name: size for name, (_, size) in members.items()})
        self.assertIn("HPFM", members["veltrin_h90.hpfm"][0].split(","))
        self.assertIn("FULL_BIT", members["bit/full.bit"][0].split(","))
        self.assertIsNone(members["pka.json"][0])
        inside = [types for name, (types, _) in members.items() if name.startswith("iprepo/")]
        self.assertTrue(inside and all("IP_REPO_PATH" in types.split(",") for types in inside))
        table, _ = self.mav("files", CARD)
        lines = table.splitlines()
        self.assertEqual(lines[-1], "digest: valid")
        self.assertEqual(len(lines), len(members) + 2)
        self.assertTrue(re.search(r"^HPFM\S*\s+\d+\s+veltrin_h90\.hpfm$", table, re.MULTILINE))

    def test_damaged_metadata_still_lists_members(self):
        with zipfile.ZipFile(self.archive, "w") as archive:
            archive.writestr("pka.json", "{")
            archive.writestr("a\nb", "x")
        output, errors = self.mav("files", self.archive)
        self.assertIn("a\\x0ab\n", output)
        self.assertIn("pka.json", errors)

    def test_verify(self):
        self.assertEqual(self.mav("verify", CARD), ("digest: valid\n", ""))
        self.pack([("PDI", "gone.pdi")], x="content")
        output, _ = self.mav("verify", self.archive, code=1)
        self.assertEqual(output, "listed as PDI and absent: gone.pdi\ndigest: missing\n")
        broken = self.dir / "broken.pka"
        content = bytearray(CARD.read_bytes())
        with zipfile.ZipFile(CARD) as archive:
            info = archive.getinfo("bit/full.bit")
        content[info.header_offset + 30 + len(info.filename) + 5] ^= 0xff
        broken.write_bytes(content)
        output, _ = self.mav("verify", broken, code=1)
        self.assertIn("'bit/full.bit'", output)
        self.assertTrue(output.endswith("digest: mismatch\n"))
        key = self.dir / "key"
        key.write_bytes(b"k" * 32)
        output, _ = self.mav("verify", CARD, code=1, env={**os.environ, "MAV_KEY_FILE": str(key)})
        self.assertEqual(output, "digest: unkeyed\n")


class Extracting(ArchiveTest):
    def test_by_type_member_and_folder(self):
        out = self.dir / "out"
        with zipfile.ZipFile(CARD) as archive:
            for what, path in (("FULL_BIT", "bit/full.bit"), ("rebuild.tcl", "rebuild.tcl")):
                self.assertEqual(self.mav("extract", CARD, what, "-o", out), (f"{out}/{path}\n", ""))
                self.assertEqual((out / path).read_bytes(), archive.read(path))
            self.mav("extract", CARD, "hooks/", "-o", out)
            hooks = [name for name in archive.namelist() if name.startswith("hooks/")]
            self.assertEqual(len(list((out / "hooks").iterdir())), len(hooks))
            self.mav("extract", CARD, "IP_REPO_PATH", cwd=self.dir)
            self.assertTrue((self.dir / "iprepo").is_dir())

    def test_what_is_not_there(self):
        self.pack([("PDI", "gone.pdi")], x="content")
        self.refused("extract", CARD, "FULL_BTI", code=3, says=["Did you mean 'FULL_BIT'?"])
        self.refused("extract", self.archive, "PDI", code=3, says=["'gone.pdi'", "lacks"])
        self.refused("extract", self.dir / "none.pka", "PDI", code=3, says=["does not exist"])
        self.refused("extract", self.file, "PDI", code=3, says=["is not a zip archive"])
        self.refused("extract", CARD, "", code=2, says=["must not be empty"])

    def test_hostile_archives(self):
        out = self.dir / "out"
        out.mkdir()
        (self.dir / "victim").write_text("old")
        self.pack([("PDI", "../evil"), ("BIF", "link")], **{"../evil": "x", "d/../../evil": "x",
                                                            "x": "new", "sub/x": "new"})
        link = zipfile.ZipInfo("link")
        link.create_system = 3
        link.external_attr = 0o120777 << 16
        with zipfile.ZipFile(self.archive, "a") as archive:
            archive.writestr(link, "../victim")
            archive.writestr("/abs", "x")
        for what in ("PDI", "d", "/abs"):
            self.refused("extract", self.archive, what, "-o", out, code=3,
                         says=["leads out of the directory"])
        self.assertEqual(list(out.iterdir()), [])
        self.mav("extract", self.archive, "BIF", "-o", out)
        self.assertFalse((out / "link").is_symlink())
        (out / "x").symlink_to(self.dir / "victim")
        self.mav("extract", self.archive, "x", "-o", out)
        (out / "sub").symlink_to(self.dir)
        self.refused("extract", self.archive, "sub/x", "-o", out, code=3,
                     says=["not a directory of its own"])
        self.refused("extract", self.archive, "BIF", "-o", "/dev/null/x", code=3,
                     says=["the folder '/dev/null/x' cannot be made: Not a directory"])
        self.assertEqual((self.dir / "victim").read_text(), "old")
        self.assertFalse((self.dir / "evil").exists())

    def test_a_disk_that_fills_up_leaves_nothing(self):
        self.pack(x=os.urandom(200000))
        out = self.dir / "out"
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (50000, 50000))
            import signal
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        self.mav("extract", self.archive, "x", "-o", out, code=3, preexec_fn=limit)
        self.assertEqual(list(out.iterdir()), [])


class Adding(ArchiveTest):
    def test_to_a_platform(self):
        shutil.copy(CARD, self.archive)
        before = self.members()
        self.assertEqual(self.mav("add", self.archive, "BOOT_PDI", self.file), ("", ""))
        self.mav("add", self.archive, "HPFM", self.file)
        self.mav("add", self.archive, "MMI", self.file, "--as", "deep/er.mmi")
        digest, listed = self.listed()
        self.assertEqual(digest, "valid")
        self.assertEqual(listed["new.pdi"], ("BOOT_PDI", 5))
        self.assertIn("MMI", listed["deep/er.mmi"][0])
        after = self.members()
        self.assertEqual(after["veltrin_h90.hpfm"], b"image", "the listed member is replaced")
        changed = {name for name in after if after[name] != before.get(name)}
        self.assertEqual(changed - {"vma.json"},
                         {"new.pdi", "deep/er.mmi", "veltrin_h90.hpfm", "pka.json"})
        self.mav("json", self.archive)

    def test_to_an_archive_with_an_index(self):
        self.archive = self.dir / "plain.zip"
        with zipfile.ZipFile(self.archive, "w") as archive:
            archive.writestr("x", "y")
        self.mav("add", self.archive, "PDI", self.file)
        self.mav("add", self.archive, "PDI", CARD)
        self.assertEqual(self.members()["new.pdi"], CARD.read_bytes())
        self.mav("extract", self.archive, "PDI", "-o", self.dir / "out")
        self.assertEqual((self.dir / "out/new.pdi").read_bytes(), CARD.read_bytes())
        self.refused("add", self.archive, "BIF", self.file, "--as", "vma.json", code=2,
                     says=["the index itself"])

    def test_refusals_change_nothing(self):
        self.pack(**{"new.pdi": "other", "x": "y"})
        before = self.archive.read_bytes()
        self.refused("add", self.archive, "PDO", self.file, code=2, says=["Did you mean 'PDI'?"])
        self.refused("add", self.archive, "IP_REPO_PATH", self.file, code=2, says=["folder"])
        self.refused("add", self.archive, "PDI", self.file, code=3, says=["--as"])
        self.refused("add", self.archive, "PDI", self.dir / "none", code=3, says=["FILE"])
        self.refused("add", self.archive, "PDI", self.dir, code=3, says=["FILE"])
        for name in ("../up", "/abs", "a\\b"):
            self.refused("add", self.archive, "PDI", self.file, "--as", name, code=3,
                         says=["cannot add to"])
        self.refused("add", self.dir / "none.pka", "PDI", self.file, code=3,
                     says=["does not exist"])
        self.assertEqual(self.archive.read_bytes(), before)
        shutil.copy(CARD, self.archive)
        with zipfile.ZipFile(self.archive, "a") as archive:
            archive.writestr("smuggled", "x")
        self.refused("add", self.archive, "PDI", self.file, code=3, says=["do not match its digest"])

    def test_names_that_cannot_stand_in_the_archive(self):
        self.pack(**{"x": "y", "bd/a.bd": "b", "hw_emu/pka.json": "{}"})
        before = self.archive.read_bytes()
        for name, says in (("a/", "cannot name a member"), ("./a", "cannot name a member"),
                           ("a//b", "cannot name a member"), ("../up", "cannot name a member"),
                           ("x/a", "is a file"), ("bd", "is a folder"),
                           ("pka.json", "metadata itself"), ("vma.json", "metadata itself"),
                           ("hw_emu/pka.json", "metadata itself")):
            self.refused("add", self.archive, "PDI", self.file, "--as", name, code=3, says=[says])
        self.assertEqual(self.archive.read_bytes(), before)

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

    def test_a_folder_that_may_not_be_written(self):
        folder = self.dir / "closed"
        folder.mkdir()
        self.pack(x="y")
        archive = folder / "p.pka"
        shutil.copy(self.archive, archive)
        os.chmod(folder, 0o555)
        os.chmod(self.dir, 0o755)
        user = {"user": 65534} if os.geteuid() == 0 else {}
        self.mav("add", archive, "PDI", self.file, code=3, **user)
        self.mav("extract", archive, "x", "-o", folder, code=3, **user)
        self.assertEqual(archive.read_bytes(), self.archive.read_bytes())
        os.chmod(folder, 0o755)
        self.assertEqual([entry.name for entry in folder.iterdir()], ["p.pka"])


class LargeMembers(ArchiveTest):
    SIZE = 200 << 20

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
            for _ in range(self.SIZE // len(block)):
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


class Pages(ArchiveTest):
    def test_the_example_of_the_index_page(self):
        page = (SOURCE / "docs/formats/vma.md").read_text(encoding="utf-8")
        example = re.search(r"```json\n(.*?)```", page, re.DOTALL).group(1)
        self.archive = self.dir / "a.zip"
        index = json.loads(example)
        with zipfile.ZipFile(self.archive, "w") as archive:
            archive.writestr("vma.json", example)
            for item in index["files"]:
                archive.writestr(item["name"], item["type"])
        _, members = self.listed()
        for item in index["files"]:
            self.assertEqual(members[item["name"]], (item["type"], len(item["type"])))
        rows = set(re.findall(r"^\| `(\w+)` \|", page, re.MULTILINE))
        self.assertEqual(rows, set(index) | {"major", "minor", "name", "type"})


if __name__ == "__main__":
    unittest.main()
