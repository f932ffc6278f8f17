"""Who may call HDF5: one thread at a time, because HDF5 as Debian builds it is not made for more."""
from __future__ import annotations

import contextlib
import sys
import threading
from typing import Any, ContextManager, Iterator

_lock = threading.RLock()


def _lock_of_h5py() -> ContextManager[Any]:
    objects = sys.modules.get("h5py._objects")
    return getattr(objects, "phil", contextlib.nullcontext())


@contextlib.contextmanager
def alone() -> Iterator[None]:
    """Keeps other threads of this package, and of h5py, which may use the same HDF5, out of it.

    The lock of h5py comes first, because h5py holds it while it calls functions of the program.
    """
    with _lock_of_h5py(), _lock:
        yield
