#!/bin/bash
# Runs a host program and compares the digests that it prints with those that every platform gives.
#
#   check_host.sh DIGESTS COMMAND...
#
# Lines of operations that the program does not call are left out of the comparison; what it prints must
# all be listed.
set -eu
digests=$1
shift
got=$("$@" | tr -d '\r')
[ "$(head -c 5 <<<"$got")" = start ] || { echo "the host printed: $got"; exit 1; }
grep -q '^assignment 000' <<<"$got" || { echo 'the host did not reach its end'; exit 1; }
unknown=$(grep -vxFf "$digests" <<<"$got") || true
[ -z "$unknown" ] || { printf 'not the bytes of other platforms:\n%s\n' "$unknown"; exit 1; }
echo "$(grep -c . <<<"$got") digests"
