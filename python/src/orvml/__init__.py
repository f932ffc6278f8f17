"""Exchange files of meshes and meshing parameters, in NumPy's terms.

    >>> import orvml
    >>> document = orvml.read("part.h5")
    >>> document.points.shape, document.elements[0].node_indices.dtype
    ((2325, 3), dtype('int32'))

``read`` and ``open`` give a document, ``Input`` and ``Output`` make one, ``write`` writes it.
``orvml.meshio`` has thirty other formats.
"""
import numpy as _numpy

from . import _orvml

if not _orvml.knows_numpy_2 and int(_numpy.__version__.split(".")[0]) >= 2:
    raise ImportError("this build of orvml is for NumPy 1: build it again with pybind11 2.12 or later")

from ._arrays import AttributeArray
from ._cells import CellGroup, Cells, Nodes
from ._documents import Document, Input, Output
from ._errors import DirectoryError, Error, NotFoundError, NotPermittedError
from ._files import (Exchange, describe, open, open_exchange, read, read_exchange, rescue, upgrade,
                     write)
from ._named import Attributes, Parameters, VectorParameters
from ._orvml import format_version, version
from ._pages import report
from ._questions import check, diff, fingerprint
from ._reports import (AttributeDescription, CellQuality, CellsDescription, ChangedObject,
                       CheckFinding, CheckReport, Description, Difference, DiffReport,
                       DocumentDescription, Finding, Fingerprint, GroupDescription, LostObject,
                       MatchedEntity, MatchReport, NodesDescription, QualityFigure, RescueReport,
                       StoredArray, UpgradeReport)
from ._shapes import Shape

__version__ = version

__all__ = [
    "AttributeArray", "AttributeDescription", "Attributes", "CellGroup", "CellQuality", "Cells",
    "CellsDescription", "ChangedObject", "CheckFinding", "CheckReport", "Description", "DiffReport",
    "Difference", "DirectoryError", "Document", "DocumentDescription", "Error", "Exchange",
    "Finding", "Fingerprint", "GroupDescription", "Input", "LostObject", "MatchReport",
    "MatchedEntity", "Nodes", "NodesDescription", "NotFoundError", "NotPermittedError", "Output",
    "Parameters", "QualityFigure", "RescueReport", "Shape", "StoredArray", "UpgradeReport",
    "VectorParameters", "check", "describe", "diff", "fingerprint", "format_version", "open",
    "open_exchange", "read", "read_exchange", "report", "rescue", "upgrade", "version", "write",
]
