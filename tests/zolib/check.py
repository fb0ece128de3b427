#!/usr/bin/env python3
"""check.py ROOT ZOLIB CHECK: runs the tool as a user does, and looks at exit code, output, talk and files.

Every check gets a folder of its own as current folder. Nothing sleeps: where two programs have to meet, one waits for
what the other says.
"""
import base64
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from parts import files, foreign, members, tree
from tool import COMMAND, ROOT, TOOL, answer, completed, main, on_terminal, run, start, whole_manual, write


def small_files():
    """What the disk of the next program is full at: 1 MB in one file."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 20, 1 << 20))


def english(tool, *folders):
    """The message file of a tool that says what stands in the code of these folders."""
    texts = {}
    for source in sorted(source for folder in folders for source in (ROOT / "tools" / folder).glob("*.*")):
        for number, words in re.findall(r'\{\s*(\d+),\s*((?:"(?:\\.|[^"\\])*"\s*)+)\}', source.read_text()):
            text = "".join(re.findall(r'"((?:\\.|[^"\\])*)"', words)).replace('\\"', '"')
            text = re.sub("^ | $", r"\\u0020", text)  # blanks at the ends would go; the escapes of C++ are the file's
            assert texts.setdefault(int(number), text) == text, f"{number} means {text!r} and {texts[int(number)]!r}"
    lines = [f"{number:<4}{texts[number]}\n" for number in sorted(texts) if number]
    return f"@messages 1\n@language en\n# Texts of the tool {tool}; written by a test.\n\n" + "".join(lines)


def language():
    """The texts of the code are those of the English file, and others speak German; answers for programs stay."""
    for tool, folders in (("zolib", ("shared", "zolib")), ("zoval", ("zoval",))):
        path, text = ROOT / f"share/messages/{tool}.msg", english(tool, *folders)
        if os.environ.get("ZO_WRITE_MESSAGES"):
            path.write_text(text)
        assert path.read_text() == text, "to write it: ZO_WRITE_MESSAGES=1 ctest -R zolib.language"
    tree()
    run("--language", "de", "create", "a.lib", "parts", err=r"a\.lib: 5 neu; .* auf .* gepackt \(\d+ ?%\)\n", out="")
    table = run("list", "a.lib", "--language=de-AT").decode().splitlines()
    assert table[0].split() == ["GRÖSSE", "GEPACKT", "QUOTE", "GEÄNDERT", "ART", "ZUSTAND", "NAME"], table
    assert len({line.find(name) for line, name in zip(table, ["NAME", "parts/empty", "parts/Gr", "parts/old"])}) == 1, table
    run("list", "none.lib", "--language", "de", code=10, err="zolib: Die Bibliothek none.lib wurde nicht gefunden.*")
    assert run("help", "--language", "de").startswith("Verwaltet".encode())
    assert "Braucht: --physically" in run("help", "delete", "--language", "de").decode()
    assert answer("list", "a.lib", "--language", "5%", code=7)["messages"]
    for args in (["list", "a.lib"], ["test", "a.lib"], ["help"], ["delete", "a.lib", "*.bak", "--dry-run"]):
        inGerman, inEnglish = answer(*args, "--language", "de"), answer(*args)
        for value in inGerman, inEnglish:
            value["messages"] = value["text"] = []
        assert inGerman == inEnglish
    os.environ["ZOLIB_LANGUAGE"] = "de_DE.UTF-8:en"
    run("test", "a.lib", err=r"a\.lib: 5 Mitglieder in Ordnung\n")
    for words in (["--language", "C"], ["--language=en"], ["--language", "fr"]):  # no French: the program's own
        run("test", "a.lib", *words, err=r"a\.lib: 5 members ok\n")
    os.environ["ZOLIB_LANGUAGE"] = "C"
    run("test", "a.lib", "--language", "5%", code=7, err="zolib: 5% is no language .*")
    run("test", "a.lib", "--language", code=7, err="zolib: --language needs a value; .*")


def work():
    """A life of a library, with each verb and alias."""
    names = tree()
    run("create", "a.lib", "parts", err=r"a\.lib: 5 added; .* packed to .* \(\d+%\)\n", out="")
    assert members("a.lib") == names, members("a.lib")
    table = run("l", "a.lib").decode().splitlines()
    assert table[0].split() == ["SIZE", "PACKED", "RATIO", "MODIFIED", "MODE", "STATE", "NAME"]
    assert re.fullmatch(r" *5000 +\d+ +\d+%  \d{4}-\d\d-\d\d \d\d:\d\d  normal  ok +parts/bolts/m8\.dwg", table[4]), table
    assert re.fullmatch(r" *3000 +3000 +100% .* store +ok +parts/bolts/steel/m10\.dwg", table[5]), table
    run("t", "a.lib", err=r"a\.lib: 5 members ok\n")
    os.utime("parts/bolts/m8.dwg", (1_000_000_000, 1_234_567_890))
    run("a", "a.lib", "parts/bolts", "--mode", "store", err=r"a\.lib: 2 replaced; .*\n")
    run("x", "a.lib", "-o", "out", "-v", err=r"(extracted  .*\n){5}a\.lib: 5 members extracted\n")
    assert files("out/parts") == files("parts")
    assert all(pathlib.Path("out", n).read_bytes() == pathlib.Path(n).read_bytes() for n in names)
    assert os.stat("out/parts/bolts/m8.dwg").st_mtime == 1_234_567_890
    write("parts/old.bak", b"newer\n")
    run("u", "a.lib", "parts", err=r"a\.lib: 1 replaced, 4 kept; .*\n")
    assert run("cat", "a.lib", "parts/old.bak", "parts/empty.txt") == b"newer\n"
    run("d", "a.lib", "*.bak", "PARTS\\bolts\\steel", err=r"a\.lib: 2 members deleted\n")
    assert len(members("a.lib")) == 3 and "deleted" in run("list", "a.lib", "--deleted").decode()
    run("recover", "a.lib", "*.bak", err=r"a\.lib: 1 member recovered\n")
    versions()
    run("rn", "a.lib", "parts/old.bak", "parts/new.txt")
    run("rename", "a.lib", "parts/bolts", "screws", err=r"a\.lib: 1 member renamed\n")
    before = os.path.getsize("a.lib")
    run("reorganize", "a.lib", err=r"a\.lib: \d+ deleted members? removed; .* before, .* now\n")
    assert os.path.getsize("a.lib") < before
    run("delete", "a.lib", "parts", "--physically", "-q", err="")
    assert members("a.lib", "--deleted") == ["screws/m8.dwg"]
    assert run("cat", "a.lib", "screws/m8.dwg") == b"thread M8\n" * 500
    run("info", "a.lib", out=r".*members +1, 5000 bytes.*deleted +0.*")
    assert files() == sorted(["a.lib"] + ["out/" + n for n in names] + names), files()  # nothing temporary stayed


def versions():
    """Of several deleted members of a name any can be had back."""
    for content in (b"first", b"second", b"third"):
        run("add", "v.lib", write("v.txt", content), "-q")
        run("delete", "v.lib", "v.txt", "-q")
    os.remove("v.txt")
    for options, found in (([], b"third"), (["--first"], b"first")):
        run("recover", "v.lib", "v.txt", *options, err=r"v\.lib: 1 member recovered\n")
        assert run("cat", "v.lib", "v.txt") == found
        run("delete", "v.lib", "v.txt", "-q")
    run("recover", "v.lib", "--all", "--first", "v.txt", code=7, err="zolib: only one of these goes: --first, --all; .*")
    run("recover", "v.lib", "v.txt", "--all", err=r"v\.lib: 3 members recovered\n")
    assert run("cat", "v.lib", "v~1.txt", "v~2.txt", "v.txt") == b"firstsecondthird"
    run("recover", "v.lib", "v.txt", code=2, err="zolib: cannot recover v.txt: a member has that name; .*")
    run("delete", "v.lib", "v~1.txt", "-q")
    run("recover", "v.lib", "v*.txt", "--all", "--dry-run",
        out="would be recovered  v.txt -> v~3.txt\nwould be recovered  v.txt -> v~4.txt\nwould be recovered  v~1.txt\n")
    back = {m["name"]: m.get("to") for m in answer("recover", "v.lib", "v~1.txt", "v.txt", "--all")["members"]}
    assert back["v~1.txt"] is None and back["v.txt"] == "v~4.txt", back  # beside the member of the name
    for content in (b"first", b"second"):  # of a name that is deleted already no trace stays, either
        run("add", "v.lib", write("w.txt", content), "-q")
    run("delete", "v.lib", "w.txt", "-q")
    run("delete", "v.lib", "w.txt", "--physically", code=10, err=".*no member w.txt.*")
    run("delete", "v.lib", "w.txt", "--physically", "--versions", err=r"v\.lib: 1 member deleted\n")
    assert b"w.txt" not in pathlib.Path("v.lib").read_bytes()
    os.remove("w.txt")
    os.remove("v.lib")


def one_name():
    """LIBRARY|MEMBER is the library and the first of its members behind it."""
    tree()
    library = str(pathlib.Path("a.lib").resolve())
    run("create", "a.lib", "parts", "-q")
    run("cat", f"{library}|parts/old.bak", out="content\n")
    run("cat", "a.lib|PARTS\\old.bak", "parts/empty.txt", out="content\n")
    assert members("a.lib|parts/bolts") == members("a.lib|*.dwg") == ["parts/bolts/m8.dwg", "parts/bolts/steel/m10.dwg"]
    assert answer("list", "a.lib|parts/bolts")["library"] == "a.lib"
    run("extract", "a.lib|parts/old.bak", "-o", "out", err="a.lib: 1 member extracted\n")
    run("test", "a.lib|parts/bolts", err="a.lib: 2 members ok\n")
    run("rename", "a.lib|parts/old.bak", "parts/new", "-q")
    run("delete", "a.lib|parts/new", "-q")
    run("recover", "a.lib|parts/new", err="a.lib: 1 member recovered\n")
    foreign("f.lib", [("a:b|c", b"odd", 0)])
    run("cat", "f.lib|a<;b<|c", out="odd")
    for args, code, said in (
        (["cat", "a.lib|none"], 10, "a.lib has no member none; .*"),
        (["list", "none.lib|a"], 10, "cannot find the library none.lib.*"),
        (["cat", "a.lib|a|b"], 7, ".* is no LIBRARY.MEMBER; .*"), (["cat", "a.lib|"], 7, ".* is no LIBRARY.MEMBER; .*"),
        (["cat", "f.lib|a:b"], 7, ".* is no LIBRARY.MEMBER; .*"),
        (["add", "a.lib|x", "parts"], 7, "add takes a library, and no member of one: a.lib.x; .*"),
        (["sync", "a.lib|x", "parts"], 7, "sync takes a library, .*"), (["salvage", "a.lib|x", "b.lib"], 7, "salvage .*"),
        (["rename", "a.lib", "one"], 7, "rename takes two names, .*"), (["rename", "a.lib|one", "b", "c"], 7, "rename .*"),
    ):
        run(*args, code=code, err=f"zolib: {said}\n")


def numbers():
    """Every version has a number, by which it is read, brought back, renamed and removed; so has an odd name."""
    for content in (b"first", b"second"):
        run("add", "v.lib", write("v.txt", content), write("w.txt", content), "-q")
    listed = answer("list", "v.lib", "--versions")["members"]
    assert [m["state"] for m in listed] == ["deleted", "deleted", "ok", "ok"] and len({m["entry"] for m in listed}) == 4
    assert re.search(r"\n *@1 .* deleted +v.txt\n", run("list", "v.lib", "--versions").decode())
    assert run("cat", "v.lib", "@1", "v.txt", "@4") == b"firstsecondsecond"
    run("extract", "v.lib", "@1", "-o", "old", err=".*1 member extracted\n")
    assert pathlib.Path("old/v.txt").read_bytes() == b"first"
    run("recover", "v.lib", "v.txt", "w.txt", code=2, err="zolib: cannot recover v.txt: a member has that name; .*0 members.*")
    run("rename", "v.lib", "v.txt", "new.txt", "-q")
    run("recover", "v.lib", "v.txt", "w.txt", code=2, err="zolib: cannot recover w.txt: .*0 members.*")  # all or none
    run("recover", "v.lib", "@1", err=".*1 member recovered\n")
    run("rename", "v.lib", "@1", "first.txt", "-q")
    assert run("cat", "v.lib", "first.txt") == b"first"
    run("delete", "v.lib", "w.txt", "--versions", code=7, err="zolib: one of these needs the other: .*")
    run("delete", "v.lib", "w.txt", "--physically", "--versions", err=".*1 member deleted\n")
    left = members("v.lib", "--deleted")
    assert set(members("v.lib")) == {"first.txt", "new.txt"} and "w.txt" not in left, left
    run("delete", "v.lib", "@77", code=10, err="zolib: v.lib has no member @77; .*")
    foreign("o.lib", [("$a.dwg", b"macro", 0), ("a.txt:stream", b"stream", 0), ("a\x01b", b"control", 0), ("b", b"b", 0)])
    assert run("cat", "o.lib", "@1", "@3") == b"macrocontrol"
    for number in ("@1", "@2"):
        run("rename", "o.lib", number, f"name{number[1]}.txt", "-q")
    run("delete", "o.lib", "@3", "-q")
    assert sorted(members("o.lib")) == ["b", "name1.txt", "name2.txt"], run("list", "o.lib", "--versions").decode()


def twins():
    """Members that share a name but for its case: the second is found by its number alone, by every verb."""
    contents = {"a.txt": b"one", "A.TXT": b"two", "a.TXT": b"gone", "b": b"b"}
    foreign("t.lib", [(name, content, 0x200 * (content == b"gone")) for name, content in contents.items()])
    assert run("cat", "t.lib", "a.txt") == b"one" and run("cat", "t.lib", "@2", "@1", "@3") == b"twoonegone"
    assert [m["state"] for m in answer("list", "t.lib", "@2", "@3", "@4")["members"]] == ["hidden", "deleted", "unprotected"]
    assert answer("info", "t.lib", "@2")["members"] == 1
    run("test", "t.lib", "@2", err="A.TXT is unprotected: .*: 0 members ok, 1 unprotected\n")
    run("extract", "t.lib", "@2", "@3", "-o", "out", code=1, err="zolib: left a.TXT in the library: another .*: 1 member .*")
    assert pathlib.Path("out/A.TXT").read_bytes() == b"two"
    run("extract", "t.lib", "-o", "all", code=1, err="zolib: left 1 hidden member in the .*: 2 members extracted\n")
    run("delete", "t.lib", "b", "@3", code=2, err="zolib: cannot delete a.TXT: it is deleted already; .*: 0 members.*")
    run("rename", "t.lib", "@3", "c", code=2, err="zolib: cannot rename a.TXT: it is deleted; .*: 0 members.*")
    run("recover", "t.lib", "@2", code=10, err="zolib: t.lib has no deleted member @2; .*")
    run("recover", "t.lib", "@3", code=2, err="zolib: cannot recover a.TXT: a member has that name; .*")
    run("recover", "t.lib", "@3", "--all", "-q")
    run("rename", "t.lib", "@2", "second.txt", "-q")
    assert run("cat", "t.lib", "a.txt", "second.txt", "a~1.txt") == b"onetwogone"
    run("delete", "t.lib", "@1", "--physically", "-q")
    assert sorted(members("t.lib")) == ["a~1.TXT", "b", "second.txt"]
    for content in (b"1", b"2"):  # two versions that are named are both meant
        run("add", "t.lib", write("v", content), "-q")
    run("delete", "t.lib", "v", "-q")
    both = [f"@{m['entry']}" for m in answer("list", "t.lib", "--deleted", "v")["members"]]
    run("recover", "t.lib", *both, code=2, err="zolib: cannot recover v: a member has that name; .*: 0 members.*")


def folders():
    """sync, diff, and what compares by content; ways to extract, list and name."""
    tree()
    run("add", "g.lib", "parts/[eo]*.{txt,bak}", err=r"g\.lib: 2 added.*")
    write("kept/x.txt")
    run("create", "a.lib", "parts", "kept", "-q")
    run("diff", "a.lib", "parts", out="", err=r"a\.lib: 5 the same, 0 changed, 0 new, 0 gone\n")
    os.remove("parts/old.bak")
    write("parts/new.txt")
    old = os.stat("parts/empty.txt")
    write("parts/empty.txt", b"now filled")
    os.utime("parts/empty.txt", ns=(old.st_atime_ns, old.st_mtime_ns))
    told = {"changed  parts/empty.txt", "new  parts/new.txt", "gone  parts/old.bak"}
    assert set(run("diff", "a.lib", "parts", code=1).decode().splitlines()) == told
    assert answer("diff", "a.lib", "parts", code=1)["gone"] == 1
    plan = run("sync", "a.lib", "parts", "--dry-run").decode().splitlines()
    assert plan[-1] == "would be deleted  parts/old.bak" and "would be replaced  parts/empty.txt" in plan, plan
    run("sync", "a.lib", "parts", "--verify", err=r"a\.lib: 1 added, 1 replaced, 3 kept, 1 deleted; .*\n")
    run("diff", "a.lib", "parts", "kept", err=".*6 the same.*")
    assert "kept/x.txt" in members("a.lib")
    run("sync", "a.lib", "parts/new.txt", code=2, err="zolib: parts/new.txt is no folder\n")
    run("sync", "a.lib", "none", code=10, err="zolib: cannot find none.*")
    write("parts/new.txt", b"other!!\n")  # as long as before, and older
    os.utime("parts/new.txt", (1_000_000_000, 1_000_000_000))
    run("update", "a.lib", "parts", err=".*: 5 kept\n")
    run("update", "a.lib", "parts", "--by-content", err=".*: 1 replaced, 4 kept; .*")
    run("extract", "a.lib", "parts/bolts", "--flat", "-o", "flat", "-q")
    assert files("flat") == ["m10.dwg", "m8.dwg"]
    run("extract", "a.lib", "--strip", "1", "-o", "strip", "-q")
    assert files("strip") == sorted(["Größe 1.txt", "bolts/m8.dwg", "bolts/steel/m10.dwg", "empty.txt", "new.txt", "x.txt"])
    write("other/x.txt")
    run("add", "a.lib", "other", "-q")
    run("extract", "a.lib", "x.txt", "*/x.txt", "--flat", "-o", "twice", code=10)
    run("extract", "a.lib", "*/x.txt", "--flat", "-o", "once", "--overwrite", "always", code=1, err="zolib: left other/x.txt.*")
    assert [m["name"] for m in answer("list", "a.lib", "--folders")["folders"]] == [
        "kept/", "other/", "parts/", "parts/bolts/", "parts/bolts/steel/"]
    packed = [f["packed"] for f in answer("list", "a.lib", "--folders", "--sort", "packed")["folders"]]
    assert packed == sorted(packed)
    run("list", "a.lib", "--folders", "--sort", "time", code=7, err="zolib: folders have no time .*")
    sizes = [int(line.split()[0]) for line in run("list", "a.lib", "--sort", "size").decode().splitlines()[1:-1]]
    assert sizes == sorted(sizes)
    run("delete", "a.lib", "--files-from", "-", stdin="parts/Größe 1.txt\0kept/x.txt\0".encode(), err=".*2 members deleted\n")
    assert members("a.lib", "*.{dwg,bak}") == ["parts/bolts/m8.dwg", "parts/bolts/steel/m10.dwg"]
    assert members("a.lib", "m[0-9].dwg") == ["parts/bolts/m8.dwg"]
    run("rename", "a.lib", "parts/bolts", "other", "--dry-run", err="in all: 2 renamed; .*\n",
        out="would be renamed  parts/bolts/m8.dwg -> other/m8.dwg\nwould be renamed  .* -> other/steel/m10.dwg\n")
    run("add", "a.lib", "other/x.txt", "-q")
    run("rename", "a.lib", "parts/bolts/m8.dwg", "other/steel/m10.dwg", "-q")
    run("rename", "a.lib", "parts/bolts", "other", code=2, err="zolib: cannot rename .*: a member has that name; .*0 members.*")
    run("rename", "a.lib", "parts/bolts", "sub/..", code=2, err="zolib: cannot rename anything to sub/..: it has no name .*")
    assert "parts/bolts/steel/m10.dwg" in members("a.lib")
    for old, new in (("other", "parts/empty.txt/x"), ("other/x.txt", "Parts\\bolts"), ("parts/bolts", "other/x.txt")):
        run("rename", "a.lib", old, new, code=2, err="zolib: cannot rename .*: the library has .* and it cannot be both\n.*0 members.*")
    for name in ("PARTS/bolts", "other/x.txt/y"):  # a file and a folder could not both come out
        run("add", "a.lib", "-", "--name", name, code=2, err="zolib: cannot add -: the library has .* it cannot be both\n.*")
    run("delete", "a.lib", "other/x.txt", "-q")
    run("add", "a.lib", "-", "--name", "other/x.txt/in", "-q", stdin=b"x")
    for more in ([], ["--dry-run"], ["--all"]):
        run("recover", "a.lib", "other/x.txt", *more, code=2,
            err="zolib: cannot recover other/x.txt: the library has .* it cannot be both\n.*")
    run("delete", "a.lib", "other/x.txt/in", "--physically", "-q")
    run("recover", "a.lib", "other/x.txt", "-q")
    run("rename", "a.lib", "other/x.txt", "other/x.txt/in", "-q")
    run("rename", "a.lib", "other/x.txt/in", "other/x.txt", "-q")
    os.makedirs("lost/empty")
    os.symlink("empty", "lost/link")
    os.chmod(write("lost/read only.txt"), 0o444)
    run("add", "b.lib", "lost", err=".*1 link to a folder .*1 empty folder .*1 file is read-only.*1 added.*")
    run("add", "b.lib", "lost", "-v", err=".*link  lost/link.*read-only  lost/read only.txt.*empty  lost/empty.*")


def exit_codes():
    """Command line, exit code, and the one line that is said."""
    write("no.lib", b"this is no library, but long enough to look like one\n" * 3)
    write("a.txt")
    write("con.txt")
    write("utf16.txt", "a.txt".encode("utf-16"))
    run("create", "a.lib", "a.txt", "-q", err="")
    for args, code, said in (
        ([], 7, "say what to do"), (["frobnicate"], 7, "there is no verb frobnicate"), (["list"], 7, "LIBRARY is missing"),
        (["exract", "x"], 7, "there is no verb exract, but extract"), (["-q", "list"], 7, "the verb comes first.*"),
        (["add", "a.lib", "-b.txt"], 7, "there is no option -b.txt .* behind --"), (["list", ""], 7, ".*empty.*"),
        (["reorganize", "a.lib", "b"], 7, "b is one name too many"),
        (["list", "a.lib", "--mode", "best"], 7, ".*"), (["add", "a.lib"], 7, "name what to add"),
        (["add", "a.lib", "a.txt", "--mode", "ultra"], 7, "--mode: ultra is none of normal, .*, auto"),
        (["add", "a.lib", "a.txt", "--mode"], 7, "--mode needs a value"), (["rename", "a.lib", "a", "b", "c"], 7, "rename takes two names, .*"),
        (["extract", "a.lib", "-o=out"], 7, "-o=out: the value .* without ="), (["list", "a.lib", "--json=x"], 7, ".*no value"), (["list", "a.lib", "--quiet=1"], 7, "--quiet takes no value"),
        (["extract", "a.lib", "-o", "a", "-o", "b"], 7, ".* more than once"),
        (["add", "a.lib", "-"], 7, ".*--name.*"), (["add", "a.lib", "a.txt", "--lock-timeout", "-1"], 7, ".*: -1 .*"),
        (["help", "frobnicate"], 7, ".*"),
        (["list", "none.lib"], 10, r"cannot find the library none\.lib: .*; check its name"),
        (["add", "b.lib", "none.txt"], 10, r"cannot find none\.txt: .*; check the name"),
        (["extract", "a.lib", "none"], 10, "a.lib has no member none; .*"),
        (["rename", "a.lib", "none", "some"], 10, ".*"), (["recover", "a.lib", "a.txt"], 10, ".*no deleted member.*"),
        (["add", "a.lib", "--files-from", "none.txt"], 10, ".*"),
        (["list", "no.lib"], 12, "no.lib is not a library: .*"), (["add", "no.lib", "a.txt"], 12, ".*"),
        (["list", "."], 12, ".*folder.*"), (["salvage", "no.lib", "b.lib"], 12, ".*"),
        (["create", "a.lib", "a.txt"], 2, "a.lib exists already; .*"), (["salvage", "a.lib", "no.lib"], 2, ".*exists.*"),
        (["add", "a.lib", "-", "--name", "../x"], 2, "cannot add -: it leads out .*; give another --name"),
        (["rename", "a.lib", "a.txt", "con"], 2, "cannot rename .* to con: it names a device"),
        (["info", "a.lib", "--dot", "none/x"], 2, r"cannot write none/x: (?!it was refused).*"),
        (["extract", "a.lib", "-o", "no.lib"], 2, "no.lib is a file; .*"),
        (["add", "a.lib", "--files-from", "utf16.txt"], 2, ".*UTF-16; .* UTF-8.*"),
        (["add", "b.lib", "con.txt"], 2, "cannot add con.txt: it names a device; rename the file"),
        (["create", "none/b.lib", "a.txt"], 2, r"cannot open none/b\.lib: .*; .*"),
        (["create", "none/b.lib", "a.txt", "--dry-run"], 2, r"cannot make none/b\.lib: there is no folder none"),
        (["info", "a.lib", "--dot", "./A.LIB"], 2, r"cannot write ./A.LIB: it is the library itself"),
    ):
        # One line for the failure; what else is said is no failure's.
        run(*args, code=code, out="", err=rf"zolib: {said}(; see `zolib help`)?\n([^z].*: .*\n)?")
    assert files() == ["a.lib", "a.txt", "con.txt", "no.lib", "utf16.txt"], files()
    for args, begin in ((["help"], "Keeps"), (["--help"], "Keeps"), (["help", "x"], "Write"), (["x", "--help"], "Write"),
                        (["version"], "zolib 0"), (["--version"], "zolib 0")):
        assert run(*args, err="").decode().startswith(begin), args
    run("add", "a.lib", "a.txt", "none.txt", code=10, err=r".*a\.lib: 1 replaced.*")


def names():
    """The shell's paths, as they are."""
    (here := pathlib.Path("with blank/ä")).mkdir(parents=True)
    tree()
    run("create", os.path.abspath("with blank/ä/ö.lib"), os.path.abspath("parts"), "-q")
    os.chdir(here)
    assert members("ö.lib")[1] == "parts/Größe 1.txt"
    run("add", "./ö.lib", "../../parts/Größe 1.txt", err=".*1 added.*")
    run("add", "ö.lib", "../../parts", "--include", "*.dwg", "--exclude", "steel", err=".*: 1 replaced.*")
    run("add", "ö.lib", ".", err=".*nothing to add\n")  # but itself there is nothing here
    run("extract", "ö.lib", "größe 1.TXT", "--output", os.path.abspath("../o ut"))
    assert files("../o ut") == ["Größe 1.txt"]
    os.chdir("../..")
    write("b/x.txt")
    write("b/X.TXT", b"the other\n")
    os.symlink(".", "b/loop")
    said = r"zolib: left out b/(x|X)\.(txt|TXT): b/(?!\1)[xX]\.\w+ is .*; rename one of them\n1 link.*\nb\.lib: 1 added.*"
    run("create", "b.lib", "b", code=2, err=said)
    run("add", "ö.lib", "parts", "parts/old.bak", "./parts/old.bak", err=".*5 added.*")  # named twice is no fault
    odd = ["[x]", "[x,y]", "{}", "add", "-b", "--json"]  # to the command line they could be more than names
    for name in odd:
        write(name, name.encode())
    run("create", "list", "-q", "--exclude", "b", "--", *odd)
    assert members("list") == odd and run("cat", "list", "--", *odd[::-1]) == "".join(odd[::-1]).encode()
    assert members("list", "--exclude", "[x,y]", "--include", "x", "--include", "[x*", "[x]", "add") == ["[x]"]
    os.symlink("/proc/cpuinfo", "cpuinfo")  # which tells no size
    run("add", "b.lib", "cpuinfo", code=1, err=r".*zolib: cpuinfo had 0 bytes when it was found and \d+ when .*1 added.*")
    write("$part.dwg")
    run("add", "b.lib", "$part.dwg", code=2, err="zolib: cannot add ./[$]part.dwg: .*macro.*; rename the file\n.*")
    run("rename", "list", "add", "a/./b")
    run("extract", "list", "a/b", "-o", "renamed")
    assert files("renamed") == ["a/b"]
    write("t/a:b/in.txt")
    write("t/ok.txt")
    run("add", "colon.lib", "t", code=2, err=r"zolib: cannot add t/a:b: it names a stream \(a colon\); rename .*\ncolon.lib: 1 added.*")
    run("add", "colon.lib", "-", "--name", "./t//./new.txt", "-q", stdin=b"x")
    assert members("colon.lib") == ["t/ok.txt", "t/new.txt"]
    shutil.rmtree("t")
    write("日本.txt")
    run("sync", "w.lib", ".", "--include", "日本.txt", "-q")
    assert members("w.lib") == ["日本.txt"]
    os.remove("日本.txt")
    run("sync", "w.lib", ".", "--include", "日本.txt", err=r".*w\.lib: 1 deleted\n")
    for lib in ("b.lib", "new.lib"):
        run("add", lib, "a.txt:stream", code=10, err="zolib: cannot find a.txt:stream.*")
    assert not pathlib.Path("new.lib").exists()


def hostile():
    """What would leave the folder is refused; the rest comes out."""
    bad = ["../up.txt", "/abs.txt", "\\abs2.txt", "C:\\abs.txt", "Z:rel.txt", "a/../../up.txt", "con", "sub/nul.txt",
           "file.txt:stream", "dot./x", "blank /x", "end.", "end ", "\\\\server\\share\\x", "sub/", "com1",
           "a/...", "a/b*c", "a/b\nc", "..", ".", "a/.."]
    roots = ["/", "\\", "..\\", "a/..\\../", "C:", "c:/", "\\\\?\\C:\\", "\\\\.\\", "//host/share/", "\\U+002E\\U+002E/",
             "..\\U+002F", "\\U+0043\\U+003A/"]
    devices = ["nul", "CON.txt", "aux.tar.gz", "prn", "LPT9.x", "COM\xb9", "conin$", "CONOUT$", "nul ", "con:", "a/COM1/b"]
    ends = ["x.", "x ", "x. .", "a./x", "a /x", "x::$DATA", "x:s:$DATA", "x<", "x>y", 'x"', "x|", "x?", "x\x07", "x\\", "x//"]
    bad += [f"{root}escaped {i}" for i, root in enumerate(roots)] + devices + [f"{i}{end}" for i, end in enumerate(ends)]
    bad += ["$x", "$(HOME)/x", "http://host/x"]
    good = ["one.txt", "sub/two.txt", "sub\\three.txt", "x/../four.txt"]
    foreign("h.lib", [(n, b"content", 0) for n in [good[0], *bad, *good[1:]]])
    os.mkdir("inner")
    os.chdir("inner")
    value = answer("extract", "../h.lib", "--output", "out", code=1)
    assert any("refused to extract @30:" in m["text"] for m in value["messages"]), value["messages"]
    out = {m["name"] for m in value["members"] if m["action"] == "extracted"}
    assert out == set(good) and value["refused"] == len(bad), (out - set(good), value["refused"], len(bad))
    assert files("..") == ["h.lib"] + ["inner/out/" + n for n in ("four.txt", "one.txt", "sub/three.txt", "sub/two.txt")]
    write("in_the_way/one.txt/x")  # a folder where a file should be: a failure, and the rest goes on
    run("extract", "../h.lib", "one.txt", "sub/two.txt", "-o", "in_the_way", code=2,
        err="zolib: cannot extract one.txt to in_the_way/one.txt: there is a folder of that name\n.*1 member ex.*")
    assert pathlib.Path("in_the_way/sub/two.txt").read_bytes() == b"content"
    os.chdir("..")
    foreign("clash.lib", [("~", b"file", 0), ("~/x", b"x", 0), ("b/c", b"c", 0), ("B", b"b", 0), *((f"{i}", b"", 0) for i in range(20))])
    for threads in ("1", "4", "8"):  # the library's order decides, not who is first
        out = run("extract", "clash.lib", "-o", f"out{threads}", "--threads", threads, code=2,
                  err="zolib: cannot extract ~/x to .*cannot be both\nzolib: cannot extract B to .*: 22 members extracted\n")
        assert pathlib.Path(f"out{threads}/~").read_bytes() == b"file" and pathlib.Path(f"out{threads}/b/c").exists()
    run("extract", "clash.lib", "-o", "dry", "--dry-run", code=2, out=".*",
        err="(zolib: cannot extract .*cannot be both\n){2}in all: 22 extracted; .*\n")
    for m in answer("list", "h.lib")["members"]:  # each can be read, and comes out under a name that is none of these
        run("cat", "h.lib", f"@{m['entry']}", out="content")
    for number in range(len(bad) + len(good), 0, -1):
        run("rename", "h.lib", f"@{number}", f"named {number}", "-q")
    run("extract", "h.lib", "-o", "named", err=f"h.lib: {len(bad) + len(good)} members extracted\n")


def full():
    """A disk that gets full, and a name that is as long as the file system takes: nothing is said that is not so."""
    write("large", os.urandom(3 << 20))
    write("ä" * 120)
    run("create", "a.lib", "large", "ä" * 120, "--mode", "store")
    run("extract", "a.lib", "ä" * 120, "-o", "out", err=".*1 member extracted\n")
    done = subprocess.run(COMMAND + ["extract", "a.lib", "large", "-o", "out"], capture_output=True, preexec_fn=small_files)
    assert done.returncode == 2 and re.fullmatch("zolib: cannot extract large to out/large: (?!.*not found|it was refused).*\n.*",
                                                 done.stderr.decode(), re.S), done
    assert files("out") == ["ä" * 120]
    write("small")
    write("huge", os.urandom(17 << 20))
    run("create", "b.lib", "small", "-q")
    for verb, library in (("add", "b.lib"), ("create", "c.lib")):
        for source in ("large", "huge"):
            done = subprocess.run(COMMAND + [verb, library, source], capture_output=True, preexec_fn=small_files)
            assert done.returncode == 2 and re.match("zolib: cannot add .*: (?!.*damaged|it was refused)",
                                                     done.stderr.decode()), done
    run("test", "b.lib", err="b.lib: 1 member ok\n")
    assert not pathlib.Path("c.lib").exists()


def many():
    """More arguments than a command line has room for, and what the wrapper passes on with them."""
    names = [write(f"parts/{'x' * 60} {i}") for i in range(700)]
    os.environ.update(LANG="de_DE.UTF-8", LC_ALL="")
    wrapped = [str(ROOT / "scripts/tool-run"), TOOL]
    for args, code, said in ((["create", "a.lib", *names], 0, "a.lib: 700 neu"), (["list", "none.lib", *names], 10, "zolib: Die"),
                             (["test", "a.lib"], 0, "a.lib: 700 Mitglieder in Ordnung\n")):
        done = subprocess.run(wrapped + args, capture_output=True)
        assert done.returncode == code and done.stderr.decode().startswith(said), done
    assert members("a.lib") == names
    foreign("big.lib", [(f"{'x' * 60000}{i}", b"", 0) for i in range(300)])  # more names than a change has room for
    run("delete", "big.lib", "x*", code=2, err="zolib: cannot delete all of them: .*one step.* in parts, .*0 members deleted\n")
    if os.geteuid() == 0:  # another user of this checkout gets a prefix of his own
        ask = f"zo_root={ROOT}; HOME=/home/other; . {ROOT}/scripts/wine-env.sh; echo $WINEPREFIX"
        asked = subprocess.run(["bash", "-c", ask], capture_output=True, user=65534, env={"PATH": os.environ["PATH"]})
        assert asked.stdout.decode().startswith("/home/other/.cache/zo_com/wine"), asked


def streams():
    """Data in and out of pipes."""
    data = os.urandom(300_000)
    run("create", "a.lib", "-", "--name", "sub/data", stdin=data, out="")
    assert run("cat", "a.lib", "sub/data", err="") == data
    tree()
    run("add", "a.lib", "--files-from", "-", stdin="\ufeffparts/Größe 1.txt\r\n\nparts/bolts\n".encode(), err=".*3 added.*")
    listed = run("list", "a.lib", "--names")
    write("names.txt", listed)
    run("delete", "a.lib", "--files-from", "names.txt", err=r".*4 members deleted\n")
    before = pathlib.Path("a.lib").read_bytes()
    for nothing in (b"", b"\r\n\n"):  # names nothing, and so not everything
        for args in (["delete", "a.lib", "--physically", "--versions"], ["recover", "a.lib"], ["delete", "a.lib", "--include", "*"]):
            run(*args, "--files-from", "-", stdin=nothing, code=7, err="zolib: name what to .*: the list - is empty\n")
        for args in (["list", "a.lib", "--names"], ["cat", "a.lib"], ["extract", "a.lib", "-o", "out", "-q"], ["test", "a.lib", "-q"]):
            run(*args, "--files-from", "-", stdin=nothing, out="", err="")
    assert pathlib.Path("a.lib").read_bytes() == before and not pathlib.Path("out").exists()
    reader = start("list", "a.lib", "--deleted", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    reader.stdout.close()  # who reads has enough: no talk
    ended = reader.stderr.read(), reader.wait()
    assert ended in ((b"", 0), (b"", 2)), ended


def json_forms():
    """Every verb answers in one form."""
    tree()
    assert answer("create", "a.lib", "parts")["added"] == 5
    assert answer("add", "a.lib", "parts/bolts")["members"][0]["action"] == "replaced"
    assert answer("update", "a.lib", "parts")["kept"] == 5
    entry = answer("list", "a.lib", "parts/bolts/m8.dwg")["members"][0]
    assert entry["size"] == 5000 and entry["mode"] == "normal" and entry["state"] == "ok", entry
    assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{7}Z", entry["modified"]), entry
    assert answer("info", "a.lib")["members"] == 5 and "digraph" in answer("info", "a.lib", "--dot", "-")["dot"]
    read = answer("cat", "a.lib", "parts/Größe 1.txt")["members"][0]
    assert base64.b64decode(read["base64"]) == "größer\n".encode() * 100
    assert answer("extract", "a.lib", "-o", "out")["extracted"] == 5
    assert answer("test", "a.lib")["ok"] == 5
    assert answer("delete", "a.lib", "*.bak")["deleted"] == 1
    assert answer("recover", "a.lib", "*.bak")["recovered"] == 1
    assert answer("rename", "a.lib", "parts/old.bak", "ä")["members"][0]["to"] == "ä"
    assert answer("reorganize", "a.lib")["sizeAfter"] == os.path.getsize("a.lib")
    assert answer("salvage", "a.lib", "b.lib")["salvaged"] == 5
    assert answer("help")["text"] and answer("version")["version"]
    assert answer("list", "none.lib", code=10)["messages"][0]["level"] == "error"


def overwrite():
    write("a.txt", b"first")
    os.utime("a.txt", (2_000_000_000, 2_000_000_000))
    run("create", "a.lib", "a.txt")
    write("a.txt", b"second")
    for way, code, content in (((), 1, b"second"), (("--overwrite", "never"), 0, b"second"),
                               (("--overwrite", "newer"), 0, b"first"), (("--overwrite", "newer"), 0, b"first"),
                               (("--overwrite", "always"), 0, b"first")):
        run("extract", "a.lib", *way, code=code)
        assert pathlib.Path("a.txt").read_bytes() == content, way
    write("a.txt", b"older")
    os.utime("a.txt", (1_000_000_000, 1_000_000_000))
    for way, content in ((("--overwrite", "never"), b"first"), (("--overwrite", "newer"), b"first"), ((), b"older")):
        run("add", "a.lib", "a.txt", *way)
        assert run("cat", "a.lib", "a.txt") == content, way


def dry_run():
    """Says what would be done, and does nothing."""
    tree()
    run("create", "a.lib", "parts", "--dry-run", out="(would be added  parts/.*\n){5}",
        err="in all: 5 added; as a dry run it changed nothing\n")
    assert not os.path.exists("a.lib")
    run("create", "a.lib", "parts", "-q")
    run("delete", "a.lib", "*.bak", "-q")
    before = files(), pathlib.Path("a.lib").read_bytes()
    for args, line in ((["add", "a.lib", "parts/old.bak"], "added  parts/old.bak"),
                       (["add", "a.lib", "parts/empty.txt"], "replaced  parts/empty.txt"),
                       (["extract", "a.lib", "parts/bolts/m8.dwg", "-o", "out"], "extracted  parts/bolts/m8.dwg"),
                       (["delete", "a.lib", "parts/empty.txt"], "deleted  parts/empty.txt"),
                       (["recover", "a.lib", "parts"], "recovered  parts/old.bak"),
                       (["rename", "a.lib", "parts/empty.txt", "x"], "renamed  parts/empty.txt -> x"),
                       (["reorganize", "a.lib"], "removed  parts/old.bak")):
        run(*args, "--dry-run", out=f"would be {line}\n", err=f"in all: 1 {line.split()[0]}; .*\n")
    run("salvage", "a.lib", "b.lib", "--dry-run", "-q", out="(would be salvaged  .*\n){5}", err="")
    run("rename", "a.lib", "parts/empty.txt", "parts/bolts/m8.dwg", "--dry-run", code=2)
    assert (files(), pathlib.Path("a.lib").read_bytes()) == before


def locked():
    """While one adds and waits for its data, another cannot write, but read."""
    write("small")
    writer = start("add", "a.lib", "small", "-", "--name", "data", "-v", stdin=subprocess.PIPE, stderr=subprocess.PIPE)
    assert writer.stderr.readline().strip() == b"added  small"
    run("delete", "a.lib", "small", "--lock-timeout", "0", code=11, err="zolib: a.lib is locked: .*; try again .*\n")
    assert members("a.lib") == ["small"]
    run("add", "b.lib", "a.lib", code=2, err=r"zolib: cannot add a\.lib: another program has it open\n.*")
    writer.communicate(b"data")
    assert writer.returncode == 0 and members("a.lib") == ["small", "data"]
    run("delete", "a.lib", "small", "--lock-timeout", "0")
    writer = start("add", "a.lib", "small", "-", "--name", "more", "-v", stdin=subprocess.PIPE, stderr=subprocess.PIPE)
    assert writer.stderr.readline().strip() == b"added  small"
    writer.send_signal(signal.SIGINT)  # it waits for data, or is about to
    assert b"zolib: cancelled" in writer.stderr.read() and writer.wait() == 130
    run("test", "a.lib", err="a.lib: 2 members ok\n")


def threads():
    """However many work, the library is the same to the byte, and so is what comes out and what is said."""
    for i in range(60):
        write(f"t/{i % 7}/{i}", os.urandom(100 * i) + b"text " * 300 * i)
    said, first = None, None
    for name in files("t"):
        pathlib.Path("t", name).read_bytes()  # so that the times of access stay
    for count in ("1", "2", "7"):
        run("create", f"{count}.lib", "t", "--threads", count, "-q")
        library = pathlib.Path(f"{count}.lib").read_bytes()
        first = first or library
        assert library == first, count
        broken = bytearray(library)
        for at in (len(library) // 3, len(library) * 2 // 3):
            broken[at] ^= 1
        write("broken.lib", bytes(broken))
        done = [subprocess.run(COMMAND + args + ["--threads", count, "-v"], capture_output=True) for args in
                (["test", f"{count}.lib"], ["test", "broken.lib"], ["extract", f"{count}.lib", "-o", f"out{count}"])]
        now = [(d.returncode, d.stderr.replace(f"{count}.lib".encode(), b"lib")) for d in done]
        said = said or now
        assert now == said and [code for code, _ in now] == [0, 13, 0], now
        assert files(f"out{count}/t") == files("t")
        assert all(pathlib.Path(f"out{count}/t", n).read_bytes() == pathlib.Path("t", n).read_bytes() for n in files("t"))
    run("test", "1.lib", "--threads", "0", code=7)


def cancelled():
    """SIGINT in the middle of a long call: what was complete stays, the library is whole."""
    write("small")
    write("large", os.urandom(48 << 20))
    for args, first in ((["add", "a.lib", "small", "large", "--mode", "best", "-v"], b"added  small"),
                        (["extract", "b.lib", "-o", "out", "-v"], b"extracted  small")):
        if args[0] == "extract":
            run("create", "b.lib", "small", "large", "--mode", "fast")
        worker = start(*args, stderr=subprocess.PIPE)
        assert worker.stderr.readline().strip() == first
        worker.send_signal(signal.SIGINT)
        said = worker.stderr.read().decode()
        assert worker.wait() == 130 and "zolib: cancelled" in said, (worker.returncode, said)
    run("test", "a.lib", err="a.lib: 1 member ok\n")
    assert files() == ["a.lib", "b.lib", "large", "out/small", "small"], files()


def damaged():
    """A cut and a flipped bit are named; what is whole is rescued."""
    tree()
    run("create", "a.lib", "parts", "-q")
    whole = pathlib.Path("a.lib").read_bytes()
    entries = answer("list", "a.lib")["members"]
    write("cut.lib", whole[:-100])
    run("test", "cut.lib", code=13, err=".*cut.lib: .* behind its last member .*\ncut.lib: 4 members ok\n")
    run("list", "cut.lib", code=1)
    at = entries[3]["position"] + 54 + len("parts/bolts/m8.dwg") + entries[3]["packed"] // 2
    write("bit.lib", whole[:at] + bytes([whole[at] ^ 4]) + whole[at + 1:])
    run("test", "bit.lib", code=13, err="zolib: parts/bolts/m8.dwg is damaged: .*\nbit.lib: 4 members ok, 1 damaged\n")
    run("extract", "bit.lib", "-o", "out", code=13, err="zolib: cannot extract parts/bolts/m8.dwg .*damaged.*4 members.*")
    assert len(files("out")) == 4
    run("cat", "bit.lib", "parts/bolts/m8.dwg", code=13, out="", err="zolib: .*\n")
    # The header, and an entry in the middle: members behind it are found again.
    at = entries[2]["position"]
    write("gap.lib", bytes(32) + whole[32:at] + b"\xff" * 60 + whole[at + 60:])
    run("list", "gap.lib", code=12)
    write("short.lib", whole[:31])
    write("x.txt")
    for verb in ("test", "list", "info"):
        run(verb, "short.lib", code=13, out="", err="zolib: short.lib is damaged: it ends within its header\n")
    run("add", "short.lib", "x.txt", code=13, err="zolib: .*short.lib.*")
    for broken, good, code in (("cut.lib", 4, 0), ("bit.lib", 4, 13), ("gap.lib", 4, 0)):
        found = json.loads(subprocess.run(COMMAND + ["salvage", broken, "new.lib", "--json"], capture_output=True).stdout)
        assert found["salvaged"] == good and found["exit"] in (code, 13), found
        run("test", "new.lib", err=f"new.lib: {good} members ok\n")
        os.remove("new.lib")


def foreign_members():
    """Members of other makers have no check value, and may hide behind one another."""
    foreign("f.lib", [("a.txt", b"one", 0), ("A.TXT", b"two", 0), ("gone", b"x", 0x200)])
    run("test", "f.lib", err="a.txt is unprotected: .*\nA.TXT is unprotected: .*\nf.lib: 0 members ok, 2 unprotected\n")
    states = {m["name"]: m["state"] for m in answer("list", "f.lib", "--deleted")["members"]}
    assert states == {"a.txt": "unprotected", "A.TXT": "hidden", "gone": "deleted"}, states
    assert run("cat", "f.lib", "a.txt") == b"one"
    names = [f"{i}" for i in range(9000)]  # more than are looked at at once
    foreign("many.lib", [(name, b"x" * (i % 5), 0) for i, name in enumerate(names)])
    tested = answer("test", "many.lib")
    assert tested["unprotected"] == 9000 and [m["name"] for m in tested["members"]] == names
    assert members("many.lib") == names and members("many.lib", "--sort", "name") == sorted(names)
    assert answer("test", "many.lib", "@4097", "8*", "none", code=10)["unprotected"] == 1112


def graph():
    tree()
    run("create", "a.lib", "parts", "-q")
    run("delete", "a.lib", "*.bak", "-q")
    run("info", "a.lib", "--dot", "a.dot", out="")
    text = pathlib.Path("a.dot").read_text()
    assert run("info", "a.lib", "--dot", "-").decode() == text
    assert text.count("subgraph") == 3 and 'label="Größe 1.txt\\n900 B' in text and re.search("old.bak.*grey", text), text
    if shutil.which("dot"):
        subprocess.run(["dot", "-Tsvg", "-o", os.devnull], input=text.encode(), check=True)


def terminal():
    """On a terminal a long call shows how far it is; talk is not mixed with it."""
    write("large", os.urandom(6 << 20))
    code, text = on_terminal("create", "a.lib", "large", "--mode", "best")
    assert code == 0 and re.search(rb"\d %.*/s.*left.*large", text) and b"1 added" in text, text
    run("create", "b.lib", "large", "--mode", "best", out="", err=r"b\.lib: 1 added; .*\n")
    foreign("f.lib", [("a\x1b[2Jb\\U+202Ec", b"", 0)])
    code, text = on_terminal("list", "f.lib")  # what the name would do to the terminal is not done
    assert code == 0 and b"a?[2Jb?c" in text, text


def typed():
    """What is typed on a terminal is taken line by line until Ctrl-D; Ctrl-C cancels."""
    tree()
    for last, content in ((b"\x04", "first\r\nä\r\n"), (b"end\x04", "first\r\nä\r\nend")):
        code, text = on_terminal("add", "a.lib", "-", "--name", "typed", keys="first\rä\r".encode() + last)
        assert code == 0 and run("cat", "a.lib", "typed") == content.encode(), text
    code, text = on_terminal("create", "b.lib", "--files-from", "-", keys=b"parts/old.bak\r\x04")
    assert code == 0 and members("b.lib") == ["parts/old.bak"], text
    code, text = on_terminal("add", "a.lib", "-", "--name", "never", keys=b"first\r\x03")
    assert code == 130 and b"cancelled" in text and members("a.lib") == ["typed"], (code, text)
    for args in (["-", "--name", "never"], ["--files-from", "-"]):
        code, text = on_terminal("create", "c.lib", *args, keys=b"first\r\x03")
        assert code == 130 and b"cancelled" in text and not pathlib.Path("c.lib").exists(), (code, text)


def readme():
    """README's session is what the demo prints; sizes and times may differ."""
    printed = subprocess.run([ROOT / "scripts/demo"], capture_output=True, text=True, check=True).stdout
    text = (ROOT / "README.md").read_text()
    shown = re.search(r"(?m)^    \$ \./zolib create(?:.*\n(?=    ))*.*\n", text).group()

    def plain(lines):
        return [re.sub(r"[\d.,:%-]+( [KM]?B)?|\s+", " ", line).split() for line in lines.splitlines()]

    assert plain(shown) == plain(printed), f"scripts/demo --readme renews it:\n{printed}"


def verbs():
    text = (ROOT / "tools/zolib/help.cpp").read_text()
    found = re.findall(r'^    \{"(\w+)",\s*"(\w*)"', text, re.M)
    assert len(found) > 10
    return found


def completion():
    """The shell completes verbs, options of a verb, and members."""
    tree()
    run("create", "a.lib", "parts", "-q")
    words = completed("re", "extract a.lib --o", "cat a.lib parts/b", "add a.lib --mode b", "cat a.lib parts/G", "''")
    assert words[:-1] == [
        ["recover", "rename", "reorganize"], ["--output", "--overwrite"],
        ["parts/bolts/m8.dwg", "parts/bolts/steel/m10.dwg"], ["best"], ["parts/Größe\\ 1.txt"]], words
    names = ["b`touch run`", "b$(touch run)", "b'\"\\ ;#~!&.txt"]  # what the shell reads in them is the name
    foreign("b c.lib", [(name, b"", 0) for name in names])
    for library, quote in (("'b\\ c.lib'", ""), ("'\"b c.lib\"'", '"'), ('"\'b c.lib\'"', "'")):
        open_quote = "\\" + quote if quote else ""
        offered = completed(f"cat {library} {open_quote}b")[0]
        printed = subprocess.run(["bash", "-c", "printf '%s\n' " + " ".join(quote + o + quote for o in offered)], capture_output=True)
        assert sorted(printed.stdout.decode().splitlines()) == sorted(names) and "run" not in files(), (offered, printed)
    assert {name for name, _ in verbs()} <= set(words[-1]), words


def manual():
    """The manual has every alias and every exit code, too."""
    text = whole_manual(name for name, _ in verbs())
    for name, alias in verbs():
        assert not alias or f"({alias})" in text, alias
    codes = re.findall(r"= (\d+),", (ROOT / "tools/shared/exit_code.h").read_text())
    assert re.findall(r"^\.B (\d+)$", text, re.M) == codes


main(globals() | {"json": json_forms, "foreign": foreign_members})
