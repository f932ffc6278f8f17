#!/usr/bin/env bash
# Holds the built library against what programs link with: its name, its symbols, its dependencies.
# Arguments: the shared library and the list of the symbols it exports.
set -euo pipefail
library=$1
expected=$2

fail() {
  echo "$library: $1" >&2
  exit 1
}

soname=$(readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = liborvml_io.so.1.10.0 ] || fail "SONAME is '$soname'"
[ "$(basename "$(readlink -f "$library")")" = liborvml_io.so.1.10.0 ] ||
  fail "the development link leads to $(readlink -f "$library")"

exported=$(nm -DC --defined-only "$library" | sed 's/^[0-9a-f]* . //' | LC_ALL=C sort)
diff -u "$expected" - <<<"$exported" ||
  fail "the exported symbols differ from $(basename "$expected"); a change there is a change of ABI"

# The sanitizers' own libraries come with a build that asks for them.
needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux.*|libasan|libubsan|libtsan)\.so' || true)
unexpected=$(grep -vE '^libhdf5(_serial)?\.so' <<<"$needed" || true)
[ -z "$unexpected" ] || fail "depends on more than HDF5: $unexpected"
