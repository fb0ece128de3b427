"""What the checks of libraries make and look at. Paths are those of the current folder."""
import os
import pathlib
import struct

from tool import run, write


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
