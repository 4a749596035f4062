#!/usr/bin/env python3
"""Writes the export lists of the Windows DLLs from the public header.

    scripts/exports.py           writes qvAcceleratedLib/exports/*.def
    scripts/exports.py --check   compares them instead; exit code 1 if they differ

Each member of the class is exported under the name that a MinGW host calls (the Itanium C++ ABI)
and under the one that a Visual C++ host calls, the second an alias of the first. Clang knows both:
it is asked for either's name of every member, which come in the order of the header. Names are ABI:
a changed line is a host that no longer loads.
"""
import json
import pathlib
import re
import subprocess
import sys

import generated

ROOT = pathlib.Path(__file__).resolve().parent.parent
HEADER = ROOT / "include" / "qvAcceleratedLib" / "CqvAccLib.h"
FOLDER = ROOT / "qvAcceleratedLib" / "exports"
CLASS = "CqvAccLib"
ARCHITECTURES = {"windows32": "i686", "windows64": "x86_64"}


def operations():
    """The names of the roll of operations, in its order."""
    roll = (ROOT / "qvAcceleratedLib" / "Operations.def").read_text()
    return re.findall(r"^QV_OPERATION\((\w+),", roll, re.M)


def members(target):
    """The mangled names of the class's declared member functions, in the header's order."""
    tree = json.loads(subprocess.run(
        ["clang++", f"--target={target}", "-x", "c++", "-std=c++20", "-ffreestanding", "-nostdinc",
         "-fsyntax-only", "-Xclang", "-ast-dump=json", str(HEADER)],
        check=True, stdout=subprocess.PIPE).stdout)
    classes = [node for node in tree["inner"]
               if node["kind"] == "CXXRecordDecl" and node.get("name") == CLASS]
    methods = [node for node in classes[-1]["inner"]
               if node["kind"] == "CXXMethodDecl" and not node.get("isImplicit")]
    names = [node["name"] for node in methods]
    if names != operations() + ["operator="]:
        sys.exit(f"exports.py: the class has other members than Operations.def: {names}")
    return [node["mangledName"] for node in methods]


def export_list(architecture):
    itanium = members(f"{architecture}-w64-mingw32")
    microsoft = members(f"{architecture}-pc-windows-msvc")
    lines = ["; Written by scripts/exports.py.", "LIBRARY qvAcceleratedLib.dll", "EXPORTS"]
    for gnu, visual in zip(itanium, microsoft):
        if architecture == "i686":
            gnu = gnu.removeprefix("_")  # of the object format, which the linker adds itself
        lines += [f'  "{gnu}"', f'  "{visual}" = "{gnu}"']
    return "\n".join(lines) + "\n"


def contents():
    return {FOLDER / f"{name}.def": export_list(architecture)
            for name, architecture in ARCHITECTURES.items()}


if __name__ == "__main__":
    generated.main(__doc__, contents)
