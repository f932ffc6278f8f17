"""What can be asked of documents, and of files without reading them first."""
from __future__ import annotations

from typing import Mapping, Optional, Tuple, Union

from . import _files, _orvml
from ._documents import Document
from ._files import Path, path_of
from ._hdf5 import alone
from ._named import integer, number
from ._reports import (CheckReport, DiffReport, Fingerprint, check_report_of, diff_report_of)

Tolerance = Union[float, Tuple[float, float]]


def _document_of(given: Union[Document, Path], which: Optional[str]) -> Document:
    return given if isinstance(given, Document) else _files.open(given, which)


def check(document: Union[Document, Path], *, quality: bool = False, places: int = 10,
          coincidence_tolerance: float = 1e-10, threads: int = 1) -> CheckReport:
    """Tells whether what a document holds is sound: its mesh, its attributes, its names. Of a file
    also how it is stored and what does not belong there; both of its documents are checked.

    Args:
        document: A document or the path of a file.
        quality: Whether the quality of the cells is measured, too.
        places: How many places a finding has at most.
        coincidence_tolerance: Nodes coincide that are no further apart than this share of the
            diagonal of the bounding box; a negative one looks for none.
        threads: How many share the work.

    Raises:
        Error: The file is none, or holds no document.
    """
    counts = integer(places, "places"), integer(threads, "threads")
    share = number(coincidence_tolerance, "coincidence_tolerance")
    if isinstance(document, Document):
        return check_report_of(_orvml.check_document(
            document._raw(), share, bool(quality), *counts))
    file = path_of(document, "document")
    with alone():
        return check_report_of(_orvml.check_file(
            file, share, bool(quality), *counts))


def _pair(tolerance: Tolerance, argument: str) -> Tuple[float, float]:
    absolute, relative = (tolerance if isinstance(tolerance, (tuple, list)) and len(tolerance) == 2
                          else (tolerance, 0.0))
    return number(absolute, argument), number(relative, argument)


def diff(first: Union[Document, Path], second: Union[Document, Path],
         document: Optional[str] = None, *, absolute: float = 0.0, relative: float = 0.0,
         tolerance_of: Optional[Mapping[str, Tolerance]] = None,
         match_within: Optional[float] = None) -> DiffReport:
    """Compares all that two documents hold.

    Args:
        first, second: Documents or paths of files.
        document: Which document of files, as for read().
        absolute, relative: Two numbers are equal that are no further apart than the first plus the
            second times the larger of them.
        tolerance_of: Other tolerances for names, and for "coordinates": absolute ones, or pairs of
            an absolute and a relative one.
        match_within: Nodes are the same that lie at most so far apart, and cells that have the same
            nodes, whatever their order; in the unit of the coordinates.

    Raises:
        ValueError: A tolerance is negative or no number.
        Error: As read() does.
    """
    documents = _document_of(first, document), _document_of(second, document)
    tolerances = {name: _pair(value, f"tolerance_of[{name!r}]")
                  for name, value in (tolerance_of or {}).items()}
    distance = None if match_within is None else number(match_within, "match_within")
    return diff_report_of(_orvml.diff(
        documents[0]._raw(), documents[1]._raw(), number(absolute, "absolute"),
        number(relative, "relative"), tolerances, distance))


def fingerprint(document: Union[Document, Path], which: Optional[str] = None) -> Fingerprint:
    """Digests of a content: equal after it was written, read, copied or stored in another way, and
    others when a bit of any value, name, text or flag is another one.

    Args:
        document: A document or the path of a file.
        which: Which document of a file, as for read().
    """
    return Fingerprint(**_orvml.fingerprint(_document_of(document, which)._raw()))
