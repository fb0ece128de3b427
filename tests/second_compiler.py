#!/usr/bin/env python3
"""Compiles the library and its tool with a second compiler, syntax only and with the build's own warnings as errors:
what GCC alone lets through, clang (and often MSVC) does not. With GCC's name, clang works under Visual C++'s rules: sizes
and layouts that sources state must hold for that compiler, too.

usage: second_compiler.py CLANG BUILD-FOLDER SOURCE-FOLDER [GCC]
"""
import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

import visual_cpp

# libstdc++'s std::stable_sort calls a function of its own that it declares deprecated.
SPARED = ["-Wno-deprecated-declarations"]


def command_for(clang, rules, entry):
    """The build's command with the compiler exchanged and without its output."""
    words = shlex.split(entry["command"])
    first = next(i for i, word in enumerate(words) if word.startswith("-"))
    options = words[first : words.index("-o")]
    return [clang, *rules, *options, *SPARED, "-fsyntax-only", entry["file"]]


def main():
    clang, build, source, *gcc = sys.argv[1:]
    build, source = pathlib.Path(build), pathlib.Path(source).resolve()
    rules = ["--target=x86_64-w64-windows-gnu"]
    if gcc:
        rules = [f"--target={visual_cpp.TARGET}", *visual_cpp.RULES, *visual_cpp.library_options(clang, *gcc)]
    ours = [str(source / folder) + "/" for folder in ("src", "tools")]
    entries = [entry for entry in json.loads((build / "compile_commands.json").read_text())
               if entry["file"].endswith(".cpp") and entry["file"].startswith(tuple(ours))]
    if not entries:
        sys.exit(f"no source of {source} in {build}/compile_commands.json")

    def run(entry):
        return subprocess.run(command_for(clang, rules, entry), cwd=entry["directory"], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True)

    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        results = list(pool.map(run, entries))
    for result in results:
        sys.stdout.write(result.stdout)
    bad = sum(result.returncode != 0 for result in results)
    print(f"{len(entries)} sources, {bad} with errors")
    sys.exit(bad != 0)


if __name__ == "__main__":
    main()
