#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite twice:
# once plainly and once under AddressSanitizer and UndefinedBehaviorSanitizer,
# on a private Xvfb that this script starts and stops by its own process id.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$PWD
bash scripts/deps.sh
. scripts/xvfb.sh
trap orv_xvfb_stop EXIT
orv_xvfb_start
echo "tests on DISPLAY=$DISPLAY (8-bit screen $ORV_TEST_DISPLAY8)"
export MESA_SHADER_CACHE_DISABLE=true LP_NUM_THREADS=2
JOBS=$(nproc)
# Tests run one at a time: pixel tests read windows back from the one screen and
# input tests move the one pointer, so two at once would cover each other.
status=0
for mode in plain sanitize; do
  dir="$ROOT/build/test-$mode"
  san=OFF; [ $mode = sanitize ] && san=ON
  cmake -S "$ROOT" -B "$dir" -DCMAKE_BUILD_TYPE=Debug -DORV_SANITIZE=$san -DORV_TESTS=ON >/dev/null
  cmake --build "$dir" -j "$JOBS"
  echo "== ctest ($mode)"
  (cd "$dir" && ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 \
     UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
     ctest --output-on-failure -j 1 --timeout 120) || status=1
done
exit $status
