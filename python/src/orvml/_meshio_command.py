"""The command ``orvml-meshio``: conversions between exchange files and the formats of meshio."""
from __future__ import annotations

import argparse
import contextlib
import io
import os
import sys
import tempfile
import warnings
from typing import Any, Dict, List, Optional

_EXCHANGE_ENDINGS = (".h5", ".hdf5", ".orvml")


def _arguments() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="orvml-meshio", description="Converts between exchange files and the formats of meshio.")
    commands = parser.add_subparsers(dest="command", required=True)
    convert = commands.add_parser(
        "convert", help="convert one file into another",
        description="Converts IN into OUT. One of them is an exchange file: the one that is named "
                    "so, or ends in .h5, .hdf5 or .orvml. What is lost on the way is told.")
    convert.add_argument("source", metavar="IN")
    convert.add_argument("target", metavar="OUT")
    convert.add_argument("--input-format", metavar="FORMAT",
                         help="that of IN: orvml or one of meshio's; by its ending if not given")
    convert.add_argument("--output-format", metavar="FORMAT", help="that of OUT")
    convert.add_argument("--document", choices=["input", "output"],
                         help="which document of IN is read, and which OUT is to be; the output if "
                              "not given, of IN the one that is there")
    convert.add_argument("--strict", action="store_true",
                         help="write nothing where something would be lost")
    return parser


def _is_exchange(path: str, form: Optional[str]) -> bool:
    return form == "orvml" if form else os.path.splitext(path)[1].lower() in _EXCHANGE_ENDINGS


def _counts(mesh: Any) -> Dict[str, int]:
    """What a mesh has, in sentences' words, and how many of each."""
    counts: Dict[str, int] = {"points": len(mesh.points)}
    for block in mesh.cells:
        kind = f"cells of the type {block.type!r}"
        counts[kind] = counts.get(kind, 0) + len(block.data)
    for name, values in mesh.point_data.items():
        counts[f"values of the data {name!r} of the points"] = len(values)
    for name, parts in mesh.cell_data.items():
        # It tells kinds apart, and belongs to nobody.
        if name != "orvml.container":
            counts[f"values of the data {name!r} of the cells"] = sum(map(len, parts))
    return counts


def _read_again(written: str, form: Optional[str]) -> Any:
    """What a written file has; None where meshio cannot tell. A form may have other names for writing
    than for reading, as that of Gmsh has."""
    import meshio

    for named in (form, None):
        try:
            with contextlib.redirect_stdout(io.StringIO()), contextlib.redirect_stderr(io.StringIO()):
                return meshio.read(written, named)
        except (Exception, SystemExit):  # whatever thirty readers do with what thirty writers made
            continue
    return None


def _losses_of_writer(mesh: Any, written: str, form: Optional[str]) -> List[str]:
    """What a writer of meshio has left out, of which it says nothing that a program could ask for."""
    again = _read_again(written, form)
    if again is None:
        return ["meshio cannot read its own file again, so that nobody knows what is missing in it"]
    found = _counts(again)
    return [f"{count - found.get(what, 0)} of {count} {what} are not in the file"
            for what, count in _counts(mesh).items() if found.get(what, 0) < count]


def _refuse_to_replace_others(folder: str, names: List[str], target: str) -> None:
    """An XDMF file has its numbers in an HDF5 file of the same stem, which may be the exchange file that
    is being converted."""
    for name in names:
        if name != os.path.basename(target) and os.path.lexists(os.path.join(folder, name)):
            raise ValueError(f"{target} comes with a second file, {name}, of which there is one "
                             "already")


def _write_looked_at(mesh: Any, target: str, form: Optional[str], strict: bool) -> None:
    """Writes beside the target, looks at what came out, and moves it there: whatever fails, what was
    there stays."""
    import meshio

    folder = os.path.dirname(os.path.abspath(target))
    with tempfile.TemporaryDirectory(prefix=".orvml-meshio-", dir=folder) as beside:
        written = os.path.join(beside, os.path.basename(target))
        meshio.write(written, mesh, form)
        _refuse_to_replace_others(folder, os.listdir(beside), target)
        losses = _losses_of_writer(mesh, written, form)
        if strict and losses:
            raise ValueError("; ".join(losses))
        for sentence in losses:
            warnings.warn(sentence, stacklevel=1)
        # Some formats have a second file beside the first.
        for name in os.listdir(beside):
            os.replace(os.path.join(beside, name), os.path.join(folder, name))


def _convert(options: argparse.Namespace) -> None:
    import meshio

    import orvml
    from orvml import meshio as ours

    if not (_is_exchange(options.source, options.input_format)
            or _is_exchange(options.target, options.output_format)):
        raise ValueError("neither IN nor OUT is an exchange file")
    if _is_exchange(options.source, options.input_format):
        mesh = ours.read(options.source, options.document, strict=options.strict)
    else:
        mesh = meshio.read(options.source, options.input_format)
    if _is_exchange(options.target, options.output_format):
        ours.write(options.target, mesh, options.document or "output", strict=options.strict,
                   creator=f"orvml-meshio {orvml.version}")
    else:
        _write_looked_at(mesh, options.target, options.output_format, options.strict)


def main(arguments: Optional[List[str]] = None) -> int:
    """Runs the command.

    Returns:
        0, 2 for arguments that make no sense, 3 when a file could not be read, written or converted.
    """
    options = _arguments().parse_args(arguments)

    def tell(message: object, *_: object, **__: object) -> None:
        print(f"orvml-meshio: {message}", file=sys.stderr)

    with warnings.catch_warnings():
        warnings.simplefilter("always")
        warnings.showwarning = tell
        try:
            _convert(options)
        except SystemExit:  # meshio has printed why
            return 3
        except Exception as error:  # whatever meshio and the thirty readers raise
            tell(error)
            return 3
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
