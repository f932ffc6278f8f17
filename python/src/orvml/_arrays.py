"""Whatever is like an array becomes one that a document can hold, or an error that says what it is."""
from __future__ import annotations

from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

Doubles = npt.NDArray[np.float64]
Ints = npt.NDArray[np.int32]
AnyArray = npt.NDArray[Any]


class AttributeArray(np.ndarray):  # type: ignore[type-arg]
    """The values of an attribute, with its flag.

    A part of it is part of the same attribute and has the flag, too; what is computed from it is a
    plain array.
    """

    must_be_transmitted: bool
    """Whether the meshing module has to send the attribute back."""

    def __new__(cls, values: npt.ArrayLike, must_be_transmitted: bool = False) -> "AttributeArray":
        array = np.asarray(values).view(cls)
        array.must_be_transmitted = must_be_transmitted
        return array

    def __array_finalize__(self, parent: Optional[AnyArray]) -> None:
        self.must_be_transmitted = getattr(parent, "must_be_transmitted", False)

    def __array_wrap__(self, array: AnyArray, context: Any = None,
                       return_scalar: bool = False) -> Any:
        if array is self:  # a += b, which stays what it is
            return self
        plain = np.asarray(array)
        return plain[()] if return_scalar or plain.ndim == 0 else plain

    def __reduce__(self) -> Tuple[Any, ...]:
        return AttributeArray, (np.asarray(self), self.must_be_transmitted)


def _array_of(values: npt.ArrayLike, argument: str) -> AnyArray:
    if isinstance(values, np.ma.MaskedArray) and np.any(values.mask):
        raise ValueError(f"{argument} has masked values, expected none")
    try:
        array = np.asarray(values)
    except ValueError as error:  # rows of different lengths
        raise ValueError(f"{argument} is no array: {error}") from None
    if array.dtype.kind == "O":  # numbers one by one, as tables may hold them
        array = _unboxed(array)
    if array.dtype.kind not in "biuf":
        raise TypeError(f"{argument} holds {array.dtype}, expected numbers")
    return array


def _unboxed(array: AnyArray) -> AnyArray:
    try:
        unboxed = np.asarray(array.tolist())
    except ValueError:
        return array
    if unboxed.dtype.kind == "O" and unboxed.size and all(
            isinstance(value, int) for value in unboxed.flat):
        # Integers beyond 64 bits: the nearest of 64 are as little of 32.
        limits = np.iinfo(np.int64)
        return np.clip(unboxed, limits.min, limits.max).astype(np.int64)
    return unboxed


def _held(array: AnyArray, dtype: Any) -> AnyArray:
    """The same array where it is aligned, contiguous and of the type, else a copy that is."""
    held: AnyArray = np.require(array, dtype=dtype, requirements=["C", "A"])
    return held


def as_doubles(array: AnyArray) -> Doubles:
    return _held(array, np.float64)


def as_ints(array: AnyArray, argument: str) -> Ints:
    """Integers of 32 bits, which is what the format has."""
    if array.dtype.kind == "f" and array.size != 0:
        raise TypeError(f"{argument} holds {array.dtype}, expected integers")
    limits = np.iinfo(np.int32)
    if array.size != 0 and not np.can_cast(array.dtype, np.int32):
        for value in (array.min(), array.max()):
            if not limits.min <= value <= limits.max:
                raise ValueError(f"{argument} holds {value}, expected integers of 32 bits")
    return _held(array, np.int32)


def as_points(values: npt.ArrayLike, argument: str, dimension: Optional[int] = None) -> Doubles:
    """Coordinates ``(n, dimension)``."""
    array = _array_of(values, argument)
    wanted = "(n, 2) or (n, 3)" if dimension is None else f"(n, {dimension})"
    widths = (2, 3) if dimension is None else (dimension,)
    if array.ndim == 1 and array.size == 0:
        array = array.reshape(0, widths[-1])
    if array.ndim != 2 or array.shape[1] not in widths:
        raise ValueError(f"{argument} has the shape {array.shape}, expected {wanted}")
    return as_doubles(array)


def as_node_indices(values: npt.ArrayLike, argument: str) -> Ints:
    """Node indices ``(cells, nodes per cell)``, 0-based."""
    array = _array_of(values, argument)
    if array.ndim == 1 and array.size == 0:
        array = array.reshape(0, 1)
    if array.ndim != 2 or array.shape[1] == 0:
        raise ValueError(f"{argument} has the shape {array.shape}, "
                         "expected (cells, nodes per cell)")
    return as_ints(array, argument)


def as_values(values: npt.ArrayLike, argument: str, size: Optional[int] = None) -> AnyArray:
    """A vector of int32 or float64; integers and truth values become the first."""
    array = _array_of(values, argument)
    if array.ndim != 1 or (size is not None and array.size != size):
        wanted = "(n,)" if size is None else f"({size},)"
        raise ValueError(f"{argument} has the shape {array.shape}, expected {wanted}")
    if array.dtype.kind in "biu":
        return as_ints(array, argument)
    return as_doubles(array)
