#!/usr/bin/env python3
"""check.py SOURCE COMPILER ARGS...: compiles SOURCE (syntax only) and compares its errors with the file's own marks.

A line that ends in `// error: TEXT` must not compile, and what the compiler says of it must contain TEXT (the
declaration it points at counts, comments included). Any other error fails the test, so that a wrong include or a
misspelt name is never taken for a trap that closed.
"""
import re
import subprocess
import sys

source, command = sys.argv[1], sys.argv[2:]
with open(source, encoding="utf-8") as file:
    wanted = {n: m.group(1) for n, line in enumerate(file, 1) if (m := re.search(r"// error: (.*\S)", line))}

run = subprocess.run([*command, "-fsyntax-only", "-fmax-errors=0", "-fdiagnostics-color=never", source],
                     capture_output=True, text=True, errors="replace", check=False)
here = re.compile(re.escape(source) + r":(\d+):")
errors, context, current = [], set(), None  # errors: pairs of the lines it is about and of all that was said
for line in run.stderr.splitlines():
    lines = {int(n) for n in here.findall(line)}
    if re.search(r": (fatal )?error: ", line):
        current = (context | lines, [line])
        errors.append(current)
        context = set()
    elif re.search(r"required from|In instantiation|In substitution|in .constexpr. expansion", line):
        context |= lines
    elif current:
        current[1].append(line)

bad = []
for number, text in wanted.items():
    said = "\n".join("\n".join(what) for lines, what in errors if number in lines)
    if not said:
        bad.append(f"{source}:{number}: compiles, and must not ({text})")
    elif text not in said:
        bad.append(f"{source}:{number}: the error does not say \"{text}\":\n{said}")
bad += ["not expected:\n" + "\n".join(what) for lines, what in errors if not lines & wanted.keys()]
if not wanted:
    bad.append(f"{source}: has no line with a mark")
print("\n".join(bad) or f"{len(wanted)} lines do not compile, as they must not")
sys.exit(bool(bad))
