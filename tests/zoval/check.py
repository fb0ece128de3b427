#!/usr/bin/env python3
"""check.py ROOT ZOVAL CHECK: runs the tool as a user does, and looks at exit code, output, talk and files.

Every check gets a folder of its own as current folder.
"""
import json
import os
import pathlib
import random
import re
import struct
import subprocess
import sys

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from tool import COMMAND, TOOL, answer, beside, completed, main, on_terminal, run, whole_manual, write

PART = """Part:B {
\t"bolts" = Sequence [
\t\tDict {
\t\t\t"length" = Length:AP 12.5
\t\t\t"name" = String "M8 \\"x\\" \\u00e4"
\t\t}
\t\tPoint (1, 2.5, -3)
\t]
\t"count" = Int 3
\t"empty" = NoType
}
""".replace("\\u00e4", "ä")


def values():
    """What is stored in any form is shown the same, whole and by path."""
    write("a.txt", PART)
    write("b.txt", PART.encode("utf-16"))
    run("convert", "a.txt", "c.zoa", "-v", err="wrote c.zoa\n", out="")
    run("convert", "c.zoa", "d", "--to", "text")
    assert pathlib.Path("c.zoa").read_bytes()[:4] == struct.pack("<I", 0x2805)
    for name in ("a.txt", "b.txt", "c.zoa", "d"):
        assert run("show", name, err="").decode() == PART, name
    assert run("convert", "c.zoa", "-", "--to", "text").decode() == PART
    for form in ("json", "xml"):
        run("convert", "c.zoa", f"e.{form}")
        assert run("show", f"e.{form}").decode() == PART and answer("show", f"e.{form}")["form"] == form
        run("set", f"e.{form}", "count", "4")
        run("diff", "a.txt", f"e.{form}", code=1, out=r"\* count: Int 3 -> Int 4\n")
    assert run("get", write("f.json", '{"a": [1, {"b": "x"}]}'), "a/1/b") == b"x\n"
    assert answer("get", "f.json", "a")["value"] == [1, {"b": "x"}]
    assert run("convert", "a.txt", "-", "--to", "archive") == pathlib.Path("c.zoa").read_bytes()
    for path, text in (("bolts/0/length", "12.5"), ("BOLTS/0/name", 'M8 "x" ä'), ("bolts/1", "(1, 2.5, -3)"),
                       ("count", "3"), ("empty", ""), ("", PART[:-1])):
        assert run("get", "c.zoa", path).decode() == text + "\n", path
    shown = answer("get", "c.zoa", "bolts/0/length")
    assert (shown["file"], shown["form"], shown["type"], shown["flags"], shown["text"]) == \
        ("c.zoa", "archive", "Length", "AP", "12.5"), shown
    assert answer("show", "a.txt")["entries"] == 3
    dot = run("graph", "c.zoa", "--path", "bolts").decode()
    assert dot.startswith("digraph") and "length\\nLength\\n12.5" in dot and "count" not in dot, dot
    run("graph", "c.zoa", "-o", "a.dot", out="", err="")
    assert "count" in pathlib.Path("a.dot").read_text() and "count" in answer("graph", "c.zoa")["dot"]
    write("many.txt", "Sequence [" + "Int 1 " * 6000 + "]")
    run("graph", "many.txt", "-o", "b.dot", code=1, err="zoval: only the first 5000 .*")


def differences():
    """Where values differ, and how that ends."""
    write("a.txt", PART)
    write("b.txt", PART.replace("12.5", "12.501").replace('"count" = Int 3', '"new" = Int 3'))
    run("diff", "a.txt", "a.txt", out="", err="")
    run("diff", "a.txt", "b.txt", code=1, err="", out=re.escape(
        "* bolts/0/length: Length:AP 12.5 -> Length:AP 12.501\n- count: Int 3\n+ new: Int 3\n"))
    run("diff", "a.txt", "b.txt", "--tolerance", "0.01", code=1, out=re.escape("- count: Int 3\n+ new: Int 3\n"))
    changes = answer("diff", "a.txt", "b.txt", code=1)["changes"]
    assert changes[0] == {"change": "changed", "path": "bolts/0/length", "before": "Length:AP 12.5",
                          "after": "Length:AP 12.501"}, changes
    assert [(c["change"], "before" in c, "after" in c) for c in changes[1:]] == \
        [("removed", True, False), ("added", False, True)], changes
    assert answer("diff", "a.txt", "a.txt")["changes"] == []
    write("c.txt", "Sequence [ Int 1 Int 2 ]")
    write("d.txt", "Sequence [ Short 2 Int 1 ]")
    for options, code in (([], 1), (["--values"], 1), (["--any-order"], 1), (["--any-order", "--values"], 0)):
        run("diff", "c.txt", "d.txt", *options, code=code)


def changes():
    """set keeps types, makes what is missing, and leaves the file alone when it cannot be done."""
    write("a.txt", PART)
    run("convert", "a.txt", "a.zoa")
    for name in ("a.txt", "a.zoa"):
        for path, value, shown in (("bolts/0/length", "30", "Length:AP 30"), ("count", "4", "Int 4"),
                                   ("count", "Real 0.5", "Real 0.5"), ("bolts/1", "(4, 5, 6)", "Point (4, 5, 6)"),
                                   ("bolts/0/name", "42", 'String "42"'), ("new/deep", "7", "Int 7"),
                                   ("big", "5000000000", "BigInt 5000000000"), ("real", "1e3", "Real 1000"),
                                   ("text", "M8 x 30", 'String "M8 x 30"'), ("bolts/2", "List []", "List []")):
            run("set", name, path, value, out="", err="")
            run("convert", name, "x.txt")
            assert shown in pathlib.Path("x.txt").read_text(), (path, value)
    run("diff", "a.txt", "a.zoa")
    before = pathlib.Path("a.txt").read_bytes()
    assert answer("set", "a.txt", "count", "0.75", "--dry-run")["changed"] is True
    assert answer("set", "a.txt", "count", "0.5")["changed"] is False
    run("set", "a.txt", "bolts/0/length", "long", code=7, err="zoval: long is no Length.*")
    run("set", "a.txt", "count/deep", "1", code=10, err="zoval: no way leads to count/deep in a.txt.*")
    run("set", "a.txt", "bolts/9", "1", code=10, err=".*no way.*")
    os.chmod("a.txt", 0o444)
    run("set", "a.txt", "count", "1", code=2, err="zoval: cannot write a.txt.*")
    assert pathlib.Path("a.txt").read_bytes() == before
    run("convert", "a.txt", "none/x.zoa", code=2, err="zoval: cannot write none/x.zoa.*")
    run("set", "a.zoa", "count", "--", "-5")
    run("get", "a.zoa", "count", out="-5\n")


def libraries():
    """Members are shown, compared and changed as files are."""
    write("a.txt", PART)
    run("convert", "a.txt", "a.zoa")
    run("create", "p.lib", "a.txt", "a.zoa", command=beside("zolib.exe"))
    for name in ("a.txt", "a.zoa"):
        assert run("show", "p.lib", "--member", name).decode() == PART == run("show", f"p.lib|{name}").decode()
    run("set", "p.lib", "-m", "A.ZOA", "count", "9", "-v", err="changed p.lib A.ZOA\n")
    run("diff", "a.txt", "p.lib", "--member", "a.zoa", code=1, out=r"\* count: Int 3 -> Int 9\n")
    run("diff", "p.lib", "a.txt", "--member", "a.txt")
    run("test", "p.lib", command=beside("zolib.exe"))
    run("diff", "p.lib|a.txt", str(pathlib.Path("p.lib").resolve()) + "|A.ZOA", code=1, out=r"\* count: Int 3 -> Int 9\n")
    run("set", "p.lib|a.zoa", "count", "3")
    run("convert", "p.lib|a.zoa", "p.lib|new/b.json", "-v", err="wrote p.lib new/b.json\n")
    run("diff", "p.lib|new/b.json", "p.lib|a.txt", out="")
    run("convert", "a.txt", "p.lib|c.xml", "--dry-run", err="would write p.lib c.xml\n")
    run("test", "p.lib", err="p.lib: 3 members ok\n", command=beside("zolib.exe"))
    before = pathlib.Path("p.lib").read_bytes()
    for args, code, said in (
        (["show", "p.lib"], 7, "p.lib is a library; .*--member, or as 'p.lib\\|MEMBER'"),
        (["show", "p.lib", "--member", "none"], 10, "p.lib has no member none; .*"),
        (["set", "p.lib|none", "count", "1"], 10, "p.lib has no member none; .*"),
        (["show", "p.lib|"], 7, "p.lib\\| is no LIBRARY\\|MEMBER; .*"),
        (["show", "p.lib|a|b"], 7, ".* is no LIBRARY\\|MEMBER; .*"),
        (["show", "p.lib|a.txt", "-m", "a.zoa"], 7, ".*a.txt names a member already; leave out --member"),
        (["show", "a.txt|a"], 10, "a.txt is no library, and has no member a"),
        (["show", "none.lib|a"], 10, "cannot open none.lib.*"),
        (["convert", "a.txt", "a.txt|b.xml"], 10, "a.txt is no library, .*"),
        (["convert", "a.txt", "none.lib|b.xml"], 2, "cannot open none.lib.*"),
    ):
        run(*args, code=code, err=f"zoval: {said}\n")
    assert pathlib.Path("p.lib").read_bytes() == before and sorted(os.listdir()) == ["a.txt", "a.zoa", "p.lib"]


def language():
    """Talk and help in the user's language, what scripts read in none; long steps are named on a terminal."""
    write("a.txt", PART)
    run("get", "a.txt", "none", "--language", "de", code=10, err="zoval: a.txt hat kein none\n")
    run("get", "a.txt", "count", "--language=de-AT", out="3\n", err="")
    run("--language", "de", "show", code=7, err="zoval: es fehlt FILE; .*")
    run("show", "a.txt", "--language", "5%", code=7, err="zoval: 5% is no language .*")
    assert run("help", "set", "--language", "de").startswith("Einen Wert".encode())
    assert answer("show", "a.txt", "--language", "de") == answer("show", "a.txt")
    os.environ["ZOLIB_LANGUAGE"] = "de_AT.UTF-8:en"
    run("show", "a.txt|b", code=10, err="zoval: a.txt ist keine Bibliothek und hat kein Mitglied b\n")
    os.environ["ZOLIB_LANGUAGE"] = "C"
    write("long.txt", "Sequence [" + "Int 1\n" * 200_000 + "]")
    for words, said in (([], True), (["--quiet"], False)):
        code, text = on_terminal("get", "long.txt", "0", *words)
        assert code == 0 and (b"reading long.txt (1.1 MB)" in text) == said, text


def at_once():
    """Of several that set values at the same time, in a file or a member, none undoes another's."""
    write("a.txt", "Dict {}")
    run("create", "p.lib", "a.txt", command=beside("zolib.exe"))
    for file in (["a.txt"], ["p.lib", "-m", "a.txt"]):
        started = [subprocess.Popen(COMMAND + ["set", *file, f"k{i}", str(i)], stdin=subprocess.DEVNULL) for i in range(6)]
        assert [each.wait() for each in started] == [0] * 6
        assert run("show", *file).count(b"Int") == 6, run("show", *file)


def edit():
    """What the window gives is written as set writes it; whoever works on it is another program."""
    def edited(*args, steps, code=0, err=None, title="a.txt - zoval"):
        user = subprocess.Popen(beside("zoval_user.exe") + [title, *steps],
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        said = run("edit", *args, code=code, err=err)
        codes.append(user.communicate()[0].split())
        assert user.returncode == 0, (args, steps)
        return said

    ok, cancel, undo, told, yes, codes = "1", "2", "207", "box=1", "box=6", []
    before = b'Dict {\n\t"length" = Length 12.5\n}\n'
    write("a.txt", before)
    tool = subprocess.run(["winepath", "-w", TOOL], capture_output=True, text=True).stdout.strip() or TOOL
    for steps, code, err in (([cancel], 130, "zoval: cancelled.*"), ([ok], 0, "a.txt has that value already\n"),
                             (["edit=long", ok, cancel, yes], 130, None), (["edit=3 m", undo, ok], 0, None)):
        edited("a.txt", "-v", steps=steps, code=code, err=err)
        assert pathlib.Path("a.txt").read_bytes() == before, steps
    edited("a.txt", "--dry-run", steps=["edit=3 m", ok], err="would change a.txt\n")
    edited("a.txt", "--read-only", "--against", "a.txt", steps=[cancel], err="")
    edited("a.txt", steps=["edit=3 m", f"run={tool} set a.txt length 7", ok], err="")
    assert codes[-1] == [b"11"] and run("get", "a.txt", "length") == b"3000\n", codes
    write("b.txt", before.replace(b"12.5", b"7.0"))
    for other, said in (("copy /y b.txt a.txt", "was written by"), ("del a.txt", "is not there any more:")):
        write("a.txt", before)
        lost = ["edit=4 m", f"run=cmd /c {other}", ok, told]
        edited("a.txt", steps=[*lost, cancel, yes], code=11, err=f"zoval: a.txt {said}.*")
        assert not pathlib.Path("a.txt").exists() or b"7.0" in pathlib.Path("a.txt").read_bytes()
        write("a.txt", before)
        edited("a.txt", steps=[*lost, ok], err="")
        assert run("get", "a.txt", "length") == b"4000\n", other
    write("a.txt", before)
    os.chmod("a.txt", 0o444)
    run("edit", "a.txt", code=2, err="zoval: a.txt cannot be written.*--read-only\n")
    edited("a.txt", "--read-only", steps=[cancel], err="")
    os.chmod("a.txt", 0o644)
    write("x", "no value")
    run("edit", "x", code=13)
    run("edit", "none", code=10)
    run("edit", "a.txt", "--against", "none", code=10)
    run("create", "p.lib", "a.txt", command=beside("zolib.exe"))
    edited("p.lib", "-m", "a.txt", steps=["edit=8", ok], title="p.lib a.txt - zoval")
    assert run("get", "p.lib", "length", "-m", "a.txt") == b"8\n"
    changed = json.loads(edited("a.txt", "--json", steps=["edit=9", ok]))
    assert changed["changed"] is True and changed["exit"] == 0, changed


def hostile():
    """Nothing in a file ends the tool: it is a value, or the code says that it is none."""
    write("a.txt", PART)
    run("convert", "a.txt", "a.zoa")
    chance = random.Random(5)
    for name in ("a.txt", "a.zoa"):
        whole = pathlib.Path(name).read_bytes()
        for i in range(12):
            cut = bytearray(whole[: chance.randrange(len(whole))] if i % 2 else whole)
            for _ in range(0 if i % 2 else 3):
                cut[chance.randrange(len(cut))] = chance.randrange(256)
            write("x", bytes(cut))
            code = subprocess.run(COMMAND + ["show", "x"], stdin=subprocess.DEVNULL, capture_output=True).returncode
            assert code in (0, 13), (name, bytes(cut), code)
    write("x", "Dict {\n\t\"a\" = Nothing\n}")
    run("show", "x", code=13, err=r"zoval: x: line 2, column 8: no value in text form\n")
    write("x", "Sequence [" * 300 + "]" * 300)
    run("show", "x", code=13)
    write("x", struct.pack("<II", 0x2700, 9) * 300)
    run("show", "x", code=13)
    write("x", struct.pack("<IIi", 0x2100, 1, 7) * 2)
    run("show", "x", code=13, err="zoval: x: 12 bytes are left behind the value; .*")
    for text in ('{"a": 1, "A": 2}', "[1", "<a>", "<a/>", '<!DOCTYPE a [<!ENTITY b "c">]><a>&b;</a>'):
        run("show", write("x", text), code=13, err="zoval: x: .+")
    for empty in (b"", b"\xef\xbb\xbf", bytes(7)):
        run("show", write("x", empty), code=13)


def exit_codes():
    write("a.txt", PART)
    os.mkdir("folder")
    for args, code, said in (
        ([], 7, "say what to do"), (["shw", "a.txt"], 7, "there is no verb shw, but show"), (["show"], 7, ".*FILE.*"),
        (["show", ""], 7, ".*empty.*"), (["show", "a.txt", "--to", "text"], 7, "there is no option --to .*"),
        (["show", "a.txt", "--from", "x"], 7, ".*x is no form.*"), (["get", "a.txt"], 7, ".*PATH.*"),
        (["diff", "a.txt", "a.txt", "--tolerance", "-1"], 7, ".*no number.*"),
        (["convert", "a.txt", "a.xyz"], 7, "say the form of a.xyz by --to"), (["show", "none"], 10, "cannot open none.*"),
        (["get", "a.txt", "none/x"], 10, "a.txt has no none/x"), (["show", "a.txt", "--from", "archive"], 13, ".*archive.*"),
        (["convert", "a.txt", "a.txt", "b.zoa"], 7, ".*one name too many"),
    ):
        run(*args, code=code, err=rf"zoval: {said}(; see `zoval help`)?\n")
    assert answer("show", "none", code=10)["messages"][0]["level"] == "error"
    for args, begin in ((["help"], b"Shows"), (["diff", "--help"], b"Tell"), (["version"], b"zoval 0")):
        assert run(*args, err="").startswith(begin), args
    assert pathlib.Path("a.txt").read_text() == PART and sorted(os.listdir()) == ["a.txt", "folder"]


def completion():
    write("a.txt", PART)
    words = completed("c", "diff a --any", "show a", "convert a b --to t")
    assert words == [["convert"], ["--any-order"], ["a.txt"], ["text"]], words


def manual():
    whole_manual(("show", "get", "set", "edit", "diff", "convert", "graph"))


main(globals())
