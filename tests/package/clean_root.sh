#!/usr/bin/env bash
# Installs the Debian packages in a root that has nothing but a compiler, builds and runs the README's
# examples there, removes the packages and compares the root with what it was. Those for many ranks, where
# they were made, come last and by themselves: what MPI leaves is no matter of theirs. Arguments: the
# folder of the packages, README.md, and a scratch folder, where the archive of the clean root is kept for
# the next run. Ends with 77 where such a root cannot be made.
set -euo pipefail
packages=$1
readme=$2
scratch=$3

skip() {
  echo "skipped: $1" >&2
  exit 77
}

[ "$(id -u)" -eq 0 ] || skip "only root can enter another root"
command -v mmdebstrap >/dev/null || skip "there is no mmdebstrap"
unshare --mount true 2>/dev/null || skip "this machine grants no mount namespace"

mkdir -p "$scratch"
archive="$scratch/clean-root.tar"
root="$scratch/root"

# Manuals and translations would only cost time. The lists of packages stay for the installation.
"$(dirname "$0")/make_root.sh" "$archive" "$(. /etc/os-release && echo "$VERSION_CODENAME")" \
  --variant=apt --include=g++,pkg-config --skip=cleanup/apt/lists \
  --aptopt='Acquire::Languages "none"' --dpkgopt=force-unsafe-io \
  --dpkgopt='path-exclude=/usr/share/man/*' --dpkgopt='path-exclude=/usr/share/locale/*'

rm -rf "$root"
mkdir "$root"
tar -C "$root" -xf "$archive"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir "$root/tmp/parallel"
for package in "$packages"/*.deb; do
  folder=
  [[ $package != *-parallel* ]] || folder=parallel
  cp "$package" "$root/tmp/$folder"
done
example() { # HEADER
  awk -v header="#include <$1>" '
    /^```cpp$/ { getline; inside = $0 == header } /^```$/ { inside = 0 } inside' "$readme"
}
example orvml_io.h >"$root/tmp/example.cpp"
example orvml/orvml.hpp >"$root/tmp/cpp_example.cpp"
awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' \
  "$(dirname "$readme")/docs/parallel.md" >"$root/tmp/distances.cpp"
awk '/^```python$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$readme" >"$root/tmp/example.py"

# What apt and the loader note for themselves is no trace of a package.
cat >"$root/tmp/list" <<'LIST'
find / -xdev \( -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/cache -o -path /var/log \
  -o -path /tmp -o -path /etc/ld.so.cache \) -prune -o -printf '%p %l %s\n' | LC_ALL=C sort
LIST
cat >"$root/tmp/steps" <<'STEPS'
set -eu
cd /tmp
sh list >before
export DEBIAN_FRONTEND=noninteractive
apt-get install -y -qq --no-install-recommends ./*.deb >apt.log 2>&1 || { cat apt.log; exit 1; }
dpkg-query -W -f='${Package} ${Version}\n' '*orvml*'
g++ -std=c++11 example.cpp -o example $(pkg-config --cflags --libs orvml_io)
./example
g++ -std=c++20 cpp_example.cpp -o cpp_example $(pkg-config --cflags --libs orvml)
./cpp_example
python3 example.py
orvml-meshio convert --help
orvml new part.h5 --param growth=1.5
orvml check part.h5
ls -l /usr/share/orvml/schema
# What came with the packages goes with them, even what another package would recommend.
apt-get purge -y -qq --autoremove -o APT::AutoRemove::RecommendsImportant=false \
  -o APT::AutoRemove::SuggestsImportant=false '*orvml*' >apt.log 2>&1 || { cat apt.log; exit 1; }
sh list >after
diff before after
if ldconfig -p | grep orvml; then exit 1; fi
if ! ls parallel/*.deb >/dev/null 2>&1; then
  echo "no packages for many ranks were made"
  exit 0
fi
apt-get install -y -qq --no-install-recommends ./parallel/*.deb ./liborvml*.deb ./orvml_*.deb >apt.log 2>&1 ||
  { cat apt.log; exit 1; }
g++ -std=c++20 distances.cpp -o distances $(pkg-config --cflags --libs orvml_parallel)
orvml convert --kind output part.msh part.h5
mpiexec --allow-run-as-root --oversubscribe -n 2 ./distances part.h5 distances.h5
orvml info distances.h5 | grep DISTANCE
apt-get purge -y -qq --autoremove '*orvml*' >apt.log 2>&1 || { cat apt.log; exit 1; }
if find / -xdev -path /proc -prune -o -path /tmp -prune -o -path /var -prune -o -name '*orvml*' -print | grep .; then
  exit 1
fi
STEPS
cat >"$root/tmp/part.msh" <<'MESH'
$MeshFormat
4.1 0 8
$EndMeshFormat
$Nodes
1 4 1 4
3 1 0 4
1
2
3
4
0 0 0
1 0 0
0 1 0
0 0 1
$EndNodes
$Elements
1 1 1 1
3 1 4 1
1 1 2 3 4
$EndElements
MESH
unshare --mount chroot "$root" sh /tmp/steps >"$scratch/steps.log" 2>&1 || {
  cat "$scratch/steps.log" >&2
  exit 1
}
cat "$scratch/steps.log"
[ "$(grep -cx '4 nodes, 1 tetrahedron, mesh size 0.25' "$scratch/steps.log")" -eq 3 ]
grep -qE 'DISTANCE +4 doubles|no packages for many ranks were made' "$scratch/steps.log"
rm -rf "$root"
echo "the packages install, serve programs in C++ and Python and leave no trace"
