# SPDX-License-Identifier: Apache-2.0
"""The README's transcript and programs, run as they stand; its links lead somewhere."""
import os
import pathlib
import re
import unittest

from support import MAV, SAMPLES, SOURCE, CommandTest, run

README = (SOURCE / "README.md").read_text()
LIBRARY = pathlib.Path(os.environ["MAV_LIBRARY"])
SANITIZER = os.environ.get("MAV_ASAN_RUNTIME", "")
SAMPLE = SAMPLES / "veltrin_h90/veltrin_h90.pka"


def block(language):
    """The one example in the language."""
    found = re.findall(rf"^```{language}\n(.*?)^```$", README, re.MULTILINE | re.DOTALL)
    assert len(found) == 1, f"README.md has {len(found)} examples in {language}"
    return found[0]


class ReadmeTest(CommandTest):
    def test_transcript(self):
        pieces = re.split(r"^\$ (.*)\n", block("console"), flags=re.MULTILINE)
        self.assertEqual(pieces[0], "")
        calls = list(zip(pieces[1::2], pieces[2::2]))
        self.assertGreater(len(calls), 5)
        self.assertEqual(calls.pop(0), ("cd build/release/share/mav/samples", ""))
        # One shell runs it all, so that `$?` is that of the call before.
        script = "".join(f"{call}\ncode=$?; echo '<END>'; (exit $code)\n" for call, _ in calls)
        path = f"{pathlib.Path(MAV).parent}:{os.environ['PATH']}"
        done = run("bash", "-c", f"exec 2>&1\n{script}", cwd=SAMPLES,
                   env={**os.environ, "PATH": path})
        answers = done.stdout.decode().split("<END>\n")[:-1]
        self.assertEqual(list(zip((call for call, _ in calls), answers)), calls)

    def build(self, language, *compiler):
        source, binary = self.dir / f"client.{language}", self.dir / f"client_{language}"
        source.write_text(block(language))
        includes = [f"-I{SOURCE}/{room}/include" for room in ("platform", "host")]
        sanitizers = ["-fsanitize=address,undefined"] if SANITIZER else []
        done = run(*compiler, "-Wall", "-Wextra", *sanitizers, *includes, source, "-o", binary, LIBRARY,
                   f"-Wl,-rpath,{LIBRARY.parent}")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return binary

    def test_cpp(self):
        client = self.build("cpp", "g++", "-std=c++20")
        done = run(client, SAMPLE)
        self.assertEqual((done.returncode, done.stdout), (0, b"veltrin_h90\n"), done.stderr)
        self.assertEqual(run(client, self.dir / "none.pka").returncode, 1)

    def test_c(self):
        client = self.build("c", "gcc", "-std=c11")
        self.assertEqual(run(client, SAMPLE).stdout.decode(), self.mav("json", SAMPLE)[0] + "\n")
        missing = run(client, self.dir / "none.pka")
        self.assertEqual((missing.returncode, b"none.pka" in missing.stdout), (1, True))
        self.assertEqual(run(client).returncode, 2)

    def test_python(self):
        script = self.dir / "client.py"
        script.write_text(block("python"))
        env = {**os.environ, "PYTHONPATH": os.environ["MAV_PYTHON_PATH"], "LD_PRELOAD": SANITIZER,
               "ASAN_OPTIONS": "detect_leaks=0"}
        done = run("/usr/bin/python3", script, SAMPLE, env=env)
        self.assertEqual(done.stdout, b"xqh90-bga2612-2L-e\n", done.stderr)
        missing = run("/usr/bin/python3", script, self.dir / "none.pka", env=env)
        self.assertEqual((missing.returncode, missing.stdout), (1, b""))
        self.assertRegex(missing.stderr, rb"^Nothing is at '.*none\.pka'\. .*\.\n$")

    def test_links_and_commands(self):
        links = re.findall(r"\]\(([^)#]+)", README)
        self.assertGreater(len(links), 10)
        self.assertEqual([link for link in links if not (SOURCE / link).exists()], [])
        help_text = run(SOURCE / "dev", "help").stdout.decode()
        for command in re.findall(r"\./dev (\w+)", README):
            if command != "help":
                self.assertRegex(help_text, rf"(?m)^  {command} ")
        for name in re.findall(r"\(`(lib[\w-]+|mav)`\)", README):
            packing = (SOURCE / "cmake/Package.cmake").read_text()
            self.assertIn(name.rstrip("1"), packing)


if __name__ == "__main__":
    unittest.main()
