# SPDX-License-Identifier: Apache-2.0
"""What the tests of the command share: where things are, and how to run them."""
import fcntl
import json
import os
import pathlib
import pty
import shutil
import struct
import subprocess
import tempfile
import termios
import unittest

from jsonschema import Draft202012Validator

MAV = os.environ["MAV_BIN"]
SOURCE = pathlib.Path(os.environ["MAV_SOURCE_DIR"])
SAMPLES = pathlib.Path(os.path.realpath(os.environ["MAV_SAMPLES"]))

# The platform files of the samples, as a user would name them.
PLATFORMS = ["veltrin_h90/veltrin_h90.pka", "ostrivel_e7/ostrivel_e7.qpfm",
             "tessomar_r2/tessomar_r2.qpfm", "tessomar_r2/partition1/tessomar_r2_p1.dsa"]


OUTPUT_SCHEMAS = SOURCE / "platform/schema/output"


def fixed(schema):
    """The schema with the members that it names alone: later releases may add some, this one does not."""
    if isinstance(schema, list):
        return [fixed(item) for item in schema]
    if not isinstance(schema, dict):
        return schema
    made = {key: fixed(value) for key, value in schema.items()}
    if made.get("type") == "object":
        made["additionalProperties"] = False
    return made


def validate_answer(text):
    """The typed answer of a command, held against its schema and the schema's order of members."""
    answer = json.loads(text)
    name = answer["schema"].removeprefix("mav.").removesuffix("/1")
    schema = json.loads((OUTPUT_SCHEMAS / f"{name}.schema.json").read_text(encoding="utf-8"))
    Draft202012Validator(fixed(schema)).validate(answer)
    named = [key for key in schema["properties"] if key in answer]
    if list(answer) != named:
        raise AssertionError(f"members in another order than the schema's: {list(answer)}")
    return answer


def run(*command, **options):
    """Runs a program to its end; output and errors as bytes."""
    options.setdefault("stdout", subprocess.PIPE)
    return subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, timeout=120, check=False, **options)


def on_terminal(columns, *arguments, **variables):
    """What the command writes to a terminal of that width."""
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 50, columns, 0, 0))
    environment = {key: value for key, value in os.environ.items() if key != "NO_COLOR"}
    environment.update(TERM="xterm", **variables)
    with subprocess.Popen([MAV, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=slave,
                          stderr=subprocess.DEVNULL, env=environment) as process:
        os.close(slave)
        text = b""
        while True:
            try:
                piece = os.read(master, 65536)
            except OSError:
                break
            if not piece:
                break
            text += piece
    os.close(master)
    return text.decode().replace("\r\n", "\n")


def copied_card(test, edit, name="b.pka"):
    """The card, packed again in the test's directory after an edit of its metadata."""
    folder = test.dir / "folder"
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(SOURCE / "samples/veltrin_h90/archive", folder)
    metadata = json.loads((folder / "pka.json").read_text(encoding="utf-8"))
    edit(metadata)
    (folder / "pka.json").write_text(json.dumps(metadata), encoding="utf-8")
    test.mav("pack", folder, test.dir / name)
    return test.dir / name


class CommandTest(unittest.TestCase):
    """A test with a scratch directory and assertions about one call of the command."""

    def setUp(self):
        self.dir = pathlib.Path(os.path.realpath(tempfile.mkdtemp(prefix="mav-cli-")))
        self.addCleanup(shutil.rmtree, self.dir)

    def mav(self, *arguments, code=0, **options):
        """Runs the command and checks its exit code; answers (output, errors) as text."""
        done = run(MAV, *arguments, **options)
        errors = done.stderr.decode()
        self.assertEqual(done.returncode, code, f"mav {arguments}: {errors}")
        return (done.stdout or b"").decode(), errors
