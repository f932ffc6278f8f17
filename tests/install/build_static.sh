#!/usr/bin/env bash
# Builds the library as a static archive inside another project, and with it a program that has
# classes of the same names as the library's own. Arguments: the source tree and a scratch folder.
set -euo pipefail
source=$1
scratch=$2

rm -rf "$scratch"
cmake -S "$source/tests/install/embedding_project" -B "$scratch" -G Ninja \
  -DORVML_IO_SOURCE="$source" -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF >/dev/null
cmake --build "$scratch" >/dev/null
ls "$scratch"/orvml_io/liborvml_io.a
"$scratch/program"
