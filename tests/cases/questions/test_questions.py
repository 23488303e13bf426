# SPDX-License-Identifier: Apache-2.0
"""The same questions to the samples, asked through each way into the library: one answer."""
import json
import os
import pathlib
import shlex
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).parent
SAMPLES = pathlib.Path(os.environ["MAV_SAMPLES"])
MAV = os.environ.get("MAV_BIN")
DONE, NOT_FOUND, NOT_LOADABLE = 0, 2, 3

QUESTIONS = json.loads((HERE / "questions.json").read_text(encoding="utf-8"))


def file_of(question):
    return str(SAMPLES / question["file"]) if "file" in question else ""


def ask_driver(*program, questions=QUESTIONS):
    """The codes and answers of a program that speaks as ask.c does."""
    lines = "".join(f"{one['ask']}\t{file_of(one)}\t{one.get('with', '')}\n" for one in questions)
    rest = subprocess.run(program, input=lines.encode(), stdout=subprocess.PIPE, check=True).stdout
    while rest:
        head, rest = rest.split(b"\n", 1)
        code, size = map(int, head.split())
        yield code, json.loads(rest[:size]) if code == DONE else None
        rest = rest[size + 1:]


def mav(*arguments):
    done = subprocess.run([MAV, *arguments], capture_output=True, check=False)
    return done.returncode, done.stdout


def by_mav(question):
    what, file, argument = question["ask"], file_of(question), question.get("with", "")
    if what == "supported":
        code, _ = mav("check", "--tool-release", argument, file)
        return DONE, code == 0
    if what == "errors":
        return DONE, json.loads(mav("validate", "--json", file)[1])["errors"]
    if what in ("digest", "members"):
        answer = json.loads(mav("files", "--json", file)[1])
        return DONE, answer["digest"] if what == "digest" else len(answer["members"])
    commands = {"get": ["get", "--json", file, argument], "dict": ["dict", "--json", file, argument],
                "keys": ["keys", "--json", file], "doc": ["doc", "--json", argument],
                "transform": ["transform", file, argument]}
    code, text = mav(*commands[what])
    if code == 0:
        return DONE, json.loads(text)
    missing = code == 1 or not os.path.exists(file)
    return NOT_FOUND if missing else NOT_LOADABLE, None


class Compare(unittest.TestCase):
    def compare(self, answers):
        answers = list(answers)
        self.assertEqual(len(answers), len(QUESTIONS))
        for question, (code, answer) in zip(QUESTIONS, answers):
            with self.subTest(question=question):
                self.assertEqual(code, question.get("code", DONE))
                self.assertEqual(answer, question.get("answer"))


class Questions(Compare):
    def test_there_are_thirty(self):
        self.assertGreaterEqual(len(QUESTIONS), 30)

    def test_c(self):
        self.compare(ask_driver(os.environ["MAV_ASK_C"]))

    def test_cpp(self):
        self.compare(ask_driver(os.environ["MAV_ASK_CPP"]))

    def test_mav(self):
        self.compare(map(by_mav, QUESTIONS))

    def test_typed_answers_are_the_command_s(self):
        card, board = "veltrin_h90/veltrin_h90.pka", "tessomar_r2/tessomar_r2.qpfm"
        for ask, file, argument, arguments, places in (
                ("list", ".", "", ["list", "--json", "--all"], ()),
                ("files", card, "", ["files", "--json"], ()),
                ("verify", card, "", ["verify", "--json"], ()),
                ("verdict", card, "2026.1", ["check", "--json", "--tool-release", "2026.1"], ("platforms", 0)),
                ("verdict", board, "2099.1", ["check", "--json", "--tool-release", "2099.1"], ("platforms", 0))):
            with self.subTest(ask=ask, file=file):
                question = {"ask": ask, "file": file, "with": argument}
                (code, answer), = ask_driver(os.environ["MAV_ASK_C"], questions=[question])
                told = json.loads(mav(*arguments, file_of(question))[1])
                for place in places:
                    told = told[place]
                self.assertEqual((code, answer), (DONE, told))


class Python(Compare):
    def test_python(self):
        self.compare(ask_driver(sys.executable, "-B", HERE / "ask.py"))


class Java(Compare):
    def test_java(self):
        self.compare(ask_driver(*shlex.split(os.environ["MAV_ASK_JAVA"])))
