#!/usr/bin/env python3
"""Compares the slots of virtual functions under both compilers' rules: where GCC lays out the overloads of one name as
they are declared, Visual C++ does so backwards. Clang knows both rules and shows the tables that it makes.

usage: check.py CLANG GCC SOURCE INCLUDE-FOLDER...
"""
import itertools
import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1]))
import visual_cpp  # noqa: E402

GNU = "x86_64-w64-windows-gnu"


def tables(clang, target, options, source):
    """What clang prints of the tables, in the order of slots: {table: [function]}, without destructors."""
    command = [clang, f"--target={target}", "-std=c++20", *options]
    command += ["-Xclang", "-fdump-vtable-layouts", "-S", "-emit-llvm", "-o", "/dev/null", source]
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if run.returncode:
        sys.exit(run.stdout)
    found, functions = {}, None
    for line in run.stdout.splitlines():
        head = re.match(r"V(?:F)?[tT]able for (.*) \(\d+ entries\)", line)
        slot = re.match(r"\s*\d+ \| (.*\(.*)", line)
        if head:
            functions = found.setdefault(re.findall(r"'(\w+)'", head[1])[-1], [])
            functions.clear()
        elif slot and functions is not None:
            if not re.search("~|destructor|offset_to_top|RTTI", slot[1]):
                functions.append(slot[1])
        elif not line.strip():
            functions = None
    return found


def main():
    clang, gcc, source, *ours = sys.argv[1:]
    options = [f"-I{folder}" for folder in ours] + visual_cpp.library_options(clang, gcc)
    gnu = tables(clang, GNU, options, source)
    visual = tables(clang, visual_cpp.TARGET, options + visual_cpp.RULES, source)
    compared = 0
    wrong = []
    names = sorted(name for name in gnu.keys() & visual.keys() if name.startswith("Zo"))
    for name in names:
        compared += len(gnu[name])
        wrong += [f"{name} {i}: {a}, but {b} with Visual C++"
                  for i, (a, b) in enumerate(itertools.zip_longest(gnu[name], visual[name])) if a != b]
    print("\n".join([*wrong, f"{compared} slots of {', '.join(names)} compared"]))
    sys.exit(bool(wrong) or compared < 150)


if __name__ == "__main__":
    main()
