#!/usr/bin/env python3
"""Makes pages of the reference of the headers of the C++ layer.

    cpp_pages.py HEADER                   prints a header as a Doxygen group (Doxygen's filter)
    cpp_pages.py --pages INTO FOLDER ...  writes a page for each header of folders and one that lists them
    cpp_pages.py --qualify XML            writes the namespace to the names of functions in Doxygen's groups,
                                          without which Breathe takes them for global ones

What is no part of the reference is left out: overloads that only refuse, what the compiler writes by
itself, private members, definitions of what a class declares and the concepts behind templates, which
the comments put into words.
"""
import pathlib
import re
import sys

PAGES = {
    "document": "Documents",
    "view": "Views",
    "load": "Load",
    "save": "Save",
    "mapped_file": "Mapped files",
    "describe": "Descriptions",
    "fingerprint": "Fingerprints",
    "diff": "Differences",
    "patch": "Patches",
    "check": "Checks",
    "cell_measures": "Measures of cells",
    "cell_faces": "Faces of cells",
    "skin": "Skins",
    "rescue": "Rescue and upgrade",
    "vtkhdf": "Files that VTK opens",
    "vtk_cells": "Cells of VTK",
    "conversion": "What conversions keep",
    "interop": "Handles of the flat functions",
    "error": "Errors and findings",
    "shape": "Shapes",
    "version": "Versions",
    "parallel_load": "Load by many ranks",
    "parallel_slice": "Slices",
    "parallel_distribute": "Parts of a mesh",
    "parallel_save": "Save by many ranks",
    "parallel_transfer": "How values move",
    "parallel_together": "Steps that ranks agree on",
}
NO_PART = re.compile(r"= (?:delete|default);|~\w+\(|operator=\(|&& other\)|^ *friend |^ *using Document::|"
                     r"\[\[noreturn\]\]|\bconcept\b|<const detail::|^class \w+;|^inline \w+ \w+::\w+\(", re.M)
NOT_PUBLIC = re.compile(r"^ (?:protected|private):\n.*?(?=^\};)|"
                        r"^namespace (?:orvml_io|detail) \{.*?^\}.*?\n", re.M | re.S)


def page_of(path):
    """The name of a header's page: headers for many ranks have names that others have, too."""
    return f"parallel_{path.stem}" if path.parent.name == "parallel" else path.stem


def namespace_of(page):
    return "orvml::parallel" if page.startswith("parallel_") else "orvml"


def declarations(text):
    """Yields what ends with a semicolon, a brace, a colon or a blank line, with its comment."""
    lines = []
    for line in text.splitlines(keepends=True):
        lines.append(line)
        code = line.partition("//")[0].rstrip()
        is_code = code and not line.lstrip().startswith("//")
        if not line.strip() or line.startswith("#") or (is_code and code[-1] in ";{}:"):
            yield "".join(lines)
            lines = []
    yield "".join(lines)


def public_part(text):
    kept = "".join(declaration for declaration in declarations(NOT_PUBLIC.sub("", text))
                   if not NO_PART.search(re.sub(r"//.*", "", declaration)))
    return re.sub(r"^ *requires .*\n|\[\[nodiscard\]\] ", "", kept, flags=re.M)


def as_group(path):
    """A header whose part of the namespace is a group of the name of its page."""
    text = public_part(path.read_text())
    page = page_of(path)
    if page not in PAGES:
        return text
    opening = f"namespace {namespace_of(page)} {{\n"
    begin = text.rindex(opening) + len(opening)
    end = text.rindex(f"}}  // namespace {namespace_of(page)}")
    group = f"/// @addtogroup cpp_{page} {PAGES[page]}\n/// @{{\n"
    return f"{text[:begin]}{group}{text[begin:end]}/// @}}\n{text[end:]}"


def introduction(path):
    """What a header says about all of it, before its namespace."""
    found = re.search(r"((?:^///.*\n)+)^namespace orvml(?:::parallel)? \{", path.read_text(), re.M)
    return re.sub(r"(?m)^/// ?", "", found.group(1)) + "\n" if found else ""


def write_pages(headers, folder):
    folder.mkdir(parents=True, exist_ok=True)
    unknown = {page_of(path) for path in headers} - set(PAGES) - {"orvml", "export"}
    if unknown:
        sys.exit(f"cpp_pages: no page for {', '.join(sorted(unknown))}")
    entries = "\n".join(f"cpp_{page}" for page in PAGES)
    (folder / "cpp.md").write_text(
        "# The C++ layer\n\n`orvml/orvml.hpp` includes all headers but those for many ranks; each page below is "
        "one header. [The guide](../cpp-guide.md) shows them at work, [Many ranks](../parallel.md) those of "
        "`orvml::parallel`. Names are in the namespace `orvml` and stand in "
        f"the {{ref}}`index of names <genindex>`.\n\n```{{toctree}}\n{entries}\n```\n")
    for path in headers:
        page = page_of(path)
        if page in PAGES:
            header = str(path)[str(path).rindex("orvml/parallel/" if "parallel_" in page else "orvml/"):]
            (folder / f"cpp_{page}.md").write_text(
                f"# {PAGES[page]}\n\n`#include <{header}>`\n\n{introduction(path)}"
                f"```{{doxygengroup}} cpp_{page}\n:project: cpp\n:content-only:\n:members:\n"
                ":undoc-members:\n```\n")


def qualify(folder):
    for path in folder.glob("group__*.xml"):
        namespace = "orvml::parallel" if "parallel" in path.stem else "orvml"
        text = path.read_text()
        path.write_text(re.sub(r"<name>(\w+)</name>(?=\s*<(?:qualifiedname|argsstring)>)",
                               rf"<name>{namespace}::\1</name>", text))
    for path in folder.glob("*orvml_1_1*.xml"):
        # Each page says what to include.
        path.write_text(re.sub(r" *<includes .*</includes>\n", "", path.read_text()))


if __name__ == "__main__":
    if sys.argv[1] == "--qualify":
        qualify(pathlib.Path(sys.argv[2]))
    elif sys.argv[1] == "--pages":
        headers = [path for folder in sys.argv[3:] for path in sorted(pathlib.Path(folder).glob("*.hpp"))]
        write_pages(headers, pathlib.Path(sys.argv[2]))
    else:
        sys.stdout.write(as_group(pathlib.Path(sys.argv[1])))
