"""Texts of comments and documents in the form that Doxygen takes."""
import re

LABEL = re.compile(r"([A-Z][a-z]+(?:, [A-Z][a-z]+)*)(?::|  ) *(?=\S)")
LABELS = ("Errors", "Threads", "Cost", "Stored", "Limits", "Note", "Owned", "Results", "Ranges")
DOCUMENT = re.compile(r"\b((?:docs/[\w/-]+|README|CHANGELOG|CONTRIBUTING|NOTICE)\.md)\b")


def page_of(path):
    """The name of the page that a document becomes."""
    return "doc_" + re.sub(r"\W", "_", path.removesuffix(".md").removeprefix("docs/"))


def slug(title):
    """The anchor of a heading, as hosts of repositories make it."""
    return re.sub(r" ", "-", re.sub(r"[^\w\- ]", "", title.strip().lower()))


def anchor(path, title):
    return page_of(path) + "__" + re.sub(r"\W", "_", slug(title))


CODE = re.compile(r"(``.+?``|`[^`]+`)")


def code(span):
    """Words between backticks. Doxygen would find commands in them, and take an apostrophe for their end."""
    return f"<code>{without_marks(span.strip('`').strip())}</code>"


def without_marks(text):
    text = re.sub(r'[\\@<>&#$%"|]', r"\\\g<0>", text)
    return text.replace("*", "&lowast;").replace("`", "&#96;")


def escaped(text):
    """Words as they stand: nothing in them is a command, a tag or a mark, but for `code`."""
    parts = CODE.split(text)
    for i, part in enumerate(parts):
        part = code(part) if i % 2 else without_marks(part)
        parts[i] = DOCUMENT.sub(lambda found: f'\\ref {page_of(found[1])} "{found[1]}"', part)
    return "".join(parts)


def escaped_but_marks(line):
    """A line of a document: Markdown stays, and Doxygen's commands are none but for ours."""
    parts = CODE.split(line)
    parts[::2] = [re.sub(r"[@\\](?!ref |htmlonly|endhtmlonly|\W)", r"\\\g<0>", part) for part in parts[::2]]
    parts[1::2] = [code(part) for part in parts[1::2]]
    return "".join(parts)


def markdown(comment):
    """The lines of a comment, "//" and all, as lines of Doxygen's Markdown."""
    out, code, label, item = [], False, 0, False
    for line in [re.sub(r"^\s*// ?", "", line) for line in comment] + [""]:
        indent = len(line) - len(line.lstrip())
        found = LABEL.match(line)
        starts = found and (found[1].split(",")[0] in LABELS or "  " in found[0])
        if code and line and indent < 2 or code and not line:
            out.append("~~~")
            code = False
        if starts:
            out += ["", f"\\par {found[1]}", escaped(line[found.end() :])]
            label, item = found.end(), False
        elif not line.strip():
            out.append("")
            label, item = 0, False
        elif indent >= 2 and not (label and indent >= min(label, 9)) and not item:
            if not code:
                out += ["", "~~~{.cpp}"]
            code = True
            out.append(line[2:])
        else:
            item = item or line.startswith("- ")
            out.append((line if item else line.strip()) and (" " * indent if item else "") + escaped(line.strip()))
            label = label if indent else 0
    return out[:-1] if out and not out[-1] else out


def labelled(comment):
    """The part of a comment from its first label on: errors, threads, cost."""
    first = re.compile(r"// (?:%s)(?:, [A-Z][a-z]+)*:" % "|".join(LABELS))
    start = next((i for i, line in enumerate(comment) if first.match(line)), len(comment))
    return comment[start:]
