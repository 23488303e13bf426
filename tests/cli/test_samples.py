# SPDX-License-Identifier: Apache-2.0
"""The samples' texts: every file type is used, every file that metadata or an index names is there."""
import json
import re
import unittest

from support import SOURCE

SAMPLES = SOURCE / "samples"
NAMES = ("pka.json", "alt_pka.json", "dsa.json", "alt_dsa.json")
DIRECTORY_TYPES = {"IP_REPO_PATH", "IP_CACHE_DIR", "BOARD_REPO_PATH"}
LARGEST = 400_000


def metadata():
    """Every metadata text with its folder."""
    found = [path for path in sorted(SAMPLES.rglob("*.json")) if path.name in NAMES]
    assert found, "no metadata among the samples"
    return [(path, json.loads(path.read_text(encoding="utf-8"))) for path in found]


def named_files(folder, document):
    for item in document.get("files", []):
        if item["type"] == "DPEPRJ":  # packed by the build from the folder beside the archive's
            yield folder.parent / "array_project", True
            continue
        yield folder / item["name"], item["type"] in DIRECTORY_TYPES
        if item["type"] == "EMU_JSON":
            emulation = json.loads((folder / item["name"]).read_text(encoding="utf-8"))
            for variant in emulation["emulations"]:
                for file in variant["files"]:
                    yield folder / file["name"], False
    index = folder / "vma.json"
    for item in json.loads(index.read_text(encoding="utf-8"))["files"] if index.exists() else ():
        yield folder / item["name"], item["type"] in DIRECTORY_TYPES
    for key, name in document.get("board", {}).items():
        if key.startswith("imageFile"):
            yield SAMPLES / folder.relative_to(SAMPLES) / name, False


class Samples(unittest.TestCase):
    def test_every_file_type_is_used(self):
        source = (SOURCE / "platform/include/mav_platform/HMAVPfmFileTypes.h").read_text()
        types = set(re.findall(r'^ +(?:TYPE|HOOK)\(([A-Z0-9_]+), ', source, re.MULTILINE))
        self.assertEqual(len(types), 72)
        used = {item["type"] for _, document in metadata() for item in document.get("files", [])}
        self.assertEqual(sorted(types ^ used), [])

    def test_every_named_file_is_a_member(self):
        for path, document in metadata():
            if path.parent.name == "hw_emu" and (path.parent.parent / path.name).exists():
                document = dict(document, board={})
            named = list(named_files(path.parent, document))
            self.assertTrue(named, path)
            for file, is_directory in named:
                with self.subTest(metadata=path, file=file):
                    self.assertTrue(file.is_dir() if is_directory else file.is_file())
                    self.assertTrue(not is_directory or any(file.rglob("*")))

    def test_sizes(self):
        cards = [document for _, document in metadata() if document["boardId"] == "h90"]
        segments = max(len(item.get("addressSegments", []))
                       for document in cards for item in document["busInterfaces"])
        self.assertEqual(segments, 32)
        for path in SAMPLES.rglob("*"):
            self.assertLess(path.stat().st_size, LARGEST, path)
            if path.is_file():
                path.read_text(encoding="utf-8")


if __name__ == "__main__":
    unittest.main()
