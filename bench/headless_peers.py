#!/usr/bin/env python3
"""headless_peers.py prepare FOLDER [SHARE]: makes two trees of 100,000 values as JSON for headless_bench; with SHARE one
in so many values only.
headless_peers.py measure FOLDER JSON: what a script does with them, added to the benchmark's results: it loads both and
compares them, without telling what differs. Its time is that of the work within a running Python.
"""
import json
import os
import pathlib
import shutil
import sys
import time

RUNS = 7


def tree(count):
    parts = []
    for i in range(count // 10):
        parts.append({"name": f"part {i}", "number": i, "length": i / 8, "mass": 1.5 + i, "steel": i % 2 == 0,
                      "standard": "ISO 4014", "sizes": [i, i + 1, i + 2], "note": "made up"})
    return {"parts": parts}


def prepare(share="1"):
    value = tree(100_000 // int(share))
    pathlib.Path("a.json").write_text(json.dumps(value))
    parts = value["parts"]
    for i in range(10):
        parts[i * len(parts) // 10]["length"] += 1
    pathlib.Path("b.json").write_text(json.dumps(value))


def compare():
    with open("a.json", encoding="utf-8") as a, open("b.json", encoding="utf-8") as b:
        return json.load(a) == json.load(b)


def measure(results):
    results = pathlib.Path(results)
    data = json.loads(results.read_text())
    for _ in range(RUNS):
        start = time.perf_counter()
        assert not compare()
        seconds = time.perf_counter() - start
        for form in ("json", "text", "archive"):
            data["benchmarks"].append({"run_name": f"Diff100000/{form}/peer:python", "run_type": "iteration",
                                       "time_unit": "s", "real_time": seconds})
    results.write_text(json.dumps(data, indent=1))


if __name__ == "__main__":
    verb, folder, *rest = sys.argv[1:]
    if verb == "measure":
        rest = [os.path.abspath(r) for r in rest]
    if verb == "prepare":
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
    os.chdir(folder)
    {"prepare": prepare, "measure": measure}[verb](*rest)
