# SPDX-License-Identifier: Apache-2.0
"""What the transcripts call to set their scene:
archive FILE [MEMBER=TEXT...]  makes a zip archive without a digest, or adds to one
edit FILE CODE                 runs CODE on the JSON document m
terminal COLUMNS ARGUMENT...   what mav writes to a terminal"""
import json
import pathlib
import sys
import zipfile

from support import on_terminal


def archive(path, *members):
    with zipfile.ZipFile(path, "a") as out:
        for name, _, content in (member.partition("=") for member in members):
            out.writestr(name, content)


def edit(path, code):
    file = pathlib.Path(path)
    m = json.loads(file.read_text(encoding="utf-8"))
    exec(code, {"m": m})
    file.write_text(json.dumps(m), encoding="utf-8")


def terminal(columns, *arguments):
    print(on_terminal(int(columns), *arguments).replace("\033", "\\e"), end="")


if __name__ == "__main__":
    {"archive": archive, "edit": edit, "terminal": terminal}[sys.argv[1]](*sys.argv[2:])
