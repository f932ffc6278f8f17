"""What a document says of itself, at the prompt and in a notebook."""
from __future__ import annotations

import html as markup
from typing import TYPE_CHECKING, Iterator, Tuple

if TYPE_CHECKING:
    from ._documents import Document

_SHOWN = 8
_CELL = "text-align: left; white-space: normal; overflow-wrap: anywhere"
"""Names of 79 bytes have no place to break, and narrow pages are read, too."""


def _names(names: "list[str]") -> str:
    shown = ", ".join(names[:_SHOWN])
    return shown if len(names) <= _SHOWN else f"{shown} and {len(names) - _SHOWN} more"


def _parts(document: "Document") -> Iterator[Tuple[str, str]]:
    identification = [document.module, document.module_format_version, document.creator]
    yield "module", " ".join(text for text in identification[:2] if text)
    yield "creator", document.creator
    yield "nodes", f"{document.nodes.size:,}"
    for cells in (document.edges, document.faces, document.elements):
        if cells.size:
            groups = ", ".join(f"{len(group):,} {_shape(group.shape)} of {group.nodes_per_cell}"
                               for group in cells)
            yield cells._entity, f"{cells.size:,}: {groups}"
    for part, attributes in (("nodes", document.nodes.attributes),
                             ("edges", document.edges.attributes),
                             ("faces", document.faces.attributes),
                             ("elements", document.elements.attributes)):
        yield f"{part} have", _names(list(attributes))
    yield "parameters", _names([f"{name} = {value:g}"
                                for name, value in document.parameters.items()])
    yield "vector parameters", _names([f"{name} ({len(values)})" for name, values
                                       in document.vector_parameters.items()])
    yield "findings", str(len(document.findings)) if document.findings else ""


def _shape(shape: object) -> str:
    return str(getattr(shape, "name", f"shape {shape}")).lower()


def _title(document: "Document") -> str:
    return f"{document.kind} document of dimension {document.dimension}"


def plain(document: "Document") -> str:
    """A line for each part that there is."""
    rows = [(part, text) for part, text in _parts(document) if text]
    told = [f"  {part:<17}  {_printable(text)}" for part, text in rows]
    return "\n".join([f"<{_title(document)}", *told]) + ">"


def _printable(text: str) -> str:
    # Names come from files: what would move the cursor or break the line is spelled out.
    return text if text.isprintable() else text.encode("unicode_escape").decode()


def html(document: "Document") -> str:
    """A table; names from files are text in it, never markup."""
    rows = "".join(f"<tr><th style='text-align: left; vertical-align: top'>{markup.escape(part)}</th>"
                   f"<td style='{_CELL}'><code>{markup.escape(writable(text))}</code></td></tr>"
                   for part, text in _parts(document) if text)
    return f"<table><caption>{markup.escape(_title(document))}</caption>{rows}</table>"


def writable(text: str) -> str:
    """A text without lone surrogates, which stand for bytes that are no UTF-8 and fit no page and no
    other library."""
    return text.encode("utf-8", "backslashreplace").decode()
