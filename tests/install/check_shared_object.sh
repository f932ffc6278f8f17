#!/usr/bin/env bash
# Holds a built library against what programs link with: its name, its symbols, its dependencies.
# Arguments: the shared library, its SONAME, the list of the symbols it exports, and what it needs beside
# HDF5 and the system's libraries: names with a space between them, or nothing;
# and which HDF5 that is, the serial one when it is not told.
set -euo pipefail
library=$1
expected_soname=$2
expected=$3
expected_needed=${4:-}
hdf5=${5:-serial}

fail() {
  echo "$library: $1" >&2
  exit 1
}

soname=$(readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = "$expected_soname" ] || fail "SONAME is '$soname'"
file=$(basename "$library").1.10.0
[ "$(basename "$(readlink -f "$library")")" = "$file" ] ||
  fail "the development link leads to $(readlink -f "$library")"

# Constructors and destructors have several symbols of one name.
exported=$(nm -DC --defined-only "$library" | sed 's/^[0-9a-f]* . //' | LC_ALL=C sort -u)
diff -u "$expected" - <<<"$exported" ||
  fail "the exported symbols differ from $(basename "$expected"); a change there is a change of ABI"

# The sanitizers' own libraries come with a build that asks for them.
needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux.*|libasan|libubsan|libtsan)\.so' |
  grep -vE "^libhdf5(_$hdf5)?\.so" | LC_ALL=C sort | paste -sd' ' || true)
[ "$needed" = "$expected_needed" ] ||
  fail "depends, beside HDF5, on '$needed' and not on '$expected_needed'"
