#!/usr/bin/env python3
"""Prints which share of the branches of the readers a coverage build has taken.

    reader_branches.py BUILD_FOLDER MINIMUM_PERCENT

Everything in src/hdf5 counts except the functions that write. Branches that only an exception takes are
left out: the tests of failing allocations walk those. Ends with 1 below the minimum.
"""

import collections
import json
import pathlib
import re
import subprocess
import sys

WRITERS = re.compile(r"[Ww]rit|::make|setText|toRecords|createGroup|holdersOf|isLocked|isRegularFile|openingOf|isOpenInThisProcess|ReplacedFile|NewFile"
                     r"|Descriptor|versionFor|CreateFile|fitsName")


def measured_files(build):
    for data in sorted(pathlib.Path(build).glob("**/orvml_io_core.dir/src/hdf5/*.gcda")):
        command = ["gcov", "--json-format", "--stdout", "--branch-probabilities", str(data)]
        report = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        yield from json.loads(report)["files"]


def taken_branches(files):
    """Whether each branch was taken, by file and line; instances of a template count as one."""
    branches = collections.defaultdict(dict)
    for file in files:
        if "/src/hdf5/" not in "/" + file["file"]:
            continue
        names = {f["name"]: f["demangled_name"] for f in file["functions"]}
        for line in file["lines"]:
            if WRITERS.search(names.get(line.get("function_name"), "")):
                continue
            taken = branches[pathlib.PurePath(file["file"]).name]
            for index, branch in enumerate(line["branches"]):
                if not branch["throw"]:
                    key = (line["line_number"], index)
                    taken[key] = taken.get(key, False) or branch["count"] > 0
    return branches


def main():
    build, minimum = sys.argv[1], float(sys.argv[2])
    total = reached = 0
    for name, taken in sorted(taken_branches(measured_files(build)).items()):
        missed = sorted({line for (line, _), was_taken in taken.items() if not was_taken})
        print(f"{name}: {sum(taken.values())} of {len(taken)}, missed on lines {missed}")
        total += len(taken)
        reached += sum(taken.values())
    percent = 100 * reached / total
    print(f"branches of the readers: {percent:.1f}% ({reached} of {total})")
    return 0 if percent >= minimum else 1


if __name__ == "__main__":
    sys.exit(main())
