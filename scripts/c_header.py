#!/usr/bin/env python3
"""Writes the operations of the C header, qv.h, from the class's header and the roll of operations,
and the list of names that the C library exports from qv.h.

    scripts/c_header.py           writes them
    scripts/c_header.py --check   compares them instead; exit code 1 if they differ

What stands between the two marks in qv.h is written anew: the enumerations and, for each operation,
its documentation in the words of C and its declaration. All else in qv.h is written by hand.
"""
import pathlib
import re
import sys
import textwrap

import generated

ROOT = pathlib.Path(__file__).resolve().parent.parent
CLASS_HEADER = ROOT / "include" / "qvAcceleratedLib" / "CqvAccLib.h"
C_HEADER = ROOT / "include" / "qvAcceleratedLib" / "qv.h"
EXPORTS = ROOT / "bindings" / "c" / "exports.txt"
BEGIN = "// ==== Written by scripts/c_header.py from CqvAccLib.h ====\n"
END = "// ==== Written by hand from here on ====\n"

# Pointers of the class to what it only reads.
READ_ONLY = {"qvMergeAlphaOver": ("fgAlpha", "bg", "bgAlpha"), "qvMergeAlphaPlus": ("src", "alpha")}

TYPES = [  # of the class's parameters, and in C
    (r"(?:qvDataType|IppiAxis|IppiAlphaType|IppiInterpolation) (\w+)", r"int \1"),
    (r"IppiSize (\w+)", r"qv_size \1"),
    (r"IppiRect (\w+)", r"qv_rect \1"),
    (r"const unsigned char\* const (\w+)", r"const unsigned char* \1"),
    (r"unsigned char\*\* const (src)", r"const unsigned char* const \1[3]"),
    (r"unsigned char\*\* const (dst)", r"unsigned char* const \1[3]"),
    (r"int\* const (\w+)", r"const int \1[3]"),
    (r"((?:const )?double \w+)\[3\]\[3\]", r"\1[9]"),
    (r"((?:const )?double \w+)\[4\]\[2\]", r"\1[8]"),
    (r"((?:const )?double \w+)\[2\]\[2\]", r"\1[4]"),
]
WORDS = [  # in comments: arrays of arrays are flat in C
    ("quad[0..3] are the (x, y) images", "quad[0..7] are the (x, y) images"),
    ("bound[0] = (smallest", "bound[0..1] = (smallest"),
    ("bound[1] = (largest", "bound[2..3] = (largest"),
]


def snake(name):
    words = r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])"
    return re.sub(words, "_", name.replace("CbCr", "Cbcr")).lower()


class Translation:
    """The words of the class in those of C, and whatever of the class's header is asked for."""

    def __init__(self):
        roll = (ROOT / "qvAcceleratedLib" / "Operations.def").read_text()
        self.operations = dict(re.findall(r"^QV_OPERATION\((\w+), \w+, (\w+)\)", roll, re.M))
        self.lines = CLASS_HEADER.read_text().splitlines()
        text = "\n".join(self.lines)
        self.names = dict(self.operations)
        for body in re.findall(r"enum \w+ : int \{(.*?)\}", text, re.S):
            for name in re.findall(r"^ *(\w+) =", body, re.M):
                self.names[name] = "QV_" + snake(name).upper()
        for parameters in re.findall(r"static IppStatus \w+\((.*?)\);", text, re.S):
            for name in re.findall(r"(\w+)(?:\[\d\])*(?:,|$)", parameters):
                if name != snake(name):
                    self.names[name] = snake(name)
        self.found = set()

    def words(self, text):
        for old, new in WORDS:
            if old in text:
                self.found.add(old)
                text = text.replace(old, new)
        return re.sub(r"\w+", lambda word: self.names.get(word[0], word[0]), text)

    def comment(self, lines):
        """Lines of a comment, its paragraphs filled anew; what is indented stays as it is, unless a
        longer word makes a line too long: then it is filled with those indented deeper below it."""
        texts = [line.strip().removeprefix("//").removeprefix(" ") for line in lines]
        out = []
        while texts:
            line = texts.pop(0)
            if not line:
                out.append(line)
                continue
            indent = len(line) - len(line.lstrip())
            deep = len(texts[0]) - len(texts[0].lstrip()) if texts else 0
            if indent == 0:
                while texts and texts[0] and texts[0][0] != " " and texts[0][:8] != "Returns ":
                    line += " " + texts.pop(0)
            elif len(self.words(line)) > 97 and deep > indent:
                while texts and texts[0].startswith(" " * deep):
                    line += " " + texts.pop(0).strip()
            out += self.fill(self.words(line), " " * (deep if indent else 0))
        return [f"// {line}".rstrip() for line in out]

    @staticmethod
    def fill(line, deep):
        if line.startswith(" ") and len(line) <= 97:
            return [line]
        return textwrap.wrap(line, 97, subsequent_indent=deep, break_on_hyphens=False)

    def enumeration(self, name, body):
        """C's own: without a type."""
        rows = re.findall(r"^ *(\w+) = (-?\d+),?(?: *// *(.*))?$", "\n".join(body), re.M)
        heads = [f"  {self.names[n]} = {value}{',' if i < len(rows) - 1 else ''}"
                 for i, (n, value, _) in enumerate(rows)]
        widest = max(map(len, heads)) + 2
        lines = []
        for head, (_, _, text) in zip(heads, rows):
            for part in textwrap.wrap(self.words(text), 97 - widest) or [""]:
                lines.append(f"{head:{widest}}// {part}" if part else head)
                head = ""
        plain = re.sub("^(Ippi?|qv)", "", name)
        return [f"enum qv_{snake(plain)} {{", *lines, "};"]

    def declaration(self, name, parameters):
        parts = []
        for part in re.split(r",\s*", " ".join(parameters.split())):
            for pattern, replacement in TYPES:
                if re.fullmatch(pattern, part):
                    part = re.sub(pattern, replacement, part)
                    break
            if re.search(r"\w+(?=(?:\[\d\])*$)", part)[0] in READ_ONLY.get(name, ()):
                part = "const " + part
            parts.append(self.words(part))
        if name not in self.operations:
            sys.exit(f"c_header.py: {name} is not in Operations.def")
        head = f"QV_API(int) {self.operations[name]}("
        whole = [part.replace(" ", "\0") for part in parts]  # to be broken between them alone
        lines = textwrap.wrap(", ".join(whole) + ");", 100, initial_indent=head,
                              subsequent_indent=" " * len(head))
        return [line.replace("\0", " ") for line in lines]

    def section(self):
        """Everything: enumerations, headings, comments and declarations in the header's order."""
        out, comment, seen, in_section, i = [], [], [], False, 0
        while i < len(self.lines):
            line = self.lines[i].strip()
            i += 1
            if line.startswith("// ----"):
                out += [line.ljust(100, "-"), ""]
                comment, in_section = [], True
            elif line.startswith("//"):
                comment.append(line)
            elif match := re.match(r"enum (\w+) : int \{", line):
                end = next(k for k in range(i, len(self.lines)) if "};" in self.lines[k])
                out += [*self.comment(comment), *self.enumeration(match[1], self.lines[i:end]), ""]
                comment, i = [], end + 1
            elif match := re.match(r"static IppStatus (\w+)\(", line):
                while ");" not in line:
                    line += " " + self.lines[i].strip()
                    i += 1
                out += [*self.comment(comment), *self.declaration(match[1], line[match.end():-2]),
                        ""]
                seen.append(match[1])
                comment = []
            elif not line:
                if comment and in_section:  # what a section says of all its operations
                    out += [*self.comment(comment), ""]
                comment = []
            else:
                comment = []
        if seen != list(self.operations):
            sys.exit("c_header.py: the class has other operations than Operations.def")
        if missing := {old for old, _ in WORDS} - self.found:
            sys.exit(f"c_header.py: the header does not say {missing}")
        return "\n".join(out).strip("\n") + "\n"


def split(text):
    before, rest = text.split(BEGIN)
    return before, rest.split(END)[1]


def contents():
    before, after = split(C_HEADER.read_text())
    header = f"{before}{BEGIN}\n{Translation().section()}\n{END}{after}"
    names = re.findall(r"^QV_API\([^)]*\) (qv_\w+)\(", header, re.M)
    return {C_HEADER: header, EXPORTS: "".join(f"{name}\n" for name in names)}


if __name__ == "__main__":
    generated.main(__doc__, contents)
