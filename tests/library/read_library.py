#!/usr/bin/env python3
"""Reads library files by the words of docs/formats/library.md alone, to see that these are enough.

read_library.py FILE...          prints what each holds, in the form of tests/library/listing.h
read_library.py --compare FOLDER compares NAME.lib with the listing in NAME.txt, for all that are there
"""
import lzma
import pathlib
import re
import struct
import sys
import zlib

HEADER, RECORD = struct.Struct("<16sHHIQ"), struct.Struct("<IIQQQQQHHH")
MARK, COMPRESSED, DELETED, REDO = 0x0080, 0x0100, 0x0200, 0x0400
REDO_NAME = b"<zo-redo>"
CODE_PAGE = "cp1252"


class Entry:
    def __init__(self, file, position):
        self.position = position
        (self.number, self.crc, self.stored, self.size, self.created, self.accessed, self.written, self.mode,
         self.flags, self.name_length) = RECORD.unpack_from(file, position)
        begin = position + RECORD.size
        self.name = file[begin:begin + self.name_length]
        self.data_at = begin + self.name_length
        self.end = self.data_at + self.stored

    def data(self, file):
        return file[self.data_at:self.end]


def scan(file):
    """The entries, in the order of the file."""
    entries, at = [], HEADER.size
    while at < len(file) and len(file) - at >= RECORD.size:
        entry = Entry(file, at)
        if 459 <= at % 512 <= 461:
            is_closed = entry.stored == 2**64 - 1 and entry.flags != 0xFFFF
        else:
            is_closed = (entry.flags, entry.name_length) == (0xFFFF, 0) and entry.stored < 1 << 48
        if is_closed or not any(file[at:]) or entry.end > len(file):
            break
        if entry.name_length:
            entries.append(entry)
        at = entry.end
        if entry.flags & MARK:
            break
    return entries


def patches(file, entries):
    """Of the last entry, if that is a committed redo: what takes the place of what; else None."""
    if not entries or entries[-1].name != REDO_NAME or entries[-1].flags != DELETED | REDO:
        return None
    if entries[-1].end != len(file):
        return None
    data, found, at = entries[-1].data(file), {}, 0
    if not 8 <= len(data) <= 1 << 24 or struct.unpack("<II", data[-8:]) != (len(data) - 8, zlib.crc32(data[:-8])):
        return None
    olds = {entry.position: entry for entry in entries[:-1]}
    while at < len(data) - 8:
        if len(data) - 8 - at < 12 + RECORD.size:
            return None
        position, length = struct.unpack_from("<QI", data, at)
        new, old = Entry(data, at + 12), olds.get(position)
        if old is None or length != RECORD.size + new.name_length or at + 12 + length > len(data) - 8:
            return None
        if (old.stored, old.name_length, old.flags & MARK) != (new.stored, new.name_length, new.flags & MARK):
            return None
        found[position] = new
        at += 12 + length
    return found


def explode(container):
    """Code, content, and the size and CRC-32 that the container states."""
    if len(container) < 13 or container[0] >= 9 * 5 * 5:
        return 1, b"", *(struct.unpack("<II", container[-8:]) if len(container) >= 8 else (0, 0))
    size, crc = struct.unpack("<II", container[-8:])
    lc, rest = container[0] % 9, container[0] // 9
    dictionary = max(int.from_bytes(container[1:5], "little"), 4096)
    decoder = lzma.LZMADecompressor(lzma.FORMAT_RAW, filters=[
        {"id": lzma.FILTER_LZMA1, "lc": lc, "lp": rest % 5, "pb": rest // 5, "dict_size": dictionary}])
    try:
        content = decoder.decompress(container[5:-8], max_length=size) if size else b""
    except lzma.LZMAError:
        return 1, b"", size, crc
    code = 1 if len(content) != size else 0 if zlib.crc32(content) == crc else 1000
    return code, content, size, crc


def listing(file):
    _, _, _, counter, value = HEADER.unpack(file[:HEADER.size].ljust(HEADER.size, b"\0"))
    lines = [f"library value={value:016x} code=0"]
    entries = scan(file)
    redo = patches(file, entries)
    if redo is not None:
        entries.pop()
        for entry in entries:
            new = redo.get(entry.position, entry)
            for field in "number crc size created accessed written mode flags name".split():
                setattr(entry, field, getattr(new, field))
    live = set()
    for entry in entries:
        name = re.sub(r"\\U\+([0-9A-F]{4})", lambda unit: chr(int(unit[1], 16)), entry.name.decode(CODE_PAGE))
        content = entry.data(file)
        if entry.flags & COMPRESSED:
            is_protected = True
            check, content, size, crc = explode(content)
        else:
            is_ours = 1 <= entry.number <= counter
            is_damaged = is_ours and entry.size != entry.stored
            is_protected = is_damaged or is_ours and entry.mode == 0 and (entry.crc != 0 or entry.size == 0)
            size, crc = entry.stored, entry.crc if is_protected else 0
            check = 1000 if is_damaged or is_protected and zlib.crc32(content) != crc else 0
        state = "deleted" if entry.flags & DELETED else "hidden" if name.lower() in live else "live"
        if state == "live":
            live.add(name.lower())
        read = zlib.crc32(content) if state == "live" and check == 0 else 0
        lines.append(f"{name} {state} number={entry.number} mode={entry.mode} size={size} stored={entry.stored} "
                     f"{'protected' if is_protected else 'unprotected'} crc={crc:08x} created={entry.created:x} "
                     f"accessed={entry.accessed:x} written={entry.written:x} check={check} read={read:08x}")
    return "".join(line + "\n" for line in lines)


def compare(folder):
    files = sorted(pathlib.Path(folder).glob("*.lib"))
    for path in files:
        ours, theirs = listing(path.read_bytes()), path.with_suffix(".txt").read_text("utf-8")
        if ours != theirs:
            sys.exit(f"{path}: the library reads\n{theirs}by the document it is\n{ours}")
    if len(files) < 40:
        sys.exit(f"only {len(files)} files in {folder}")
    print(f"{len(files)} libraries read alike")


if __name__ == "__main__":
    if len(sys.argv) == 3 and sys.argv[1] == "--compare":
        compare(sys.argv[2])
    elif len(sys.argv) > 1 and not sys.argv[1].startswith("-"):
        for argument in sys.argv[1:]:
            sys.stdout.write(listing(pathlib.Path(argument).read_bytes()))
    else:
        sys.exit(__doc__)
