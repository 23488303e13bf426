# SPDX-License-Identifier: Apache-2.0
"""The examples in docstrings and in docs/python.md do what they say."""
import doctest
import importlib

import pytest

import mav_platform
from conftest import SAMPLES, SOURCE


@pytest.mark.parametrize("module", ["", "._platform", "._archive", "._queries"])
def test_docstrings(module):
    done = doctest.testmod(importlib.import_module("mav_platform" + module),
                           extraglobs={"samples": SAMPLES})
    assert done.attempted > 0 and done.failed == 0


def test_page(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    done = doctest.testfile(str(SOURCE / "docs/python.md"), module_relative=False,
                            globs={"samples": SAMPLES, "mav_platform": mav_platform})
    assert done.attempted > 10 and done.failed == 0
