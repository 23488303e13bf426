# SPDX-License-Identifier: Apache-2.0
"""What the tests share. MAV_SAMPLES names the packed samples, MAV_SOURCE_DIR the tree."""
import os
import pathlib

import pytest

SAMPLES = pathlib.Path(os.environ["MAV_SAMPLES"])
SOURCE = pathlib.Path(os.environ["MAV_SOURCE_DIR"])
CARD = SAMPLES / "veltrin_h90/veltrin_h90.pka"
BOARD = SAMPLES / "ostrivel_e7/ostrivel_e7.qpfm"
PARTITIONS = SAMPLES / "tessomar_r2/tessomar_r2.qpfm"


@pytest.fixture
def broken(tmp_path):
    """A platform file that is there and is none."""
    path = tmp_path / "broken.qpfm"
    path.write_text("<mav:platform")
    return path
