"""Named numbers and vectors: parameters and attributes."""
from __future__ import annotations

import operator
from typing import (TYPE_CHECKING, Any, Dict, Iterator, List, Mapping, MutableMapping, Optional,
                    Tuple, TypeVar)

import numpy as np
import numpy.typing as npt

from ._arrays import AnyArray, AttributeArray, as_values

if TYPE_CHECKING:
    import pandas

AttributeRow = Tuple[str, AnyArray, bool]


def _name_of(name: object, argument: str) -> str:
    if not isinstance(name, str):
        raise TypeError(f"{argument} has a name of {type(name).__name__}, expected str")
    return name


Value = TypeVar("Value")


class _Named(MutableMapping[str, Value]):
    """Values by name, in the order in which they were set."""

    def __init__(self) -> None:
        self._values: Dict[str, Value] = {}

    def __getitem__(self, name: str) -> Value:
        return self._values[name]

    def __delitem__(self, name: str) -> None:
        del self._values[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._values)

    def __len__(self) -> int:
        return len(self._values)


class Count:
    """How many nodes or cells there are. Who has them and their attributes share one, so that neither
    refers to the other and both go as soon as nobody has them."""

    def __init__(self, value: int = 0) -> None:
        self.value = value


class Attributes(_Named[AttributeArray]):
    """The attributes of the nodes, or of the cells of one kind: one value for each, by name."""

    def __init__(self, name: str, count: Count) -> None:
        super().__init__()
        self._name = name
        self._count = count

    def __setitem__(self, name: str, values: npt.ArrayLike) -> None:
        self.set(name, values, bool(getattr(values, "must_be_transmitted", False)))

    def set(self, name: str, values: npt.ArrayLike, must_be_transmitted: bool = False) -> None:
        """Sets an attribute.

        Args:
            name: 1 to 79 bytes without "/".
            values: One for each node or cell; integers are stored as int32, others as float64.
                An array that is already so is not copied.
            must_be_transmitted: Whether the meshing module has to send the attribute back.
        """
        argument = f"{self._name}.attributes[{_name_of(name, self._name + '.attributes')!r}]"
        self._values[name] = AttributeArray(as_values(values, argument, self._count.value),
                                            bool(must_be_transmitted))

    def __repr__(self) -> str:
        return f"<{len(self)} attributes of the {self._name}: {', '.join(self) or 'none'}>"

    def to_pandas(self) -> "pandas.DataFrame":
        """A table with a column for each attribute and a row for each node or cell.

        The names of those that must be transmitted are in ``attrs["must_be_transmitted"]``.
        """
        import pandas

        # Files may hold attributes of other lengths, which are filled up with what is no value.
        table = pandas.DataFrame({name: pandas.Series(np.asarray(values))
                                  for name, values in self.items()})
        table.attrs["must_be_transmitted"] = [name for name, values in self.items()
                                              if values.must_be_transmitted]
        return table

    def _adopt(self, rows: List[AttributeRow]) -> None:
        """Takes what a file holds, whatever its length."""
        self._values = {name: AttributeArray(values, flag) for name, values, flag in rows}

    def _rows(self) -> List[AttributeRow]:
        return [(name, np.asarray(values), values.must_be_transmitted)
                for name, values in self.items()]


class Parameters(_Named[float]):
    """The scalar parameters of a document, by name."""

    def __init__(self, values: Optional[Mapping[str, float]] = None) -> None:
        super().__init__()
        self.update(values or {})

    def __setitem__(self, name: str, value: float) -> None:
        _name_of(name, "parameters")
        self._values[name] = number(value, f"parameters[{name!r}]")

    def __repr__(self) -> str:
        return f"Parameters({self._values!r})"

    def to_pandas(self) -> "pandas.Series[Any]":
        """The values, with the names as their index."""
        import pandas

        return pandas.Series(self._values, dtype=float, name="value")


class VectorParameters(_Named[AnyArray]):
    """The vector parameters of a document, by name: int32 or float64, of any length."""

    def __init__(self, values: Optional[Mapping[str, npt.ArrayLike]] = None) -> None:
        super().__init__()
        for name, vector in (values or {}).items():
            self[name] = vector

    def __setitem__(self, name: str, values: npt.ArrayLike) -> None:
        _name_of(name, "vector_parameters")
        self._values[name] = as_values(values, f"vector_parameters[{name!r}]")

    def __repr__(self) -> str:
        return f"VectorParameters({self._values!r})"

    def to_pandas(self) -> "pandas.Series[Any]":
        """The vectors, with the names as their index."""
        import pandas

        return pandas.Series(self._values, dtype=object, name="values")

    def _adopt(self, rows: List[AttributeRow]) -> None:
        self._values = {name: values for name, values, _ in rows}

    def _rows(self) -> List[AttributeRow]:
        return [(name, values, False) for name, values in self.items()]


def integer(value: Any, argument: str) -> int:
    """An argument that has to be an integer of 32 bits."""
    try:
        given = operator.index(value)
    except TypeError:
        raise TypeError(f"{argument} is {value!r}, expected an integer") from None
    if not -2**31 <= given < 2**31:
        raise ValueError(f"{argument} is {given}, expected an integer of 32 bits")
    return given


def number(value: Any, argument: str) -> float:
    """An argument that has to be a number."""
    if not isinstance(value, (str, bytes)) and hasattr(type(value), "__float__"):
        try:
            return float(value)
        except (TypeError, ValueError, OverflowError):
            pass  # an array of several, an integer that no float64 holds
    raise TypeError(f"{argument} is {value!r}, expected a number")


def text(value: Any, argument: str) -> str:
    """An argument that has to be a text."""
    if not isinstance(value, str):
        raise TypeError(f"{argument} is {value!r}, expected str")
    return value
