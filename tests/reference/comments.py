#!/usr/bin/env python3
"""comments.py ROOT: what Doxygen is given of a header. sample.txt becomes sample.marked.txt, in which each comment
stands where it belongs; and the code of every public header stays as it is."""
import os
import sys

ROOT, HERE = os.path.realpath(sys.argv[1]), os.path.dirname(os.path.realpath(__file__))
sys.path[0] = os.path.join(ROOT, "tools", "reference")
import filter as site_filter  # noqa: E402
import header  # noqa: E402


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def code_of(text):
    lines = (site_filter.EXPLICIT_IF.sub("explicit", line) for line in text.split("\n"))
    return " ".join("".join(header.split_line(line)[0] + "\n" for line in lines).split())


def main():
    marked = site_filter.header_text("zo/part.h", read(os.path.join(HERE, "sample.txt")))
    wanted = read(os.path.join(HERE, "sample.marked.txt"))
    bad = [] if marked == wanted else ["sample.marked.txt should be:\n" + marked]
    for folder, _, names in os.walk(os.path.join(ROOT, "include")):
        for path in (os.path.join(folder, name) for name in names):
            text = read(path)
            if code_of(site_filter.header_text(path, text)) != code_of(text):
                bad.append(f"the code of {path} is not what it was")
    print("\n".join(bad) or "as it should be")
    return bool(bad)


sys.exit(main())
