"""On a phone the cells of a wide table stand below each other, so that each has to say what it is."""
from docutils import nodes
from sphinx.transforms import SphinxTransform

COLUMNS_OF_A_WIDE_TABLE = 4


class LabelledCells(SphinxTransform):
    """Puts the heading of its column into each cell; the style shows it on a narrow page."""
    default_priority = 200

    def apply(self, **kwargs):
        for table in self.document.findall(nodes.table):
            headings = [entry.astext() for head in table.findall(nodes.thead)
                        for entry in head.findall(nodes.entry)]
            if len(headings) >= COLUMNS_OF_A_WIDE_TABLE:
                table["classes"].append("wide")
                for body in table.findall(nodes.tbody):
                    for row in body.children:
                        label(row, headings)


def label(row, headings):
    """The first cell is the heading of its row and needs none; an empty one has nothing to say."""
    for cell, heading in list(zip(row.children, headings))[1:]:
        if heading and cell.astext() and isinstance(cell[0], nodes.paragraph):
            cell[0].insert(0, nodes.inline("", f"{heading}: ", classes=["label"]))


def setup(app):
    app.add_transform(LabelledCells)
    return {"parallel_read_safe": True, "parallel_write_safe": True}
