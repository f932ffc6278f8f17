#!/usr/bin/env bash
# Makes the archive of a root of Debian that has nothing but what the options of mmdebstrap ask for, from
# the mirrors and through the proxies that this machine uses. An archive of the last twelve hours is
# kept. Arguments: the archive, the code name of the release, options of mmdebstrap.
set -euo pipefail
archive=$1
release=$2
shift 2

# After half a day a mirror may no longer have what the lists of packages in the archive name.
find "$archive" -mmin +720 -delete 2>/dev/null || true
[ ! -s "$archive" ] || exit 0

# A root that was made here calls its sources by the second name.
for sources in /etc/apt/sources.list.d/{,0000}debian.sources /etc/apt/sources.list; do
  [ ! -s "$sources" ] || break
done
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
sed "s/\b$(. /etc/os-release && echo "$VERSION_CODENAME")\b/$release/g" "$sources" \
  >"$scratch/$(basename "${sources/0000/}")"
apt-config dump | grep -E '^Acquire::(https?::|Check-)' | grep -v Auto-Detect >"$scratch/apt.conf" || true
! grep -q 'https:' "$sources" || set -- --include=ca-certificates "$@"

mkdir -p "$(dirname "$archive")"
mmdebstrap --quiet --aptopt="$scratch/apt.conf" "$@" "$release" "$archive.new.tar" \
  "$scratch/$(basename "${sources/0000/}")" >&2
mv "$archive.new.tar" "$archive"
