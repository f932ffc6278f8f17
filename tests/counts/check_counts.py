#!/usr/bin/env python3
"""Compares the instructions that each operation takes with recorded figures.

    check_counts.py PROGRAM RECORDED TOOLCHAIN [--record]

PROGRAM performs each operation on an input and on one of twice the size; what the second one takes
more, divided by the difference of the sizes, is the cost of one node, attribute or parameter. Each
has to be within a tenth of the recorded figure, or two instructions where hardly any are needed: more
is a regression, less is a gain to be recorded.
Figures hold for the toolchain that they were recorded with; with another one nothing is compared.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

TOLERANCE = 0.10
TOLERATED_INSTRUCTIONS = 2
SKIPPED = 77

# What the C library chooses by the processor that it runs on would differ between machines.
TUNABLES = ("glibc.cpu.hwcaps=-AVX2,-AVX2_Usable,-AVX512F,-AVX512VL,-ERMS,-FSRM,-Prefer_ERMS:"
            "glibc.cpu.x86_non_temporal_threshold=0xc0000000")


def counted(program, folder):
    """Runs the program and returns the instructions by operation and size."""
    subprocess.run(
        ["valgrind", "--tool=callgrind", "--collect-atstart=no",
         f"--callgrind-out-file={folder}/counts", program],
        check=True, stderr=subprocess.DEVNULL, cwd=folder,
        env={**os.environ, "GLIBC_TUNABLES": TUNABLES, "TMPDIR": str(folder)})
    counts = {}
    for dump in folder.glob("counts.*"):
        text = dump.read_text()
        trigger = re.search(r"^desc: Trigger: Client Request: (.+)/(\d+)$", text, re.M)
        totals = re.search(r"^(?:totals|summary): (\d+)", text, re.M)
        if trigger and totals:
            operation, size = trigger.group(1), int(trigger.group(2))
            counts.setdefault(operation, {})[size] = int(totals.group(1))
    return counts


def costs(counts):
    """The instructions of one more node, attribute or parameter, by operation."""
    result = {}
    for operation, by_size in sorted(counts.items()):
        small, large = sorted(by_size)
        result[operation] = (by_size[large] - by_size[small]) / (large - small)
    return result


def main():
    program, recorded_path, toolchain = sys.argv[1:4]
    recorded_path = pathlib.Path(recorded_path)
    lines = recorded_path.read_text().splitlines() if recorded_path.exists() else []
    recorded_with = lines[0].removeprefix("# ") if lines else ""
    record = "--record" in sys.argv[4:]
    if recorded_with != toolchain and not record:
        print(f"recorded with {recorded_with}, this is {toolchain}: nothing is compared")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        measured = costs(counted(os.path.abspath(program), pathlib.Path(folder)))
    if record:
        rows = [f"{operation}: {cost:.1f}" for operation, cost in measured.items()]
        recorded_path.write_text("\n".join([f"# {toolchain}"] + rows) + "\n")
        return 0
    recorded = dict(line.rsplit(": ", 1) for line in lines[1:])
    if recorded.keys() != measured.keys():
        print(f"operations differ: {sorted(recorded.keys() ^ measured.keys())}")
        return 1
    failed = False
    for operation, cost in measured.items():
        expected = float(recorded[operation])
        is_within = abs(cost - expected) <= max(TOLERANCE * expected, TOLERATED_INSTRUCTIONS)
        failed = failed or not is_within
        print(f"{operation}: {cost:.1f}, recorded {expected:.1f}"
              f"{'' if is_within else '  OUT OF BOUNDS'}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
