#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Looks at the HTML that scripts/build-docs has made.

    scripts/doxygen_check.py FOLDER

Every link must lead to something that is there, nothing may be fetched from another host, every public
declaration must have its page, and the text of every comment and of every Markdown file must stand in the
pages, not a word lost.
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse

sys.dont_write_bytecode = True
from declarations import Parser, Source, read
from doxygen_filter import headers, inputs, page_name, project

skipped_text = ("script", "style", "title")


class Page(html.parser.HTMLParser):
    """The places, links and text of a page."""

    def __init__(self, path):
        super().__init__()
        self.places, self.links, self.fetched, self.texts, self.skipping = set(), [], [], [], 0
        self.feed(path.read_text(encoding="utf-8"))
        self.letters = letters("".join(self.texts))

    def handle_starttag(self, tag, attributes):
        self.skipping += tag in skipped_text
        for name, value in attributes:
            if name in ("id", "name"):
                self.places.add(value)
            elif name == "href" and tag == "a":
                self.links.append(value)
            elif name in ("href", "src", "srcset", "action", "data", "poster"):
                self.fetched.append(value)

    def handle_endtag(self, tag):
        self.skipping -= tag in skipped_text

    def handle_data(self, data):
        if not self.skipping:
            self.texts.append(data)


def letters(text):
    """What is the same in a source and its page: letters, digits and what Doxygen might take for its own."""
    return re.sub(r"[^\w%@$&]|_", "", text)


def check_links(folder, pages):
    files = {each.relative_to(folder).as_posix() for each in folder.rglob("*")}
    for name, page in pages.items():
        for link in page.links + page.fetched:
            if re.match(r"(javascript|data):", link) or link == "#":
                continue
            address = urllib.parse.urlsplit(link)
            if address.scheme or address.netloc:
                if link in page.fetched:
                    yield f"{name} fetches {link}"
                elif link not in known_outside():
                    yield f"{name} leads to {link}, which no source names"
                continue
            path = (pathlib.PurePosixPath(name).parent / urllib.parse.unquote(address.path)).as_posix() \
                if address.path else name
            path = re.sub(r"^search/\.\./", "", path)
            if path not in files:
                yield f"{name} leads to {link}, which is not there"
            elif address.fragment and path in pages and \
                    urllib.parse.unquote(address.fragment) not in pages[path].places:
                yield f"{name} leads to {link}, which is not on that page"
    yield from check_scripts(folder, pages)


def check_scripts(folder, pages):
    for path in sorted(folder.rglob("*.js")) + sorted(folder.rglob("*.css")):
        name, text = path.relative_to(folder).as_posix(), path.read_text(encoding="utf-8")
        for address in re.findall(r"""(?:url\(\s*["']?|import\s+["'])((?:https?:)?//[^"')\s]+)""", text):
            yield f"{name} fetches {address}"
        if name.startswith(("navtree", "menu")) or path.stem in pages:
            for link in re.findall(r'"([\w-]+\.html)(?:#[\w-]*)?"', text):
                if link not in pages:
                    yield f"{name} leads to {link}, which is not there"


def known_outside():
    """The addresses of other hosts that the sources themselves hold."""
    if not hasattr(known_outside, "found"):
        text = "".join(read(project, name) for name in inputs() + headers())
        known_outside.found = {each.rstrip(".,;") for each in re.findall(r"https?://[^\s<>)\"`']+", text)}
    return known_outside.found


def paragraphs(doc):
    doc = re.sub(r"^(?:\d+\.|[-*]) ", "\n", doc, flags=re.MULTILINE)
    return [part for part in re.split(r"\n\s*\n", doc) if letters(part)]


def check_comments(pages):
    """Every public declaration has its comment in a page."""
    by_class = {}
    for name, page in pages.items():
        match = re.fullmatch(r"(?:class|struct|namespace|union)(ZQFoundation.*)\.html", name)
        if match and not match.group(1).endswith("-members"):
            by_class[match.group(1).replace("_1_1", "::")] = page
        elif name.endswith("_8h.html"):
            by_class[re.sub(r"_8h\.html$", ".h", name)] = page
    count = 0
    for header in headers():
        source = Source(header, read(project, header))
        parser = Parser(source)
        for each in parser.declarations:
            if each.is_hidden or not each.doc or each.kind == "concept":
                continue
            owner = "::".join(("ZQFoundation", *each.scope))
            if each.kind == "type":
                owner += "::" + each.name
            elif each.kind == "macro":
                owner = header.rpartition("/")[2]
            page = by_class.get(owner)
            if page is None:
                yield f"{each.place}: {each.path} has no page"
                continue
            count += 1
            for part in [each.name] + paragraphs(each.doc):
                if letters(part) not in page.letters:
                    yield f"{each.place}: not in the page of {owner}: {' '.join(part.split())}"
        page = by_class.get(header.rpartition("/")[2])
        for line in sorted(set(source.docs) - parser.used_docs):
            said = letters(source.docs[line])
            if said and (page is None or said not in page.letters):
                yield f"{header}:{line}: not in the header's page: {source.docs[line]}"
    if count < 500:
        yield f"only {count} declarations were looked at"


def check_markdown(pages):
    for name in inputs():
        page = pages.get(page_name(name) + ".html")
        if page is None:
            yield f"{name} has no page"
            continue
        text = re.sub(r"<!--.*?-->", "", read(project, name), flags=re.DOTALL)
        for line in text.split("\n"):
            line = re.sub(r"^\s*(?:\d+[.)]|[-*+])\s|^\s*```.*", "", line)
            line = re.sub(r"(?<!\\)\]\([^()\s]+\)", "", line)
            if letters(line) not in page.letters:
                yield f"{name}: not in its page: {line}"


def main():
    if len(sys.argv) != 2 or sys.argv[1] in ("-h", "--help"):
        print(__doc__)
        return 0 if len(sys.argv) == 2 else 2
    folder = pathlib.Path(sys.argv[1])
    pages = {each.relative_to(folder).as_posix(): Page(each) for each in sorted(folder.rglob("*.html"))}
    if "index.html" not in pages:
        print(f"{folder} holds no documentation", file=sys.stderr)
        return 1
    faults = [*check_links(folder, pages), *check_comments(pages), *check_markdown(pages)]
    for fault in faults:
        print(fault, file=sys.stderr)
    links = sum(len(page.links) for page in pages.values())
    print(f"{len(pages)} pages, {links} links, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
