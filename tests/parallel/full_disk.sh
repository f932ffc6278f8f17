#!/usr/bin/env bash
# Runs a command with a file system of two megabytes, whose folder it finds in ORVML_FULL_DISK. Ends with 77
# where nobody may mount one.
set -euo pipefail
unshare --mount true 2>/dev/null || {
  echo "skipped: this machine grants no mount namespace" >&2
  exit 77
}
ORVML_FULL_DISK=$(mktemp -d)
export ORVML_FULL_DISK
trap 'rmdir "$ORVML_FULL_DISK"' EXIT
unshare --mount bash -c 'mount -t tmpfs -o size=2m tmpfs "$ORVML_FULL_DISK" && "$@"' full_disk "$@"
