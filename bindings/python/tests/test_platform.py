# SPDX-License-Identifier: Apache-2.0
"""Platforms: views against the document, questions, failures, reports."""
import gc
import html.parser
import json
import logging
import pickle

import mav_platform
import pytest
from conftest import BOARD, CARD, PARTITIONS, SAMPLES
from mav_platform import views


def test_views_read_what_the_document_says():
    """A row is a view's attribute, its value, and what the document has there."""
    hardware = mav_platform.load(CARD).hardware
    rows = [
        (hardware.clocks[0].frequency_mhz, 300.0, "systemClocks[0].frequency", "300.000"),
        (hardware.clocks[0].period_ns, 3.333333, "systemClocks[0].period", "3.333333"),
        (hardware.clocks[0].default, True, "systemClocks[0].default", "true"),
        (hardware.clocks[1].default, False, "systemClocks[1].default", "false"),
        (hardware.memories[0].high_address, 268435455, "memories[0].highAddress", "268435455"),
        (hardware.version_major, 3, "versionMajor", "3"),
        (hardware.runs_on_hardware, True, "hardware", "true"),
        (hardware.board.pcie.vendor, "0xf1e9", "board.pcie.vendor", "0xf1e9"),
        (hardware.max_interrupts, None, "maxInterrupts", None),
        (hardware.devices[0].core.valid_slrs, ("SLR0", "SLR1", "SLR2"),
         "devices[0].core.validSlrs", ["SLR0", "SLR1", "SLR2"]),
        (hardware.dpe_hardware.arch, views.DpeArchitecture.NO_DPE, "dpeHardware.arch", "NO_DPE"),
    ]
    platform = mav_platform.load(CARD)
    for got, wanted, path, said in rows:
        assert (got, type(got)) == (wanted, type(wanted)), path
        assert platform.get("hardwarePlatform." + path, default=None) == said
    rom = mav_platform.load(PARTITIONS).hardware_platforms.reconfigurable_partitions[0].hardware_platform.feature_roms[0]
    assert rom.dr_base_address == int(rom.to_dict()["drBaseAddress"], 16)
    assert rom.feature_bit_map["bit00"] is views.FeatureBit.ENABLED


@pytest.mark.parametrize("text, whole, decimal", [
    ("12", 12, 12.0), ("0x1F", 31, None), ("-3", -3, -3.0), (".5", None, 0.5), ("007", 7, 7.0),
    ("1_0", None, None), ("nan", None, None), ("\u0663", None, None), ("9" * 5000, None, None)])
def test_texts_that_may_be_numbers(text, whole, decimal):
    assert views.Port({"dataWidth": text}).data_width == whole
    assert views.Port({"frequency": text}).frequency_mhz == decimal


def every_view(view):
    """The view and all below it, every property read on the way."""
    yield view
    for name, _ in view._keys:
        value = getattr(view, name)
        below = value if isinstance(value, mav_platform.Views) else [value]
        for one in below:
            if isinstance(one, mav_platform.View):
                yield from every_view(one)


@pytest.mark.parametrize("path", [*SAMPLES.rglob("*.qpfm"), *SAMPLES.rglob("*.pka"), *SAMPLES.rglob("*.spfm")],
                         ids=lambda path: path.name)
def test_all_of_a_sample_can_be_viewed(path):
    platform = mav_platform.load(path)
    seen = list(every_view(platform))
    assert len(seen) > 3
    for view in seen:
        assert len(repr(view)) < 300
        html.parser.HTMLParser().feed(view._repr_html_())
    assert platform.to_dict() == platform.document() == json.loads(json.dumps(platform.document()))


def test_views_are_read_only_values():
    platform = mav_platform.load(CARD)
    clocks = platform.hardware.clocks
    with pytest.raises(AttributeError):
        clocks[0].name = "other"
    assert clocks == platform.hardware.clocks and clocks[0] != clocks[1]
    assert {clocks[0], platform.hardware.clocks[0]} == {clocks[0]}
    assert [one.name for one in clocks[1:3]] == ["kernel2_clk", "pcie_ref_clk"]
    clocks[0].to_dict()["name"] = "other"
    assert clocks[0].name == "kernel_clk" and repr(clocks) == "<4 of SystemClock>"
    platform.close()
    assert clocks[0].id == 0


@pytest.mark.parametrize("ask, wanted", [
    (lambda one: one.get("hardwarePlatform.nowhere"), mav_platform.NotFound),
    (lambda one: one.flat("nowhere"), mav_platform.NotFound),
    (lambda one: one.transform("{"), mav_platform.WrongArgument),
    (lambda one: one.get("a\0b"), ValueError),
    (lambda one: one.software, LookupError),
    (lambda one: mav_platform.load("none.qpfm"), mav_platform.NotFound),
    (lambda one: mav_platform.doc("HMAVNone"), mav_platform.NotFound),
    (lambda one: mav_platform.find("nowhere"), mav_platform.NotFound),
    (lambda one: mav_platform.load(3), TypeError)])
def test_failures(ask, wanted):
    with pytest.raises(wanted) as failure:
        ask(mav_platform.load(CARD))
    if wanted in (mav_platform.NotFound, mav_platform.WrongArgument):
        assert failure.value.hint and "hmav_" not in failure.value.hint
        assert failure.value.code.name.lower() == {
            mav_platform.NotFound: "not_found", mav_platform.WrongArgument: "wrong_argument"}[wanted]


def test_what_does_not_load_tells_why(broken, caplog):
    with caplog.at_level(logging.DEBUG), pytest.raises(mav_platform.NotLoadable) as failure:
        mav_platform.load(broken)
    grave = [one for one in failure.value.reports if one.severity is mav_platform.Severity.ERROR]
    assert grave and str(broken) in str(failure.value)
    assert [one.report for one in caplog.records] == list(failure.value.reports)
    assert any(one.levelno == logging.ERROR for one in caplog.records)
    again = pickle.loads(pickle.dumps(failure.value))
    assert (type(again), str(again), again.hint, again.reports) == (
        mav_platform.NotLoadable, str(failure.value), failure.value.hint, failure.value.reports)


def test_closing_in_any_order():
    with mav_platform.load(BOARD) as platform:
        assert platform.path == BOARD and bool(platform.support(tool_release="2026.1"))
    for ask in (platform.document, platform.keys, platform.summary, lambda: platform.get("name")):
        with pytest.raises(ValueError, match="closed"):
            ask()
    platform.close()
    assert repr(platform).endswith(", closed>")
    del platform
    gc.collect()


def test_find_validate_and_diff(broken):
    found = mav_platform.find([SAMPLES, broken.parent])
    assert {"ostrivel_e7", "tessomar_r2"} <= {one.name for one in found}
    assert [one.file for one in found.refused] == [broken] and found.refused[0].reason
    findings = list(mav_platform.validate([BOARD, broken]))
    assert {one.file for one in findings} == {str(broken)}
    assert findings[0].severity is mav_platform.Severity.ERROR and str(findings[0]).startswith(f"{broken}:1:")
    with mav_platform.load(BOARD) as first, mav_platform.load(CARD) as second:
        difference = mav_platform.diff(first, second)
    assert difference and {one.kind for one in difference} == set(mav_platform.ChangeKind)


def test_summary_and_html():
    platform = mav_platform.load(CARD)
    plain, more = platform.summary(), platform.summary(support=True)
    assert plain["partArchitecture"] == "xqh" and "warrantyReason" in more.keys() - plain.keys()
    assert "<td>kernel2_clk</td>" in platform.hardware.clocks._repr_html_()
    assert views.Driver({"name": "<b>&"})._repr_html_().count("&lt;b&gt;&amp;") == 1
