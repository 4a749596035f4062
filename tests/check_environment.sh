#!/bin/bash
# A program prints the same in every environment: settings of OpenMP runtimes, a small stack,
# and, if it does not ask for processors, a single one.
#   check_environment.sh [--one-processor] COMMAND...
set -u
one=
[ "$1" = --one-processor ] && one=1 && shift
expected=$("$@") || { echo "$expected"; exit 1; }
[ -n "$expected" ] || { echo 'it prints nothing'; exit 1; }
failed=0
check() {
  local got
  got=$(timeout 120 "$@") && [ "$got" = "$expected" ] && return
  failed=1
  echo "differs under: $*"
  diff <(echo "$expected") <(echo "${got-}") | head -4
}
for settings in OMP_PROC_BIND=true OMP_PROC_BIND=spread OMP_PLACES=cores GOMP_CPU_AFFINITY=0-1 \
    OMP_NUM_THREADS=7 OMP_WAIT_POLICY=active; do
  check env "$settings" "$@"
done
check prlimit --stack=524288 "$@"
if [ -n "$one" ]; then
  check taskset -c "$(taskset -cp $$ | sed 's/.*: \([0-9]*\).*/\1/')" "$@"
fi
exit $failed
