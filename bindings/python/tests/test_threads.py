# SPDX-License-Identifier: Apache-2.0
"""Eight threads at once get the answers that one gets, over equal and different objects."""
from concurrent.futures import ThreadPoolExecutor

import mav_platform
import pytest
from conftest import BOARD, CARD, PARTITIONS

SHARED = mav_platform.load(CARD)
ARCHIVE = mav_platform.Archive(CARD)


def answers(folder, number):
    path = (CARD, BOARD, PARTITIONS)[number % 3]
    with mav_platform.load(path) as own:
        given = [own.document(), own.keys(), own.summary(support=True), repr(own)]
    given += [SHARED.get("hardwarePlatform.systemClocks"), SHARED.hardware.clocks[0].frequency_mhz,
              SHARED.flat("hardwarePlatform.board"), bool(SHARED.support(tool_release="2026.1")),
              ARCHIVE.read("pka.json"), len(mav_platform.diff(SHARED, BOARD)),
              list(mav_platform.validate(path)), mav_platform.doc("HMAVPlatform.name")]
    name = ARCHIVE.extract("pka.json", folder / str(number)).name
    for wrong in ("none.qpfm", folder.root):
        with pytest.raises(mav_platform.PlatformError) as failure:
            mav_platform.load(wrong)
        given.append((type(failure.value), failure.value.reports))
    return [*given, name]


def test_eight_threads(tmp_path):
    alone = [answers(tmp_path / "alone", number) for number in range(3)]
    with ThreadPoolExecutor(8) as pool:
        together = list(pool.map(lambda number: answers(tmp_path / "all", number), range(24)))
    assert together == [alone[number % 3] for number in range(24)]
