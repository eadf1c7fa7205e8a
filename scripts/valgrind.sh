#!/usr/bin/env bash
# memcheck over the unit tests and the demo: any error or leak fails the run.
#   scripts/valgrind.sh [BUILD_DIR]     a build without sanitizers (default build/)
# valgrind emulates no AVX-512 and hides it from CPUID, so the SIMD paths it runs are AVX2
# and below. OpenMP's worker threads outlive main: still-reachable blocks are not leaks,
# and valgrind.supp names the one possibly-lost block they leave.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
log=$(mktemp -d)
trap 'rm -rf "$log"' EXIT
vg=(valgrind --tool=memcheck --error-exitcode=99 --leak-check=full
    --show-leak-kinds=definite,indirect,possible --errors-for-leak-kinds=definite,indirect,possible
    --num-callers=30 --suppressions=scripts/valgrind.supp)
status=0
run() {  # name, command...
  local name=$1
  shift
  local start=$SECONDS
  if "${vg[@]}" --log-file="$log/$name.txt" "$@" >"$log/$name.out" 2>&1; then
    echo "valgrind: $name clean ($((SECONDS - start)) s)"
  else
    echo "valgrind: $name FAILED"
    grep -E '^==[0-9]+== (ERROR SUMMARY|  *(definitely|indirectly|possibly) lost)' "$log/$name.txt" || true
    tail -n 40 "$log/$name.txt"
    status=1
  fi
}
# One thread team size keeps the run short; the row-parallel tests still start teams.
OMP_NUM_THREADS=2 run unit_tests "$build/tests/unit_tests" --gtest_brief=1
run demo "$build/examples/krojcodec" demo --out "$log/demo"
exit $status
