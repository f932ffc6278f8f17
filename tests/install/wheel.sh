#!/usr/bin/env bash
# Builds the wheel of the Python package from a copy of the sources, without a network, installs it in an
# environment that has NumPy alone, and runs the README's Python lines there. Arguments: the source tree,
# a scratch folder, the Python.
set -euo pipefail
source=$1
scratch=$2
python=$3

rm -rf "$scratch"
mkdir -p "$scratch/sources" "$scratch/elsewhere"
tar -C "$source" --exclude=./build --exclude=./.git -cf - . | tar -C "$scratch/sources" -xf -
"$python" -m pip wheel --quiet --no-build-isolation --no-deps --no-index --disable-pip-version-check \
  --wheel-dir "$scratch" "$scratch/sources/python"
ls "$scratch"/orvml-1.10.0-*.whl

# NumPy is the system's: the registry of Python's packages is not asked.
"$python" -m venv --system-site-packages "$scratch/environment"
"$scratch/environment/bin/python" -m pip install --quiet --no-index --no-deps \
  --disable-pip-version-check "$scratch"/orvml-*.whl
awk '/^```python$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source/README.md" \
  >"$scratch/elsewhere/example.py"
cd "$scratch/elsewhere"
[ "$("$scratch/environment/bin/python" example.py)" = '4 nodes, 1 tetrahedron, mesh size 0.25' ]
"$scratch/environment/bin/python" - "$scratch/environment" <<'PROGRAM'
import pathlib
import sys

import orvml

assert pathlib.Path(orvml.__file__).is_relative_to(sys.argv[1]), orvml.__file__
assert (pathlib.Path(orvml.__file__).parent / "py.typed").exists()
loaded = {pathlib.PurePath(line.split()[-1]).name for line in open("/proc/self/maps")}
assert not any(name.startswith("liborvml") for name in loaded), "the wheel has to hold the library"
assert not {"vtkmodules", "meshio", "matplotlib", "pandas", "h5py"} & set(sys.modules)
PROGRAM
"$scratch/environment/bin/orvml-meshio" convert --help >/dev/null
echo "the wheel builds, installs and works"
