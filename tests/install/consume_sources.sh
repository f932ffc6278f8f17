#!/usr/bin/env bash
# Builds and runs a program outside the tree that takes the library's sources, with the C++ layer, into
# its own build with FetchContent, from a local path. Arguments: the source tree and a scratch folder.
set -euo pipefail
source=$1
scratch=$2

rm -rf "$scratch"
cmake -S "$source/tests/install/consumer" -B "$scratch" -G Ninja \
  -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=20 \
  -DCMAKE_BUILD_TYPE=Release -DORVML_IO_SOURCE="$source" >/dev/null
cmake --build "$scratch" >/dev/null
cd "$scratch"
./consumer
./cpp_consumer
