#!/usr/bin/env python3
"""links.py FOLDER...: no relative link of the documents in a folder leads to nowhere, nor to a heading that is not there."""
import os
import re
import sys
import urllib.parse

CODE = re.compile(r"^```.*?^```|`[^`\n]*`", re.M | re.S)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def anchors(text):
    """The headings of a document, as hosts of repositories name them."""
    for heading in re.findall(r"^#+ (.*)", re.sub(r"^```.*?^```", "", text, flags=re.M | re.S), re.M):
        heading = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading)
        yield re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def is_dead(path, link):
    target, _, anchor = link.partition("#")
    target = os.path.join(os.path.dirname(path), urllib.parse.unquote(target)) if target else path
    if not os.path.exists(target):
        return True
    return bool(anchor) and target.endswith(".md") and anchor not in anchors(read(target))


def documents(folder):
    for where, inner, names in os.walk(folder):
        inner[:] = [name for name in inner if name not in ("build", ".git")]
        yield from (os.path.join(where, name) for name in names if name.endswith(".md"))


def main():
    dead, count = [], 0
    for path in (path for folder in sys.argv[1:] for path in documents(folder)):
        for link in re.findall(r"\]\(([^)\s]+)\)", CODE.sub("", read(path))):
            count += 1
            if not re.match(r"[a-z]+:", link) and is_dead(path, link):
                dead.append(f"{path}: {link}")
    print("\n".join(dead) or f"{count} links")
    return bool(dead) or not count


sys.exit(main())
