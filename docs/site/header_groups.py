#!/usr/bin/env python3
"""Makes a Doxygen group of each section of the public header, and Markdown of its conventions.

    header_groups.py HEADER                prints the header with groups (Doxygen's filter)
    header_groups.py --pages HEADER FOLDER writes a page for each group and one with the conventions
"""
import pathlib
import re
import sys

SECTION = re.compile(r"// -{90,}\n((?://.*\n)+?)// -{90,}\n")
# An overload that only refuses an argument is no function of the reference.
REFUSAL = re.compile(r"(?:^///.*\n)+^template .*\n^.*= delete;\n\n", re.M)
FIRST_TITLE = "Shapes and kinds"


def identifier(title):
    return re.sub(r"\W+", "_", title.lower()).strip("_")


def split_section(comment):
    """Returns the title of a section, its first sentence, and the rest of its comment."""
    text = re.sub(r"(?m)^// ?", "", comment).strip()
    title, details = re.match(r"([^.:]*)[.:]?(.*)", text, re.S).groups()
    return title.strip(), details.strip()


def group(title):
    lines = [f"@defgroup {identifier(title)} {title}", "@{"]
    return "".join(f"/// {line}".rstrip() + "\n" for line in lines)


def with_groups(text):
    text = REFUSAL.sub("", text)
    first = text.index("/// Shape of the elements")
    text = text[:first] + group(FIRST_TITLE) + "\n" + text[first:]
    text = SECTION.sub(lambda match: "/// @}\n\n" + group(split_section(match.group(1))[0]), text)
    end = text.rindex("#endif")
    return text[:end] + "/// @}\n\n" + text[end:]


def conventions(text):
    """The comment at the top of the header as Markdown."""
    comment = text[:text.index("#ifndef")]
    plain = re.sub(r"(?m)^// ?", "", comment)
    plain = re.sub(r"(?m)^ {1,2}(\d+)\. +([^.]+?)(\.| are)", r"\n\1. **\2**\3", plain)
    plain = re.sub(r"\b(OrvML_IO_\w+\(\)|New\.\.\.|Delete\.\.\.Content|`[^`]+`|std::\w+)", code, plain)
    return re.sub(r"(?m)^ {4,}", "   ", plain)


def code(match):
    return match.group() if match.group().startswith("`") else f"`{match.group()}`"


def sections(text):
    """Returns the title and the details of each section."""
    return [(FIRST_TITLE, "")] + [split_section(match.group(1)) for match in SECTION.finditer(text)]


def as_paragraphs(details):
    text = re.sub(r"\b([A-Z]+_[A-Z_]+)\b", r"`\1`", details)
    return f"{text[0].upper()}{text[1:]}\n\n" if text else ""


def write_pages(text, folder):
    folder.mkdir(parents=True, exist_ok=True)
    _, _, rest = conventions(text).partition("\n\n")
    entries = "\n".join(identifier(title) for title, _ in sections(text))
    (folder / "index.md").write_text(
        "# Reference\n\nOne header, `orvml_io.h`, declares everything. It compiles as C++11 and needs "
        f"nothing but the language. The {{ref}}`index of names <genindex>` lists what it declares.\n\n{rest}\n\n```{{toctree}}\n:caption: Functions\n{entries}\n```\n")
    for title, details in sections(text):
        name = identifier(title)
        (folder / f"{name}.md").write_text(
            f"# {title}\n\n{as_paragraphs(details)}"
            f"```{{doxygengroup}} {name}\n:content-only:\n```\n")


if __name__ == "__main__":
    if sys.argv[1] == "--pages":
        write_pages(pathlib.Path(sys.argv[2]).read_text(), pathlib.Path(sys.argv[3]))
    else:
        sys.stdout.write(with_groups(pathlib.Path(sys.argv[1]).read_text()))
