#!/usr/bin/env python3
"""library_peers.py DATA-FOLDER [JSON]: the data of the library benchmarks, and what other packers need for the same work.

Makes the data once, deterministically, in DATA-FOLDER. With JSON, the output of library_bench, times the native
packers on the data and adds their runs to it. A packer's time is that of its process, less that of the same packer listing an
archive of one small file: so without the start of a process. Nothing makes the packers flush what they write; the
library does.
"""
import json
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import time

REPETITIONS = 5
BIG, BIG_SIZE = 500, 400 * 1024
TREE_FILES, TREE_BYTES = 3000, 40 << 20
# Source texts that the build needs anyway.
TREE_ROOTS = ["/usr/share/mingw-w64/include", "/usr/src/googletest", "/usr/include"]


def write_files(folder, count, size, seed):
    """COUNT files of about SIZE bytes that do not compress, 1,000 to a folder."""
    randomness = random.Random(seed)
    for k in range(count):
        place = folder / f"{k // 1000:03}"
        place.mkdir(parents=True, exist_ok=True)
        (place / f"part{k:06}.dat").write_bytes(randomness.randbytes(size - k % 7))


def copy_tree(folder):
    """A source tree: the first TREE_FILES files of at most TREE_BYTES in all, in order of their names."""
    left, count = TREE_BYTES, 0
    for number, root in enumerate(TREE_ROOTS):
        for path in sorted(pathlib.Path(root).rglob("*")):
            size = path.stat().st_size if path.is_file() else 0
            if count == TREE_FILES or not 200 < size < min(left, 30_000) or not path.name.isascii():
                continue
            target = folder / str(number) / path.relative_to(root)
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(path, target)
            left -= size
            count += 1
    if count < TREE_FILES:
        sys.exit(f"library_peers.py: found {count} source files, needs {TREE_FILES}")


def make_data(data):
    if (data / ".complete").exists():
        return
    shutil.rmtree(data, ignore_errors=True)
    write_files(data / "big", BIG, BIG_SIZE, 1)
    write_files(data / "small10000", 10_000, 1500, 2)
    write_files(data / "small100000", 100_000, 100, 3)
    write_files(data / "new", 1, 100 * 1024, 4)
    copy_tree(data / "tree")
    (data / ".complete").touch()


class Packers:
    """Runs packers in a folder of their own and keeps their times in nanoseconds, by benchmark."""

    def __init__(self, data, work):
        self.data, self.work, self.times = data, work, {}

    def start_of(self, pack, listing):
        """Seconds of a packer that does next to nothing."""
        self.run(pack)
        return statistics.median(self.timed(listing) for _ in range(3 * REPETITIONS))

    def run(self, command, folder=None):
        subprocess.run(command, cwd=folder or self.work, check=True, stdout=subprocess.DEVNULL)

    def timed(self, command, folder=None):
        begin = time.perf_counter()
        self.run(command, folder)
        return time.perf_counter() - begin

    def measure(self, name, start, command, prepare=lambda: None, folder=None):
        times = []
        for _ in range(REPETITIONS):
            prepare()
            times.append(max(self.timed(command, folder) - start, 1e-6) * 1e9)
        self.times[name] = times


def remove(path):
    shutil.rmtree(path, ignore_errors=True)
    path.unlink(missing_ok=True) if not path.is_dir() else None


def measure(data, work):
    p = Packers(data, work)
    new = data / "new" / "000"
    z_start = p.start_of(["7zz", "a", "-mx0", "one.7z", new], ["7zz", "l", "one.7z"])
    u_start = p.start_of(["zip", "-0qr", "one.zip", new], ["unzip", "-l", "one.zip"])

    p.run(["7zz", "a", "-mx0", work / "big.7z", "."], data / "big")
    p.run(["zip", "-0qr", work / "big.zip", "."], data / "big")
    add = "Add100KB/500members200MB/peer:"
    for name, command, ending, start in [
        ("7z", ["7zz", "a", "-mx0"], "7z", z_start),
        ("zip", ["zip", "-0qr"], "zip", u_start),
    ]:
        fresh = lambda ending=ending: shutil.copyfile(work / f"big.{ending}", work / f"add.{ending}")
        p.measure(add + name, start, command + [work / f"add.{ending}", "."], fresh, new)

    for count in (10_000, 100_000):
        files = data / f"small{count}"
        archive = {e: work / f"small{count}.{e}" for e in ("7z", "zip")}
        p.run(["7zz", "a", "-mx0", archive["7z"], "."], files)
        p.run(["zip", "-0qr", archive["zip"], "."], files)
        p.measure(f"List/{count}/peer:7z", z_start, ["7zz", "l", archive["7z"]])
        p.measure(f"List/{count}/peer:unzip", u_start, ["unzip", "-l", archive["zip"]])
    p.measure("OpenFindRead/100000/peer:unzip", u_start, ["unzip", "-p", archive["zip"], "050/part050000.dat"])
    p.measure("ExtractStored/10000/peer:unzip", u_start, ["unzip", "-q", work / "small10000.zip", "-d", "out"],
              lambda: remove(work / "out"))

    best = ["-m0=lzma", "-mx9", "-mmt1", "-ms=off"]
    tree = work / "tree.7z"
    p.measure("PackBest/tree3000/peer:7z", z_start, ["7zz", "a", *best, tree, "."], lambda: remove(tree), data / "tree")
    p.measure("Unpack/tree3000/peer:7z", z_start, ["7zz", "x", tree, "-oout"], lambda: remove(work / "out"))
    return p.times, tree.stat().st_size


def main(data, results=None):
    data = pathlib.Path(data).resolve()
    make_data(data)
    if not results:
        return
    work = data.with_name("library-work")
    remove(work)
    work.mkdir(parents=True)
    times, packed = measure(data, work)
    remove(work)
    table = json.loads(pathlib.Path(results).read_text())
    for name, runs in times.items():
        table["benchmarks"] += [{"run_name": name, "run_type": "iteration", "real_time": t, "time_unit": "ns"} for t in runs]
    pathlib.Path(results).write_text(json.dumps(table))
    print(f"the tree of {TREE_FILES} files packed by 7z: {packed} bytes")


if __name__ == "__main__":
    main(*sys.argv[1:])
