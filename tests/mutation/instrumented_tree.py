"""Makes a copy of the project whose library holds all mutants, and builds its tests."""

import pathlib
import re
import shutil
import subprocess

from places import File

MUTATED_FOLDERS = ("src/hdf5", "src/compare", "src/model")
SWITCH = "tests/mutation/mutant_switch.h"
CORPORA = ("tree", "calls", "documents")
# They repeat what other tests look at once, or let every single call fail: minutes for each mutant.
LEFT_OUT = ("faults", "soak", "threads")


def output_of(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def mutated_files(root):
    """Headers first: their mutants keep their numbers when a source file changes, and the tests that
    include them need not be built again."""
    files = sorted(path.relative_to(root).as_posix() for folder in MUTATED_FOLDERS
                   for path in (root / folder).iterdir() if path.suffix in (".h", ".cpp"))
    headers = [path for path in files if path.endswith(".h")]
    return headers + [path for path in files if path not in headers]


def compiler_arguments(root):
    hdf5 = output_of("pkg-config", "--cflags", "hdf5-serial").split()
    return ["-std=c++17", f"-I{root}/src", f"-I{root}/include", *hdf5]


def write_if_changed(path, content, like):
    """What stays as it is need not be built again."""
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
    shutil.copymode(like, path)


class InstrumentedTree:
    def __init__(self, root, work):
        self.root = root
        self.tree = work / "tree"
        self.build_folder = work / "build"
        self.mutants = []

    def write(self):
        files = {}
        for path in mutated_files(self.root):
            file = File(self.root, path, compiler_arguments(self.root), len(self.mutants))
            self.mutants += file.mutants
            files[path] = file.with_mutants().encode("ascii")
        for path in output_of("git", "ls-files", "-z", "--cached", "--others", "--exclude-standard",
                              cwd=self.root).split("\0"):
            source = self.root / path
            if source.is_file():
                write_if_changed(self.tree / path, files.get(path) or source.read_bytes(), source)
        switch = self.root / SWITCH
        write_if_changed(self.tree / "src/mutant_switch.h", switch.read_bytes(), switch)

    def programs(self):
        """The test programs by the CMake function that makes them, and the replays of the fuzzers'
        corpora. A program is a path below the build folder with its arguments."""
        for lists in sorted((self.tree / "tests").glob("*/CMakeLists.txt")):
            if lists.parent.name in LEFT_OUT:
                continue
            for target in re.findall(r"^orvml_io_add_tests\((\w+)", lists.read_text(), re.M):
                yield target, self.build_folder / "tests" / lists.parent.name / target, []
        for name in CORPORA:
            target = f"orvml_io_replay_{name}"
            yield (target, self.build_folder / "tests/fuzz" / target,
                   [str(self.tree / "tests/corpus" / name)])

    def build(self):
        subprocess.run(
            ["cmake", "-S", self.tree, "-B", self.build_folder, "-G", "Ninja",
             "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -w",
             "-DORVML_IO_SANITIZERS=address,undefined"], check=True, stdout=subprocess.DEVNULL)
        targets = [target for target, _, _ in self.programs()]
        subprocess.run(["nice", "-n", "10", "cmake", "--build", self.build_folder, "-j", "2",
                        "--target", *targets], check=True)


def project_root():
    return pathlib.Path(__file__).resolve().parent.parent.parent
