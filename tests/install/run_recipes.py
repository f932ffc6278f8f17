#!/usr/bin/env python3
"""Runs the programs of the recipes on files that they may meet, and looks at what became of these.

    run_recipes.py BUILD SCRATCH RECIPES

run_documentation.py shows that the programs print what the page says. Here each runs on files with an
input, an output, both and neither, with and without nodes and parameters, of the present format and of an
old one, and on what is no exchange file. It ends by itself; the programs that rewrite a file lose nothing
of it. The files are made, and looked at, without the library.
"""
import copy
import os
import pathlib
import shutil
import subprocess
import sys

import h5py
import numpy as np

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "interop"))
import exchange_reader  # noqa: E402
import exchange_writer  # noqa: E402
from document import DOUBLE, INT, Cells, Document, TypeGroup, Vector  # noqa: E402
from documents import full_document, plane_document  # noqa: E402
from run_documentation import BLOCK, FILE_NAME, typed  # noqa: E402

PROGRAMS = ("read", "mixed", "walk", "answer", "change", "compare", "upgrade")
ARGUMENTS = {"read": ["mixed.h5"], "upgrade": ["mixed.h5", "present.h5"]}


class Disagreement(Exception):
    pass


def require(holds, message):
    if not holds:
        raise Disagreement(message)


def install(build, prefix):
    """Installs the library and lets the compiler and the loader find it."""
    subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)
    library = next(prefix.rglob("liborvml_io.so")).parent
    os.environ.update(PKG_CONFIG_PATH=f"{library}/pkgconfig", LD_LIBRARY_PATH=str(library))


# -- the files -----------------------------------------------------------------------------------------

def faces():
    return Cells([TypeGroup(2, 3, 1)], np.array([0, 1, 2], INT),
                 {b"pressure": Vector(np.array([0.5], DOUBLE), True)})


def without_nodes():
    return Document(dimension=3, cells={"Faces": faces()}, parameters={b"size": 1.0},
                    vectors={b"sizes": Vector(np.array([1, 2], INT))})


def without_scalars():
    return Document(dimension=2, coordinates=np.eye(2),
                    vectors={b"sizes": Vector(np.array([1.5, 2.5], DOUBLE))})


def present(**documents):
    return lambda path: exchange_writer.write_file(path, documents)


def with_damaged_attribute(path):
    """One of the attributes of the nodes is stored behind a filter that nobody has."""
    exchange_writer.write_file(path, {"OrvInput": full_document(), "OrvOutput": plane_document()})
    with h5py.File(path, "r+") as file:
        creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        creation.set_chunk((9,))
        creation.set_filter(32000, h5py.h5z.FLAG_OPTIONAL)
        attributes = file["OrvInput/Nodes/Attributes"]
        del attributes["sizes"]
        dataset = h5py.h5d.create(attributes.id, b"sizes", h5py.h5t.NATIVE_DOUBLE,
                                  h5py.h5s.create_simple((9,)), creation)
        dataset.write_direct_chunk((0,), bytes(72))


def add_by_position(parent, name, vectors, value_type):
    group = parent.create_group(name)
    group.attrs["MAX_ID"] = np.array([len(vectors)], INT)
    for position, values in enumerate(vectors):
        group[str(position)] = np.array(values, value_type)


def add_old_document(file, name, has_nodes=True, has_scalars=True, nameless=None):
    group = file.create_group(name)
    group["dimension"] = np.array([3], INT)
    if has_nodes:
        group["Nodes/coordinates"] = np.arange(12, dtype=DOUBLE).reshape(4, 3) / 3
        add_by_position(group, "Nodes/UserMarkers", [[1, 2, 3, 4], [5, 6, 7, 8]], INT)
        add_by_position(group, "Nodes/UserAttributes", [[0.5, 1.5, 2.5, 3.5]], DOUBLE)
        add_by_position(group, "Nodes/FunctionAttributes", [[4.5, 1.5, 2.5, 3.5]], DOUBLE)
    group["Elements/number_of_elements_by_type"] = np.array([1], INT)
    group["Elements/element_types"] = np.array([4], INT)
    group["Elements/number_of_nodes_by_element"] = np.array([4], INT)
    group["Elements/connectivities"] = np.array([0, 1, 2, 3], INT)
    add_by_position(group, "Elements/FunctionMarkers", [[9]], INT)
    if nameless is not None:
        is_users = nameless == INT
        add_by_position(group, "Elements/" + ("UserMarkers" if is_users else "FunctionAttributes"),
                        [[3]], nameless)
    if has_scalars:
        # The eleventh number says how many volume sizes follow it.
        group["parameters"] = np.array([0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 0.75, 11], DOUBLE)
    add_by_position(group, "GenericMarkers", [[1, 2], [3]], INT)


def old(**documents):
    def write(path):
        with h5py.File(path, "w") as file:
            exchange_writer.write_text(file, b"FORMAT", b"ORVMESHLIBRARY")
            exchange_writer.write_text(file, b"ORVMESHLIBRARY_FORMAT_VERSION", b"1.2")
            exchange_writer.write_text(file, b"ORVML_MODULE_NAME", b"ORVML_OCTREE_MESHER")
            for name, what in documents.items():
                add_old_document(file, name, **what)
    return write


def files():
    """What makes the file, by what it holds."""
    some, other = full_document(), plane_document()
    yield "an input", present(OrvInput=some)
    yield "an output", present(OrvOutput=some)
    # One identification for both: it stands once in a file.
    other.creator, other.module, other.module_version = (some.creator, some.module,
                                                         some.module_version)
    yield "both", present(OrvInput=some, OrvOutput=other)
    yield "neither", present()
    yield "an input without nodes", present(OrvInput=without_nodes())
    yield "an input without nodes, and an output", present(OrvInput=without_nodes(),
                                                           OrvOutput=plane_document())
    yield "an input without scalars", present(OrvInput=without_scalars())
    yield "an input without scalars, and an output", present(OrvInput=without_scalars(),
                                                             OrvOutput=without_nodes())
    yield "an output without scalars", present(OrvOutput=without_scalars())
    yield "a damaged attribute", with_damaged_attribute
    yield "an old input", old(OrvInput={})
    yield "an old output", old(OrvOutput={})
    yield "both, old", old(OrvInput={}, OrvOutput={"has_scalars": False})
    yield "neither, old", old()
    yield "an old input without nodes, and an output", old(OrvInput={"has_nodes": False},
                                                           OrvOutput={})
    yield "an old input without scalars, and an output", old(OrvInput={"has_scalars": False},
                                                             OrvOutput={"has_nodes": False})
    yield "an old marker without a name", old(OrvInput={"nameless": INT}, OrvOutput={})
    yield "an old attribute without a name", old(OrvInput={}, OrvOutput={"nameless": DOUBLE})
    yield "no HDF5", lambda path: path.write_text("no HDF5 file")
    yield "no exchange file", lambda path: h5py.File(path, "w").close()
    yield "no file", lambda path: None


# -- what a file holds ---------------------------------------------------------------------------------

def vector_lines(path, vectors, with_flags):
    for name, vector in sorted(vectors.items()):
        values = np.asarray(vector.values)
        flag = f" flag {vector.must_be_transmitted}" if with_flags else ""
        yield f"{path}{name!r} {values.dtype.str} {values.tobytes().hex()}{flag}"


def description(documents, with_flags):
    """Everything in the documents of a file, in lines; equal lines mean that nothing is lost."""
    lines = []
    for group, document in documents.items():
        lines.append(f"{group} {document.module!r} {document.module_version!r} {document.creator!r} "
                     f"{document.dimension}")
        if document.number_of_nodes > 0:
            lines.append(f"{group} nodes {document.coordinates.tobytes().hex()}")
            lines += vector_lines(f"{group} nodes ", document.node_attributes, with_flags)
        for kind, cells in sorted(document.cells.items()):
            lines.append(f"{group} {kind} {cells.groups} {cells.connectivities.tolist()}")
            lines += vector_lines(f"{group} {kind} ", cells.attributes, with_flags)
        lines += [f"{group} parameter {name!r} {value.hex()}"
                  for name, value in sorted(document.parameters.items())]
        lines += vector_lines(f"{group} vector ", document.vectors, False)
    return lines


def documents_in(path):
    """The documents of a file; none when there is no exchange file, or one that h5py cannot read."""
    try:
        return exchange_reader.read_file(path)
    except (OSError, exchange_reader.NotAnExchangeFile):
        return {}


def with_names(documents):
    """The documents as the upgrade leaves them: the attribute without a name has one."""
    for document in documents.values():
        for kind in set(document.cells) & {"Elements"}:
            attributes = document.cells[kind].attributes
            if b"" in attributes:
                vector = attributes.pop(b"")
                is_users = vector.values.dtype == INT
                attributes[b"user-marker-0" if is_users else b"function-attribute-0"] = vector
    return documents


# -- what the programs do ------------------------------------------------------------------------------

def require_upgraded(before, folder, is_old):
    expected = with_names(copy.deepcopy(before))
    found = documents_in(folder / "present.h5")
    # A flag comes back from old files only.
    require(description(found, is_old) == description(expected, is_old),
            "upgrade lost something:\n" + "\n".join(
                sorted(set(description(expected, is_old)) ^ set(description(found, is_old)))))


def require_changed(before, folder):
    expected = with_names(copy.deepcopy(before))
    if "OrvInput" in expected:
        document = expected["OrvInput"]
        document.parameters[b"size"] = 0.25
        if document.number_of_nodes > 0:
            document.coordinates[0, 0] = -0.5
    found = with_names(documents_in(folder / "mixed.h5"))
    require(description(found, False) == description(expected, False),
            "change lost something:\n" + "\n".join(
                sorted(set(description(expected, False)) ^ set(description(found, False)))))


def expected_answer_of_read(documents):
    if not documents:
        return None
    document = documents.get("OrvInput")
    if document is None:
        return "an exchange file without a usable input"
    return "no nodes" if document.number_of_nodes == 0 else None


def run(program, programs, folder):
    done = subprocess.run([programs / program, *ARGUMENTS.get(program, [])], cwd=folder, text=True,
                          check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    require(done.returncode in (0, 1),
            f"{program} ends with {done.returncode} and prints\n{done.stdout}")
    return done


class Case:
    """One program in a folder of its own, where the file stands under every name of the page."""

    def __init__(self, what, make, program, folder):
        self.program = program
        self.folder = folder
        self.is_damaged = what.startswith("a damaged")
        self.is_old = "old" in what
        folder.mkdir(parents=True)
        for name in ("mixed.h5", "answer.h5"):
            make(folder / name)
        self.content = self.bytes_of("mixed.h5")
        self.before = {} if self.is_damaged else documents_in(folder / "mixed.h5")

    def bytes_of(self, name):
        return (self.folder / name).read_bytes() if (self.folder / name).exists() else None

    def judge(self, done):
        judge = getattr(self, "judge_" + self.program, None)
        if judge is not None:
            judge(done)

    def judge_read(self, done):
        expected = expected_answer_of_read(self.before)
        require(expected is None or done.stdout == expected + "\n", f"read says {done.stdout}")

    def judge_upgrade(self, done):
        require(self.bytes_of("mixed.h5") == self.content, "upgrade changed the old file")
        if not self.is_damaged:
            require((done.returncode == 0) == bool(self.before),
                    f"upgrade ends with {done.returncode}")
            require_upgraded(self.before, self.folder, self.is_old)

    def judge_change(self, done):
        if self.is_damaged:
            require(self.bytes_of("mixed.h5.old") == self.content,
                    "change lost a file of which it could not read everything")
        elif done.returncode == 0:
            require_changed(self.before, self.folder)
        else:
            require(self.bytes_of("mixed.h5") == self.content,
                    "change failed, and did not leave the file alone either")
            require("OrvInput" not in self.before or b"" in attribute_names(self.before),
                    "change left an input as it is")


def try_programs(what, make, programs, scratch):
    folder = scratch / what.replace(" ", "-")
    for program in PROGRAMS:
        case = Case(what, make, program, folder / program)
        case.judge(run(program, programs, case.folder))
    if "both" in what or "an output" in what:
        require_listed(programs, folder / "read")


def attribute_names(documents):
    return {name for document in documents.values() for attributes in document.all_attributes()
            for name in attributes}


def require_listed(programs, folder):
    """nodes.py prints the attributes of the output's nodes, when there are any."""
    done = subprocess.run([sys.executable, "-B", programs / "nodes.py"], cwd=folder, text=True,
                          check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    require(done.returncode == 0, f"nodes.py prints\n{done.stdout}")


def extract_and_compile(recipes, programs):
    """Compiles the programs of the page with the commands of the page."""
    for language, content in BLOCK.findall(recipes.read_text()):
        name = FILE_NAME.match(content)
        if name is not None:
            (programs / name.group(1)).write_text(content)
        for command, _ in typed(content) if language == "console" else ():
            if command.startswith("g++ "):
                subprocess.run(["bash", "-c", command.split("&&")[0]], cwd=programs, check=True)
    found = {path.stem for path in programs.glob("*.cpp")}
    require(found == set(PROGRAMS), f"the page has other programs: {sorted(found)}")


def main(arguments):
    build, scratch, recipes = (pathlib.Path(argument).resolve() for argument in arguments)
    shutil.rmtree(scratch, ignore_errors=True)
    programs = scratch / "programs"
    programs.mkdir(parents=True)
    install(build, scratch / "prefix")
    extract_and_compile(recipes, programs)
    count = 0
    failures = 0
    for what, make in files():
        count += 1
        try:
            try_programs(what, make, programs, scratch)
        except Disagreement as disagreement:
            failures += 1
            print(f"{what}: {disagreement}", file=sys.stderr)
    print(f"{len(PROGRAMS)} programs ran on {count} kinds of files, {failures} with losses")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
