"""The shapes of cells."""
from __future__ import annotations

import enum
import operator
from typing import Union


class Shape(enum.IntEnum):
    """The shape of a cell; the numbers are those of exchange files.

    A quadratic cell has the same shape as its linear form and more nodes.
    """

    NONE = 0
    LINE = 1
    TRIANGLE = 2
    QUADRILATERAL = 3
    TETRAHEDRON = 4
    HEXAHEDRON = 5
    PRISM = 6
    POINT = 7
    PYRAMID = 8
    SPHERE = 9
    CIRCLE = 10


ShapeLike = Union[Shape, str, int]

_BY_NAME = {shape.name.lower(): shape for shape in Shape}


def shape_number(shape: ShapeLike, argument: str) -> int:
    """The number of a shape that is given by itself, its name or its number.

    Numbers that name no shape are carried as they are, because files may hold them.
    """
    if isinstance(shape, str):
        if shape.lower() not in _BY_NAME:
            raise ValueError(f"{argument} has the shape {shape!r}, expected one of "
                             + ", ".join(_BY_NAME))
        return int(_BY_NAME[shape.lower()])
    try:
        number = operator.index(shape)
    except TypeError:
        raise TypeError(f"{argument} has the shape {shape!r}, expected a Shape or its name") from None
    if not -2**31 <= number < 2**31:
        raise ValueError(f"{argument} has the shape {number}, expected a number of 32 bits")
    return number


def shape_of(number: int) -> Union[Shape, int]:
    """The shape of a number; the number itself where it names none."""
    return Shape(number) if number in Shape._value2member_map_ else number


def shape_name(number: int) -> str:
    """The name of a shape, such as "tetrahedron"."""
    shape = shape_of(number)
    return shape.name.lower() if isinstance(shape, Shape) else f"shape {number}"
