# SPDX-License-Identifier: Apache-2.0
"""`mav pack`: what goes into an archive, in which order, and what is refused."""
import os
import random
import unittest
import zipfile

from support import CommandTest


class PackTest(CommandTest):
    def setUp(self):
        super().setUp()
        self.folder = self.dir / "in"
        self.archive = self.dir / "out" / "made.pka"
        self.archive.parent.mkdir()
        self.folder.mkdir()

    def fill(self, folder, files):
        for name, content in files.items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)

    def left_in_output(self):
        return sorted(entry.name for entry in self.archive.parent.iterdir())


FILES = {"pka.json": b"{}", "alt_pka.json": b'{"a": 1}', "hw_emu/pka.json": b"{ }",
         "hw_emu/a.bd": b"x" * 4000, "z.bit": bytes(range(256)) * 40, "bd/dr.bd": b"",
         "a b%20\u00fc.txt": b"text", "Z.bit": b"upper", "json/pka.json": b"inner"}


class Content(PackTest):
    def test_metadata_first_then_by_name(self):
        self.fill(self.folder, FILES)
        self.assertEqual(self.mav("pack", self.folder, self.archive), ("", ""))
        with zipfile.ZipFile(self.archive) as archive:
            self.assertEqual(archive.namelist(),
                             ["pka.json", "alt_pka.json", "hw_emu/pka.json", "Z.bit",
                              "a b%20\u00fc.txt", "bd/dr.bd", "hw_emu/a.bd", "json/pka.json",
                              "z.bit"])
            for name, content in FILES.items():
                self.assertEqual(archive.read(name), content)
            self.assertTrue(archive.comment.startswith(b"mav-digest:"))
        self.assertEqual(self.left_in_output(), ["made.pka"])

    def test_the_same_files_give_the_same_bytes(self):
        made = []
        for seed in range(3):
            names = list(FILES)
            random.Random(seed).shuffle(names)
            folder = self.dir / f"in{seed}"
            self.fill(folder, {name: FILES[name] for name in names})
            for name in names:
                os.utime(folder / name, (10 ** 9 + seed * 5000, 10 ** 9 + seed * 7000))
                os.chmod(folder / name, 0o600 if seed else 0o755)
            archive = self.dir / f"made{seed}.pka"
            self.mav("pack", folder, archive)
            made.append(archive.read_bytes())
        self.assertEqual(made[0], made[1])
        self.assertEqual(made[0], made[2])

    def test_every_spelling_of_the_folder_gives_the_same_members(self):
        self.fill(self.folder, FILES)
        self.mav("pack", self.folder, self.archive)
        for spelling in (f"{self.folder}/", f"{self.folder}/.", f"{self.folder}/bd/.."):
            self.mav("pack", spelling, self.dir / "again.pka")
            self.assertEqual((self.dir / "again.pka").read_bytes(), self.archive.read_bytes())
        self.mav("pack", ".", "../here.pka", cwd=self.folder)
        self.assertEqual((self.dir / "here.pka").read_bytes(), self.archive.read_bytes())

    def test_hidden_names_are_left_out(self):
        self.fill(self.folder, {"pka.json": b"{}", ".gitkeep": b"", "bd/.DS_Store": b"?",
                                ".cache/x.bit": b"?", "bd/a.bd": b"b"})
        os.symlink("/nowhere", self.folder / ".link")
        self.mav("pack", self.folder, self.archive)
        with zipfile.ZipFile(self.archive) as archive:
            self.assertEqual(archive.namelist(), ["pka.json", "bd/a.bd"])

    def test_dsa_archives_have_their_own_metadata_name(self):
        self.fill(self.folder, {"a.bit": b"", "dsa.json": b"{}"})
        self.mav("pack", self.folder, self.dir / "made.dsa")
        with zipfile.ZipFile(self.dir / "made.dsa") as archive:
            self.assertEqual(archive.namelist(), ["dsa.json", "a.bit"])


class Refusals(PackTest):
    def test_without_metadata_only_by_force(self):
        for files in ({"dsa.json": b"{}"}, {"hw_emu/pka.json": b"{}"}, {"sub/pka.json": b"{}"}):
            self.fill(self.folder, files)
            self.refused("pack", self.folder, self.archive, code=3,
                         says=["'pka.json'", "'alt_pka.json'", "--force"])
        self.assertEqual(self.left_in_output(), [])
        self.mav("pack", self.folder, self.archive, "--force")
        with zipfile.ZipFile(self.archive) as archive:
            self.assertEqual(len(archive.namelist()), 3)

    def test_links_and_devices(self):
        self.fill(self.folder, {"pka.json": b"{}"})
        self.archive.write_bytes(b"the old archive")
        for make, says in [(lambda path: os.symlink("pka.json", path), "is a link"),
                           (lambda path: os.symlink(self.dir, path), "is a link"),
                           (lambda path: os.symlink("/nowhere", path), "is a link"),
                           (os.mkfifo, "neither a file nor a folder")]:
            odd = self.folder / "odd.bit"
            make(odd)
            self.refused("pack", self.folder, self.archive, code=3, says=[str(odd), says])
            odd.unlink()
        self.assertEqual(self.archive.read_bytes(), b"the old archive")
        self.assertEqual(self.left_in_output(), ["made.pka"])

    def test_names_that_no_archive_may_hold(self):
        self.fill(self.folder, {"pka.json": b"{}", "back\\slash.bit": b""})
        self.refused("pack", self.folder, self.archive, code=3, says=["back\\slash.bit"])
        self.assertEqual(self.left_in_output(), [])

    def test_folders_that_cannot_be_packed(self):
        self.refused("pack", self.dir / "none", self.archive, code=3, says=["there is no folder"])
        self.refused("pack", self.folder, self.archive, code=3, says=["holds no files"])
        file = self.dir / "file"
        file.write_bytes(b"")
        self.refused("pack", file, self.archive, code=2, says=["is no folder"])

    def test_places_where_no_archive_belongs(self):
        self.fill(self.folder, {"pka.json": b"{}", "bd/a.bd": b""})
        for name in ("a.zip", "a.PKA", "a", "pka", "a.pka.bak", "a.pka/"):
            self.refused("pack", self.folder, f"{self.archive.parent}/{name}", code=2,
                         says=["must end in .pka or .dsa"])
        os.symlink(self.folder, self.dir / "way")
        for inside in (self.folder / "a.pka", self.folder / "bd" / "a.pka", self.dir / "way/a.pka",
                       f"{self.dir}/out/../in/a.pka"):
            self.refused("pack", self.folder, inside, code=2, says=["lies inside"])
        (self.archive.parent / "dir.pka").mkdir()
        self.refused("pack", self.folder, self.archive.parent / "dir.pka", code=2,
                     says=["is a folder"])
        self.refused("pack", self.folder, self.dir / "no/such/place/a.pka", code=3,
                     says=[f"there is no folder '{self.dir}/no/such/place'", "Create it"])
        # A neighbour whose name merely begins with the folder's is outside of it.
        self.mav("pack", self.folder, self.dir / "in.pka")


if __name__ == "__main__":
    unittest.main()
