"""The cells that an exchange file and VTK share, and random ones of each with a positive volume."""
import numpy as np

# (shape, nodes) of an exchange file: the number of VTK's cell.
VTK_TYPES = {(7, 1): 1, (1, 2): 3, (1, 3): 21, (1, 4): 35, (2, 3): 5, (2, 6): 22, (2, 7): 34,
             (3, 4): 9, (3, 6): 30, (3, 8): 23, (3, 9): 28, (4, 4): 10, (4, 10): 24, (5, 8): 12,
             (5, 20): 25, (5, 24): 33, (5, 27): 29, (6, 6): 13, (6, 12): 31, (6, 15): 26,
             (6, 18): 32, (8, 5): 14, (8, 13): 27, (8, 19): 37}
CONTAINERS = {1: "Edges", 7: "Edges", 2: "Faces", 3: "Faces"}  # of shapes; all others are Elements

# Corners of the straight cells, with the base seen counter-clockwise from the other end.
CORNERS = {
    7: [[0, 0, 0]],
    1: [[0, 0, 0], [1, 0, 0]],
    2: [[0, 0, 0], [1, 0, 0], [0, 1, 0]],
    3: [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]],
    4: [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1]],
    5: [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [1, 1, 1], [0, 1, 1]],
    6: [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [0, 1, 1]],
    8: [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0.5, 0.5, 1]]}

_EDGES = {
    2: ["01", "12", "20"], 3: ["01", "12", "23", "30"],
    4: ["01", "12", "20", "03", "13", "23"],
    5: ["01", "12", "23", "30", "45", "56", "67", "74", "04", "15", "26", "37"],
    6: ["01", "12", "20", "34", "45", "53", "03", "14", "25"],
    8: ["01", "12", "23", "30", "04", "14", "24", "34"]}
_FACES = {
    (2, 7): ["012"], (3, 9): ["0123"],
    (5, 24): ["0473", "1265", "0154", "3762"],
    (5, 27): ["0473", "1265", "0154", "3762", "0321", "4567", "01234567"],
    (6, 18): ["0143", "1254", "2035"],
    (8, 19): ["0123", "014", "124", "234", "304", "01234"]}


def middles(shape, nodes):
    """Of each node beyond the corners, the corners between which it lies."""
    if (shape, nodes) == (1, 4):
        return None
    if (shape, nodes) == (3, 6):
        return ["01", "23"]
    if (shape, nodes) == (1, 3):
        return ["01"]
    edges = _EDGES.get(shape, [])[:nodes - len(CORNERS[shape])]
    return edges + _FACES.get((shape, nodes), [])


def random_cell(random, shape, nodes):
    """Coordinates of the nodes of one cell: its corners moved a little, the others then, too."""
    corners = np.array(CORNERS[shape], float)
    corners += random.uniform(-0.12, 0.12, corners.shape)
    between = middles(shape, nodes)
    if between is None:  # at thirds
        more = np.array([corners[0] + (corners[1] - corners[0]) / 3 * i for i in (1, 2)])
    else:
        more = np.array([corners[[int(corner) for corner in some]].mean(axis=0)
                         for some in between]).reshape(-1, 3)
    more = more + random.uniform(-0.02, 0.02, more.shape)
    cell = np.concatenate([corners, more])
    assert len(cell) == nodes
    return cell
