#!/usr/bin/env python3
"""The data of library_tool_bench, the peers' archives of it, and the peers (peers.py has how it is called).

The peer for this platform is the reduced 7z tool that scripts/setup builds, run under Wine as ours is; 7z, zip and
unzip as programs of this machine are a column beside it. A peer's time is the median of its runs, less that of a run
that does nothing (its help): what remains is the work, as in the tool's own figures, which are taken within a running
program. Everything may use all processors.
"""
import os
import pathlib
import random
import shlex
import shutil
import statistics
import struct
import subprocess
import zlib

import peers

TIME = 133_000_000_000_000_000  # in 2022
TREES = ["/usr/share/mingw-w64/include", "/usr/include"]


def library(path, members):
    """A library of stored members, as docs/formats/library.md has it."""
    with open(path, "wb") as out:
        out.write(struct.pack("<16sHHIQ", b"ZORVEX LIBRARY", 0, 0, len(members), 0))
        for number, (name, data) in enumerate(members, 1):
            name = name.encode("cp1252")
            out.write(struct.pack("<IIQQQQQHHH", number, zlib.crc32(data), len(data), len(data), TIME, TIME, TIME, 0, 0,
                                  len(name)) + name + data)


def frame_size(path):
    """What a library holds beside its members' data."""
    data, at = pathlib.Path(path).read_bytes(), 32
    frames = at
    while at < len(data):
        stored, name_length = struct.unpack_from("<8xQ36xH", data, at)
        frames += 54 + name_length
        at += 54 + name_length + stored
    return frames


def quietly(*command):
    """Into a pipe: /dev/null is a terminal for Wine's programs, which then write each character by itself."""
    subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True)


def source_tree(count):
    """3,000 source files of up to 64 KB from the packages that the build needs anyway."""
    files = []
    for tree in map(pathlib.Path, TREES):
        files += [f for f in sorted(tree.rglob("*")) if f.is_file() and 0 < f.stat().st_size <= 65536]
    for file in files[:count]:
        target = pathlib.Path("tree") / file.relative_to("/usr")
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(file, target)


def unpack_members(folder, members):
    for name, data in members:
        path = pathlib.Path(folder, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)


def prepare(share=1):
    rng = random.Random(1)
    pathlib.Path("100KB.bin").write_bytes(rng.randbytes(100_000))
    large = [(f"part{i}.bin", rng.randbytes(400_000)) for i in range(500 // share)]
    library("500.lib", large)
    library("500_small.lib", [(n, d[:4000]) for n, d in large])
    unpack_members("500", large)
    source_tree(3000 // share)
    for count in (10_000, 100_000):
        members = [(f"folder{i % 100}/part{i}.txt", b"part %d\n" % i * 60) for i in range(count // share - 1)]
        members.insert(len(members) // 2, ("folder50/wanted.txt", b"wanted\n" * 80))
        library(f"{count}.lib", members)
        unpack_members(str(count), members)
    for count in (10_000, 1_000_000):
        members = [(f"folder{i % 100}/part{i}.txt", b"part %d\n" % i * 4) for i in range(count // share - 1)]
        members.insert(len(members) // 2, ("folder50/wanted.txt", b"wanted\n"))
        library(f"tiny{count}.lib", members)
    for name in ("500", "10000", "100000"):
        os.chdir(name)
        quietly("zip", "-q", "-r", "-0", f"../{name}.zip", ".")
        quietly("7zz", "a", "-mx0", f"../{name}.7z", ".")
        os.chdir("..")
        if name != "10000":  # the tree that sync finds unchanged
            shutil.rmtree(name)


def timed(command, runs=peers.RUNS):
    """Each run has a name of its own for what it makes: a file system is slow where it deleted files just now."""
    return [peers.seconds_of(lambda: quietly(*(word.replace("{run}", str(run)) for word in command)))
            for run in range(runs)]


def measure(data):
    wine = shlex.split(os.environ["ZO_BENCH_WINE"])
    peer_7z = [*wine, os.environ["ZO_BENCH_7Z"]]
    starts = {tool: statistics.median(timed(command, runs=21)) for tool, command in
              {"7z": [*peer_7z, "-h"], "7z_native": ["7zz", "--help"], "zip_native": ["zip", "-h"],
               "unzip_native": ["unzip", "-h"]}.items()}

    def peer(work, tool, *command, runs=peers.RUNS, name=None):
        for seconds in timed(command, runs):
            peers.add_run(data, work, name or tool, max(seconds - starts[tool], 1e-6))

    def both(work, *arguments, runs=peers.RUNS, threads=""):
        """The same with both 7z tools; {tool} keeps what they make apart."""
        for tool, program in (("7z", peer_7z), ("7z_native", ["7zz"])):
            words = [word.replace("{tool}", tool) for word in arguments]
            name = tool.replace("7z", f"7z{threads}", 1)
            peer(work, tool, *program, *words, *([f"-mmt{threads}"] if threads else []), runs=runs, name=name)

    both("Add100KB/into_200MB", "a", "-mx0", "500.7z", "100KB.bin")
    peer("Add100KB/into_200MB", "zip_native", "zip", "-q", "-0", "500.zip", "100KB.bin")
    for count in (10_000, 100_000):
        both(f"List/{count}", "l", f"{count}.7z")
        peer(f"List/{count}", "unzip_native", "unzip", "-l", f"{count}.zip")
    both("ReadOne/of_100000", "e", "-so", "100000.7z", "folder50/wanted.txt")
    peer("ReadOne/of_100000", "unzip_native", "unzip", "-p", "100000.zip", "folder50/wanted.txt")
    for threads in ("1", "2"):
        both("PackTree3000/best", "a", "-m0=lzma", "-mx9", "-ms=off", f"tree{{tool}}{threads}_{{run}}.7z", "tree", runs=3,
             threads=threads)
    both("UnpackTree3000", "x", "-o{run}_{tool}", "tree7z1_0.7z")
    both("TestTree3000", "t", "tree7z1_0.7z")
    peer("Extract10000", "unzip_native", "unzip", "-q", "-d", "{run}_unzip", "10000.zip")
    both("Extract10000", "x", "-o{run}_{tool}_10000", "10000.7z")
    quietly("zip", "-q", "-r", "-0", "sync.zip", "10000")
    peer("SyncUnchanged/10000", "zip_native", "zip", "-q", "-r", "-FS", "sync.zip", "10000")
    ours, theirs = os.path.getsize("tree.lib"), os.path.getsize("tree7z1_0.7z")
    frames = frame_size("tree.lib")
    data["notes"] = [
        "Ours is the tool's code within a running program; peers are run, less the time of a run that only",
        "shows their help (" + ", ".join(f"{tool} {1000 * s:.1f} ms" for tool, s in starts.items()) + ").",
        f"Size of the packed tree: ours {ours}, 7z {theirs} bytes ({100 * ours / theirs - 100:+.2f} %); {frames} of ours",
        f"are entries and names, which the format leaves as they are: the data alone {100 * (ours - frames) / theirs - 100:+.2f} %.",
        "The file that is added reaches the disk with ours, and need not with the peers.",
        "The million are tiny members, 120 MB with their names; 100_times_10000 is a hundred calls on 1.2 MB.",
        "7z runs under Wine as ours does, 7z1 with one thread and 7z2 with two. What stands under native runs on this machine",
        "itself, where to make a file costs a quarter; plain_calls is what the platform's own calls take for the same files.",
    ]


if __name__ == "__main__":
    peers.main(prepare, measure)
