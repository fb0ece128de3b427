"""check.py WINE_RUN GDBSERVER GDB PRINTERS PROGRAM: stops a real program under gdb and compares what the printers say."""

import socket
import subprocess
import sys

EXPECTED = {
    "text": 'L"caf\u00e9 \u0416"',
    "empty": 'L""',
    "part": 'L"af\u00e9"',
    "numbers": "array of 3 = {3, 1, 2}",
    "nothing": "array of 0",
    "names": 'list of 2 = {L"first", L"second"}',
    "sizes": 'dictionary of 1 in 128 buckets = {[L"width"] = 2.5}',
    "odd": "dictionary of 1 in 128 buckets = {[7] = 70}",
    "ages": 'tree of 2 = {[L"adam"] = 20, [L"Zoe"] = 30}',
}


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def shown(wine_run, gdbserver, gdb, printers, program):
    address = "127.0.0.1:%d" % free_port()
    server = subprocess.Popen([wine_run, gdbserver, "--once", address, program], stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    commands = ["set confirm off", "set host-charset UTF-8", "source " + printers, "set tcp connect-timeout 60",
                "target remote " + address, "break lookAtThem", "continue", "up"]
    commands += ["print " + name for name in EXPECTED] + ["kill"]
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


def main():
    output = shown(*sys.argv[1:6])
    lines = [line.split(" = ", 1)[1] for line in output.splitlines() if line.startswith("$")]
    wrong = ["%s: %s, expected %s" % (name, line, text)
             for (name, text), line in zip(EXPECTED.items(), lines) if line != text]
    if len(lines) != len(EXPECTED) or wrong:
        print(output, *wrong, sep="\n")
        return 1
    return 0


sys.exit(main())
