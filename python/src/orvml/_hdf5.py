"""Who may call HDF5: one thread at a time, because HDF5 as Debian builds it is not made for more."""
from __future__ import annotations

import contextlib
import os
import sys
import threading
from typing import Any, ContextManager, Iterator, List

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


# A process that is forked off while another thread is in HDF5 would have the lock taken for ever.
_held_over_forks: List[ContextManager[Any]] = []


def _before_fork() -> None:
    held = alone()
    held.__enter__()
    _held_over_forks.append(held)


def _after_fork() -> None:
    _held_over_forks.pop().__exit__(None, None, None)


os.register_at_fork(before=_before_fork, after_in_parent=_after_fork, after_in_child=_after_fork)
