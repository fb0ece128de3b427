#!/usr/bin/env python3
"""dead_links.py SITE: takes away the links to places of the same page that Doxygen makes without the place: the heading
of nested classes that are all private, and one in its own emblem."""
import os
import re
import sys

LINK = re.compile(r'<a href="#([^"]+)">[^<]*</a>(?: &#124;)?\n?|\s+xlink:href="#([^"]+)"')


def main():
    site = sys.argv[1]
    for name in (name for name in os.listdir(site) if name.endswith((".html", ".svg"))):
        path = os.path.join(site, name)
        with open(path, encoding="utf-8") as file:
            text = file.read()
        places = set(re.findall(r'\b(?:id|name)="([^"]+)"', text))
        mended = LINK.sub(lambda link: link[0] if (link[1] or link[2]) in places else "", text)
        if mended != text:
            with open(path, "w", encoding="utf-8") as file:
                file.write(mended)


main()
