#!/usr/bin/env python3
"""Compares the slots of virtual functions under both compilers' rules: where GCC lays out the overloads of one name as
they are declared, Visual C++ does so backwards. Clang knows both rules and shows the tables that it makes.

usage: check.py CLANG GCC SOURCE INCLUDE-FOLDER...
"""
import itertools
import re
import subprocess
import sys

GNU, VISUAL = "x86_64-w64-windows-gnu", "x86_64-pc-windows-msvc"


def system_folders(gcc):
    """The folders of GCC's library and platform headers, without those of its own built-in functions."""
    words = subprocess.run([gcc, "-E", "-v", "-x", "c++", "/dev/null"], capture_output=True, text=True).stderr
    folders = re.search(r"#include <.*\n((?: .*\n)+)", words)[1].split()
    return [folder for folder in folders if not re.search(r"-posix/include(-fixed)?$", folder)]


def tables(clang, target, folders, source):
    """What clang prints of the tables, in the order of slots: {table: [function]}, without destructors."""
    own = subprocess.run([clang, "-print-resource-dir"], capture_output=True, text=True).stdout.strip() + "/include"
    command = [clang, f"--target={target}", "-std=c++20", "-nostdinc", "-fno-ms-compatibility", "-fno-ms-extensions"]
    for folder in [own, *folders]:
        command += ["-isystem", folder]
    if target == VISUAL:  # the platform's headers ask for the macros of their own compiler
        command += ["-fdeclspec", "-D__MINGW32__", "-D__MINGW64__", "-D_WIN64", "-DZO_OVERLOADS_BACKWARDS", "-D__declspec(a)=__attribute__((a))"]
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
    folders = ours + system_folders(gcc)
    gnu, visual = (tables(clang, target, folders, source) for target in (GNU, VISUAL))
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
