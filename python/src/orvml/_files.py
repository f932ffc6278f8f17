"""Reading, writing and mending exchange files."""
from __future__ import annotations

import dataclasses
import os
from typing import TYPE_CHECKING, List, Optional, Tuple, Union

from . import _orvml
from ._documents import Document, Input, Output
from ._hdf5 import alone
from ._named import integer
from ._reports import (Description, Finding, RescueReport, UpgradeReport, description_of,
                       findings_of, rescue_report_of, upgrade_report_of)

if TYPE_CHECKING:
    from ._orvml import RawExchange

Path = Union[str, "os.PathLike[str]"]


def path_of(path: Path, argument: str = "path") -> str:
    """The text of a path; ValueError for one that no system has."""
    text = os.fsdecode(path)
    if "\0" in text:
        raise ValueError(f"{argument} is {text!r}, expected no null byte")
    return text


@dataclasses.dataclass
class Exchange:
    """What a file holds."""

    input: Optional[Input] = None
    output: Optional[Output] = None
    findings: Tuple[Finding, ...] = ()
    """What a tolerant reader met and went on from."""
    read_arrays: Tuple[Tuple[str, str], ...] = ()
    """The arrays that open() had to read, because they do not lie in the file as they do in memory,
    each with the reason."""

    def document(self, which: Optional[str] = None, file: Optional[str] = None) -> Document:
        """One of the documents: the one of that kind, or the output where there is one."""
        if which not in (None, "input", "output"):
            raise ValueError(f"document is {which!r}, expected 'input', 'output' or None")
        chosen: Optional[Document] = (
            self.input if which == "input" or (which is None and self.output is None)
            else self.output)
        if chosen is None:
            from ._errors import error_of

            raise error_of(f"orvml.document.no-{which}", f"holds no {which} document", file,
                           f"/Orv{str(which).capitalize()}", "")
        return chosen


def _exchange_of(raw: "RawExchange") -> Exchange:
    findings = tuple(findings_of(raw["findings"]))
    exchange = Exchange(
        None if raw["input"] is None else Input._from_raw(raw["input"]),
        None if raw["output"] is None else Output._from_raw(raw["output"]),
        findings, tuple(raw["read_arrays"]))
    for document in (exchange.input, exchange.output):
        if document is not None:
            document.findings = findings
    return exchange


def read_exchange(path: Path, *, tolerant: bool = False, threads: int = 1) -> Exchange:
    """Reads both documents of a file, as read() reads one."""
    file = path_of(path)
    count = integer(threads, "threads")
    with alone():
        raw = _orvml.read(file, bool(tolerant), count)
    return _exchange_of(raw)


def read(path: Path, document: Optional[str] = None, *, tolerant: bool = False,
         threads: int = 1) -> Document:
    """Reads a document into memory. Nothing of the file stays open.

    Args:
        path: The exchange file.
        document: "input" or "output"; where it is not given, the output, or the input when there is
            no other. read_exchange() gives both.
        tolerant: Whether what can be read is read, and each trouble becomes one of the document's
            findings; else the first one is raised.
        threads: How many read large arrays.

    Raises:
        Error: The file is none, cannot be read, or holds no such document. Its kinds for paths are
            FileNotFoundError, PermissionError and IsADirectoryError, too.
    """
    exchange = read_exchange(path, tolerant=tolerant, threads=threads)
    return exchange.document(document, path_of(path))


def open_exchange(path: Path, *, tolerant: bool = False) -> Exchange:
    """Opens both documents of a file, as open() opens one."""
    file = path_of(path)
    with alone():
        raw = _orvml.open(file, bool(tolerant))
    return _exchange_of(raw)


def open(path: Path, document: Optional[str] = None, *, tolerant: bool = False) -> Document:
    """Opens a document without reading it: its arrays are the pages of the file, which the system
    brings into memory when they are touched. What does not lie in the file as it does in memory is
    read at once.

    The arrays stay what they are when the file is replaced, which is how this library writes.

    Args, raises: As for read().
    """
    return open_exchange(path, tolerant=tolerant).document(document, path_of(path))


def _both(documents: Tuple[Union[Document, Exchange], ...]) -> List[Document]:
    found: List[Document] = []
    for argument in documents:
        if isinstance(argument, Exchange):
            found += [d for d in (argument.input, argument.output) if d is not None]
        elif isinstance(argument, Document):
            found.append(argument)
        else:
            raise TypeError(f"documents holds {type(argument).__name__}, "
                            "expected an Input, an Output or an Exchange")
    if not found or len({document.kind for document in found}) != len(found):
        raise ValueError(f"documents are {', '.join(d.kind for d in found) or 'none'}, "
                         "expected an input, an output, or one of each")
    return found


def write(path: Path, *documents: Union[Document, Exchange], flush: bool = True) -> None:
    """Writes an exchange file: one document, or an input and an output.

    It is made beside the path and moved over what was there once it is whole, so that whoever looks
    finds the old file or the new one. No array is copied, unless the groups of cells do not lie one
    behind the other in memory. A file has one identification: of two documents that of the output.

    Args:
        path: The file to be made or replaced.
        documents: What it is to hold, and all that it is to hold. A part without nodes or cells has no
            place in a file, and neither have attributes of it.
        flush: Whether it is on the disk when the function returns, and not only in the memory of
            the system.

    Raises:
        Error: The old file is there then, and nothing else.
    """
    file = path_of(path)
    raw = [document._raw() for document in _both(documents)]
    with alone():
        _orvml.write(file, raw[0], raw[1] if len(raw) == 2 else None, bool(flush))


def describe(path: Path) -> Description:
    """Tells what a file holds, how it is stored included, without reading the values of an array."""
    file = path_of(path)
    with alone():
        return description_of(_orvml.describe(file))


def upgrade(old: Path, present: Path, *, flush: bool = True) -> UpgradeReport:
    """Writes a file of an older layout as one of the present format, with nothing lost.

    Args:
        old: The file to be read.
        present: The file to be written, another one.
        flush: As for write().

    Raises:
        Error: Nothing is written then.
    """
    files = path_of(old, "old"), path_of(present, "present")
    with alone():
        return upgrade_report_of(_orvml.upgrade(*files, bool(flush)))


def rescue(damaged: Path, sound: Path, *, drop_unsound_cells: bool = True, places: int = 10,
           flush: bool = True) -> RescueReport:
    """Reads what can be read of a damaged or foreign file, in a process of its own, and writes it as
    a sound one. No value is made up.

    Args:
        damaged: The file to be read.
        sound: The file to be written, another one.
        drop_unsound_cells: Whether cells are left out that are no good as cells, though their
            numbers can be read.
        places: How many places a lost object has at most.
        flush: As for write().

    Raises:
        Error: Nothing is written then.
    """
    files = path_of(damaged, "damaged"), path_of(sound, "sound")
    count = integer(places, "places")
    with alone():
        return rescue_report_of(_orvml.rescue(*files, bool(drop_unsound_cells), count, bool(flush)))
