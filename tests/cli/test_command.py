# SPDX-License-Identifier: Apache-2.0
"""The command line itself: help, exit codes, suggestions, and the fate of standard output."""
import json
import os
import signal
import subprocess
import unittest
import zipfile

from support import MAV, SAMPLES, CommandTest, run

SAMPLE = SAMPLES / "veltrin_h90/veltrin_h90.pka"


class Help(CommandTest):
    def test_help_goes_to_standard_output(self):
        for arguments, texts in [(["--help"], ["json", "pack", "Exit codes", "--version"]),
                                 (["json", "--help"], ["FILE", "--short", "--metadata"]),
                                 (["pack", "--help"], ["DIR", "ARCHIVE", "--force"])]:
            output, errors = self.mav(*arguments)
            self.assertEqual(errors, "")
            for text in texts:
                self.assertIn(text, output)

    def test_version(self):
        self.assertEqual(self.mav("--version"), (f"mav {os.environ['MAV_VERSION']}\n", ""))


class WrongUse(CommandTest):
    def test_mistyped_words_suggest_the_nearest(self):
        for arguments, typed, meant in [(["jsno", SAMPLE], "jsno", "json"),
                                        (["pakc", "a", "b.pka"], "pakc", "pack"),
                                        (["--vresion"], "--vresion", "--version"),
                                        (["JSON", SAMPLE], "JSON", "json"),
                                        (["help"], "help", "--help"),
                                        (["json", SAMPLE, "--shrt"], "--shrt", "--short"),
                                        (["json", "--metdata=xml", SAMPLE], "--metdata", "--metadata"),
                                        (["json", SAMPLE, "--metadata", "jsn"], "jsn", "json"),
                                        (["pack", "a", "b.pka", "--froce"], "--froce", "--force")]:
            with self.subTest(arguments=arguments):
                self.refused(*arguments, code=2,
                             says=[f"'{typed}'", f"Did you mean '{meant}'?", "--help'."])

    def test_words_far_from_all_suggest_nothing(self):
        for arguments in (["frobnicate"], ["json", SAMPLE, "-x"], ["json", SAMPLE, "--colour"]):
            self.assertNotIn("Did you mean", self.refused(*arguments, code=2, says=["unknown"]))

    def test_missing_and_superfluous_arguments(self):
        for arguments, says in [([], "a command is missing"), (["json"], "FILE is required"),
                                (["json", ""], "FILE is empty"),
                                (["json", SAMPLE, "b"], "unexpected argument 'b'"),
                                (["json", SAMPLE, "--metadata"], "--metadata"),
                                (["pack", "a"], "ARCHIVE is required"),
                                (["pack", "", ""], "must not be empty")]:
            with self.subTest(arguments=arguments):
                self.refused(*arguments, code=2, says=[says, "Try 'mav "])

    def test_control_characters_stay_on_one_line(self):
        errors = self.refused("js\x1b[2J\non", code=2, says=["js\\x1b[2J\\x0aon"])
        self.assertEqual(errors.count("\n"), 1)


class StandardOutput(CommandTest):
    def closed_pipe(self, **options):
        reader, writer = os.pipe()
        os.close(reader)
        done = run(MAV, "json", SAMPLE, stdout=writer, **options)
        os.close(writer)
        return done

    def test_a_closed_pipe_is_silent(self):
        done = self.closed_pipe()
        self.assertEqual((done.returncode, done.stderr), (-signal.SIGPIPE, b""))

    def test_a_closed_pipe_is_silent_where_the_signal_is_ignored(self):
        done = self.closed_pipe(restore_signals=False)
        self.assertEqual((done.returncode, done.stderr), (128 + signal.SIGPIPE, b""))

    def test_a_reader_that_leaves_early_ends_long_answers_without_a_word(self):
        archive = self.dir / "long.pka"
        long = {f"key{i}": "x" * 500 for i in range(4000)}
        with zipfile.ZipFile(archive, "w") as out:
            out.writestr("pka.json", json.dumps({
                "vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1",
                "versionMinor": "0", "extensions": long}))
        path = "hardwarePlatform.extensions"
        for arguments in (["json", archive], ["dict", archive, path], ["keys", archive],
                          ["dict", archive, path, "--json"], ["get", archive, path],
                          ["transform", archive, f'{{"a": "{path}"}}'], ["doc"]):
            with self.subTest(arguments=arguments):
                whole = self.mav(*arguments)[0]
                self.assertGreater(len(whole), 100_000 if arguments != ["doc"] else 20_000)
                command = [MAV, *map(str, arguments)]
                with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                      pipesize=4096) as process:
                    self.assertEqual(process.stdout.readline().decode(), whole.split("\n")[0] + "\n")
                    process.stdout.close()
                    self.assertEqual(process.stderr.read(), b"")
                self.assertEqual(process.returncode, -signal.SIGPIPE)

    def test_a_full_device_is_an_error(self):
        for arguments in (["json", SAMPLE], ["--help"], ["--version"]):
            with open("/dev/full", "wb") as full:
                errors = self.mav(*arguments, code=3, stdout=full)[1]
            self.assertIn("standard output: No space left on device", errors)

    def test_a_closed_standard_output_is_an_error(self):
        done = run("/bin/sh", "-c", 'exec "$0" json "$1" >&-', MAV, SAMPLE)
        self.assertEqual(done.returncode, 3)
        self.assertIn(b"standard output: Bad file descriptor", done.stderr)

    def test_a_reader_that_is_slow_to_come_gets_everything(self):
        reader, writer = os.pipe()
        os.set_blocking(writer, False)
        with subprocess.Popen([MAV, "json", SAMPLE], stdout=writer) as process:
            os.close(writer)
            with os.fdopen(reader, "rb") as stream:
                text = stream.read()
        self.assertEqual(process.returncode, 0)
        self.assertEqual(text, run(MAV, "json", SAMPLE).stdout)


if __name__ == "__main__":
    unittest.main()
