# SPDX-License-Identifier: Apache-2.0
"""The schemas, and the files that they describe: in the sources, in the packed samples, on the
format pages. Whatever finds nothing fails."""
import dataclasses
import io
import json
import os
import pathlib
import re
import subprocess
import zipfile

from jsonschema import Draft202012Validator

SOURCE = pathlib.Path(os.environ["MAV_SOURCE_DIR"])
SAMPLES = pathlib.Path(os.environ["MAV_SAMPLES"])
MAV = os.environ["MAV_BIN"]
TOOL = os.environ["MAV_TOOL"]
SCHEMAS = SOURCE / "platform/schema"
GOLDEN = SOURCE / "tests/cases/golden"
PAGES = SOURCE / "docs/formats"

# Which schema describes a file, by the file's name.
NAMES = {
    "platform-description.xsd": r".*\.qpfm",
    "software-platform.xsd": r".*\.spfm",
    "hpfm.xsd": r".*\.hpfm",
    "emulation.xsd": r"hw_emu\.xml",
    "metadata.schema.json": r"(alt_)?(pka|dsa)\.json",
    "emulation.schema.json": r"hw_emu\.json",
    "extension-metadata.schema.json": r"ext_metadata\.json",
    "dpe-partitions.schema.json": r"dpe_partition\.json",
    "vma.schema.json": r"vma\.json",
    "mavcheck.schema.json": r"\.mavcheck",
}
# Which schema describes each example of a format page, in order; the last one goes on.
PAGE_SCHEMAS = {
    "qpfm.md": ["platform-description.xsd"],
    "spfm.md": ["software-platform.xsd"],
    "hpfm.md": ["hpfm.xsd"],
    "emulation.md": ["emulation.schema.json", "emulation.xsd", "extension-metadata.schema.json"],
    "metadata.md": ["metadata.schema.json"],
    "document.md": ["document.schema.json"],
    "dpe_partitions.md": ["dpe-partitions.schema.json"],
    "vma.md": ["vma.schema.json"],
    "mavcheck.md": ["mavcheck.schema.json"],
}
NESTED = (".zip", ".pka", ".dsa")


@dataclasses.dataclass
class Text:
    """One file's text and where it comes from."""
    origin: str
    schema: str
    text: str


def described_by(name):
    for schema, pattern in NAMES.items():
        if re.fullmatch(pattern, name):
            return schema
    return None


def members(data, origin):
    """The texts in an archive and in the archives in it."""
    with zipfile.ZipFile(io.BytesIO(data)) as archive:
        for member in archive.namelist():
            place = f"{origin}!{member}"
            schema = described_by(member.rpartition("/")[2])
            if schema:
                yield Text(place, schema, archive.read(member).decode("utf-8"))
            elif member.endswith(NESTED):
                inner = archive.read(member)
                if zipfile.is_zipfile(io.BytesIO(inner)):
                    yield from members(inner, place)


def packed_samples():
    for path in sorted(SAMPLES.rglob("*")):
        place = str(path.relative_to(SAMPLES))
        if path.suffix in NESTED:
            yield from members(path.read_bytes(), place)
        elif path.is_file() and described_by(path.name):
            yield Text(place, described_by(path.name), path.read_text(encoding="utf-8"))


def page_examples():
    for page in sorted(PAGES.glob("*.md")):
        blocks = re.findall(r"^```(?:xml|json)\n(.*?)^```$", page.read_text(encoding="utf-8"),
                            re.MULTILINE | re.DOTALL)
        schemas = PAGE_SCHEMAS[page.name]
        for index, text in enumerate(blocks):
            yield Text(f"{page.name}[{index}]", schemas[min(index, len(schemas) - 1)], text)


def golden_documents():
    for path in sorted(GOLDEN.glob("*.json")):
        if not path.name.endswith(".short.json"):
            yield Text(path.name, "document.schema.json", path.read_text(encoding="utf-8"))


def load(schema):
    return json.loads((SCHEMAS / schema).read_text(encoding="utf-8"))


def faults(schema, text):
    """What a schema says against a text; nothing when it fits."""
    if schema.endswith(".json"):
        validator = Draft202012Validator(load(schema))
        return [f"{'/'.join(map(str, error.absolute_path))}: {error.message}"
                for error in validator.iter_errors(json.loads(text))]
    done = subprocess.run(
        ["xmllint", "--nonet", "--noout", "--schema", str(SCHEMAS / schema), "-"],
        input=text.encode(), capture_output=True, timeout=60, check=False)
    lines = done.stderr.decode().splitlines()
    if done.returncode == 0:
        return []
    # 3 and 4 are verdicts about the text; all else is a fault of the schema or of the tool.
    if done.returncode not in (1, 3, 4):
        raise RuntimeError("\n".join(lines))
    return lines[:-1]
