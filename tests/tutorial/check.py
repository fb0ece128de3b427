#!/usr/bin/env python3
"""check.py OUTPUT COMMAND...: runs a program and compares what it prints with a document."""
import pathlib
import subprocess
import sys

run = subprocess.run(sys.argv[2:], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=120)
printed = run.stdout.decode("utf-8", "replace").replace("\r\n", "\n")
expected = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")
if run.returncode or printed != expected:
    sys.exit(f"exit code {run.returncode}; it prints\n{printed}\nand not\n{expected}")
