#!/usr/bin/env python3
"""What reading takes in Python: beside the C++ layer, in one process, and beside meshio in its fastest
formats, in interleaved rounds of fresh processes. Prints tables and the goals; ends with 2 when one does
not hold.

    python_reads.py TIMED_LOAD FOLDER [NODES [ROUNDS]]

TIMED_LOAD is the library that loads a file by the C++ layer. Each process reads once before it is timed, so
that neither imports nor a cold file count. meshio reads a mesh of two million nodes at most, for the memory
that it takes.
"""
import pathlib
import statistics
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

TIMED = """
import sys, time
{setup}
path = sys.argv[1]
{read}
begin = time.perf_counter()
kept = {read}
print(time.perf_counter() - begin)
"""
IN_TURN = """
import ctypes, statistics, sys, time
import orvml
library, path, rounds = ctypes.CDLL(sys.argv[1]), sys.argv[2], int(sys.argv[3])
load = library.orvml_seconds_to_load
load.restype, load.argtypes = ctypes.c_double, [ctypes.c_char_p]

def read():
    begin = time.perf_counter()
    kept = orvml.read(path)
    return time.perf_counter() - begin

def of_cpp():
    seconds = load(path.encode())
    assert seconds > 0
    return seconds

read(), of_cpp()
pairs = [(read(), of_cpp()) for _ in range(rounds)]
print(statistics.median(a for a, _ in pairs), statistics.median(b for _, b in pairs),
      statistics.median(a / b for a, b in pairs))
"""
SETUPS = {
    "read": ("import orvml", "orvml.read(path)"),
    "open": ("import orvml", "orvml.open(path)"),
    "meshio": ("import meshio", "meshio.read(path)"),
    "bytes": ("", "open(path, 'rb').read()"),
}
MOST_FOR_MESHIO = 2_000_000


def run(*command):
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True, check=True)
    return list(map(float, done.stdout.split()))


def timed(kind, path):
    setup, read = SETUPS[kind]
    return run(sys.executable, "-c", TIMED.format(setup=setup, read=read), path)[0]


def write_mesh(nodes, folder, name):
    import orvml
    from conversions import block_of_tetrahedra

    points, tetrahedra = block_of_tetrahedra(nodes)
    document = orvml.Output(points, elements=[("tetrahedron", tetrahedra)])
    document.nodes.attributes["temperature"] = points[:, 0] / 3
    orvml.write(folder / name, document, flush=False)
    return document


def write_for_meshio(document, folder):
    import meshio

    mesh = meshio.Mesh(document.points, [("tetra", document.elements[0].node_indices)],
                       point_data={"temperature": document.nodes.attributes["temperature"]})
    meshio.write(folder / "mesh.vtk", mesh, binary=True)
    meshio.write(folder / "mesh.vtu", mesh, binary=True, compression=None)
    meshio.write(folder / "mesh.xdmf", mesh, data_format="HDF")
    meshio.write(folder / "mesh.med", mesh)
    return [folder / f"mesh.{ending}" for ending in ("vtk", "vtu", "xdmf", "med")]


def medians(rounds, contests):
    times = {name: [] for name in contests}
    for _ in range(rounds):
        for name, contest in contests.items():
            times[name].append(contest())
    return {name: statistics.median(each) for name, each in times.items()}


def main(timed_load, folder, nodes=10_000_000, rounds=5):
    folder, rounds = pathlib.Path(folder), int(rounds)
    write_mesh(int(nodes), folder, "large.h5")
    print(f"{int(nodes)} nodes, {(folder / 'large.h5').stat().st_size / 1e9:.2f} GB, {rounds} rounds, "
          "medians in seconds\n")
    large = medians(rounds, {"orvml.open": lambda: timed("open", folder / "large.h5")})
    in_turn = [run(sys.executable, "-c", IN_TURN, timed_load, folder / "large.h5", 9)
               for _ in range(rounds)]
    large["orvml.read"], large["load of the C++ layer"], ratio = map(
        statistics.median, zip(*in_turn))
    (folder / "large.h5").unlink()

    document = write_mesh(min(int(nodes), MOST_FOR_MESHIO), folder, "small.h5")
    files = write_for_meshio(document, folder)
    del document
    small = medians(rounds, {
        "orvml.open": lambda: timed("open", folder / "small.h5"),
        "orvml.read": lambda: timed("read", folder / "small.h5"),
        "the bytes of the exchange file alone": lambda: timed("bytes", folder / "small.h5"),
        **{f"meshio, {file.suffix}": lambda file=file: timed("meshio", file) for file in files}})

    print("| reading | seconds |\n|---|---|")
    for name, seconds in large.items():
        print(f"| {name} | {seconds:.4f} |")
    print(f"\n{min(int(nodes), MOST_FOR_MESHIO)} nodes\n\n| reading | seconds |\n|---|---|")
    for name, seconds in small.items():
        print(f"| {name} | {seconds:.4f} |")

    fastest = min(seconds for name, seconds in small.items() if name.startswith("meshio"))
    goals = [
        ("orvml.open takes at most 0.010 s", large["orvml.open"], 0.010),
        ("orvml.read takes at most 1.05 of load", ratio, 1.05),
        ("orvml.open takes at most a fifth of meshio's fastest format",
         small["orvml.open"] / fastest, 0.2),
        ("orvml.read takes at most a fifth of meshio's fastest format",
         small["orvml.read"] / fastest, 0.2)]
    print()
    for goal, figure, bound in goals:
        print(f"{goal}: {figure:.4f}, {'holds' if figure <= bound else 'DOES NOT HOLD'}")
    return 0 if all(figure <= bound for _, figure, bound in goals) else 2


if __name__ == "__main__":
    raise SystemExit(main(*sys.argv[1:]))
