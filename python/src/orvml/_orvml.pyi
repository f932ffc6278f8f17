"""What crosses the border between the package and its module of C++.

Paths and texts are str with the bytes that are no UTF-8 as lone surrogates. Arrays that come out are
read-only views of memory of the library, which they keep alive; those that go in are contiguous and
aligned, float64 or int32, and are shared for the time of the call.
"""
from typing import Any, Dict, List, Mapping, Optional, Sequence, Tuple, TypedDict

from ._arrays import AnyArray, Doubles, Ints

version: str
format_version: str
knows_numpy_2: bool
has_pages: bool
shape_names: List[str]
measure_names: List[str]

class RawAttributes(TypedDict):
    nodes: List[Tuple[str, AnyArray, bool]]
    edges: List[Tuple[str, AnyArray, bool]]
    faces: List[Tuple[str, AnyArray, bool]]
    elements: List[Tuple[str, AnyArray, bool]]

class RawDocument(TypedDict):
    kind: str
    module: str
    module_format_version: str
    creator: str
    dimension: int
    points: Doubles  # [nodes x dimension]; no columns where the coordinates are not known
    edges: List[Tuple[int, Ints]]  # number of the shape, [cells x nodes per cell]
    faces: List[Tuple[int, Ints]]
    elements: List[Tuple[int, Ints]]
    attributes: RawAttributes
    parameters: List[Tuple[str, float]]
    vector_parameters: List[Tuple[str, AnyArray, bool]]

class RawExchange(TypedDict):
    input: Optional[RawDocument]
    output: Optional[RawDocument]
    findings: List[Dict[str, str]]
    read_arrays: List[Tuple[str, str]]

def read(path: str, tolerant: bool, threads: int) -> RawExchange: ...
def open(path: str, tolerant: bool) -> RawExchange: ...
def write(path: str, first: RawDocument, second: Optional[RawDocument], flush: bool) -> None: ...
def describe(path: str) -> Dict[str, Any]: ...
def upgrade(old: str, present: str, flush: bool) -> Dict[str, Any]: ...
def rescue(damaged: str, sound: str, drop_unsound_cells: bool, places: int,
           flush: bool) -> Dict[str, Any]: ...
def check_document(document: RawDocument, coincidence_tolerance: float, quality: bool, places: int,
                   threads: int) -> Dict[str, Any]: ...
def check_file(path: str, coincidence_tolerance: float, quality: bool, places: int,
               threads: int) -> Dict[str, Any]: ...
def diff(first: RawDocument, second: RawDocument, absolute: float, relative: float,
         tolerance_of: Mapping[str, Tuple[float, float]],
         match_within: Optional[float]) -> Dict[str, Any]: ...
def page(documents: Sequence[Tuple[RawDocument, str, Optional[str]]], title: str,
         check: bool) -> Dict[str, Any]: ...
def fingerprint(document: RawDocument) -> Dict[str, str]: ...
def measure(document: RawDocument, entity: str, measure: int) -> Doubles: ...
def vtk_cell_type(shape: int, nodes_per_cell: int) -> Optional[int]: ...
def older_vtk_prism_order(nodes_per_cell: int) -> Sequence[int]: ...
