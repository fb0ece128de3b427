#!/usr/bin/env python3
"""headers.py BUILD RESULTS [ROUNDS]: measures what it costs a client to compile each family's header, beside <string>.

Times are the compiler's own, user and system, without making code. RESULTS gets them in Google Benchmark's form.
"""
import datetime
import json
import os
import pathlib
import resource
import subprocess
import sys

build, results, rounds = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3]) if len(sys.argv) > 3 else 15
include = pathlib.Path(__file__).resolve().parent.parent / "include"
commands = json.loads((build / "compile_commands.json").read_text())
words = next(entry["command"] for entry in commands if entry["file"].endswith(".cpp")).split()
compiler = next(before for before, word in zip(words, words[1:]) if word.startswith("-"))  # behind any launcher
command = [compiler, "-std=c++20", f"-I{include}", f"-I{build}/generated", "-fsyntax-only", "-x", "c++", "-"]


def seconds(header):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, input=f"#include <{header}>\n", text=True, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


families = sorted(p.relative_to(include).as_posix() for p in include.glob("zo/*.h")
                  if p.read_text().count("#include <zo/") > 1)
runs = []
for _ in range(rounds):
    peer = seconds("string")
    for header in ["zo_com.h", *families]:
        for name, time in ((f"{header}/ours", seconds(header)), (f"{header}/peer:string", peer)):
            runs.append({"run_name": name, "run_type": "iteration", "time_unit": "s", "real_time": time})
context = {"date": datetime.date.today().isoformat(), "num_cpus": os.cpu_count()}
pathlib.Path(results).write_text(json.dumps({"context": context, "benchmarks": runs}, indent=1))
