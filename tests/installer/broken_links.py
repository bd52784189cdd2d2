"""Reads all HTML pages below a folder and prints each link that leads nowhere, then
"N pages, N broken links".

    broken_links.py FOLDER

A link must lead to a file below the folder and, if it has one, to an anchor of that page.
"""

import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit


class Page(HTMLParser):
    """Collects the links and the anchors of a page."""

    def __init__(self, text):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("href", "src"):
                self.links.append(value)
            elif name == "id":
                self.anchors.add(value)


def is_broken(pages, page, link):
    parts = urlsplit(link)
    target = (page.parent / unquote(parts.path)).resolve() if parts.path else page
    if parts.scheme or not target.is_file():
        return True
    return bool(parts.fragment) and (target not in pages or unquote(parts.fragment) not in pages[target].anchors)


def main():
    folder = Path(sys.argv[1]).resolve()
    pages = {path: Page(path.read_text(encoding="utf-8")) for path in sorted(folder.rglob("*.html"))}
    broken = [(path, link) for path, page in pages.items() for link in page.links
              if is_broken(pages, path, link)]
    for path, link in broken:
        print(f"{path.relative_to(folder)}: {link}")
    print(f"{len(pages)} pages, {len(broken)} broken links")


main()
