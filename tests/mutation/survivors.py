"""The committed table of the mutants that no test can tell from the library."""

import re

COLUMNS = ("file", "function", "change", "source", "occurrence")


def key_of(mutant):
    return tuple(str(getattr(mutant, column)) for column in COLUMNS)


def row_of(mutant, reason):
    cells = [*key_of(mutant), reason]
    return "| " + " | ".join(cell.replace("|", r"\|") for cell in cells) + " |"


def read_table(path):
    """Returns the reasons by the key of the mutant."""
    reasons = {}
    for line in path.read_text().splitlines():
        cells = [cell.strip().replace(r"\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
        if len(cells) == len(COLUMNS) + 1 and cells[0].startswith("src/"):
            reasons[tuple(cells[:-1])] = cells[-1]
    return reasons
