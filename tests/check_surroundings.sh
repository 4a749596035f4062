#!/bin/bash
# The digests of all operations under settings of the OpenMP runtime and of the process.
#   check_surroundings.sh OPERATIONDIGESTS
set -u
expected=$("$1") || exit 1
[ "$(wc -l <<<"$expected")" -ge 70 ] || { echo 'too few digests'; exit 1; }
failed=0
check() {
  local got
  got=$(timeout 120 "$@") && [ "$got" = "$expected" ] && return
  failed=1
  echo "other bytes under: $*"
  diff <(echo "$expected") <(echo "${got-}") | head -4
}
for settings in OMP_NUM_THREADS=1 OMP_NUM_THREADS=7 OMP_DYNAMIC=true OMP_THREAD_LIMIT=1 \
    OMP_MAX_ACTIVE_LEVELS=0 OMP_MAX_ACTIVE_LEVELS=8 'OMP_SCHEDULE=dynamic,1' OMP_PROC_BIND=spread \
    OMP_WAIT_POLICY=active OMP_STACKSIZE=64k OMP_CANCELLATION=true; do
  check env "$settings" "$1"
done
check taskset -c "$(taskset -cp $$ | sed 's/.*: \([0-9]*\).*/\1/')" "$1"
check prlimit --stack=524288 "$1"
exit $failed
