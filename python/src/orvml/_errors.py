"""What the functions of this package raise, besides ValueError and TypeError for arguments."""
from __future__ import annotations

import errno
from typing import Optional, Type


class Error(Exception):
    """Something that a file, a document or the system does not allow.

    ``str()`` of it is the file and the sentence.
    """

    code: str
    """Stays what it is, such as ``"orvml.file.not-found"``; the page on codes has them all."""
    sentence: str
    """What happened, without the file."""
    file: Optional[str]
    """The file, as it was named by the caller; None where none was concerned."""
    object: str
    """The absolute path of the object in the file, or the name that was asked for; may be empty."""
    hdf5_reason: str
    """The innermost reason that HDF5 gave; empty where HDF5 was not the one to fail."""

    def __init__(self, code: str, sentence: str, file: Optional[str] = None, object: str = "",
                 hdf5_reason: str = "") -> None:
        # All of them, so that the exception can be sent to another process; OSError keeps two.
        Exception.__init__(self, code, sentence, file, object, hdf5_reason)
        self.code = code
        self.sentence = sentence
        self.file = file
        self.object = object
        self.hdf5_reason = hdf5_reason

    def __str__(self) -> str:
        return self.sentence if self.file is None else f"{self.file}: {self.sentence}"


class _PathError(Error, OSError):
    """What the system says of paths, for which programs know the exceptions of Python."""

    _number = 0

    def __init__(self, code: str, sentence: str, file: Optional[str] = None, object: str = "",
                 hdf5_reason: str = "") -> None:
        super().__init__(code, sentence, file, object, hdf5_reason)
        self.errno = self._number
        self.strerror = sentence
        self.filename = file


class NotFoundError(_PathError, FileNotFoundError):
    """There is no such file or folder."""

    _number = errno.ENOENT


class NotPermittedError(_PathError, PermissionError):
    """The file may not be read, or the folder may not be written."""

    _number = errno.EACCES


class DirectoryError(_PathError, IsADirectoryError):
    """The path leads to a folder."""

    _number = errno.EISDIR


_CLASSES = {
    "orvml.file.not-found": NotFoundError,
    "orvml.folder.not-found": NotFoundError,
    "orvml.file.permission-denied": NotPermittedError,
    "orvml.folder.not-writable": NotPermittedError,
    "orvml.file.directory": DirectoryError,
}


def error_of(code: str, sentence: str, file: Optional[str], object: str,
             hdf5_reason: str) -> Error:
    """Makes the exception for a code."""
    kind: Type[Error] = _CLASSES.get(code, Error)
    return kind(code, sentence, file, object, hdf5_reason)
