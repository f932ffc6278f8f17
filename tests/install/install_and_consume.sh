#!/usr/bin/env bash
# Installs a build into a prefix with spaces in its name, moves the installed tree, and builds and
# runs programs outside the tree with it: with CMake's package and with pkg-config. Arguments: the
# source tree, a scratch folder, ON or OFF for a shared or a static library, and a build of that kind;
# without one it builds a release of the libraries itself.
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
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=20 \
    -DORVML_IO_DEVELOPER=OFF -DORVML_TOOLS=OFF -DORVML_PYTHON=OFF -DORVML_VIEWER=OFF -DBUILD_SHARED_LIBS="$shared" >/dev/null
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

with_pkg_config() { # STANDARD PROGRAM PACKAGE
  local folder="$scratch/with pkg-config"
  mkdir -p "$folder"
  eval "g++ -std=$1 '$consumer/$2.cpp' -o '$folder/$2' \
    $(pkg-config --cflags --libs "${static[@]}" "$3 >= 1.10")"
  run_in "$folder" "./$2"
}

consumer="$source/tests/install/consumer"
cmake -S "$consumer" -B "$scratch/with package" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$scratch/with package" >/dev/null
run_in "$scratch/with package" ./consumer
run_in "$scratch/with package" ./cpp_consumer

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
static=()
[ "$shared" = ON ] || static=(--static)
with_pkg_config c++11 consumer orvml_io
with_pkg_config c++20 cpp_consumer orvml

# The layer finds the flat library of its version beside itself; it takes no other one.
if [ "$shared" = ON ]; then
  env -u LD_LIBRARY_PATH "$scratch/with package/cpp_consumer"
fi
version_file="$prefix/lib/cmake/orvml_io/orvml_io-config-version.cmake"
sed -i 's/1\.10\.0/1.10.7/' "$version_file"
! cmake -S "$consumer" -B "$scratch/with another version" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  >"$scratch/another version.log" 2>&1
grep -q 'exactly *$' "$scratch/another version.log" || {
  cat "$scratch/another version.log" >&2
  exit 1
}
