"""Parts that are shown as one type and may be given as others, which a property cannot say."""
from __future__ import annotations

from typing import Any, Callable, Generic, TypeVar

Shown = TypeVar("Shown")
Given = TypeVar("Given")


class Settable(Generic[Shown, Given]):
    """A part of an object, such as its points, which are an array and may be given as a list."""

    def __init__(self, show: Callable[[Any], Any], take: Callable[[Any, Any], Any],
                 doc: str) -> None:
        self._show = show
        self._take = take
        self.__doc__ = doc

    def __get__(self, holder: Any, _: Any = None) -> Shown:
        if holder is None:
            return self  # type: ignore[return-value]  # of the class, as properties do
        shown: Shown = self._show(holder)
        return shown

    def __set__(self, holder: Any, given: Given) -> None:
        self._take(holder, given)
