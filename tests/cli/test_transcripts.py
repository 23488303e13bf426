# SPDX-License-Identifier: Apache-2.0
"""Transcripts of the command, followed line by line: all that each call prints and answers.

In transcripts/*.txt stand "$ " before a call of the shell, "> " before its further lines, then what it
prints, "! " before each line of standard error, "[N]" for an exit code that is not 0. Each file has
a directory of its own, which holds `samples`. With MAV_UPDATE_GOLDEN=1 they are written anew."""
import os
import pathlib
import re
import sys
import tempfile

from support import MAV, SAMPLES, SOURCE, CommandTest, run, validate_answer

FOLDER = SOURCE / "tests/cli/transcripts"
SCENE = "".join(f'{name}() {{ "$PYTHON" -B "$SCENE" {name} "$@"; }}\n'
                for name in ("archive", "edit", "terminal"))


class Transcripts(CommandTest):
    maxDiff = None

    def answers(self, calls, folder):
        """What each call prints, all of them in one shell."""
        script = SCENE + "".join(f"{{ {call}\n}} >{folder}/{i}.out 2>{folder}/{i}.err; echo $? >{folder}/{i}\n"
                                 for i, call in enumerate(calls))
        environment = {key: value for key, value in os.environ.items() if key not in ("MAV_KEY_FILE", "MAV_APP_ROOT", "NO_COLOR")}
        environment.update(
            PATH=f"{pathlib.Path(MAV).parent}:{os.environ['PATH']}", PYTHON=sys.executable,
            SCENE=str(SOURCE / "tests/cli/scene.py"), MAV_TOOL_RELEASE="2026.1", LC_ALL="C.UTF-8",
            CARD="samples/veltrin_h90/veltrin_h90.pka",
            ID='"vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1", "versionMinor": "0"')
        run("bash", "-c", script, cwd=self.dir, env=environment)
        for i in range(len(calls)):
            out, err, code = ((folder / f"{i}{end}").read_bytes().decode(errors="backslashreplace")
                              for end in (".out", ".err", ""))
            if out.startswith('{\n    "schema": "mav.') and out.endswith("\n}\n"):
                validate_answer(out)
            out += "" if out.endswith("\n") or not out else "\n\\ no end of line\n"
            text = out + re.sub("^", "! ", err, flags=re.M).removesuffix("! ") + f"[{code.strip()}]\n"
            text = text.removesuffix("[0]\n")
            for path, name in ((str(SAMPLES), "@SAMPLES@"), (str(self.dir), "@HERE@")):
                text = text.replace(path, name).replace(path.replace("/", "\\/"), name)
            yield text

    def follow(self, path):
        calls = re.findall(r"^((?:#.*\n)*)\$ (.*\n(?:> .*\n)*)", path.read_text(encoding="utf-8"), re.M)
        (self.dir / "samples").symlink_to(SAMPLES)
        with tempfile.TemporaryDirectory() as folder:
            answers = list(self.answers([call.replace("\n> ", "\n") for _, call in calls], pathlib.Path(folder)))
        followed = "".join(f"{note}$ {call}{answer}" for (note, call), answer in zip(calls, answers))
        if os.environ.get("MAV_UPDATE_GOLDEN") == "1":
            path.write_text(followed, encoding="utf-8")
        self.assertEqual(path.read_text(encoding="utf-8"), followed)


for file in sorted(FOLDER.glob("*.txt")):
    setattr(Transcripts, f"test_{file.stem}", lambda self, file=file: self.follow(file))
