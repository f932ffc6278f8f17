"""Pages that show a mesh in a browser."""
from __future__ import annotations

import html as markup
import os
import secrets
from typing import TYPE_CHECKING, List, Optional, Tuple, Union

from . import _files, _orvml
from ._documents import ENTITIES, Document
from ._hdf5 import alone

if TYPE_CHECKING:
    from ._files import Path
    from ._orvml import RawDocument

_MOST_IN_A_NOTEBOOK = 100_000
"""Cells of which a notebook shows a document at once: it keeps what it shows."""

_HEIGHT = 620


def _row(given: "Union[Document, Path]") -> "Tuple[RawDocument, str, Optional[str]]":
    if isinstance(given, Document):
        return given._raw(), "", None
    path = _files.path_of(given, "documents")
    return _files.open(path, tolerant=True)._raw(), os.path.basename(path), path


def _page_of(documents: "Tuple[Union[Document, Path], ...]", title: str,
             check: bool) -> "Tuple[bytes, List[str]]":
    if not _orvml.has_pages:
        raise NotImplementedError("this build of orvml has no reports: build it where there are node "
                                  "and npm")
    if len(documents) not in (1, 2):
        raise ValueError(f"documents are {len(documents)}, expected one, or two to be compared")
    rows = [_row(document) for document in documents]
    with alone():
        made = _orvml.page(rows, title, bool(check))
    return made["html"], made["notes"]


def _replace(path: str, content: bytes) -> None:
    """Writes a file beside the one that is there, and moves it over that once it is whole."""
    beside = f"{path}.{secrets.token_hex(4)}.part"
    try:
        with open(beside, "xb") as file:
            file.write(content)
            file.flush()
            os.fsync(file.fileno())
        os.replace(beside, path)
    except BaseException:
        if os.path.exists(beside):
            os.unlink(beside)
        raise


def report(page: "Path", *documents: "Union[Document, Path]", title: str = "",
           check: bool = True) -> Tuple[str, ...]:
    """Writes one HTML file that shows a mesh in any browser, without a network: to be turned, cut,
    coloured and searched, with what check() finds.

    Args:
        page: The file to be made or replaced.
        documents: A document or the path of a file; of a file with two the output. Two of them are
            shown side by side with what differs.
        title: Of the page; the names of the files where it is empty.
        check: Whether the findings of check() are part of it.

    Returns:
        What the page leaves out, in sentences: the inside of large meshes, for example.

    Raises:
        Error: A file is none, or holds no document.
        NotImplementedError: The package was built without the viewer.
    """
    path = _files.path_of(page, "page")
    content, notes = _page_of(documents, title, check)
    _replace(path, content)
    return tuple(notes)


def frame_of(document: Document) -> Optional[str]:
    """The page of a document as a part of a notebook; none where it would be too large, and none for a
    document that cannot be shown."""
    cells = sum(getattr(document, entity).size for entity in ENTITIES)
    if not _orvml.has_pages or not document.nodes.size or cells > _MOST_IN_A_NOTEBOOK:
        return None
    try:
        content, _ = _page_of((document,), document.module or document.kind, True)
    except (ValueError, TypeError, OSError, MemoryError):
        return None
    return (f'<iframe srcdoc="{markup.escape(content.decode())}" sandbox="allow-scripts allow-downloads" '
            f'title="Mesh" style="width: 100%; height: {_HEIGHT}px; border: 0"></iframe>')
