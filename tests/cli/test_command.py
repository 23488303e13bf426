# SPDX-License-Identifier: Apache-2.0
"""The fate of standard output: pipes that close, readers that are slow, terminals."""
import json
import os
import signal
import subprocess
import unittest
import zipfile

from support import MAV, SAMPLES, CommandTest, on_terminal, run

SAMPLE = SAMPLES / "veltrin_h90/veltrin_h90.pka"


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

    def test_terminals_get_nothing_raw_from_files(self):
        archive, path = self.dir / "n\u202e.pka", "hardwarePlatform.extensions.k"
        with zipfile.ZipFile(archive, "w") as out:
            out.writestr("pka.json", json.dumps({
                "vendor": "v", "boardId": "b", "name": "n", "versionMajor": "1",
                "versionMinor": "0", "extensions": {"k": "a\x1b]0;t\x07\x9b\u2066\u2028\u00e9"}}))
            out.writestr("m\u0085\u200f", "")
        for arguments, shown in [(["get", archive, path], "a\\x1B]0;t\\x07\\u009B\\u2066\\u2028\u00e9\n"),
                                 (["get", "--json", archive, path], "a\\u001B]0;t\\u0007\\u009B\\u2066"),
                                 (["json", archive], "\\u009B\\u2066\\u2028"),
                                 (["files", archive], "m\\u0085\\u200F"),
                                 (["list", self.dir], "/n\\u202E.pka")]:
            with self.subTest(arguments=arguments):
                text = on_terminal(200, *arguments)
                self.assertIn(shown, text)
                self.assertNotRegex(text, "[\x00-\x09\x0b-\x1f\x7f-\x9f\u200f\u2028-\u202e\u2066]")
        self.assertIn("\x9b\u2066\u2028", self.mav("json", archive)[0], "elsewhere as it stands")

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
