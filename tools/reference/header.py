"""Public headers, read for the reference: which comment belongs to what, and the classes.

A comment belongs to the declaration right below it, and to the overloads of that name which follow without a gap and
without a comment of their own and are not deleted; behind a declaration it belongs to that. The comment that opens a
header is that of the header, and of its classes without one. "// ---- Title ----" begins a group of members. What
stands in bodies of functions, or has a blank line below it, is for readers of the header alone.
"""
import re

TEXT = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'')
SECTION = re.compile(r"\s*// -{2,} (.*?) -{2,}$")
ACCESS = re.compile(r"\s*(public|protected|private)\s*:")
SCOPE = re.compile(r'\b(class|struct|union|enum|namespace)\b|(extern "_)')
NAME = re.compile(r"(operator\s*(?:\(\)|\[\]|[^\s\w(]+|\w+)|~?\w+)\s*\(")
CLASS = re.compile(r"\b(?:class|struct) (?:alignas\(\w+\) |ZO_COM_API )*(\w+)\s*(?:final\s*)?(?::(?!:)(.*))?$", re.S)
EXPLICIT = re.compile(r"\bexplicit\s*\(.*?\)\s+(?=\w+\()|\b(?:explicit|constexpr|inline)\b", re.S)


def split_line(line):
    """The code of a line, its texts blanked, and the comment behind it; each may be empty."""
    code = TEXT.sub(lambda found: found[0][0] + "_" * (len(found[0]) - 2) + found[0][-1], line)
    at = code.find("//")
    return (code, "") if at < 0 else (code[:at], line[at:])


def without_head(text):
    """A declaration without attributes, template head and requires-clause."""
    text = re.sub(r"\[\[.*?\]\]", "", text).strip()
    while text.startswith("template"):
        depth = 0
        for i, c in enumerate(text):
            depth += (c == "<") - (c == ">")
            if c == ">" and depth == 0:
                break
        text = text[i + 1 :].strip()
    return text.partition("\n")[2].strip() if text.startswith("requires") else text


def scope_of(text):
    """What the brace behind a text opens: "class", "enum", "namespace", or None for a body or a value."""
    head = re.sub(r"alignas\(\w+\)", "", without_head(text))
    found = SCOPE.search(head)
    if not found or "(" in head or "=" in head:
        return None
    return {"enum": "enum", "namespace": "namespace", None: "namespace"}.get(found[1], "class")


class Declaration:
    """The declaration that begins at a line: its last line, its text up to a body, what scope its body is, and whether
    it is still open at the last line."""

    def __init__(self, lines, start):
        self.text, self.scope, self.opened = "", None, False
        braces = parentheses = 0
        for self.end in range(start, len(lines)):
            code = split_line(lines[self.end])[0]
            code = "" if code.lstrip().startswith("#") else code + "\n"
            for i, c in enumerate(code):
                if c == "{" and braces == 0 and parentheses == 0:
                    self.scope = self.scope or scope_of(self.text)
                    self.opened = self.scope is not None and "}" not in code[i:]
                    if self.opened:
                        return
                braces += (c == "{") - (c == "}")
                parentheses += (c == "(") - (c == ")")
                if not braces and c not in "{}":
                    self.text += c
                goes_on = code[i + 1 :].lstrip()[:1] in tuple(";,{)")  # behind a brace
                if not braces and not parentheses and (c == ";" or c == "}" and not goes_on):
                    return

    @property
    def name(self):
        """The function that it declares; empty for a constructor and for anything else."""
        text = EXPLICIT.sub("", without_head(self.text))
        found = None if self.scope else NAME.search(text)
        return re.sub(r"\s", "", found[1]) if found and text[: found.start()].strip() else ""

    def class_and_bases(self):
        found = CLASS.search(without_head(self.text).strip()) if self.scope == "class" else None
        if not found:
            return None, []
        bases = re.sub(r"\b(public|protected|private|virtual)\b", "", found[2] or "")
        while "<" in bases:
            bases = re.sub(r"<[^<>]*>", "", bases)
        return found[1], [base.strip() for base in bases.split(",") if base.strip()]


class Reader:
    """Walks over a header and calls, in the order of its lines: opening(lines), comment(lines), section(title, lines),
    declaration(lines, its Declaration), enumerator(line), other(lines), leave(); and of each class that stands in no
    namespace and no other class found_class(name, bases, lines), and class_comment(name, whether it has one above)."""

    def read(self, text):
        self.lines = text.split("\n")
        self.scopes = []
        opening = self._comment_at(0)
        self.opening(opening)
        self.contract = opening
        i, shared = len(opening), None
        while i < len(self.lines):
            i, shared = self._step(i, shared)
        self.leave()

    def _comment_at(self, start):
        end = start
        while end < len(self.lines) and self.lines[end].lstrip().startswith("//"):
            end += 1
        return self.lines[start:end]

    def _step(self, i, shared):
        """Reads what begins at line i. Gives the line behind it, and the comment that the next declaration has:
        (lines, name of the function that it must declare or None for any)."""
        line = self.lines[i]
        if line.lstrip().startswith("//"):
            comment = self._comment_at(i)
            return i + len(comment), self._place(comment, i + len(comment))
        if line.lstrip().startswith("}"):
            self.leave()
            self.scopes = self.scopes[:-1]
        elif ACCESS.match(line):
            self.leave()
        elif line.strip() and not line.startswith("#"):
            if not self.scopes or self.scopes[-1] != "enum":
                return self._declare(i, shared)
            self.enumerator(line)
            return i + 1, None
        end = i
        while line.startswith("#") and self.lines[end].endswith("\\"):
            end += 1
        self.other(self.lines[i : end + 1])
        return end + 1, None

    def _place(self, comment, below):
        line = self.lines[below].strip() if below < len(self.lines) else ""
        alone = not line or line.startswith("}") or ACCESS.match(line) or line.startswith("#")
        alone = alone and not line.startswith("#define")
        title = SECTION.match(comment[0])
        if title:
            self.section(title[1], comment[1:] if alone else [])
            comment = [] if alone else comment[1:]
        if not comment or alone:
            self.other(comment)
            return None
        self.comment(comment)
        return comment, None

    def _declare(self, i, shared):
        declared = Declaration(self.lines, i)
        lines = self.lines[i : declared.end + 1]
        comment, name = shared or (None, None)
        if name and (name != declared.name or "= delete" in declared.text):
            comment = None
        if name and comment:
            self.comment(comment)
        if declared.scope == "class" and not self.scopes:
            self._class(i, declared, comment)
        self.declaration(lines, declared)
        if declared.opened:
            self.scopes.append(declared.scope)
        return declared.end + 1, (comment, declared.name) if comment and declared.name else None

    def _class(self, i, declared, comment):
        name, bases = declared.class_and_bases()
        if not name:
            return
        indent = re.match(r"\s*", self.lines[i])[0]
        end = declared.end
        while declared.opened and not self.lines[end].startswith(indent + "}"):
            end += 1
        self.found_class(name, bases, self.lines[i : end + 1])
        self.class_comment(name, comment is not None)

    def opening(self, lines): pass
    def comment(self, lines): pass
    def section(self, title, lines): pass
    def declaration(self, lines, declared): pass
    def enumerator(self, line): pass
    def other(self, lines): pass
    def leave(self): pass
    def found_class(self, name, bases, lines): pass
    def class_comment(self, name, has_comment): pass
