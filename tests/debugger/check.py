"""check.py WINE_RUN GDBSERVER GDB PRINTERS PROGRAM: stops a real program under gdb and compares what the printers say."""

import pathlib
import re
import socket
import subprocess
import sys
import xml.dom.minidom

SAMPLE = {
    "text": 'L"caf\u00e9 \u0416"',
    "empty": 'L""',
    "part": 'L"af\u00e9"',
    "numbers": "array of 3 = {3, 1, 2}",
    "nothing": "array of 0",
    "names": 'list of 2 = {L"first", L"second"}',
    "sizes": 'dictionary of 1 in 128 buckets = {[L"width"] = 2.5}',
    "odd": "dictionary of 1 in 128 buckets = {[7] = 70}",
    "ages": 'tree of 2 = {[L"adam"] = 20, [L"Zoe"] = 30}',
    "file": 'file "C:\\parts\\caf\u00e9.dwg"',
    "red": "kRed",
    "mixed": "rgb(1, 2, 255)",
    "point": "(1, 2.5, -3)",
    "matrix": "(1, 0, 0, 7; 0, 1, 0, 8; 0, 0, 1, 9; 0, 0, 0, 1)",
    "plane": "plane through (1, 2.5, -3), normal (0, 1, 0)",
    "system": "system at (1, 2.5, -3), x (0, 1, 0), y (-1, 0, 0), z (0, 0, 1)",
    "tolerance": "points 0.001, vectors 1e-06",
    "guid": "{01234567-89AB-CDEF-0001-020304050607}",
    "code": "ZoTypeCode::SpringRate",
    "length": "Length 12.5 flags BC",
    "nothing_at_all": "NoType empty",
    "word": 'String "M8"',
    "id": "Guid {01234567-89AB-CDEF-0001-020304050607}",
    "where": "Point (1, 2.5, -3)",
    "counter": "Int -> 42",
    "array": 'Sequence array of 2 = {[0] = Int 1, [1] = String "two"}',
    "list": "List list of 1 = {[0] = Real 0.5}",
    "dict": 'Catalog dictionary of 1 in 128 buckets = {"width" = Sequence array of 2 = {[0] = Int 1, [1] = String "two"}}',
    "ring": "list of 2 = {1, 2}",
    "knot": 'tree of 2 = {[L"a"] = 1, [L"b"] = 2}',
    "no_kind": "Int damaged: no variant has kind 31",
    "no_reference": "Point -> damaged: no variant has kind 38",
}
DAMAGES = {"debugger_sample": ["set var ring.list_.last_->next = ring.list_.first_",
                               "set var knot.tree_.root_->left = knot.tree_.root_"]}
MADE_INSIDE = {
    "part": 'Dict dictionary of 1 in 128 buckets = {"width" = Real 2.5}',
    "array": 'Sequence array of 2 = {[0] = Int 7, [1] = String "M8"}',
    "list": "List list of 1 = {[0] = Real 0.5}",
    "file": 'file "m8.dwg"',
    "numbers": "array of 1 = {7}",
}
# Without descriptions: no more than the kinds of containers, and what is to be done.
NOT_DESCRIBED = "not described: compile the program with -g -femit-class-debug-always"
BARE = {"part": "Dict dictionary", "array": "Sequence array", "list": "List list", "file": NOT_DESCRIBED,
        "numbers": "array of 1 = {%s}" % NOT_DESCRIBED}
EXPECTED = {"debugger_sample": SAMPLE, "debugger_made_inside": MADE_INSIDE, "debugger_bare": BARE}


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def shown(wine_run, gdbserver, gdb, printers, program, names):
    address = "127.0.0.1:%d" % free_port()
    server = subprocess.Popen([wine_run, gdbserver, "--once", address, program], stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    commands = ["set confirm off", "set host-charset UTF-8", "source " + printers, "set tcp connect-timeout 60",
                "target remote " + address, "break lookAtThem", "continue", "up"]
    commands += DAMAGES.get(pathlib.Path(program).stem, []) + ["print " + name for name in names] + ["kill"]
    try:
        run = subprocess.run([gdb, "-batch", "-nx", program] + [a for c in commands for a in ("-ex", c)],
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             timeout=200, encoding="utf-8", errors="replace")
        return run.stdout
    finally:
        try:
            server.wait(timeout=20)
        except subprocess.TimeoutExpired:
            server.kill()


def unknown_members(natvis, headers):
    """Members and types that the views for Visual Studio name and no header has: nothing else can try them here."""
    xml.dom.minidom.parse(str(natvis))
    known = set(re.findall(r"\w+", "".join(path.read_text() for path in headers.rglob("*.h"))))
    return sorted(set(re.findall(r"\b(?:\w+_|Zo\w+)\b", natvis.read_text())) - known)


def main():
    printers = pathlib.Path(sys.argv[4])
    unknown = unknown_members(printers.with_name("zo_com.natvis"), printers.parents[2] / "include")
    if unknown:
        print("zo_com.natvis names", *unknown)
        return 1
    expected = EXPECTED[pathlib.Path(sys.argv[5]).stem]
    output = shown(*sys.argv[1:6], expected)
    lines = [line.split(" = ", 1)[1] for line in output.splitlines() if line.startswith("$")]
    wrong = ["%s: %s, expected %s" % (name, line, text)
             for (name, text), line in zip(expected.items(), lines) if line != text]
    if len(lines) != len(expected) or wrong or "Python Exception" in output:
        print(output, *wrong, sep="\n")
        return 1
    return 0


sys.exit(main())
