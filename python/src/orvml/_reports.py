"""What is said of documents and files: descriptions, findings, differences, digests, measures."""
from __future__ import annotations

import dataclasses
from typing import Any, Dict, List, Mapping, Optional, Sequence, Tuple, Union

from . import _orvml
from ._arrays import Doubles
from ._shapes import Shape, shape_of

# Of a file


@dataclasses.dataclass(frozen=True)
class StoredArray:
    """A dataset as it is stored."""

    object: str
    """Its absolute path in the file."""
    extents: Tuple[int, ...]
    type: str
    """For example "float64" or "int32, big-endian"."""
    layout: str
    """"compact", "contiguous", "chunked" or "other"."""
    filters: Tuple[str, ...]
    """As HDF5 names them, for example "deflate"."""
    stored_bytes: int


@dataclasses.dataclass(frozen=True)
class AttributeDescription:
    """A named vector without its values."""

    name: str
    holds_ints: bool
    size: int
    must_be_transmitted: bool
    stored: Optional[StoredArray]


@dataclasses.dataclass(frozen=True)
class GroupDescription:
    """The cells of one shape and one number of nodes."""

    shape: Union[Shape, int]
    nodes_per_cell: int
    cells: int


@dataclasses.dataclass(frozen=True)
class NodesDescription:
    """The nodes of a document."""

    size: int
    coordinates: Optional[StoredArray]
    attributes: Tuple[AttributeDescription, ...]


@dataclasses.dataclass(frozen=True)
class CellsDescription:
    """The edges, faces or elements of a document."""

    size: int
    groups: Tuple[GroupDescription, ...]
    node_indices: Optional[StoredArray]
    attributes: Tuple[AttributeDescription, ...]


@dataclasses.dataclass(frozen=True)
class DocumentDescription:
    """A document without the values of its arrays."""

    kind: str
    module: str
    module_format_version: str
    creator: str
    dimension: int
    nodes: NodesDescription
    edges: CellsDescription
    faces: CellsDescription
    elements: CellsDescription
    parameters: Mapping[str, float]
    vector_parameters: Tuple[AttributeDescription, ...]


@dataclasses.dataclass(frozen=True)
class Finding:
    """Something that a tolerant reader met and went on from."""

    code: str
    object: str
    """Its absolute path in the file."""
    sentence: str
    hdf5_reason: str


@dataclasses.dataclass(frozen=True)
class Description:
    """What a file holds, without the values of its arrays."""

    format_version: str
    file_bytes: int
    input: Optional[DocumentDescription]
    output: Optional[DocumentDescription]
    findings: Tuple[Finding, ...]


def _changed(row: Mapping[str, Any], **parts: Any) -> Dict[str, Any]:
    """A row with some of its parts in the types of Python that they have here."""
    return {**row, **parts}


def findings_of(raw: Sequence[Any]) -> List[Finding]:
    return [Finding(**finding) for finding in raw]


def _stored_of(raw: Any) -> Optional[StoredArray]:
    return None if raw is None else StoredArray(
        **_changed(raw, extents=tuple(raw["extents"]), filters=tuple(raw["filters"])))


def _attributes_of(raw: Sequence[Any]) -> Tuple[AttributeDescription, ...]:
    return tuple(AttributeDescription(**_changed(row, stored=_stored_of(row["stored"])))
                 for row in raw)


def _cells_of(raw: Any) -> CellsDescription:
    groups = tuple(GroupDescription(shape_of(group["shape"]), group["nodes_per_cell"],
                                    group["cells"]) for group in raw["groups"])
    return CellsDescription(raw["size"], groups, _stored_of(raw["node_indices"]),
                            _attributes_of(raw["attributes"]))


def _document_of(raw: Any) -> Optional[DocumentDescription]:
    if raw is None:
        return None
    nodes = raw["nodes"]
    parts: Dict[str, Any] = dict(raw)
    parts["nodes"] = NodesDescription(nodes["size"], _stored_of(nodes["coordinates"]),
                                      _attributes_of(nodes["attributes"]))
    for entity in ("edges", "faces", "elements"):
        parts[entity] = _cells_of(raw[entity])
    parts["vector_parameters"] = _attributes_of(raw["vector_parameters"])
    return DocumentDescription(**parts)


def description_of(raw: Any) -> Description:
    return Description(raw["format_version"], raw["file_bytes"], _document_of(raw["input"]),
                       _document_of(raw["output"]), tuple(findings_of(raw["findings"])))


# Of a rescue and an upgrade


@dataclasses.dataclass(frozen=True)
class ChangedObject:
    """An object that is in the new file in another form."""

    object: str
    sentence: str


@dataclasses.dataclass(frozen=True)
class LostObject:
    """An object that is not in the new file, or not all of it."""

    code: str
    object: str
    places: Tuple[Tuple[str, int], ...]
    """The first nodes or cells that are left out: their kind and their index."""
    count: int
    sentence: str


@dataclasses.dataclass(frozen=True)
class RescueReport:
    """What rescue() could not keep, and what it keeps in another form."""

    lost: Tuple[LostObject, ...]
    changed: Tuple[ChangedObject, ...]

    @property
    def is_whole(self) -> bool:
        """Whether everything is in the new file."""
        return not self.lost


@dataclasses.dataclass(frozen=True)
class UpgradeReport:
    """What upgrade() converted."""

    version: str
    """The format version that the old file states; empty when it states none."""
    changed: Tuple[ChangedObject, ...]


def upgrade_report_of(raw: Any) -> UpgradeReport:
    return UpgradeReport(raw["version"], tuple(ChangedObject(**row) for row in raw["changed"]))


def rescue_report_of(raw: Any) -> RescueReport:
    lost = tuple(LostObject(**_changed(row, places=tuple(row["places"]))) for row in raw["lost"])
    return RescueReport(lost, tuple(ChangedObject(**row) for row in raw["changed"]))


# Of a check


@dataclasses.dataclass(frozen=True)
class CheckFinding:
    """Something that check() found."""

    code: str
    """Such as "orvml.mesh.index-out-of-range"; the page on checks has them all."""
    severity: str
    """"note", "warning" or "error"."""
    object: str
    places: Tuple[Tuple[str, int], ...]
    """The first few: "node", "edge", "face", "element" or "value", and an index from 0."""
    count: int
    """How many there are."""
    sentence: str
    cure: str


@dataclasses.dataclass(frozen=True)
class QualityFigure:
    """How the values of one measure are distributed."""

    name: str
    minimum: float
    percentiles: Mapping[int, float]
    maximum: float
    worst: Tuple[Tuple[int, float], ...]
    """At most ten cells with their values, the worst first."""


@dataclasses.dataclass(frozen=True)
class CellQuality:
    """The quality of all cells of one shape."""

    kind: str
    entity: str
    shape: Union[Shape, int]
    cells: int
    figures: Tuple[QualityFigure, ...]


@dataclasses.dataclass(frozen=True)
class CheckReport:
    """What check() says."""

    findings: Tuple[CheckFinding, ...]
    quality: Tuple[CellQuality, ...]
    """Empty unless it was asked for."""

    @property
    def worst(self) -> Optional[str]:
        """The severity of the worst finding; None where there are none."""
        found = {finding.severity for finding in self.findings}
        return next((s for s in ("error", "warning", "note") if s in found), None)

    @property
    def is_clean(self) -> bool:
        """Whether there are neither errors nor warnings."""
        return self.worst not in ("error", "warning")


def check_report_of(raw: Any) -> CheckReport:
    def figure(row: Any) -> QualityFigure:
        return QualityFigure(**_changed(row, worst=tuple(row["worst"])))

    quality = tuple(CellQuality(**_changed(row, shape=shape_of(row["shape"]),
                                             figures=tuple(map(figure, row["figures"]))))
                    for row in raw["quality"])
    findings = tuple(CheckFinding(**_changed(row, places=tuple(row["places"])))
                     for row in raw["findings"])
    return CheckReport(findings, quality)


# Of a comparison


@dataclasses.dataclass(frozen=True)
class Difference:
    """One object that differs between two documents."""

    change: str
    """Such as "only-in-first", "type", "values" or "flag"."""
    object: str
    """Its path below the group of the document, such as "/Nodes/coordinates"."""
    sentence: str
    count: int
    """Of values: how many differ."""
    first: int
    """Of values: which of the first document is the first that differs; else -1."""
    worst: int
    """Of values: where the difference is largest; else -1."""
    largest: float
    """The largest difference."""


@dataclasses.dataclass(frozen=True)
class MatchedEntity:
    """How many nodes or cells of two meshes belong together."""

    matched: int
    only_in_first: int
    only_in_second: int
    is_renumbered: bool


@dataclasses.dataclass(frozen=True)
class MatchReport:
    """How much of two meshes belongs together."""

    nodes: MatchedEntity
    edges: MatchedEntity
    faces: MatchedEntity
    elements: MatchedEntity


@dataclasses.dataclass(frozen=True)
class DiffReport:
    """In what two documents differ."""

    differences: Tuple[Difference, ...]
    are_equal_by_contract: Optional[bool]
    """What the comparison of the flat interface answers: it knows one tolerance of 1e-15, compares
    from the first document's side, and leaves flags and vector parameters aside. None for two kinds
    of documents, and for documents that no file can hold."""
    match: Optional[MatchReport]
    """When it was asked for."""

    @property
    def are_same(self) -> bool:
        return not self.differences


def diff_report_of(raw: Any) -> DiffReport:
    match = raw["match"]
    return DiffReport(tuple(Difference(**row) for row in raw["differences"]),
                      raw["are_equal_by_contract"],
                      None if match is None else MatchReport(
                          **{part: MatchedEntity(**row) for part, row in match.items()}))


@dataclasses.dataclass(frozen=True)
class Fingerprint:
    """The digests of a document and of its parts, 32 digits each; ``str()`` is that of all."""

    document: str
    identification: str
    nodes: str
    edges: str
    faces: str
    elements: str
    node_attributes: str
    edge_attributes: str
    face_attributes: str
    element_attributes: str
    parameters: str
    vector_parameters: str

    def __str__(self) -> str:
        return self.document


def measure_cells(points: Doubles, entity: str, groups: Any, measure: str) -> Doubles:
    """One value per cell of one kind; see ``Cells.quality``."""
    names = list(_orvml.measure_names)
    if measure not in names:
        raise ValueError(f"measure is {measure!r}, expected one of {', '.join(names)}")
    document: Any = {
        "kind": "output", "module": "", "module_format_version": "", "creator": "",
        "dimension": points.shape[1] or 3, "points": points, "edges": [], "faces": [],
        "elements": [], "attributes": {"nodes": [], "edges": [], "faces": [], "elements": []},
        "parameters": [], "vector_parameters": []}
    document[entity] = groups
    return _orvml.measure(document, entity, names.index(measure))
