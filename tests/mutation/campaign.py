"""Runs the tests against one mutant after the other."""

import hashlib
import json
import os
import shutil
import signal
import subprocess
import time
from collections import defaultdict
from dataclasses import dataclass, field

SEED = "orvml_io"
FEWEST_PER_FILE = 3
PATIENCE_SECONDS = 20
LONGEST_SUITE_SECONDS = 20  # longer ones damage a file byte by byte


def picked(mutants, count):
    """Takes from each file in proportion to its mutants. What decides inside a file is the mutant's
    own name, so that a change elsewhere does not pick others."""
    by_file = defaultdict(list)
    for mutant in mutants:
        by_file[mutant.file].append(mutant)
    chosen = []
    for of_file in by_file.values():
        of_file.sort(key=lambda mutant: hashlib.sha256((SEED + mutant.name).encode()).digest())
        share = round(count * len(of_file) / len(mutants))
        chosen += of_file[:max(share, FEWEST_PER_FILE)]
    return chosen


@dataclass
class Suite:
    """A group of tests that runs in a process of its own, what it costs and what it reaches."""
    program: str
    name: str  # empty for a program that is no test program
    seconds: float = 0.0
    reached: set = field(default_factory=set)


def patience_for(suites):
    """A mutant that lets a test run for ever is caught too."""
    return PATIENCE_SECONDS + 5 * sum(suite.seconds for suite in suites)


class Runner:
    def __init__(self, tree, work):
        self.programs = {target: (path, arguments) for target, path, arguments in tree.programs()}
        self.number_of_mutants = len(tree.mutants)
        self.reached_file = work / "reached"
        self.measured_file = work / "measured.json"
        self.temporary = work / "temporary"

    def run(self, program, suites, seconds, **environment):
        """Returns whether all tests of the suites pass; None when that takes too long."""
        path, arguments = self.programs[program]
        if suites != [""]:
            arguments = ["--gtest_fail_fast", "--gtest_brief=1",
                         "--gtest_filter=" + ":".join(f"{suite}.*" for suite in suites)]
        shutil.rmtree(self.temporary, ignore_errors=True)
        self.temporary.mkdir(parents=True)
        process = subprocess.Popen(
            ["nice", "-n", "10", path, *arguments], cwd=self.temporary, start_new_session=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "TEST_TMPDIR": str(self.temporary), **environment})
        try:
            return process.wait(seconds) == 0
        except subprocess.TimeoutExpired:
            return None
        finally:
            # Children of a test that was stopped go with it.
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()

    def suites_of(self, program):
        path, arguments = self.programs[program]
        if arguments:
            return [""]
        listed = subprocess.run([path, "--gtest_list_tests"], check=True, capture_output=True,
                                text=True).stdout
        return [line.split("#")[0].strip().rstrip(".") for line in listed.splitlines()
                if line and not line.startswith((" ", "Running"))]

    def measure(self, program):
        """Runs the suites without a mutant, one by one and then together. One that fails or takes too
        long could not tell a mutant from the library and is left out."""
        suites = []
        for name in self.suites_of(program):
            self.reached_file.write_bytes(bytes(self.number_of_mutants))
            start = time.monotonic()
            passed = self.run(program, [name], LONGEST_SUITE_SECONDS,
                              ORVML_IO_REACHED=str(self.reached_file))
            seconds = time.monotonic() - start
            if not passed:
                reason = "takes too long" if passed is None else "fails without a mutant"
                print(f"mutate: {program} {name} {reason} and is left out", flush=True)
                continue
            reached = {n for n, byte in enumerate(self.reached_file.read_bytes()) if byte}
            suites.append(Suite(program, name, seconds, reached))
        names = [suite.name for suite in suites]
        if suites and not self.run(program, names, patience_for(suites)):
            raise RuntimeError(f"{program} fails without a mutant when its suites run together")
        return suites

    def measured(self):
        """What measure() found, for each program that was built anew; the rest is remembered."""
        known = json.loads(self.measured_file.read_text()) if self.measured_file.exists() else {}
        for program, (path, _) in self.programs.items():
            built = path.stat().st_mtime_ns
            if known.get(program, {}).get("built") != built:
                print(f"mutate: measuring {program}", flush=True)
                known[program] = {"built": built, "suites": [
                    [suite.name, suite.seconds, sorted(suite.reached)]
                    for suite in self.measure(program)]}
                self.measured_file.write_text(json.dumps(known))
        return [Suite(program, name, seconds, set(reached)) for program in self.programs
                for name, seconds, reached in known[program]["suites"]]


def catcher_of(runner, suites, mutant):
    """Returns the program that catches a mutant, the cheapest one first; None when none does."""
    by_program = defaultdict(list)
    for suite in suites:
        if mutant.number in suite.reached:
            by_program[suite.program].append(suite)

    def cost(program):
        return sum(suite.seconds for suite in by_program[program])

    for program in sorted(by_program, key=cost):
        of_program = by_program[program]
        names = [suite.name for suite in of_program]
        if not runner.run(program, names, patience_for(of_program),
                          ORVML_IO_MUTANT=str(mutant.number)):
            return program
    return None
