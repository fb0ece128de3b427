"""A tool as its tests run it: SCRIPT ROOT TOOL CHECK. Every check gets a folder of its own as current folder."""
import contextlib
import json
import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import tempfile
import termios

ROOT, TOOL, CHECK = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
NAME = pathlib.Path(TOOL).stem
COMMAND = [str(ROOT / "scripts/wine-run"), TOOL]
os.environ["ZOLIB_ROOT"] = "Z:"


def beside(program):
    """The command of another program of the same folder."""
    return [COMMAND[0], str(pathlib.Path(TOOL).with_name(program))]


def start(*args, **streams):
    # A script in the background ignores SIGINT, and so would what it starts.
    return subprocess.Popen(COMMAND + list(args), preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
                            **streams)


def run(*args, code=0, out=None, err=None, stdin=b"", command=COMMAND):
    """Runs the tool; code, and patterns that output and talk must match as a whole, are compared. Gives the output."""
    done = subprocess.run(command + list(args), input=stdin, capture_output=True)
    said = f"{args}: {done.returncode}\n{done.stdout[-3000:]!r}\n{done.stderr.decode()[-2000:]}"
    assert done.returncode == code, f"exit code {code} expected\n{said}"
    for pattern, text in ((out, done.stdout), (err, done.stderr)):
        assert pattern is None or re.fullmatch(pattern, text.decode().replace("\r\n", "\n"), re.S), \
            f"{pattern!r} expected\n{said}"
    return done.stdout


def answer(*args, code=0, **more):
    """The same with --json."""
    value = json.loads(run(*args, "--json", code=code, **more))
    assert value[NAME] == 1 and value["exit"] == code and isinstance(value["messages"], list), value
    return value


def on_terminal(*args, keys=b""):
    """Exit code and output on a terminal; the keys are pressed when it asks for them."""
    parent, child = pty.openpty()
    worker = start(*args, stdin=child, stdout=child, stderr=child, start_new_session=True)
    os.close(child)
    text = b""
    with contextlib.suppress(OSError):  # the end of a terminal reads as an error
        while piece := os.read(parent, 4096):
            text += piece
            if keys and b"ends it" in text:
                while termios.tcgetattr(parent)[3] & termios.ICANON:
                    os.sched_yield()  # until it takes each key by itself
                keys = keys[os.write(parent, keys):]
    return worker.wait(), text


def write(name, content=b"content\n"):
    path = pathlib.Path(name)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return name


def completed(*lines):
    """The words that the shell offers at the end of each line."""
    script = f"""
        export LC_ALL=C.UTF-8
        source {ROOT}/tools/{NAME}/completion/{NAME}.bash
        {NAME}() {{ {' '.join(COMMAND)} "$@"; }}
        try() {{ COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); _{NAME}; printf '%s\\n' "${{COMPREPLY[@]}}" -; }}
        """ + "; ".join(f"try {NAME} {line}" for line in lines)
    printed = subprocess.run(["bash", "-c", script], capture_output=True, text=True).stdout.split("-\n")
    return [sorted(filter(None, words.split("\n"))) for words in printed[:-1]]


def whole_manual(verbs):
    """The tool's manual, which has every verb and every option of its help."""
    text = re.sub(r"\\f[BRIP]", "", (ROOT / f"docs/{NAME}.1").read_text().replace("\\-", "-"))
    for verb in verbs:
        assert re.search(rf"^\.B {NAME} {verb}\b", text, re.M), verb
        for option in re.findall(r"--[a-z-]+", run("help", verb).decode()):
            assert option in text, f"{verb} {option}"
    return text


def main(checks):
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        checks[CHECK]()
        os.chdir("/")
