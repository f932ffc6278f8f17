"""Histograms of what is measured of the cells, by matplotlib."""
from __future__ import annotations

import io
import os
from typing import TYPE_CHECKING, Optional, Union

import numpy as np

from ._shapes import shape_name

if TYPE_CHECKING:
    import matplotlib.figure

    from ._documents import Document

_SIZES = {"edges": "length", "faces": "area", "elements": "volume"}
_COLOURS = ["#0b6e6e", "#5ab4ac", "#c7a252", "#8c510a", "#4a6fa5", "#9d6381"]
_UNMEASURABLE = 1e30
"""What cells without size have for a ratio."""


def _new_figure() -> "matplotlib.figure.Figure":
    """A figure that notebooks show, whether they are told to show those of matplotlib or not."""
    from matplotlib.backends.backend_agg import FigureCanvasAgg
    from matplotlib.figure import Figure

    class Histogram(Figure):  # type: ignore[misc]
        def _repr_png_(self) -> bytes:
            picture = io.BytesIO()
            self.savefig(picture, format="png")
            return picture.getvalue()

    figure = Histogram(figsize=(7, 4), layout="constrained")
    FigureCanvasAgg(figure)
    return figure


def histogram(document: "Document", path: "Optional[Union[str, os.PathLike[str]]]", measure: str,
              cells: Optional[str]) -> "matplotlib.figure.Figure":
    """A figure with the values of each shape on top of each other; see ``Document.plot_quality``."""
    chosen = document._main_cells(cells)
    values = chosen.quality(measure)
    names = np.concatenate([np.full(len(g), g._shape) for g in chosen] or [np.zeros(0, int)])
    drawn = np.isfinite(values) & (np.abs(values) < _UNMEASURABLE)
    shapes = [shape for shape in np.unique(names) if np.any(drawn & (names == shape))]

    figure = _new_figure()
    axes = figure.subplots()
    if shapes:
        axes.hist([values[drawn & (names == shape)] for shape in shapes], bins=40, stacked=True,
                  label=[shape_name(int(shape)) for shape in shapes],
                  color=_COLOURS[:len(shapes)] if len(shapes) <= len(_COLOURS) else None)
    axes.set_xlabel(_SIZES[chosen._entity] if measure == "size" else measure)
    axes.set_ylabel(f"number of {chosen._entity}")
    left_out = int(values.size - drawn.sum())
    axes.set_title(f"{values.size:,} {chosen._entity}"
                   + (f", {left_out:,} of them without a value" if left_out else ""))
    if shapes:
        axes.legend()
    axes.spines[["top", "right"]].set_visible(False)
    if path is not None:
        figure.savefig(os.fspath(path), dpi=150)
    return figure
