# SPDX-License-Identifier: Apache-2.0
"""Manual pages and completions: built from the command's own tables, complete, and understood."""
import pathlib
import re
import unittest

from support import MAV, SAMPLES, SOURCE, CommandTest, run

BUILT = SAMPLES.parent.parent.parent / "help"
SAMPLE = SAMPLES / "veltrin_h90/veltrin_h90.pka"
PATH = f"{pathlib.Path(MAV).parent}:/usr/bin:/bin"
SHELLS = ["bash", "zsh", "fish"]

BASH = """source "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _mav; printf '%s\\n' "${COMPREPLY[@]}"
"""
# A terminal of its own, in which zsh lists what it would insert.
ZSH = """zmodload zsh/zpty; zpty shell zsh -f -i
zpty -w shell "PS1=; TERM=dumb; path=($1 \\$path); autoload -Uz compinit; compinit -D -u; source $2"
zpty -w shell "zstyle ':completion:*' list-prompt ''; zstyle ':completion:*' menu no; setopt no_beep; print READY-\\$((1+1))"
zpty -m -r shell line '*READY-2*'
zpty -w -n shell "$3"$'\\t\\t'
zpty -m -r shell line "*$4*"; print -rn -- "$line"
zpty -d shell
"""


def commands():
    """The commands that the help lists, each with the options that its own help lists."""
    listed = run(MAV, "--help").stdout.decode().split("Options:")[1].split("Exit codes")[0]
    names = re.findall(r"^  (\w+) ", listed, re.MULTILINE)
    helps = {name: run(MAV, name, "--help").stdout.decode() for name in names}
    assert all(f"Usage: mav {name} " in text and "\nExit codes:\n  0  done\n" in text
               for name, text in helps.items())
    return {name: re.findall(r"^  (?:-\w,)?(--[\w-]+)", text, re.MULTILINE)
            for name, text in helps.items()}


class HelpTest(CommandTest):
    def offered(self, *words):
        """What bash offers for the last word."""
        done = run("bash", "-c", BASH, "bash", BUILT / "mav.bash", "mav", *words,
                   env={"PATH": PATH}, cwd=self.dir)
        self.assertEqual(done.stderr, b"")
        return done.stdout.decode().split("\n")[:-1]

    def offered_by_fish(self, line):
        done = run("fish", "--no-config", "-c", f"source {BUILT}/mav.fish; complete -C '{line}'",
                   cwd=self.dir, env={"HOME": str(self.dir), "PATH": PATH})
        self.assertEqual(done.stderr, b"")
        return [entry.split("\t")[0] for entry in done.stdout.decode().splitlines()]

    def test_built_files_are_what_the_command_writes(self):
        (self.dir / "man").mkdir()
        (self.dir / "kept").write_text("kept")
        (self.dir / "man/mav.1").symlink_to(self.dir / "kept")
        self.mav("manual", self.dir / "man")
        self.assertEqual((self.dir / "kept").read_text(), "kept")
        names = sorted(path.name for path in (self.dir / "man").iterdir())
        self.assertEqual(names, sorted(path.name for path in (BUILT / "man1").iterdir()))
        self.assertEqual(names, sorted(["mav.1"] + [f"mav-{name}.1" for name in commands()]))
        for name in names:
            self.assertEqual((self.dir / "man" / name).read_bytes(),
                             (BUILT / "man1" / name).read_bytes(), name)
        for shell in SHELLS:
            self.assertEqual(self.mav("completion", shell)[0], (BUILT / f"mav.{shell}").read_text())

    def test_every_command_and_option_is_everywhere(self):
        found = commands()
        self.assertGreater(len(found), 10)
        self.assertEqual(self.mav("help")[0], self.mav("--help")[0])
        main = (BUILT / "man1/mav.1").read_text()
        for name, options in found.items():
            self.assertIn(f"\\fB{name}\\fR\n", main)
            self.assertIn(name, self.offered(""))
            page = (BUILT / f"man1/mav-{name}.1").read_text().replace("\\-", "-")
            self.assertIn("--help", options)
            self.assertRegex(page, r"EXIT STATUS\n(.*\n)*\.SH EXAMPLES\n\.TP\n\\fB.*mav")
            self.assertEqual(self.mav("help", name)[0], self.mav(name, "--help")[0])
            for option in options:
                self.assertIn(f"\\fB{option}\\fR", page, name)
            self.assertLessEqual(set(options), set(self.offered(name, "--")))
            self.assertLessEqual(set(options), set(self.offered_by_fish(f"mav {name} --")))

    def test_reference_names_every_command_and_option(self):
        reference = (SOURCE / "docs/mav.md").read_text()
        uses = re.findall(r"^mav (\w+)(.*)$", reference.split("```")[1], re.MULTILINE)
        heads = re.split(r"^## ", reference, flags=re.MULTILINE)[1:]
        found = commands()
        self.assertEqual({name for name, _ in uses}, set(found))
        for name, options in found.items():
            with self.subTest(command=name):
                known = set(options) - {"--help"}
                use = " ".join(rest for command, rest in uses if command == name)
                self.assertEqual(set(re.findall(r"--[\w-]+", use)), known)
                texts = [text for text in heads if f"`mav {name}" in text.split("\n")[0]]
                self.assertEqual(len(texts), 1)
                self.assertLessEqual(known, set(re.findall(r"--[\w-]+", texts[0])))
        sections = self.mav("show", SAMPLE, "--section", "none", code=2)[1]
        listed = re.split(", | or ", re.search(r"use ([\w, ]+)", sections)[1])
        self.assertEqual(re.search(r"Sections: ([\w,\s]+)\.", run(MAV, "show", "--help")
                                   .stdout.decode())[1].replace("\n", " ").split(", "), listed)
        for section in listed:
            self.assertIn(f"`{section}`", reference)

    def test_pages_are_well_formed(self):
        for page in sorted((BUILT / "man1").iterdir()):
            done = run("groff", "-man", "-Tutf8", "-P-cbou", "-ww", page)
            self.assertEqual((done.returncode, done.stderr), (0, b""), page.name)
            self.assertIn("SYNOPSIS", done.stdout.decode())

    def test_bash_offers_what_fits_the_place(self):
        (self.dir / "card one.pka").write_text("")
        (self.dir / "folder").mkdir()
        for words, expected in [
                (["verif"], ["verify"]), (["--vers"], ["--version"]),
                (["show", "--color", "a"], ["auto", "always"]),
                (["show", "--color", "=", "ne"], ["never"]),
                (["show", "--section", "cl"], ["clocks"]),
                (["list", "--type", "p"], ["pellux"]), (["list", "--vendor", ""], []),
                (["validate", "--explain", "dig"], ["digest", "digest-key"]),
                (["doc", "HMAVSystemClo"], ["HMAVSystemClock"] + [
                    name for name in self.offered("doc", "HMAVSystemClock.")]),
                (["json", "--metadata", "x"], ["xml"]), (["json", "card"], ["card one.pka"]),
                (["extract", "-o", ""], ["folder"]), (["completion", "z"], ["zsh"]),
                (["add", "a.pka", "DR_"], ["DR_BD"]),
                (["extract", "-o", "folder", "a.pka", "STAGE1"], ["STAGE1_BIT"]),
                (["verify", "a.pka", "c"], [])]:
            self.assertEqual([word for word in self.offered(*words) if word], expected, words)

    def test_keys_of_the_file_are_offered(self):
        both = lambda *words: (self.offered(*words), self.offered_by_fish(f"mav {' '.join(words)}"))
        for start, expected in [
                ("hardwarePlatforms.hardwarePlatform.systemCl", "systemClocks[*].frequency"),
                ("hardwarePlatform.systemCl", "systemClocks[*].frequency"),
                ("hardwarePlatform.systemClocks[12].fr", "systemClocks[12].frequency")]:
            for offered in both("get", str(SAMPLE), start):
                self.assertIn(start[:start.rfind(".") + 1], offered[0])
                self.assertTrue(any(key.endswith(expected) for key in offered), offered)
        for word, expected in [("hw_emu/p", ["hw_emu/pka.json"]), ("bd/dyn", ["bd/dynamic_region.bd"]),
                               ("DR_", ["DR_BD"])]:
            for offered in both("extract", str(SAMPLE), word):
                self.assertEqual(offered, expected)

    def test_fish_offers_what_fits_the_place(self):
        (self.dir / "card.pka").write_text("")
        (self.dir / "folder").mkdir()
        for line, expected in [
                ("mav verif", ["verify"]), ("mav show --color a", ["always", "auto"]),
                ("mav show --section cl", ["clocks"]), ("mav json car", ["card.pka"]),
                ("mav list --type p", ["pellux"]), ("mav list --vendor ", []),
                ("mav doc HMAVSystemClock.freq", ["HMAVSystemClock.frequency"]),
                ("mav extract -o f", ["folder/"]), ("mav add a.pka DR_", ["DR_BD"]),
                ("mav extract -o folder a.pka STAGE1", ["STAGE1_BIT"])]:
            self.assertEqual(self.offered_by_fish(line), expected, line)

    def test_zsh_offers_what_fits_the_place(self):
        for line, expected in [("mav verif", "verify"), ("mav show --color=nev", "never"),
                               ("mav add a.pka DR_", "DR_BD"), ("mav completion fi", "fish"),
                               ("mav list --type=pel", "pellux"),
                               (f"mav extract {SAMPLE} hw_emu/pk", "hw_emu/pka.json"),
                               (f"mav get {SAMPLE} hardwarePlatform.systemClocks\\[12\\].fre",
                                "quency"),
                               ("mav doc HMAVSystemClock.freq", "frequency")]:
            done = run("timeout", "30", "zsh", "-f", "-c", ZSH, "zsh", pathlib.Path(MAV).parent,
                       BUILT / "mav.zsh", line, expected, cwd=self.dir,
                       env={"PATH": "/usr/bin:/bin", "HOME": str(self.dir), "TERM": "dumb"})
            self.assertIn(expected, done.stdout.decode(errors="replace"), done.stderr)


if __name__ == "__main__":
    unittest.main()
