#!/usr/bin/env bash
# scripts/bootstrap installs a package that not every release has where there is one, and goes on without it
# where there is none. Programs of the same names stand in for the system's, so that nothing is installed.
# Argument: the script.
set -euo pipefail
bootstrap=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

program() { # NAME SCRIPT
  printf '#!/usr/bin/env bash\n%s\n' "$2" >"$folder/$1"
  chmod +x "$folder/$1"
}
program dpkg-query 'exit 1'
program sudo '"$@"'
program apt-get "echo \"\$*\" >>'$folder/asked'"

asked_when_the_candidate_is() { # VERSION
  # Slowly and in several pieces, as the real one does, which a reader who leaves early would end.
  program apt-cache "echo '  Candidate: $1'; sleep 0.2; echo '  Version table:'; echo '     $1 500'"
  : >"$folder/asked"
  PATH="$folder:$PATH" "$bootstrap" test >/dev/null
  grep -o 'calculix-ccx' "$folder/asked" || true
}

with=$(asked_when_the_candidate_is 2.20-1)
without=$(asked_when_the_candidate_is '(none)')
[ "$with" = calculix-ccx ] || { echo "a package that the release has was not asked for" >&2; exit 1; }
[ -z "$without" ] || { echo "a package that the release does not have was asked for" >&2; exit 1; }
