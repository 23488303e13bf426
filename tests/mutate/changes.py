# SPDX-License-Identifier: Apache-2.0
"""The changes that can be made in sources, one place each: entries swapped, comparisons turned,
constants and texts changed, statements dropped."""
import random
import re

# What is no code to change: comments, directives, raw texts, checks and aliases of the compiler.
MASKED = re.compile(
    r'(?P<text>"(?:[^"\\\n]|\\.)*")|//[^\n]*|/\*.*?\*/|R"(?P<end>\w*)\(.*?\)(?P=end)"'
    r"|^[ \t]*#(?:[^\n]*\\\n)*[^\n]*|'(?:[^'\\\n]|\\.)+'|\bstatic_assert\b.*?;|\busing\b[^;]*;",
    re.S | re.M)
# The statement of a text that helps people, and that no test should repeat.
HELP = re.compile(r"add_(?:option|flag|subcommand)|_NOTES|footer|description|[Ee]xample|[Nn]otes")
TOKEN = re.compile(r'"(?:[^"\\]|\\.)*"|\w+|[^\s\w]')
TURNED = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", "<": "<=", ">": ">=", "&&": "||",
          "||": "&&", "true": "false", "false": "true"}
COMPARISON = re.compile(r" (==|!=|<=|>=|<|>|&&|\|\|) |(?<=[( ])!(?=[\w(])")
CONSTANT = re.compile(r"\b(?:true|false)\b|(?<![\w.'])\d+(?=[UL]*\b(?!['.]))")
STATEMENT = re.compile(
    r"^\s*(?!return|throw|break|continue|delete|goto|case|default|namespace)"
    r"(?:if \(.*\) .*|(?:\+\+|--|\*)?[\w.:\->\[\]()*]+(?:(?: [-+|&*/]?= |\().*|\+\+|--)?);$")


class Change:
    def __init__(self, file, source, start, end, new):
        self.file, self.source, self.start, self.end, self.new = file, source, start, end, new
        self.line = source.count("\n", 0, start) + 1

    def changed(self):
        return self.source[:self.start] + self.new + self.source[self.end:]

    def __str__(self):
        lines = slice(self.line - 1, self.line + self.source.count("\n", self.start, self.end))
        old, new = (" / ".join(line.strip() for line in text.split("\n")[lines])
                    for text in (self.source, self.changed()))
        return f"{self.file}:{self.line}\n    - {old}\n    + {new}"


def masked(source):
    """The code with blanks for what is not to be changed and for what texts hold; where texts begin."""
    texts = []

    def blank(match):
        if match.group("text"):
            texts.append(match.start())
            return '"' + "_" * (len(match.group()) - 2) + '"'
        return re.sub(r"[^\n]", " ", match.group())

    return MASKED.sub(blank, source), texts


def helps(code, start):
    begin = max(code.rfind(mark, 0, start) for mark in ";}") + 1
    return HELP.search(code, begin, code.find(";", start))


def shape(line):
    return ["a" if re.match(r"[^\W\d]", token) else "0" if token[0].isdigit() else token[0]
            for token in TOKEN.findall(line)]


def swaps(source, code):
    """Two neighbouring lines of one shape trade the first token in which they differ."""
    starts = [0] + [match.end() for match in re.finditer("\n", source)]
    for first, second, end in zip(starts, starts[1:], starts[2:]):
        one, two = source[first:second - 1], source[second:end - 1]
        plain = code[first:second - 1].strip()
        if not re.search(r'["({].*[,;]$', plain) or "//" in one + two or shape(one) != shape(two):
            continue
        pairs = [(a, b) for a, b in zip(TOKEN.finditer(one), TOKEN.finditer(two))
                 if a.group() != b.group()]
        if pairs:
            a, b = pairs[0]
            yield (first, end - 1, one[:a.start()] + b.group() + one[a.end():] + "\n" +
                   two[:b.start()] + a.group() + two[b.end():])


def drops(code):
    """Statements that fill one line; what stands in two belongs together."""
    end_before = ";"
    for match in re.finditer(r"[^\n]+", code):
        line = match.group().rstrip()
        after = code[match.end():match.end() + 200].lstrip()
        if end_before in ";{}:" and STATEMENT.match(line) and not after.startswith("else"):
            start = match.start() + len(line) - len(line.lstrip())
            yield start, match.start() + len(line), ";"
        if line.strip():
            end_before = line[-1]


def changes_of(tree, file):
    """{kind: [Change]}"""
    source = (tree / file).read_text()
    code, texts = masked(source)
    found = {
        "swap": swaps(source, code),
        "drop": drops(code),
        "turn": [(*m.span(1), TURNED[m.group(1)]) if m.group(1) else (*m.span(), "")
                 for m in COMPARISON.finditer(code)],
        "constant": [(*m.span(), TURNED.get(m.group()) or str(int(m.group()) + 1))
                     for m in CONSTANT.finditer(code)],
        "text": [(start, start + 1, '"x') for start in texts
                 if not (file.startswith("cli/") and helps(code, start))]}
    return {kind: [Change(file, source, *place) for place in places] for kind, places in found.items()}


def sequence(tree, files, seed):
    """Every change there is, in an order of the seed; each kind has the same chance to be next."""
    kinds = {}
    for file in files:
        for kind, changes in changes_of(tree, file).items():
            kinds.setdefault(kind, []).extend(changes)
    dice = random.Random(seed)
    for kind in sorted(kinds):
        dice.shuffle(kinds[kind])
    order = []
    while any(kinds.values()):
        order.append(kinds[dice.choice([kind for kind in sorted(kinds) if kinds[kind]])].pop())
    return order
