#!/usr/bin/env python3
"""Checks the built site: every link leads somewhere, every exported symbol is documented.

    check_pages.py [--browser] SITE EXPORTED_SYMBOLS EXPORTED_SYMBOLS_OF_A_CPP_LIBRARY ...

It also looks for what a reader needs to find: names in the index by what tells them apart, a contents
list beside each page of the reference, code and installation on the first page. With --browser each page
is besides loaded in headless Chromium at several widths and in both colour schemes.
"""
import collections
import html
import html.parser
import pathlib
import re
import sys
import urllib.parse

from browser_checks import failures_in_browser

# A name without what most names begin with; enumerators stand behind their enumeration.
NAME_IN_INDEX = re.compile(r"(?:\w+::)?(?:OrvML_IO_|ORVML_IO_|ORVML_)?(\w+)")


class Page(html.parser.HTMLParser):
    """The targets of a page, and the places in it that can be linked to."""

    def __init__(self, path):
        super().__init__()
        self.path = path
        self.targets, self.places = [], set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        named = dict(attributes)
        self.places.update(named[key] for key in ("id", "name") if named.get(key))
        self.targets.extend(named[key] for key in ("href", "src") if named.get(key))


def dead_links(site, pages):
    for page in pages.values():
        for target in page.targets:
            parts = urllib.parse.urlsplit(target)
            if parts.scheme or parts.netloc:
                continue
            path = page.path
            if parts.path:
                path = (page.path.parent / urllib.parse.unquote(parts.path)).resolve()
            if not path.exists():
                yield f"{page.path.relative_to(site)}: {target} does not exist"
            elif parts.fragment and path in pages:
                if urllib.parse.unquote(parts.fragment) not in pages[path].places:
                    yield f"{page.path.relative_to(site)}: {target} has no such place"


def undocumented(pages, symbols):
    """A function is documented where its signature has a place, once for each overload."""
    exported = collections.Counter(line.partition("(")[0]
                                   for line in symbols.read_text().splitlines())
    places = [place for page in pages.values() for place in page.places]
    for name, overloads in exported.items():
        # A place is the mangled signature: the length of the name, the name, the parameters.
        signature = re.compile(rf"_CPPv4\w*?{len(name)}{name}")
        documented = sum(1 for place in places if signature.match(place))
        if documented != overloads:
            yield f"{name} is documented {documented} times and exported {overloads} times"


def undocumented_of_cpp(pages, symbols):
    """Exported members that only the headers and the library call are no part of the reference."""
    internal = re.compile(r"~|operator=|typeinfo|vtable|::(?:throwOutOfRange|list|oneGroup|parts)$|"
                          r"::(Document|DocumentView|Part|Slice)::\1$")
    places = " ".join(place for page in pages.values() for place in page.places)
    names = {line.partition("(")[0].partition("[abi")[0] for line in symbols.read_text().splitlines()}
    for name in sorted(name for name in names if not internal.search(name)):
        parts = name.split("::")
        if "".join(f"{len(part)}{part}" for part in parts) not in places:
            yield f"{name} is exported and not documented"


def plain(markup):
    return html.unescape(re.sub(r"<[^>]+>", "", markup)).strip()


def index_disorder(site):
    """Nearly all names share a prefix, so the index is sorted by what follows it."""
    index = (site / "genindex.html").read_text()
    last = ""
    for heading, entries in re.findall(r"<h2>(.*?)</h2>(.*?)</section>", index, re.S):
        for entry in re.findall(r"<li>.*?<a [^>]*>(.*?)</a>", entries, re.S):
            name = NAME_IN_INDEX.match(plain(entry)).group(1).lower()
            if name[0] != plain(heading).lower():
                yield f"genindex.html: {plain(entry)} stands under {plain(heading)}"
            if name < last:
                yield f"genindex.html: {plain(entry)} stands behind {last}"
            last = name
    if not last:
        yield "genindex.html: no name is listed"


def unlisted(site, pages):
    """Each page of the reference lists what it documents beside the text."""
    for path, page in pages.items():
        text = path.read_text()
        _, _, contents = text.partition('<div class="toc-tree">')
        documented = re.findall(r'<dl class="cpp (?:function|enum|var)">\s*<dt [^>]*id="(\w+)"', text)
        for place in documented:
            if f'href="#{place}"' not in contents:
                yield f"{path.relative_to(site)}: its contents list does not have {place}"


def missing_on_the_first_page(site):
    blocks = [plain(block) for block in
              re.findall(r"<pre>(.*?)</pre>", (site / "index.html").read_text(), re.S)]
    for what in ("#include <orvml/orvml.hpp>", "cmake --install"):
        if not any(what in block for block in blocks):
            yield f"index.html: no block of code has {what}"


def main(arguments):
    use_browser = "--browser" in arguments
    site, symbols, *cpp_symbols = (pathlib.Path(argument).resolve() for argument in arguments
                                   if argument != "--browser")
    paths = sorted(site.rglob("*.html"))
    pages = {path: Page(path) for path in paths}
    failures = list(dead_links(site, pages))
    failures.extend(undocumented(pages, symbols))
    for symbols_of_library in cpp_symbols:
        failures.extend(undocumented_of_cpp(pages, symbols_of_library))
    failures.extend(index_disorder(site))
    failures.extend(unlisted(site, pages))
    failures.extend(missing_on_the_first_page(site))
    if use_browser:
        failures.extend(failures_in_browser(site, paths))
    print("\n".join(failures), file=sys.stderr, end="\n" if failures else "")
    print(f"{len(paths)} pages, {sum(len(page.targets) for page in pages.values())} links, "
          f"{len(failures)} failures")
    return 1 if failures or not paths else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
