#!/usr/bin/env bash
# Writes the list of incomplete reads of the HDF5 that a build uses, by running the tests that find them.
# The build must be without sanitizers, which try some of the failures only. Arguments: the program of
# the tests and the list, as the target record_incomplete_reads gives them:
#
#   cmake --build build/debug --target record_incomplete_reads
#
# What is new in the list must be looked at before it is committed: a list may only shrink.
set -euo pipefail
program=$1
list=$2

found=$(mktemp)
trap 'rm -f "$found"' EXIT
ORVML_IO_RECORD_INCOMPLETE_READS=$found "$program" --gtest_brief=1 \
  --gtest_filter='*.AreReportedExceptWhereAbsenceIsNoFailure/*'
{
  cat <<'HEAD'
# Where a reader gives 0 although a call beneath failed and something is missing from the document: the
# format takes what cannot be opened for absent, texts that cannot be read for missing, and a file
# whose marker cannot be read for no exchange file. tests/faults finds these places anew in each run:
# a place that is not listed fails the test, and so does a listed one that is gone. Each series of HDF5
# has a list, which record_incomplete_reads.sh writes; it may only shrink.
#
# which reading, how long the call fails, which call: what is missing
# transfers which failure: what is missing
HEAD
  LC_ALL=C sort "$found"
} >"$list"
echo "$list"
