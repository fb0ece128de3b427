#!/usr/bin/env python3
"""extract.py DOCUMENT FOLDER: the programs of a document, as files for a compiler.

A fenced block of a language and a file name ("```cpp module.cpp") belongs to that file, without a name to main.cpp or
main.c; blocks of one file follow one another. A block "text" is what the program prints: it becomes output.txt. Files
that have not changed are left alone.
"""
import pathlib
import re
import sys


def files(document):
    found = {}
    for info, body in re.findall(r"^```(\w+(?: [\w.]+)?)\n(.*?)^```$", document, re.M | re.S):
        language, _, name = info.partition(" ")
        if language == "text":
            name = "output.txt"
        elif language in ("cpp", "c"):
            name = name or "main." + language
        else:
            continue
        found[name] = found.get(name, "") + body
    return found


def main():
    folder = pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    found = files(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    if not any(name.startswith("main.") for name in found):
        sys.exit(f"{sys.argv[1]} has no program")
    for name, text in found.items():
        path = folder / name
        if not path.is_file() or path.read_text(encoding="utf-8") != text:
            path.write_text(text, encoding="utf-8")


main()
