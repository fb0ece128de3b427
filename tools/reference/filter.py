#!/usr/bin/env python3
"""filter.py OUT: what Doxygen is to read. Puts headers and documents into OUT/input as it takes them, the pages of
OUT/pages (pages.py) with them: comments marked, headings named, links as it finds pages. No file here changes."""
import os
import re
import sys

import comments
import header

EXPLICIT_IF = re.compile(r"\bexplicit\((?:[^()]|\([^()]*\))*\)")  # Doxygen takes it for the name
FRIEND_CLASS = re.compile(r"^\s*friend (?:class|struct) ")  # nothing for clients
ROOT = os.path.realpath(os.path.join(os.path.dirname(__file__), "..", ".."))


class Writer(header.Reader):
    """A header with its comments marked for Doxygen."""

    def __init__(self, path):
        self.out, self.section_depth = [], -1
        self.main_class = "zo" + re.sub(r"\W|_|h$", "", os.path.basename(path))

    def _say(self, lines, first=()):
        self.out += [("/// " + line).rstrip() for line in [*first, *comments.markdown(lines)]]

    def opening(self, lines):
        self.contract = lines
        self._say(lines, ["\\file"])

    def class_comment(self, name, has_comment):
        """What the header says is for its class, and for every class that says nothing itself. The others have its
        labelled part."""
        whole = not has_comment or name.lower() == self.main_class
        self.out.append("///")
        self._say(self.contract if whole else comments.labelled(self.contract))

    def comment(self, lines):
        self._say(lines)

    def section(self, title, lines):
        self.leave()
        self._say(lines, ["\\name " + comments.without_marks(title)])
        self.out += ["///@{", ""]  # a block of its own
        self.section_depth = len(self.scopes)

    def leave(self):
        if self.section_depth == len(self.scopes):
            self.out.append("///@}")
            self.section_depth = -1

    def declaration(self, lines, declared):
        lines = [EXPLICIT_IF.sub("explicit", line) for line in lines]
        if FRIEND_CLASS.search(lines[-1]):
            self.out += ["/// \\cond", *lines, "/// \\endcond"]
            return
        self.out += lines[:-1]
        plain = not declared.opened and (len(lines) == 1 or header.split_line(lines[-1])[0].rstrip().endswith(";"))
        self.out.append(self._behind(lines[-1]) if plain else lines[-1])

    def enumerator(self, line):
        self.out.append(self._behind(line))

    def other(self, lines):
        self.out += lines

    def _behind(self, line):
        code, comment = header.split_line(line)
        return line[: len(code)] + "///< " + comments.escaped(comment[2:].strip()) if comment else line


def link(found, folder, pages):
    """A link of a document, as Doxygen finds what it leads to: a page, or nothing of this site."""
    text, target = found[1], found[2]
    path, _, title = target.partition("#")
    path = os.path.normpath(os.path.join(folder, path))
    if target.startswith(("http:", "https:")):
        return found[0]
    if path.endswith(".h") and path in pages:
        return path.removeprefix("include/")  # found by its name
    if path not in pages:
        return text
    return f'@ref {comments.anchor(path, title) if title else comments.page_of(path)} "{text}"'


def document(path, text, pages):
    """A document in Markdown, with names for its headings, and with links to pages of the site."""
    out, fenced = [], False
    for line in text.split("\n"):
        fenced ^= line.startswith("```")
        heading = re.match(r"(#+) (.*)", line)
        if fenced or line.startswith(("```", "    ")):
            out.append(line)
            continue
        if heading:
            name = comments.page_of(path) if heading[1] == "#" else comments.anchor(path, heading[2])
            line = f"{line} {{#{name}}}"
        folder = os.path.dirname(path)
        line = re.sub(r"(?<!!)\[([^\]]+)\]\(([^)\s]+)\)", lambda found: link(found, folder, pages), line)
        out.append(comments.escaped_but_marks(line))
    return "\n".join(out)


def header_text(path, text):
    writer = Writer(path)
    writer.read(text)
    return "\n".join(writer.out)


def sources(out):
    """Name in the site -> file, of all that Doxygen is to read."""
    found = {}
    for folder in ("include", "docs"):
        for where, _, names in os.walk(os.path.join(ROOT, folder)):
            for name in (name for name in names if name.endswith((".h", ".md"))):
                path = os.path.join(where, name)
                found[os.path.relpath(path, ROOT)] = path
    for name in ("README.md", "CHANGELOG.md", "CONTRIBUTING.md", "NOTICE.md"):
        found[name] = os.path.join(ROOT, name)
    for name in os.listdir(os.path.join(out, "pages")):
        found[name] = os.path.join(out, "pages", name)
    return found


def main():
    out = sys.argv[1]
    pages = sources(out)
    for name, path in pages.items():
        with open(path, encoding="utf-8") as file:
            text = file.read()
        target = os.path.join(out, "input", name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "w", encoding="utf-8") as file:
            file.write(document(name, text, pages) if name.endswith(".md") else header_text(name, text))


if __name__ == "__main__":
    main()
