#!/usr/bin/env python3
"""pages.py OUT: what the reference adds to headers and documents. Writes OUT/pages/*.md, a page for each family, one of
all families and one of the examples; and OUT/classes.csv, the classes of each family for the pictures."""
import configparser
import fnmatch
import os
import re
import sys

import header

ROOT = os.path.realpath(os.path.join(os.path.dirname(__file__), "..", ".."))
INCLUDE = os.path.join(ROOT, "include")


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


class Contract(header.Reader):
    """What a header says of itself in one sentence, and its classes outside namespace zo: name -> (bases, what
    it declares for others, its page)."""

    def __init__(self, path):
        self.summary, self.classes = "", {}
        self.read(read(os.path.join("include", path)))

    def opening(self, lines):
        paragraph = " ".join(line[2:].strip() for line in lines).split("  ")[0]
        self.summary = re.split(r"(?<=\w\.|\)\.)\s", paragraph + " ")[0].rstrip(":. ") + "."

    def found_class(self, name, bases, lines):
        if name.startswith("Zo"):
            code = "\n".join(header.split_line(line)[0] for line in lines)
            kind = re.search(rf"\b(class|struct) (?:alignas\(\w+\) |ZO_COM_API )*{name}\b", code)[1]
            bases = [base for base in bases if base.startswith("Zo")]
            self.classes[name] = (bases, re.split(r"^ private:", code, flags=re.M)[0], f"{kind}{name}.html")


def public_headers():
    for folder, _, names in os.walk(INCLUDE):
        for name in names:
            yield os.path.relpath(os.path.join(folder, name), INCLUDE).replace(os.sep, "/")


def families():
    """Each family of families.ini with the headers that it takes, in the order of the file."""
    config = configparser.ConfigParser(interpolation=None)
    config.read(os.path.join(os.path.dirname(__file__), "families.ini"), encoding="utf-8")
    left, out = sorted(public_headers()), []
    for key in config.sections():
        patterns = config[key]["headers"].split()
        taken = [path for path in left if any(fnmatch.fnmatch(path, pattern) for pattern in patterns)]
        left = [path for path in left if path not in taken]
        out.append((key, config[key], {path: Contract(path) for path in taken}))
    shown = {name for _, family, _ in out for name in family.get("results", "").split()}
    sections = re.findall(r"^## (\w+)$", read("docs/results.md"), re.M)
    left += [f"codes of {name}" for name in sections if name not in shown]
    if left:
        sys.exit("of no family in families.ini: " + ", ".join(left))
    return out


def title_of(path):
    return re.search(r"^# (.*)", read(path), re.M)[1]


def result_section(name):
    found = re.search(rf"^## {name}\n(.*?)(?=^## |\Z)", read("docs/results.md"), re.M | re.S)
    return found[1].strip() if found else sys.exit(f"docs/results.md has no section {name}")


def family_page(key, family, headers):
    out = [f"# {family['title']}", "", family["what"] + ".", ""]
    if any(contract.classes for contract in headers.values()):
        out += [f'@htmlonly<object type="image/svg+xml" data="family_{key}.svg"></object>@endhtmlonly', ""]
    out += ["## Contracts", "", "| header | classes | what |", "|---|---|---|"]
    for path, contract in headers.items():
        names = ", ".join(contract.classes)
        out.append(f"| {path} | {names} | {contract.summary.replace('<', '&lt;').replace('|', '&#124;')} |")
    if family.get("results"):
        out += ["", "## Codes", "", "As [docs/results.md](docs/results.md) lists them.", ""]
        for name in family["results"].split():
            out += [f"### {name}", "", result_section(name), ""]
    if family.get("documents"):
        out += ["", "## To read", ""]
        out += [f"- [{title_of(path)}]({path})" for path in family["documents"].split()]
    uses = list(uses_of({name for contract in headers.values() for name in contract.classes}))
    return "\n".join(out + (["", "## Examples", ""] + uses if uses else [])) + "\n"


def examples():
    """The folders of examples/, each with its files."""
    for folder in sorted(next(os.walk(os.path.join(ROOT, "examples")))[1]):
        yield folder, sorted(f"examples/{folder}/{name}" for name in os.listdir(os.path.join(ROOT, "examples", folder)))


def examples_page():
    out = ["# Examples", "", "Small clients of the installed package; the tests build and run them.", ""]
    for folder, files in examples():
        out += [f"## {folder}", ""]
        for path in files:
            out += [f"`{path}`:", "", "```cpp", read(path).rstrip(), "```", ""]
    return "\n".join(out)


def uses_of(classes):
    """A line for each example and tutorial that uses some of the classes, with these."""
    tutorials = (f"docs/tutorial/{name}" for name in sorted(os.listdir(os.path.join(ROOT, "docs", "tutorial"))))
    programs = [(title_of(path), path, [path]) for path in tutorials]
    programs += [(f"examples/{folder}", f"examples.md#{folder}", files) for folder, files in examples()]
    for title, link, files in programs:
        used = classes.intersection(re.findall(r"\bZo\w+", "".join(map(read, files))))
        if used:
            yield f"- [{title}]({link}): {', '.join(sorted(used))}"


def ancestors(name, classes):
    """The name and all that it derives from."""
    bases = classes[name][0] if name in classes else []
    return {name}.union(*(ancestors(base, classes) for base in bases))


def class_rows(all_families):
    """family, class, page, bases, and the other classes of its family that its public part names; in a header row."""
    yield "family,class,page,bases,uses"
    for key, _, headers in all_families:
        classes = {name: found for contract in headers.values() for name, found in contract.classes.items()}
        for name, (bases, text, page) in classes.items():
            uses = set(re.findall(r"\bZo\w+", text)) & classes.keys() - ancestors(name, classes)
            yield ",".join([key, name, page, " ".join(bases), " ".join(sorted(uses))])


def main():
    out = sys.argv[1]
    all_families = families()
    pages = {f"family_{key}.md": family_page(key, family, headers) for key, family, headers in all_families}
    pages["families.md"] = "# Families\n\n" + "\n".join(
        f"- [{family['title']}](family_{key}.md): {family['what']}" for key, family, _ in all_families) + "\n"
    pages["examples.md"] = examples_page()
    os.makedirs(os.path.join(out, "pages"), exist_ok=True)
    for name, text in pages.items():
        with open(os.path.join(out, "pages", name), "w", encoding="utf-8") as file:
            file.write(text)
    with open(os.path.join(out, "classes.csv"), "w", encoding="utf-8") as file:
        file.write("\n".join(class_rows(all_families)) + "\n")


main()
