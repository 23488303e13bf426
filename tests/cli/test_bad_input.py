# SPDX-License-Identifier: Apache-2.0
"""Input that claims too much, and files that may not be read."""
import json
import os
import resource
import struct
import unittest
import zipfile

from support import MAV, CommandTest, run

LITTLE_MEMORY = {} if os.environ.get("MAV_ASAN_RUNTIME") else {
    "preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))}


def good(**more):
    """Metadata that loads, with what `more` adds or replaces."""
    return json.dumps({"vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1",
                       "versionMinor": "0", **more})


class BadMetadata(CommandTest):
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

    def test_a_long_name_above_many_items_takes_no_memory(self):
        archives = [self.archive(f"{side}.pka", {"pka.json": good(busInterfaces=[{
            "name": "M" * 1_000_000, "memPort": "memss", "mode": "slave",
            "addressSegments": [{"name": f"{side}{i}"} for i in range(2000)]}])}) for side in "ab"]
        told = "M" * 80 + ".."
        for arguments, code, says in [(["diff", *archives], 1, f"[{told}].addressSegments[b1999]"),
                                      (["show", "--section", "banks", archives[0]], 0, told + "  a1999")]:
            done = run(MAV, *arguments, **LITTLE_MEMORY)
            self.assertEqual((done.returncode, says in done.stdout.decode()), (code, True), done.stderr)
        self.assertEqual(run(MAV, "show", archives[0], **LITTLE_MEMORY).returncode, 0)

    def test_a_claim_of_8_gb_takes_no_memory(self):
        path = self.claiming(8 << 30)
        done = run(MAV, "json", path, **LITTLE_MEMORY)
        self.assertEqual((done.returncode, done.stdout), (3, b""))
        for text in (str(path), "pka.json", "is larger than the 1073741824 bytes"):
            self.assertIn(text, done.stderr.decode())


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
