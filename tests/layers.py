#!/usr/bin/env python3
"""layers.py ROOT: the floors of docs/architecture.md, checked against every include of src/ and include/zo/.

The table "Floors" there lists the folders from the bottom up. A file includes from its own folder or from one further
down: never up, and so never in a circle. A family header (include/zo/FAMILY.h) stands for all that it includes.
Benchmarks, tools and examples see public headers only.
"""
import os
import re
import sys

root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..")
INCLUDE = re.compile(r'^\s*#\s*include\s+[<"]([^>"]+)[>"]', re.M)


def read(path):
    with open(os.path.join(root, path), encoding="utf-8") as file:
        return file.read()


def sources(*folders):
    for folder in folders:
        for where, _, names in os.walk(os.path.join(root, folder)):
            for name in sorted(names):
                if name.endswith((".h", ".cpp")):
                    yield os.path.relpath(os.path.join(where, name), root)


def floors():
    """The folders of the table in docs/architecture.md, bottom first; and those of them that are still to come."""
    table = read("docs/architecture.md").split("## Floors", 1)[1].split("\n## ", 1)[0]
    rows = re.findall(r"^\| `([a-z_/]+)` \|(.*)", table, re.M)
    return [folder for folder, _ in rows], {folder for folder, what in rows if "*to come*" in what}


def folder_of(path):
    found = re.match(r"(?:src|include/zo)/(.+)/[^/]+$", path)
    return found.group(1) if found else None


def included(path):
    """What a file includes of this library: paths, family headers replaced by what they include."""
    for name in INCLUDE.findall(read(path)):
        target = "include/" + name if name.startswith("zo/") or name == "zo_com.h" else "src/" + name
        if not os.path.isfile(os.path.join(root, target)):
            continue
        if target.startswith("include/") and folder_of(target) is None:
            yield from included(target)
        yield target


def main():
    folders, to_come = floors()
    order = {folder: i for i, folder in enumerate(folders)}
    bad, seen = [], set()
    for path in sources("src", "include/zo"):
        here = folder_of(path)
        if here is None:
            continue  # a family header may name every folder
        seen.add(here)
        for target in included(path):
            there = folder_of(target)
            if there is not None and order.get(there, -1) > order.get(here, -1):
                bad.append(f"{path} includes {target}: {here} lies below {there}")
    bad += [f"{folder}: not among the floors of docs/architecture.md" for folder in seen - order.keys()]
    bad += [f"{folder}: among the floors, and no such folder" for folder in order.keys() - seen - to_come]
    for path in sources("tools", "examples", "bench"):
        for name in INCLUDE.findall(read(path)):
            if os.path.isfile(os.path.join(root, "src", name)) and ".." not in name:
                bad.append(f"{path} includes {name}: not a public header")
    print("\n".join(sorted(set(bad))) or f"{len(order)} floors, no include goes up")
    return bool(bad)


sys.exit(main())
