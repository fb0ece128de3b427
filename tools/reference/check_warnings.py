#!/usr/bin/env python3
"""check_warnings.py LOG KNOWN: shows what Doxygen warned of and KNOWN does not excuse, and what KNOWN excuses in vain;
then the exit code is 1. A line of KNOWN is a regular expression, " # " and the reason."""
import re
import sys


def lines_of(path):
    with open(path, encoding="utf-8") as file:
        return [line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")]


def main():
    warnings, excuses = lines_of(sys.argv[1]), [line.split(" # ")[0] for line in lines_of(sys.argv[2])]
    bad = [line for line in warnings if not any(re.search(excuse, line) for excuse in excuses)]
    bad += [f"excused in vain: {excuse}" for excuse in excuses if not any(re.search(excuse, line) for line in warnings)]
    print("\n".join(bad), file=sys.stderr)
    return bool(bad)


sys.exit(main())
