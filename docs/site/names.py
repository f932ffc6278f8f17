"""Where names are listed, they stand by what tells them apart: nearly all begin alike."""
import itertools
import re

from sphinx import addnodes

ENTRY = re.compile(r"(?:orvml::)?(?:(?P<scope>[\w:]+)::)?(?P<prefix>OrvML_IO_|ORVML_IO_|ORVML_)?"
                   r"(?P<own>operator[^\w ]+|\w+(?:\[\])?) \(C\+\+ (?P<kind>\w+)\)")
PYTHON_ENTRY = re.compile(r"(?P<own>\w+)(?:\(\))?(?: \((?P<kind>[\w. ]+)\))?")
PREFIX = re.compile(r"^(OrvML_IO_|ORVML_IO_)")
WORD_ENDS = re.compile(r"(?<=[a-z0-9])(?=[A-Z])|(?<=_)")
ZERO_WIDTH_SPACE = "\u200b"
LISTED = ("function", "enum", "var", "member")


# The index of all names

def index_entry(name, links):
    found = ENTRY.fullmatch(name)
    entry = found.groupdict() if found else {
        "scope": None, "prefix": None, **PYTHON_ENTRY.fullmatch(name).groupdict()}
    entry["kind"] = entry["kind"] or "exception"  # which Python's index says nothing of
    if entry["scope"]:
        entry["kind"] += f" of {entry['scope']}"
    elif entry["kind"] == "member":
        entry["kind"] = "array"
    return dict(entry, words=WORD_ENDS.split(entry["own"]), links=[link for _, link in links])


def index_entries(name, links, namesakes):
    """The entry of a name, or those of all that have it."""
    if links:
        yield index_entry(name, links)
    for kind, its_links in namesakes:
        # The first of several may have brought its own kind along.
        yield index_entry(f"{name.partition(' (')[0]} {kind}", its_links)


def sort_index(app, pagename, templatename, context, doctree):
    if pagename != "genindex":
        return
    entries = [entry for _, group in context["genindexentries"]
               for name, (links, namesakes, _) in group
               for entry in index_entries(name, links, namesakes)]
    entries.sort(key=lambda entry: entry["own"].lower())
    context["genindexentries"] = [
        (letter, list(group)) for letter, group in
        itertools.groupby(entries, lambda entry: entry["own"][0].upper())]


# The contents list of a page

def signatures(doctree):
    return [signature for description in doctree.findall(addnodes.desc)
            if description.get("objtype") in LISTED
            for signature in description.children if isinstance(signature, addnodes.desc_signature)]


def name_of(signature):
    return next(signature.findall(addnodes.desc_name)).astext()


def parameters(signature):
    return [parameter.astext() for parameter in signature.findall(addnodes.desc_parameter)]


def told_apart(signature, overloads):
    """The last parameter that no other overload has, or at least the last one."""
    own = parameters(signature)
    others = {parameter for other in overloads if other is not signature
              for parameter in parameters(other)}
    if not own:
        return "()"
    return f" ({next((p for p in reversed(own) if p not in others), own[-1])})"


def name_contents(app, doctree):
    """The language's part of Sphinx gives functions no entry in the contents list of their page."""
    listed = signatures(doctree)
    for signature in listed:
        overloads = [other for other in listed if name_of(other) == name_of(signature)]
        name = ZERO_WIDTH_SPACE.join(WORD_ENDS.split(PREFIX.sub("", name_of(signature))))
        signature["_toc_name"] = name + (told_apart(signature, overloads) if overloads[1:] else "")
        signature["_toc_parts"] = (signature["ids"][0],)


def setup(app):
    app.connect("html-page-context", sort_index)
    app.connect("doctree-read", name_contents, priority=400)  # before contents lists are collected
    return {"parallel_read_safe": True, "parallel_write_safe": True}
