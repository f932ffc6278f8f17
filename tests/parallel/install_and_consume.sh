#!/usr/bin/env bash
# Installs the parallel library of a build into a prefix with spaces in its name, moves the installed tree,
# and builds and runs the program of docs/parallel.md with it: with CMake's package and with pkg-config.
# Arguments: the source tree, the build, a scratch folder, a file with a meshed part, and what runs a program
# by several ranks.
set -euo pipefail
source=$1
build=$2
scratch=$3
part=$4
run=("${@:5}")

rm -rf "$scratch"
mkdir -p "$scratch/moved here"
for component in development cpp_development parallel_runtime parallel_development; do
  cmake --install "$build" --component $component --prefix "$scratch/first prefix" >/dev/null
done
mv "$scratch/first prefix" "$scratch/moved here/the prefix"
prefix="$scratch/moved here/the prefix"
if grep -rlF -e "$scratch" -e "$source" -e "$build" "$prefix" --include='*orvml_parallel*'; then
  echo "the installed package holds a path of its build" >&2
  exit 1
fi

awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source/docs/parallel.md" \
  >"$scratch/distances.cpp"
cp "$source/tests/parallel/consumer/CMakeLists.txt" "$scratch"

cmake -S "$scratch" -B "$scratch/with package" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$scratch/with package" >/dev/null
mkdir "$scratch/with pkg-config"
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
eval "g++ -std=c++20 '$scratch/distances.cpp' -o '$scratch/with pkg-config/distances' \
  $(pkg-config --cflags --libs "orvml_parallel >= 1.10")"

export LD_LIBRARY_PATH="$prefix/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
for way in "with package" "with pkg-config"; do
  program="$scratch/$way/distances"
  "${run[@]}" -n 3 "$program" "$part" "$scratch/$way/distances.h5"
  # The attribute is there, and is replaced.
  [ "$(h5dump -H "$scratch/$way/distances.h5" | grep -c '"DISTANCE"')" -eq 1 ]
  "${run[@]}" -n 2 "$program" "$scratch/$way/distances.h5" "$scratch/$way/again.h5"
  h5diff "$scratch/$way/distances.h5" "$scratch/$way/again.h5"
  loaded=$(ldd "$program" | grep -oE '(liborvml|libhdf5)[^.]*\.so' | sort -u | paste -sd' ')
  [ "$loaded" = "libhdf5_openmpi.so liborvml_parallel.so" ] || {
    echo "$way: the program loads $loaded" >&2
    exit 1
  }
done
