#!/usr/bin/env python3
"""contracts.py ROOT: every public header says, where it opens, what becomes of errors and what threads may do.

A line of the opening comment begins with "Errors:" and one with "Threads:", or one with "Errors, Threads:", and words
follow. A header that only includes others has nothing to say; those below have nothing that runs."""
import os
import re
import sys

ROOT = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..")
SAYS = re.compile(r"^// ([A-Z][a-z]+(?:, [A-Z][a-z]+)*): +\S", re.M)
EXEMPT = {
    "zo/config.h": "macros",
    "zo/platform_types.h": "declarations of the platform's types",
    "zo/results.h": "constants",
    "zo/geometry/status.h": "constants",
    "zo/library/library_results.h": "constants",
    "zo/names/name_results.h": "constants",
    "zo/system/open_results.h": "constants",
    "zo/text/containers/position.h": "a constant",
    "zo/xml/xml_results.h": "constants",
    "zo/system/sys_notice.h": "an enumeration",
    "zo/variant/type_code.h": "enumerations",
    "zo/names/no_truth_value.h": "a concept",
    "zo/names/not_a_flag.h": "a concept",
    "zo/text/lasting_text.h": "concepts",
    "zo/system/source_place.h": "the compiler does all of it",
}


def faults_of(path, text):
    opening = re.match(r"(?://.*\n)*", text)[0]
    code = re.sub(r"//.*|^#.*", "", text, flags=re.M)
    silent = not code.strip() or path in EXEMPT
    said = {word for words in SAYS.findall(opening) for word in words.split(", ")}
    missing = {"Errors", "Threads"} - said
    if path in EXEMPT and not missing:
        return ["is exempt, and says all"]
    return [] if silent else [f"says nothing of {word.lower()}" for word in sorted(missing)]


def main():
    include, bad, seen = os.path.join(ROOT, "include"), [], set()
    for folder, _, names in os.walk(include):
        for name in sorted(names):
            path = os.path.relpath(os.path.join(folder, name), include).replace(os.sep, "/")
            seen.add(path)
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                bad += [f"{path} {fault}" for fault in faults_of(path, file.read())]
    bad += [f"{path} is exempt, and is not there" for path in EXEMPT.keys() - seen]
    print("\n".join(sorted(bad)) or f"{len(seen)} headers")
    return bool(bad)


sys.exit(main())
