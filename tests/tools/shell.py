"""The command in a shell, and the files that its tests look at, which h5py alone writes."""
import json
import os
import pathlib
import pty
import re
import select
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests/interop"))

import h5py  # noqa: E402
import jsonschema  # noqa: E402
import numpy as np  # noqa: E402

import documents  # noqa: E402
import exchange_writer  # noqa: E402
from document import INT, Cells, Document, TypeGroup, Vector  # noqa: E402

COMMAND = pathlib.Path(os.environ["ORVML_COMMAND"])
COMMANDS = ("info", "check", "diff", "patch", "apply", "text", "extract", "edit", "new",
            "upgrade", "rescue", "convert", "link-vtk", "report")


def within_memory(limit, line):
    """A line under a limit of `ulimit`; a sanitized command asks for more whatever it does."""
    return line if os.environ.get("ORVML_SANITIZERS") else f"ulimit {limit}; {line}"


def tetrahedron():
    """A sound document: one cell, its four faces, attributes and parameters."""
    return Document(
        creator=b"shell test", module=b"ORVML_OCTREE_MESHER", module_version=b"1.0", dimension=3,
        coordinates=np.array([[0, 0, 0], [2, 0, 0], [0, 1, 0], [0, 0, 0.5]]),
        node_attributes={b"id": documents.ints(4, 3, 2, 1)},
        cells={"Faces": Cells([TypeGroup(2, 3, 4)],
                              np.array([0, 2, 1, 0, 1, 3, 1, 2, 3, 0, 3, 2], INT),
                              {b"size": documents.doubles(0.5, 0.25, 1, 2)}),
               "Elements": Cells([TypeGroup(4, 4, 1)], np.array([0, 1, 2, 3], INT), {})},
        parameters={b"growth": 1.5, b"size": 0.25}, vectors={b"sizes": documents.doubles(0.5, 0.25)})


class Shell(unittest.TestCase):
    """A folder for each test, in which a shell runs."""

    maxDiff = 8000

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="orvml command ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.passing = self.folder / "passing"
        self.passing.mkdir()

    def write(self, name, document, kind="OrvInput"):
        exchange_writer.write_file(self.folder / name, {kind: document})

    def write_old(self, name):
        """Writes a file of the layout before names, with parameters alone."""
        document = tetrahedron()
        document.node_attributes, document.parameters, document.vectors = {}, {}, {}
        document.cells["Faces"].attributes = {}
        self.write(name, document)

        def change(file):
            exchange_writer.write_text(file, b"ORVMESHLIBRARY_FORMAT_VERSION", b"1.3")
            file["OrvInput/parameters"] = np.arange(11) / 4

        self.damage(name, change)

    def environment(self, **more):
        kept = {name: value for name, value in os.environ.items() if name != "NO_COLOR"}
        return dict(kept, PATH=f"{COMMAND.parent}:{os.environ['PATH']}", TERM="xterm",
                    TMPDIR=str(self.passing), **more)

    def run_bytes(self, line, **more):
        return subprocess.run(["bash", "-c", line], cwd=self.folder, check=False, timeout=300,
                              capture_output=True, env=self.environment(**more))

    def run_line(self, line, **more):
        """Runs a line and returns its exit code, what it prints and what it tells."""
        run = self.run_bytes(line, **more)
        self.assertEqual(list(self.passing.iterdir()), [], "something was left behind")
        return run.returncode, run.stdout.decode(), run.stderr.decode()

    def assert_prints(self, line, expected, code=0, told=""):
        self.assertEqual(self.run_line(line), (code, expected, told))

    def json_of(self, line, schema, code=0):
        """What a line prints as JSON, which is as its schema says."""
        found, printed, told = self.run_line(line)
        self.assertEqual(found, code, told)
        value = json.loads(printed)
        jsonschema.Draft202012Validator(json.loads(
            (SOURCE / f"docs/schema/{schema}.schema.json").read_text())).validate(value)
        return value

    def options_of(self, command):
        """The long options that the help of a subcommand lists."""
        printed = self.run_line(f"orvml {command} --help")[1]
        return set(re.findall(r"(?<![\w-])--[\w-]+", printed.split("Options:")[1].split("Example:")[0]))

    def damage(self, name, change):
        """Changes a file by h5py."""
        with h5py.File(self.folder / name, "r+") as file:
            change(file)


def run_on_terminal(line, folder, environment):
    """Runs a line whose streams are a terminal; returns all that is shown there."""
    process, terminal = pty.fork()
    if process == 0:
        os.chdir(folder)
        os.execvpe("bash", ["bash", "-c", line], environment)
    shown = b""
    while select.select([terminal], [], [], 60)[0]:
        try:
            block = os.read(terminal, 65536)
        except OSError:  # the other side is closed
            block = b""
        if not block:
            break
        shown += block
    status = os.waitpid(process, 0)[1]
    os.close(terminal)
    return os.waitstatus_to_exitcode(status), shown.decode().replace("\r\n", "\n")


__all__ = ["COMMAND", "COMMANDS", "Cells", "Document", "INT", "SOURCE", "Shell", "TypeGroup", "Vector",
           "documents", "exchange_writer", "run_on_terminal", "tetrahedron", "within_memory"]
