#!/usr/bin/python3
"""Runs a linear static case on the meshed flange: its bottom is held, its collar is loaded.

  solve_flange.py ORVML FLANGE.h5 FOLDER

ORVML is the command, which converts the document; `ccx` of CalculiX solves. It ends with a message and
a status that is not 0 when the reactions of the held face do not balance the load to 1e-6.
"""
import pathlib
import subprocess
import sys

import h5py
import numpy as np

SURFACES = "ORVML_OCTREEMESHER_FACES_SURFACE_ID"
LOAD = np.array([300.0, -400.0, 1200.0])  # in newtons, the mesh being in millimetres

DECK = """*INCLUDE, INPUT=flange.inp
*MATERIAL, NAME=STEEL
*ELASTIC
210000., 0.3
*SOLID SECTION, ELSET=ELEMENTS, MATERIAL=STEEL
*STEP
*STATIC
*BOUNDARY
{held}, 1, 3
*CLOAD
{loads}
*NODE PRINT, NSET={held}, TOTALS=ONLY
RF
*NODE PRINT, NSET={loaded}
U
*END STEP
"""


def surface_in_plane(document, height):
    """The surface whose nodes all lie at a height, and how many nodes it has."""
    points = document["Nodes/coordinates"][:]
    faces = document["Faces/connectivities"][:].reshape(-1, 3)
    surfaces = document["Faces/Attributes/" + SURFACES][:]
    for surface in np.unique(surfaces):
        nodes = np.unique(faces[surfaces == surface])
        if np.abs(points[nodes, 2] - height).max() < 1e-9:
            return f"{SURFACES}_{surface}", len(nodes)
    sys.exit(f"no face of the flange lies at z = {height}")


def deck_of(file):
    with h5py.File(file) as exchange:
        document = exchange["OrvOutput"]
        heights = document["Nodes/coordinates"][:, 2]
        held, _ = surface_in_plane(document, heights.min())
        loaded, nodes = surface_in_plane(document, heights.max())
    loads = "\n".join(f"{loaded}, {axis + 1}, {force / nodes:.12e}" for axis, force in enumerate(LOAD))
    return DECK.format(held=held, loaded=loaded, loads=loads)


def main(orvml, file, folder):
    folder.mkdir(parents=True, exist_ok=True)
    # Elements alone, with the surfaces as sets of nodes to hold and load.
    subprocess.run([orvml, "convert", "--only", "elements", file, folder / "flange.inp"], check=True)
    (folder / "solve.inp").write_text(deck_of(file))
    (folder / "solve.dat").unlink(missing_ok=True)
    run = subprocess.run(["ccx", "solve"], cwd=folder, check=False, capture_output=True, text=True)
    if run.returncode != 0 or "*ERROR" in run.stdout:
        sys.exit(f"CalculiX ended with {run.returncode}:\n{run.stdout}")
    reactions, *moved = [list(map(float, line.split())) for line in
                         (folder / "solve.dat").read_text().splitlines() if line.strip() and "(" not in line]
    imbalance = np.linalg.norm(LOAD + reactions) / np.linalg.norm(LOAD)
    lift = np.mean([node[3] for node in moved])
    print(f"load {LOAD} N, reactions {reactions} N, out of balance by {imbalance:.1e}; "
          f"the loaded face moves up by {lift:.3e} mm")
    if not (imbalance <= 1e-6 and 0 < lift < 1):
        sys.exit("check failed: the reactions do not balance the load, or the flange does not give way")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]))
