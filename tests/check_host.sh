#!/bin/bash
# Runs a host program and compares the digests that it prints with those that every platform gives.
#
#   check_host.sh DIGESTS COMMAND...
set -euo pipefail
digests=$1
shift
got=$("$@" | tr -d '\r') || { echo "the host failed after: $(tail -n 1 <<<"$got")"; exit 1; }
diff "$digests" - <<<"$got" || { echo 'not the bytes (>) of other platforms (<)'; exit 1; }
echo "$(grep -c . <<<"$got") digests"
