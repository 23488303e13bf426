# SPDX-License-Identifier: Apache-2.0
"""Archives: members, streams, extraction, adding, verifying, stopping."""
import zipfile

import mav_platform
import pytest
from conftest import CARD


@pytest.fixture
def archive(tmp_path):
    (tmp_path / "in/d").mkdir(parents=True)
    (tmp_path / "in/a.txt").write_bytes(b"content" * 40000)
    (tmp_path / "in/d/b.txt").write_text("more")
    with mav_platform.pack(tmp_path / "in", tmp_path / "a.pka", without_metadata=True) as made:
        yield made


def test_members_as_another_reader_sees_them():
    with mav_platform.Archive(CARD) as archive, zipfile.ZipFile(CARD) as other:
        assert list(archive) == other.namelist()
        assert all(archive.read(name) == other.read(name) for name in archive)
        assert {one.size for one in archive.values()} == {one.file_size for one in other.infolist()}
        assert any("HPFM" in one.types for one in archive.values())
        assert "none" not in archive and "61 members" in repr(archive)


def test_streams(archive):
    stream = archive.open("a.txt")
    other = archive.open("d/b.txt")
    assert stream.read(10) == b"contentcon" and other.read() == b"more"
    archive.close()
    assert len(stream.read()) == 279990
    stream.close()
    with pytest.raises(ValueError):
        stream.read(1)
    with pytest.raises(ValueError, match="closed"):
        archive.open("a.txt")


def test_extract_add_and_verify(archive, tmp_path):
    assert archive.extract("d/b.txt", tmp_path / "out").read_text() == "more"
    archive.add("HPFM", tmp_path / "in/d/b.txt", member="x.hpfm")
    assert archive["x.hpfm"].types == ("HPFM",) and archive.read("x.hpfm") == b"more"
    assert archive.verify()
    with zipfile.ZipFile(archive.path, "a") as other:
        other.writestr("foreign", "x")
    with mav_platform.Archive(archive.path) as changed:
        assert changed.verify().digest is mav_platform.Digest.MISMATCH and not changed.verify()
        with pytest.raises(mav_platform.Refused):
            changed.add("HPFM", tmp_path / "in/a.txt")
        changed.add("HPFM", tmp_path / "in/a.txt", resign=True)
        assert changed.verify()


def test_failures(archive, tmp_path):
    with pytest.raises(mav_platform.NotFound):
        archive.open("none")
    with pytest.raises(mav_platform.NotFound):
        archive.extract("none", tmp_path / "out")
    with pytest.raises(KeyError):
        archive["none"]
    with pytest.raises(mav_platform.NotLoadable):
        mav_platform.Archive(tmp_path / "in/a.txt")
    with pytest.raises(mav_platform.CannotWrite):
        mav_platform.pack(tmp_path / "in", "/proc/none.pka", without_metadata=True)


def test_progress_and_stops(archive, tmp_path):
    told = []
    archive.verify(progress=lambda what, done: told.append((what, done)))
    assert {"a.txt", "d/b.txt"} <= {what for what, _ in told}
    with pytest.raises(mav_platform.Stopped):
        archive.verify(progress=lambda what, done: True)

    def interrupt(what, done):
        raise KeyboardInterrupt(what)

    for work in (lambda: archive.verify(progress=interrupt),
                 lambda: list(mav_platform.validate(archive.path, progress=interrupt)),
                 lambda: mav_platform.pack(tmp_path / "in", tmp_path / "b.pka", without_metadata=True,
                                           progress=interrupt)):
        with pytest.raises(KeyboardInterrupt):
            work()
    assert not (tmp_path / "b.pka").exists() and archive.verify()
