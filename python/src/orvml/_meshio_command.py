"""The command ``orvml-meshio``: conversions between exchange files and the formats of meshio."""
from __future__ import annotations

import argparse
import os
import sys
import warnings
from typing import List, Optional

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
        meshio.write(options.target, mesh, options.output_format)


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
