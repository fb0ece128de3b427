#!/usr/bin/env python3
"""The data of headless_bench, and its peer (peers.py has how it is called): two trees of 100,000 values as JSON, and
a script that loads both and compares them, without telling what differs. Its time is that of the work within a running
Python.
"""
import json
import pathlib

import peers


def tree(count):
    parts = []
    for i in range(count // 10):
        parts.append({"name": f"part {i}", "number": i, "length": i / 8, "mass": 1.5 + i, "steel": i % 2 == 0,
                      "standard": "ISO 4014", "sizes": [i, i + 1, i + 2], "note": "made up"})
    return {"parts": parts}


def prepare(share=1):
    value = tree(100_000 // share)
    pathlib.Path("a.json").write_text(json.dumps(value))
    parts = value["parts"]
    for i in range(10):
        parts[i * len(parts) // 10]["length"] += 1
    pathlib.Path("b.json").write_text(json.dumps(value))


def compare():
    with open("a.json", encoding="utf-8") as a, open("b.json", encoding="utf-8") as b:
        assert json.load(a) != json.load(b)


def measure(data):
    for _ in range(peers.RUNS):
        seconds = peers.seconds_of(compare)
        for form in ("json", "text", "archive"):
            peers.add_run(data, f"Diff100000/{form}", "python", seconds)


if __name__ == "__main__":
    peers.main(prepare, measure)
