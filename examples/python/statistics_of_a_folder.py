#!/usr/bin/env python3
"""Statistics over a folder of exchange files, each computed by a task of its own.

    statistics_of_a_folder.py FOLDER

A file is mapped and not read: a task brings only those pages into memory that it looks at. Tasks may run
in processes of their own, for what they take and give back is small.
"""
import pathlib
import sys

import dask
import numpy as np
import pandas

import orvml


@dask.delayed
def statistics(path):
    """What is said of one file: its size, its quality, the range of each attribute of its nodes."""
    document = orvml.open(path)
    quality = document.elements.quality()
    row = {"file": path.name, "nodes": document.nodes.size, "elements": document.elements.size,
           "volume": float(np.nansum(document.elements.sizes())),
           "worst": float(np.nanmin(quality)) if np.isfinite(quality).any() else float("nan"), "below 0.2": int((quality < 0.2).sum())}
    for name, values in document.nodes.attributes.items():
        row[f"least {name}"], row[f"greatest {name}"] = float(values.min()), float(values.max())
    return row


def main(folder):
    files = sorted(pathlib.Path(folder).glob("*.h5"))
    if not files:
        sys.exit(f"{folder} holds no exchange file")
    rows = dask.compute(*map(statistics, files), scheduler="processes")
    table = pandas.DataFrame(rows).set_index("file")
    print(table.to_string(float_format=lambda value: f"{value:g}"))
    return table


if __name__ == "__main__":
    main(sys.argv[1])
