"""The tool as its tests run it: SCRIPT ROOT ZOLIB CHECK. Paths are those of the current folder."""
import json
import os
import pathlib
import re
import signal
import struct
import subprocess
import sys

ROOT, TOOL = pathlib.Path(sys.argv[1]), sys.argv[2]
COMMAND = [str(ROOT / "scripts/wine-run"), TOOL]
os.environ["ZOLIB_ROOT"] = "Z:"


def start(*args, **streams):
    # A script in the background ignores SIGINT, and so would what it starts.
    return subprocess.Popen(COMMAND + list(args), preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
                            **streams)


def run(*args, code=0, out=None, err=None, stdin=b""):
    """Runs the tool; code, and patterns that output and talk must match as a whole, are compared. Gives the output."""
    done = subprocess.run(COMMAND + list(args), input=stdin, capture_output=True)
    said = f"{args}: {done.returncode}\n{done.stdout[-2000:]!r}\n{done.stderr.decode()[-2000:]}"
    assert done.returncode == code, f"exit code {code} expected\n{said}"
    for pattern, text in ((out, done.stdout), (err, done.stderr)):
        assert pattern is None or re.fullmatch(pattern, text.decode().replace("\r\n", "\n"), re.S), \
            f"{pattern!r} expected\n{said}"
    return done.stdout


def answer(*args, code=0, **more):
    """The same with --json."""
    value = json.loads(run(*args, "--json", code=code, **more))
    assert value["zolib"] == 1 and value["exit"] == code and isinstance(value["messages"], list), value
    return value


def write(name, content=b"content\n"):
    path = pathlib.Path(name)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)
    return path


def files(folder="."):
    return sorted(str(p.relative_to(folder)) for p in pathlib.Path(folder).rglob("*") if p.is_file())


def members(library, *more):
    return run("list", library, "--names", *more).decode().split("\n")[:-1]


def tree():
    """Some parts: texts that pack, bytes that do not, an empty file, levels, a blank and an umlaut."""
    write("parts/bolts/m8.dwg", b"thread M8\n" * 500)
    write("parts/bolts/steel/m10.dwg", os.urandom(3000))
    write("parts/Größe 1.txt", "größer\n".encode() * 100)
    write("parts/empty.txt", b"")
    write("parts/old.bak")
    return ["parts/empty.txt", "parts/Größe 1.txt", "parts/old.bak", "parts/bolts/m8.dwg", "parts/bolts/steel/m10.dwg"]


def foreign(path, entries, magic=b"ZORVEX LIBRARY"):
    """A library of another maker: entries are (name, data, flags); the fields that are its maker's stay 0."""
    time = 133_000_000_000_000_000
    content = struct.pack("<16sHHIQ", magic, 0, 0, len(entries), 0)
    for name, data, flags in entries:
        name = name.encode("cp1252")
        content += struct.pack("<QQQQQQHHH", 0, len(data), 0, time, time, time, 0, flags, len(name)) + name + data
    return write(path, content)
