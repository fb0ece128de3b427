#!/usr/bin/env python3
"""site.py SITE ROOT: no page of the reference leads to nowhere, and it has a page for every public class with the words
of its contract."""
import html.parser
import os
import re
import sys
import urllib.parse


CLASS = re.compile(r"^(class|struct)(?: ZO_COM_API)? (Zo\w+)\b(?!::)[^;]*?\{", re.M)


class Page(html.parser.HTMLParser):
    """The places of a page that can be led to, where it leads, and its words."""

    def __init__(self, path):
        super().__init__()
        self.places, self.leads, self.words = set(), [], []
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attributes):
        for key, value in attributes:
            if key in ("id", "name"):
                self.places.add(value)
            elif (key in ("href", "src", "xlink:href") or tag == "object" and key == "data") and value:
                self.leads.append(value)

    def handle_data(self, data):
        self.words.append(data)


def leads_nowhere(name, lead, pages, site):
    url = urllib.parse.urlsplit(lead)
    if url.scheme:
        return False
    target = urllib.parse.unquote(url.path) or name
    if not os.path.isfile(os.path.join(site, target)):
        return True
    return bool(url.fragment) and target in pages and urllib.parse.unquote(url.fragment) not in pages[target].places


def classes(root):
    for where, _, names in os.walk(os.path.join(root, "include")):
        for name in names:
            with open(os.path.join(where, name), encoding="utf-8") as file:
                yield from ("".join(found) + ".html" for found in CLASS.findall(file.read()))


def main():
    site, root = sys.argv[1:]
    names = [name for name in os.listdir(site) if name.endswith((".html", ".svg"))]
    pages = {name: Page(os.path.join(site, name)) for name in names}
    bad = [f"{name} leads to {lead}" for name, page in pages.items() for lead in page.leads
           if leads_nowhere(name, lead, pages, site)]
    wanted = sorted(set(classes(root)))
    for name in wanted:
        words = " ".join(pages[name].words) if name in pages else ""
        bad += [f"{name}: nothing of {word}" for word in ("Errors", "Threads") if word not in words]
    print("\n".join(bad) or f"{len(pages)} pages, {len(wanted)} classes")
    return bool(bad)


sys.exit(main())
