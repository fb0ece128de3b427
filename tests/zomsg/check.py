#!/usr/bin/env python3
"""check.py ROOT ZOMSG CHECK: runs the tool as a translator does, and looks at exit code, output, talk and files.

Every check gets a folder of its own as current folder.
"""
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from tool import COMMAND, ROOT, answer, completed, main, run, whole_manual


def write(name, text, language="", encoding="utf-8"):
    path = pathlib.Path(name)
    path.parent.mkdir(parents=True, exist_ok=True)
    head = "@messages 1\n" + (f"@language {language}\n" if language else "")
    path.write_bytes(text if isinstance(text, bytes) else (head + text).encode(encoding))
    return path


def found(*folders, code=0):
    """What a check finds, short: file, line, column, level, kind."""
    value = answer("check", *folders, code=code)
    short = [(f["file"].removeprefix("./"), f["line"], f.get("column", 0), f["level"][0], f["kind"])
             for f in value["findings"]]
    levels = [f[3] for f in short]
    assert (value["errors"], value["warnings"]) == (levels.count("e"), levels.count("w")), value
    return short


def work():
    """A translator begins, goes on, checks and looks."""
    write("parts.msg", "1 The part %1 has %2 holes.\n0x10 See %{1}; %{zotype:0x2301}\n# more\n3 Done", "en")
    run("extract", "parts.msg", "--language", "de", err=r"parts\.de\.msg: 3 messages, 0 translated\n", out="")
    text = pathlib.Path("parts.de.msg").read_text()
    assert "\n#: The part %1 has %2 holes.\n#1\n" in text and "\n#0x10\n" in text, text
    run("check", ".", out="(./parts.msg:.* warning: .* is not in ./parts.de.msg\n){3}",
        err="2 files, 3 messages: 0 errors, 3 warnings\n")
    run("check", ".", "--strict", "-q", code=1, err="")
    pathlib.Path("parts.de.msg").write_text(text.replace("#1\n", "1 Das Teil %1 hat %2 Löcher.\n").replace("#3\n", "3 \n"))
    assert found(".") == [("parts.msg", 4, 0, "w", "untranslated")], found(".")
    run("show", "parts.msg", "1", "M8", "3", "--language", "de", out="Das Teil M8 hat 3 Löcher.\n", err="")
    run("show", "parts.de.msg", "16", "--language", "fr", out="See The part %1 .*", code=1)  # for want of arguments
    write("parts.msg", "1 The part %1 has %2 holes.\n2 New", "en")
    run("extract", "parts.msg", "--language", "de", code=1, err="zomsg: kept parts.de.msg: it exists; say --force .*\n")
    run("extract", "parts.msg", "--language", "de", "--force", err=".*: 2 messages, 1 translated, and 1 that .*\n")
    assert [(f[0], f[4]) for f in found(".")] == [("parts.de.msg", "superfluous"), ("parts.msg", "untranslated")], found(".")
    value = answer("check", str(ROOT / "share/messages"))
    assert value["files"] >= 6 and not value["findings"], value


def findings():
    """Each kind of fault: files, and what is found in them."""
    for files, expected in (
        # One file by itself. Faults bear columns.
        ({"a.msg": "x\n1 a\n1 b\n2 \\q\n3 %{\n4 %{?1 a", "b.msg": b"nothing"},
         [("a.msg", 2, 1, "e", "number"), ("a.msg", 4, 1, "e", "duplicate"), ("a.msg", 5, 3, "e", "escape"),
          ("a.msg", 6, 3, "e", "reference"), ("a.msg", 7, 3, "e", "plural"), ("b.msg", 1, 1, "e", "head")]),
        ({"a.en.msg": ("1 %{?1 a|b|c} %{?1 a}\n2 %{?1 a|b|c|d}", "en"), "b.pl.msg": ("1 %{?1 a|b}", "pl"),
          "c.ja.msg": ("1 %{?1 a}", "ja"), "d.de.msg": ("1 x", "fr"), "e.de.msg": "1 x", "f.msg": "1 %{?1 a|b}"},
         [("a.en.msg", 3, 0, "w", "plural"), ("a.en.msg", 4, 0, "e", "plural"), ("b.pl.msg", 3, 0, "w", "plural"),
          ("d.de.msg", 2, 0, "e", "language"), ("e.de.msg", 1, 0, "w", "language"), ("f.msg", 1, 0, "w", "language")]),
        # Encodings: not said, said wrongly, broken.
        ({"a.msg": b"@messages 1\n1 L\xe4nge\n", "b.msg": b"@messages 1\n@codepage windows-1252\n1 L\xe4nge\n",
          "c.msg": "@messages 1\n@codepage windows-1252\n1 Länge\n".encode(), "d.msg": "@messages 1\n1 Länge".encode("utf-16"),
          "e.msg": "\ufeff@messages 1\n@codepage windows-1252\n1 Länge".encode(),
          "f.msg": b"@messages 1\n@codepage utf-8\n1 L\xe4nge\n", "g.msg": b"@messages 1\n@codepage none\n1 x"},
         [("a.msg", 1, 0, "w", "encoding"), ("c.msg", 2, 0, "w", "encoding"), ("e.msg", 2, 0, "w", "encoding"),
          ("f.msg", 3, 4, "e", "character"), ("g.msg", 2, 1, "e", "codepage")]),
        # Languages beside one another. Number 3 is missing, 9 superfluous.
        ({"a.msg": ("1 %1 %2\n2 %{1} %{?3 a|b}\n3 x", "en"), "a.de.msg": ("1 %2\n2 %3 %4 %{a:1}\n9 x", "de"),
          "a.fr.msg": ("@fallback it\n1 %2%1\n2 %3\n3 x", "fr"), "a.library.msg": "1 another name"},
         [("a.de.msg", 3, 0, "e", "arguments"), ("a.de.msg", 4, 0, "e", "arguments"), ("a.de.msg", 5, 0, "w", "superfluous"),
          ("a.fr.msg", 1, 0, "w", "fallback"), ("a.fr.msg", 5, 0, "w", "references"), ("a.msg", 5, 0, "w", "untranslated")]),
        # References: nowhere, elsewhere, in circles, deep; the chain of languages is followed.
        ({"a.msg": "1 %{7} %{b:1}\n2 %{c:1} %{zotype:0x2301}\n3 %{3}", "b.msg": "1 x\n2 %{B:3}\n3 %{b:4}\n4 %{2} %{2}",
          "d.msg": "".join(f"{i} %{{{i + 1}}}\n" for i in range(1, 17)) + "17 x",
          "e.msg": ("1 %{2}\n2 x", "en"), "e.de.msg": ("1 %{2}\n2 %{1}", "de")},
         [("a.msg", 2, 0, "e", "nowhere"), ("a.msg", 3, 0, "w", "nowhere"), ("a.msg", 4, 0, "e", "circle"),
          ("b.msg", 3, 0, "e", "circle"), ("d.msg", 2, 0, "e", "depth"), ("e.de.msg", 3, 0, "e", "circle"),
          ("e.de.msg", 4, 0, "w", "references")]),
    ):
        with tempfile.TemporaryDirectory(dir=".") as folder:
            for name, text in files.items():
                write(f"{folder}/{name}", *(text if isinstance(text, tuple) else (text,)))
            short = sorted((f[0].split("/")[-1], *f[1:]) for f in found(folder, code=13))
            assert short == expected, f"{files}\n{short}"


def hostile():
    """Files that are made to keep a checker busy: all of it ends soon."""
    count = 50_000
    write("chain.msg", "".join(f"{i} %{{{i + 1}}}\n" for i in range(count)) + f"{count} %{{0}}")
    write("doubling.msg", "".join(f"{i} %{{{i + 1}}}%{{{i + 1}}}\n" for i in range(15)) + "15 " + "x" * 60000)
    write("faults.msg", "x\n" * 5000)
    write("empty.msg", b"")
    write("zeros.msg", bytes(5000))
    write("half.msg", "@messages 1\n1 x".encode("utf-16") + b"\0")
    write("many.msg", "%{" * 60000 + "\n1 " + "%{?1 " * 2000)
    for language in ("de", "fr", "pl"):
        write(f"chain.{language}.msg", "1 x", language)
    short = found(".", code=13)
    kinds = {(name, kind) for name, _, _, _, kind in short}
    for expected in (("chain.msg", "circle"), ("doubling.msg", "size"), ("faults.msg", "more"), ("empty.msg", "head"),
                     ("zeros.msg", "head"), ("many.msg", "plural"), ("half.msg", "character")):
        assert expected in kinds, f"{expected}\n{kinds}"
    assert len([s for s in short if s[4] in ("circle", "size")]) == 2
    pathlib.Path("large.msg").touch()
    os.truncate("large.msg", (64 << 20) + 1)
    assert [s[3] for s in found(".", code=13) if s[0] == "large.msg"] == ["e"]


def show():
    write("m/parts.msg", "1 %1 and %2\n2 %{?1 one hole|%1 holes}\n3 a\\nb %{other:1}\n-5 never\n4294967291 minus\n5 %{5}", "en")
    write("m/parts.pl.msg", "2 %{?1 %1 dziura|%1 dziury|%1 dziur}", "pl")
    write("m/other.msg", "1 from äöü")
    for args, text in ((["1", "x y", "2.50"], "x y and 2.5"), (["1", "Length 1/2 in", "Point (1, 2, 3)"], "12.7 mm and (1, 2, 3)"),
                       (["1", "Spring rate 3 N/mm", 'String "12"'], "3 N/mm and 12"), (["1", "Length of it", ""], "Length of it and "),
                       (["2", "1"], "one hole"), (["2", "5"], "5 holes"), (["2", "22", "--language", "pl"], "22 dziury"),
                       (["2", "--language", "pl-PL", "--", "-5"], "-5 dziur"), (["3"], "a\nb from äöü"), (["--", "-5"], "minus"),
                       (["0xfffffffb"], "minus")):
        run("show", "m/parts.msg", *args, out=re.escape(text + "\n"), err="")
    assert answer("show", "m/parts.pl.msg", "2", "2")["text"] == "2 dziury"
    for args in (["1", "x"], ["5"]):
        run("show", "m/parts", *args, code=1, err="zomsg: an argument is missing, .*")


def extract():
    """Translations, comments of the translator and the way numbers are written are kept."""
    write("a.msg", "0x10 b  \\\n c\\u0020\n2 a\\n%1\n", "en")
    write("a.de.msg", b"@messages 1\r\n@language de\r\n@codepage windows-1252\r\n@fallback fr\r\n# Gr\xfc\xdfe\r\n16 \xdc\\u0020\r\n99 alt\r\n")
    run("extract", "a.msg", "--language", "de", "--force", err=r"a\.de\.msg: 2 messages, 1 translated, and 1 .*")
    first = pathlib.Path("a.de.msg").read_bytes()
    assert first.decode().split("\n\n", 1)[1] == ("#: a\\n%1\n#2\n\n#: b  c\\u0020\n# Grüße\n0x10\tÜ\\u0020\n"
                                                  "#: Not in the original:\n99\talt\n"), first.decode()
    assert first.startswith(b"@messages 1\n@language de\n@fallback fr\n#: "), first
    run("extract", "a.msg", "--language", "de", "--force", "-q", err="")
    assert pathlib.Path("a.de.msg").read_bytes() == first  # again: nothing changes
    assert run("extract", "a.msg", "--language", "de", "-o", "-") == first
    value = answer("extract", "a.msg", "--language", "de", "--output", "new ä.msg")
    assert (value["count"], value["translated"], value["superfluous"]) == (2, 1, 1)
    assert pathlib.Path("new ä.msg").read_bytes() == first
    for changed in ("x", "y"):  # what was translated stays to be seen, until the translator has taken it away
        write("a.msg", f"0x10 {changed}\n2 a", "en")
        run("extract", "a.msg", "--language", "de", "--force", err=".*, 1 translated, 1 from another original, and 1 .*")
        text = f"#: {changed}\n# Grüße\n#: Before: b  c\\u0020\n0x10\tÜ\\u0020\n"
        assert text in pathlib.Path("a.de.msg").read_text(), pathlib.Path("a.de.msg").read_text()


def failed_writes():
    """What cannot be written whole leaves the old file; a killed run leaves the old or the whole new one."""
    write("a.msg", "".join(f"{i} text {i}\n" for i in range(20000)))
    old = write("a.de.msg", "1 eins\n", "de").read_bytes()
    os.chmod("a.de.msg", 0o444)
    run("extract", "a.msg", "--language", "de", "--force", code=2, err=r"zomsg: cannot write a\.de\.msg.*it is as it was\n")
    assert pathlib.Path("a.de.msg").read_bytes() == old
    os.chmod("a.de.msg", 0o644)
    run("extract", "a.msg", "--language", "de", "-o", "none/x.msg", code=2, err="zomsg: cannot write none/x.msg: .*")
    assert sorted(os.listdir()) == ["a.de.msg", "a.msg"], os.listdir()
    new = run("extract", "a.msg", "--language", "de", "-o", "-")
    for _ in range(3):
        write("a.de.msg", old)
        worker = subprocess.Popen(COMMAND + ["extract", "a.msg", "--language", "de", "--force"], stderr=subprocess.DEVNULL)
        while worker.poll() is None and len(os.listdir()) == 2:
            pass
        worker.send_signal(signal.SIGKILL)  # while its temporary file is there, or it has just ended
        worker.wait()
        assert pathlib.Path("a.de.msg").read_bytes() in (old, new)
        for left in set(os.listdir()) - {"a.de.msg", "a.msg"}:
            os.remove(left)
    write("a.de.msg", "1 eins\n2 \\q\n", "de")  # a faulty line would be lost
    run("extract", "a.msg", "--language", "de", "--force", code=13, err=r"zomsg: a\.de\.msg:4:3: .*; mend it first, .*\n")


def exit_codes():
    write("a.msg", "1 x")
    write("no.msg", b"this is none")
    os.mkdir("empty")
    for args, code, said in (
        ([], 7, "say what to do"), (["chek", "."], 7, "there is no verb chek, but check"), (["check"], 7, ".*FOLDER.*"),
        (["check", ""], 7, ".*empty.*"), (["check", ".", "--force"], 7, "there is no option --force .*"),
        (["show", "a.msg", "x"], 7, "x is no number of a message"), (["show", "a.msg", "4294967296"], 7, ".*no number.*"),
        (["show", "a.msg", "1", "--language", "d e"], 7, ".*no language.*"), (["extract", "a.msg"], 7, ".*--language.*"),
        (["extract", "a.de.msg", "--language", "de"], 10, "cannot find .*"),
        (["extract", "a.msg", "--language", "de", "--force", "-o", "./A.MSG"], 7, "a.msg is the original; .*"),
        (["extract", "a.msg", "--language", "x/../y"], 7, ".*no language.*"),
        (["check", "none"], 10, "cannot find the folder none.*"), (["check", "a.msg"], 10, "cannot find the folder a.msg.*"),
        (["check", "empty"], 10, "empty has no message files"), (["show", "none.msg", "1"], 10, "cannot find none.msg.*"),
        (["show", "a.msg", "2"], 10, "a.msg has no message 2"), (["show", "no.msg", "1"], 12, "no.msg is no message file.*"),
        (["extract", "no.msg", "--language", "de"], 12, "no.msg is no message file.*"),
        (["extract", "empty", "--language", "de"], 2, "cannot read empty: it is a folder"),
    ):
        run(*args, code=code, err=rf"zomsg: {said}(; see `zomsg help`)?\n(0 files.*\n)?")
    assert answer("check", "none", code=10)["messages"][0]["level"] == "error"
    for args, begin in ((["help"], b"Checks"), (["check", "--help"], b"Name"), (["version"], b"zomsg 0"), (["--version"], b"zomsg 0")):
        assert run(*args, err="").startswith(begin), args
    assert sorted(os.listdir()) == ["a.msg", "empty", "no.msg"], os.listdir()


def completion():
    write("a.msg", "1 x")
    os.mkdir("empty")
    words = completed("e", "extract a.msg --o", "show a", "check e")
    assert words == [["extract"], ["--output"], ["a.msg"], ["empty"]], words


def manual():
    """The manual has every kind of finding, too."""
    text = whole_manual(("check", "show", "extract"))
    sources = "".join(p.read_text() for p in (ROOT / "tools/zomsg").glob("*.cpp"))
    kinds = set(re.findall(r'Level::k\w+, "(\w+)"', sources)) | set(re.findall(r'"(\w+)"', sources.split("kKinds[] =")[1].split(";")[0]))
    missing = {kind for kind in kinds if not re.search(rf"\b{kind}\b", text)}
    assert len(kinds) > 20 and not missing, missing


main(globals())
