#!/usr/bin/env python3
"""adversary.py ROOT ZOLIB kills|crowd: what may happen to a library that is worked on, and what must be there then.

kills   every verb that writes is killed at some instant: the library is whole at once and for the next writer, and the
        change is wholly done or wholly absent, or for what packs each of its files is.
crowd   four writers and four readers at once: each writer finds its members as it left them, and no reader ever hears
        of damage or gets a wrong byte.

A moment by default; with ZO_TEST_LONG in the environment some 400 kills and a minute. ADVERSARY_SEED chooses others.
"""
import collections
import contextlib
import itertools
import os
import pathlib
import random
import shutil
import subprocess
import sys
import threading
import time

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from parts import files
from tool import COMMAND, answer, main, run, start, write

LONG = "ZO_TEST_LONG" in os.environ
rng = random.Random(int(os.environ.get("ADVERSARY_SEED", "1")))


def state(library):
    """All that it holds: how often a name, live or not, has which content. The tool itself says that it is whole."""
    run("test", library, "--deleted", "-q", err="")
    listed = answer("list", library, "--versions")["members"]
    assert all(m["state"] in ("ok", "deleted") for m in listed), listed
    numbers = "\n".join(f"@{m['entry']}" for m in listed)
    content = run("cat", library, "--files-from", "-", stdin=numbers.encode()) if listed else b""
    found, at = collections.Counter(), 0
    for m in listed:
        found[m["name"], m["state"] == "ok", content[at:at + m["size"]]] += 1
        at += m["size"]
    return found


def live(found):
    return {name: content for (name, is_live, content) in found if is_live}


def contents(found):
    """Of whatever state: nothing that was once packed goes."""
    return {(name, content) for (name, _, content) in found}


# ---- kills ----


def fill(folder, seed):
    """Some files, as they are at one time: many small ones, some that take a while, and not always the same."""
    some = random.Random(seed)
    for i in range(24):
        if some.random() < 0.8:
            write(f"{folder}/{i % 3}/part {i}.txt", f"{folder} {i} {seed % 3 * (i % 2)}\n".encode() * some.randrange(1, 3000))
    write(f"{folder}/large", some.randbytes(400_000))


def make_base():
    """A library with folders, older versions and deleted members, and other files beside it to pack."""
    for seed in (1, 2):
        fill("work", seed)
        run("add", "base.lib", "work", "--mode", "fast", "-q")
    run("delete", "base.lib", "work/1", "-q")
    shutil.rmtree("work")
    fill("work", 3)


def before_or_after(before, after, found):
    """One step."""
    return found in (before, after)


def file_by_file(before, after, found):
    """Each is packed or not; what has no file any more goes last, at once, and only when all is packed."""
    old, new, now = live(before), live(after), live(found)
    gone = set(old) - set(new)
    packed = {name for name in new if now.get(name) == new[name]}
    whole = all(now[name] in (old.get(name), new.get(name)) for name in now) and set(now) >= set(old) - gone
    return whole and contents(found) >= contents(before) and (
        gone <= set(now) or (not gone & set(now) and packed == set(new)))


# Arguments, and what may be found.
KILLED = [
    (["add", "a.lib", "work"], file_by_file),
    (["update", "a.lib", "work", "--by-content"], file_by_file),
    (["sync", "a.lib", "work"], file_by_file),
    (["delete", "a.lib", "work"], before_or_after),
    (["delete", "a.lib", "work/0", "--physically"], before_or_after),
    (["delete", "a.lib", "work/2", "--physically", "--versions"], before_or_after),
    (["rename", "a.lib", "work", "moved elsewhere"], before_or_after),
    (["rename", "a.lib", "work", "kork"], before_or_after),
    (["recover", "a.lib", "work/1"], before_or_after),
    (["recover", "a.lib", "work", "--all"], before_or_after),
    (["reorganize", "a.lib"], before_or_after),
    (["extract", "a.lib", "-o", "out"], None),
    (["salvage", "a.lib", "new.lib"], None),
]


def look():
    """What changes when somebody works here."""
    seen = []
    for entry in os.scandir():
        with contextlib.suppress(FileNotFoundError):  # gone meanwhile
            s = entry.stat()
            seen.append((entry.name, s.st_size, s.st_mtime_ns, s.st_ino))
    return seen


def kill_somewhere(args, usual):
    """Ends it after a part of the time that it takes, or shortly after the n-th thing that can be seen of it."""
    seen, changes = look(), rng.choice((0, 1, 1, 1, 2, 2, 3, 4, 6))
    end = time.perf_counter() + rng.random() * 1.1 * usual
    worker = start(*args, "-q", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    while worker.poll() is None and (changes or time.perf_counter() < end):
        if changes and (now := look()) != seen:
            seen, changes = now, changes - 1
            end = time.perf_counter() + (0 if changes else rng.random() * 0.008)
    worker.kill()
    return worker.wait()


def whole_files(folder, library):
    """What came out so far is as the library has it; other names are temporary ones."""
    left = 0
    for name in files(folder) if os.path.isdir(folder) else []:
        content = pathlib.Path(folder, name).read_bytes()
        left += name not in library
        assert library.get(name, content) == content, f"{name} came out with {len(content)} bytes"
    return left


def kill_once(args, rule, base, twins, tally):
    shutil.copyfile("base.lib", "a.lib")
    if tuple(args) not in twins:  # what it does when it is left alone, and how long that takes
        begin = time.perf_counter()
        run(*args, "-q")
        twins[tuple(args)] = time.perf_counter() - begin, state("a.lib")
        clean_up()
        shutil.copyfile("base.lib", "a.lib")
    usual, after = twins[tuple(args)]
    code = kill_somewhere(args, usual)
    found = state("a.lib")
    if rule:
        assert rule(base, after, found), f"{args}, killed: {explain(base, after, found)}"
    else:
        assert found == base, args
        tally["temporary files left"] += whole_files("out", live(base))
        if os.path.exists("new.lib") and os.path.getsize("new.lib") >= 32:
            assert state("new.lib").keys() <= base.keys(), "salvaged"
    where = "ended" if code >= 0 else "before" if found == base else "after" if found == after else "between"
    tally[f"{args[0]}: {where}"] += 1
    run("add", "a.lib", "next.txt", "-q")  # the next writer settles it
    assert state("a.lib") == found + collections.Counter([("next.txt", True, b"content\n")]), f"{args}, then add"
    clean_up()


def explain(before, after, found):
    def shown(entries):
        return sorted((name, is_live, len(content)) for name, is_live, content in entries)[:9]

    return "".join(f"\n{len(found)} entries; {what} it lacks {shown(other - found)} and has {shown(found - other)}"
                   for what, other in (("of before", before), ("of after", after)))


def clean_up():
    for name in os.listdir():
        if name not in ("base.lib", "work", "next.txt"):
            shutil.rmtree(name) if os.path.isdir(name) else os.remove(name)


def kills():
    make_base()
    write("next.txt")
    base, twins, tally = state("base.lib"), {}, collections.Counter()
    rounds = 416 if LONG else len(KILLED)
    for args, rule in itertools.islice(itertools.cycle(KILLED), rounds):
        kill_once(args, rule, base, twins, tally)
    return tally


# ---- crowd ----


def told(name, seed):
    """A member's content says which it is, so that who reads knows what is right."""
    return f"{name} {seed}\n".encode() * (20 + seed * 37 % 4000)


def is_told(name, content):
    said, _, seed = content.split(b"\n", 1)[0].decode().rpartition(" ")
    return said.rpartition("/")[2] == name.rpartition("/")[2] and content == told(said, int(seed))


class Writer:
    """Works on members of its own, and knows what it has done."""

    WORK = ["physically", "rename", "reorganize", "add", "delete", "sync"]

    def __init__(self, number, tally):
        self.own, self.tally, self.rng = f"w{number}", tally, random.Random(rng.random())
        self.work = itertools.cycle(self.WORK[number:] + self.WORK[:number])
        self.model = {}
        self.pack("add")

    def call(self, verb, *args):
        run(verb, "crowd.lib", *args, "--lock-timeout", "300", "-q", err="")
        self.tally[verb] += 1

    def pack(self, verb):
        for i in range(self.rng.randrange(3, 9)):
            name = f"{self.own}/part{i}"
            self.model[name] = told(name, self.rng.randrange(1000))
            write(name, self.model[name])
        if verb == "sync":
            for name in [n for n in self.model if not os.path.exists(n) or self.rng.random() < 0.2]:
                pathlib.Path(name).unlink(missing_ok=True)
                del self.model[name]
        self.call(verb, self.own, "--overwrite", "always") if verb == "add" else self.call(verb, self.own)

    def step(self):
        what = next(self.work)
        if what in ("add", "sync") or not self.model:
            self.pack("sync" if what == "sync" else "add")
        elif what == "delete":
            self.call("delete", self.own)
            done = subprocess.run([*COMMAND, "recover", "crowd.lib", *self.model, "--lock-timeout", "300", "-q"],
                                  capture_output=True)
            assert done.returncode in (0, 10), done
            self.tally[f"recover: {done.returncode}"] += 1
            if done.returncode == 10:  # another one reorganized meanwhile
                shutil.rmtree(self.own)
                self.model.clear()
        elif what == "rename":
            self.call("rename", self.own, self.own + "_moved")
            self.call("rename", self.own + "_moved", self.own)
        elif what == "physically":
            name = self.rng.choice(sorted(self.model))
            self.call("delete", name, "--physically")
            pathlib.Path(name).unlink(missing_ok=True)
            del self.model[name]
        else:
            self.call("reorganize")


def read_once(which, tally):
    """A reader may find that what it listed is gone, and nothing worse."""
    verb = ("list", "test", "extract", "cat")[which]
    out = f"out {which}"
    args = {"extract": ["-o", out, "--overwrite", "always"], "cat": ["**"]}.get(verb, [])
    done = subprocess.run(COMMAND + [verb, "crowd.lib", *args], capture_output=True)
    said = done.stderr.decode()
    tally[f"{verb}: {done.returncode}"] += 1
    assert done.returncode in (0, 2, 10) and "damaged" not in said, f"{verb}: {done.returncode} {said}"
    for name in files(out) if verb == "extract" and os.path.isdir(out) else []:
        assert is_told(name, pathlib.Path(out, name).read_bytes()), name
    shutil.rmtree(out, ignore_errors=True)


def crowd():
    write("first/part", told("first/part", 1))
    run("create", "crowd.lib", "first", "-q")
    tally, failures = collections.Counter(), []
    writers = [Writer(i, tally) for i in range(4)]
    end, at_least = time.monotonic() + (60 if LONG else 0), 3
    busy = [True]

    def guarded(work):
        try:
            work()
        except BaseException as failure:  # of any kind: the others end, and it is told
            failures.append(failure)

    def write_on(writer):
        for step in itertools.count():
            if failures or (step >= at_least and time.monotonic() > end):
                return
            writer.step()

    def read_on(which):
        while busy and not failures:
            read_once(which, tally)

    working = [threading.Thread(target=guarded, args=(lambda w=w: write_on(w),)) for w in writers]
    reading = [threading.Thread(target=guarded, args=(lambda i=i: read_on(i),)) for i in range(4)]
    for thread in working + reading:
        thread.start()
    for thread in working:
        thread.join()
    busy.clear()
    for thread in reading:
        thread.join()
    if failures:
        raise failures[0]
    model = {"first/part": told("first/part", 1)}
    for writer in writers:
        model.update(writer.model)
    assert live(state("crowd.lib")) == model
    return tally


def figures(check):
    for what, count in sorted(check().items()):
        print(f"{count:6} {what}")


main({"kills": lambda: figures(kills), "crowd": lambda: figures(crowd)})
