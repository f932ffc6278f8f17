"""In which order the formats that the command converts to have the nodes of a cell: the tables and
the pictures of docs/numbering.md.

    node_orders.py --write    makes the page and its pictures anew
"""
import pathlib
import sys

import numpy as np

from cells_of_vtk import CORNERS, VTK_TYPES, middles

DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
NAMES = {1: "line", 2: "triangle", 3: "quadrilateral", 4: "tetrahedron", 5: "hexahedron",
         6: "prism", 8: "pyramid"}


def numbers(text):
    """"0-3 5" is 0, 1, 2, 3, 5."""
    found = []
    for word in text.split():
        first, _, last = word.partition("-")
        found += range(int(first), int(last or first) + 1)
    return found


# Node i of a cell in the format is node orders[i] of the exchange file; forms that are left out have
# the same order. Prisms in exchange files have their base counter-clockwise seen from the other end.
ORDERS = {
    "VTK before 9.7": {
        (6, 6): numbers("0 2 1 3 5 4"),
        (6, 12): numbers("0 2 1 3 5 4 8 7 6 11 10 9"),
        (6, 15): numbers("0 2 1 3 5 4 8 7 6 11 10 9 12 14 13"),
        (6, 18): numbers("0 2 1 3 5 4 8 7 6 11 10 9 12 14 13 17 16 15")},
    "Gmsh": {
        (4, 10): numbers("0-7 9 8"),
        (5, 20): numbers("0-7 8 11 16 9 17 10 18 19 12 15 13 14"),
        (5, 27): numbers("0-7 8 11 16 9 17 10 18 19 12 15 13 14 24 22 20 21 23 25 26"),
        (6, 15): numbers("0-5 6 8 12 7 13 14 9 11 10"),
        (6, 18): numbers("0-5 6 8 12 7 13 14 9 11 10 15 17 16"),
        (8, 13): numbers("0-4 5 8 9 6 10 7 11 12")},
    "CalculiX": {(1, 3): numbers("0 2 1")},
    "Nastran": {
        (5, 20): numbers("0-11 16-19 12-15"),
        (6, 15): numbers("0-8 12-14 9-11")}}

_EDGES = {1: ["01"], 2: ["01", "12", "20"], 3: ["01", "12", "23", "30"],
          4: ["01", "12", "20", "03", "13", "23"],
          5: ["01", "12", "23", "30", "45", "56", "67", "74", "04", "15", "26", "37"],
          6: ["01", "12", "20", "34", "45", "53", "03", "14", "25"],
          8: ["01", "12", "23", "30", "04", "14", "24", "34"]}
_STYLE = """<style>
  text { font-family: 'DejaVu Sans', 'Inter', system-ui, sans-serif; font-size: 11.5px; fill: #1d2b2b; }
  .head { font-weight: 600; font-size: 13px; }
  .small { font-size: 11.5px; fill: #4a5c5c; }
  .edge { stroke: #0b6e6e; stroke-width: 1.5; fill: none; }
  .node { paint-order: stroke; stroke: #f7faf9; stroke-width: 3; }
  .corner { fill: #0b6e6e; stroke: #0b6e6e; stroke-width: 1.2; }
  .between { fill: #ffffff; stroke: #b4690e; stroke-width: 1.5; }
</style>"""
_PANEL, _HEIGHT, _HEAD = 210, 226, 50


def straight_cell(shape, nodes):
    corners = np.array(CORNERS[shape], float)
    between = middles(shape, nodes)
    if between is None:
        more = [corners[0] + (corners[1] - corners[0]) / 3 * i for i in (1, 2)]
    else:
        more = [corners[[int(corner) for corner in some]].mean(axis=0) for some in between]
    return np.concatenate([corners, np.array(more).reshape(-1, 3)])


def forms_of(shape):
    return sorted(form for form in VTK_TYPES if form[0] == shape)


def panels_of(shape):
    """(form, title, order): the exchange file's own first, then each format that differs."""
    panels = []
    for form in forms_of(shape):
        panels.append((form, f"{form[1]} nodes", "exchange file, VTK", list(range(form[1]))))
        for name, orders in ORDERS.items():
            if form in orders:
                panels.append((form, f"{form[1]} nodes", name, orders[form]))
    return panels


def projected(points):
    """From the front, a little from above and from the right."""
    x, y, z = np.asarray(points).T
    return np.stack([x * 118 + y * 44, 150 - y * 30 - z * 108], axis=1) + [24, _HEAD - 2]


def panel_svg(shape, form, title, name, order, left, top):
    points = projected(straight_cell(*form)) + [left, top]
    text = [f'<text class="head" x="{left + 16}" y="{top + 20}">{title}</text>',
            f'<text class="small" x="{left + 16}" y="{top + 38}">{name}</text>']
    for edge in _EDGES[shape]:
        (x1, y1), (x2, y2) = points[int(edge[0])], points[int(edge[1])]
        text.append(f'<line class="edge" x1="{x1:.0f}" y1="{y1:.0f}" x2="{x2:.0f}" y2="{y2:.0f}"/>')
    for number, node in enumerate(order):
        x, y = points[node]
        kind = "corner" if node < len(CORNERS[shape]) else "between"
        text.append(f'<circle class="{kind}" cx="{x:.0f}" cy="{y:.0f}" r="3.5"/>')
        text.append(f'<text class="node" x="{x + 6:.0f}" y="{y - 5:.0f}">{number}</text>')
    return text


def picture(shape):
    panels = panels_of(shape)
    columns = min(4, len(panels))
    rows = -(-len(panels) // columns)
    width, height = columns * _PANEL, rows * _HEIGHT
    text = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
            f'width="{width}" height="{height}" role="img" aria-label="The nodes of each form of '
            f'the {NAMES[shape]} by their numbers, in exchange files and in formats that differ">',
            _STYLE, f'<rect width="{width}" height="{height}" rx="8" fill="#f7faf9"/>']
    for i, (form, title, name, order) in enumerate(panels):
        text += panel_svg(shape, form, title, name, order, i % columns * _PANEL, i // columns * _HEIGHT)
    return "\n".join(text + ["</svg>", ""])


def table():
    lines = ["| Shape | Nodes | VTK's cell | Format | Its nodes, by their numbers in the exchange file |",
             "|---|---|---|---|---|"]
    for shape, name in NAMES.items():
        for form in forms_of(shape):
            for other, orders in ORDERS.items():
                if form in orders:
                    order = " ".join(str(node) for node in orders[form])
                    lines.append(f"| {name} | {form[1]} | {VTK_TYPES[form]} | {other} | {order} |")
    return "\n".join(lines)


def page():
    text = (DOCS / "numbering.md").read_text()
    head, rest = text.split("<!-- table -->\n", 1)
    tail = rest.split("<!-- end of the table -->\n", 1)[1]
    return f"{head}<!-- table -->\n{table()}\n<!-- end of the table -->\n{tail}"


def generated():
    """The files that are made here, with their contents."""
    files = {DOCS / f"pictures/cells-{name}.svg": picture(shape) for shape, name in NAMES.items()}
    files[DOCS / "numbering.md"] = page()
    return files


if __name__ == "__main__" and sys.argv[1:] == ["--write"]:
    for path, content in generated().items():
        path.write_text(content)
