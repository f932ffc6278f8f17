#!/usr/bin/env bash
# Installs a build into a prefix with spaces in its name, moves the installed tree, and builds and
# runs programs outside the tree with it: with CMake's package and with pkg-config. Arguments: the
# source tree, a scratch folder, ON or OFF for a shared or a static library, and a build of that kind;
# without one it builds a release itself.
set -euo pipefail
source=$1
scratch=$2
shared=$3
build=${4:-}

rm -rf "$scratch"
mkdir -p "$scratch/moved here"
if [ -z "$build" ]; then
  build="$scratch/build"
  cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DORVML_IO_DEVELOPER=OFF -DBUILD_SHARED_LIBS="$shared" >/dev/null
  cmake --build "$build" >/dev/null
fi
cmake --install "$build" --prefix "$scratch/first prefix" >/dev/null
mv "$scratch/first prefix" "$scratch/moved here/the prefix"
prefix="$scratch/moved here/the prefix"
export LD_LIBRARY_PATH="$prefix/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"

if grep -rlF -e "$scratch" -e "$source" -e "$build" "$prefix" --include='*.cmake' --include='*.pc'; then
  echo "the installed package holds a path of its build" >&2
  exit 1
fi

run_in() { # FOLDER PROGRAM
  mkdir -p "$1"
  (cd "$1" && "$2")
}

consumer="$source/tests/install/consumer"
cmake -S "$consumer" -B "$scratch/with package" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$scratch/with package" >/dev/null
run_in "$scratch/with package" ./consumer

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
static=()
[ "$shared" = ON ] || static=(--static)
mkdir -p "$scratch/with pkg-config"
eval "g++ -std=c++11 '$consumer/consumer.cpp' -o '$scratch/with pkg-config/consumer' \
  $(pkg-config --cflags --libs "${static[@]}" 'orvml_io >= 1.10')"
run_in "$scratch/with pkg-config" ./consumer
