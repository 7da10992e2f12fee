#!/usr/bin/env bash
# Installs what is missing, checks the sources' format, builds, and runs the whole
# test suite twice: once plainly and once under AddressSanitizer and
# UndefinedBehaviorSanitizer, on a private Xvfb that this script starts and stops
# by its own process id. Ends with the failing tests of both builds and why.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$PWD
bash scripts/deps.sh
status=0

echo "== format"
mapfile -t sources < <(find src include tests examples bench fuzz -name '*.cpp' -o -name '*.h' | sort)
summary=""
if ! clang-format --dry-run --Werror "${sources[@]}" 2>/tmp/orv-format.$$; then
  unformatted=$(grep -o '^[^:]*\.\(cpp\|h\)' /tmp/orv-format.$$ | sort -u | sed 's/^/  /')
  echo "these sources differ from .clang-format (run clang-format -i on them):"
  echo "$unformatted"
  summary+="unformatted sources:"$'\n'"$unformatted"$'\n'
  status=1
fi
rm -f /tmp/orv-format.$$

. scripts/xvfb.sh
trap orv_xvfb_stop EXIT
orv_xvfb_start
echo "tests on DISPLAY=$DISPLAY (8-bit screen $ORV_TEST_DISPLAY8)"
export MESA_SHADER_CACHE_DISABLE=true LP_NUM_THREADS=2
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
JOBS=$(nproc)

# The failing tests of one ctest run, each with the first lines that say why.
failures() {
  local log=$1/Testing/Temporary/LastTest.log
  [ -f "$log" ] || return 0
  awk '
    /^[0-9]+\/[0-9]+ Test: / { name = $3; n = 0; inout = 0; next }
    /^Output:/ { inout = 1; next }
    /^<end of output>/ { inout = 0; next }
    inout && $0 !~ /^-+$/ { line[n++] = $0; next }
    /^Test Failed\./ {
      print "  " name; shown = 0
      for (i = 0; i < n && shown < 8; i++)
        if (line[i] ~ /Failure|[Ee]rror|Expected|Which is|Value of|Actual|leak|SUMMARY|#[0-9]+ |Death|Abort|[Ss]egmentation|runtime error/) {
          print "      " line[i]; shown++
        }
      if (!shown) for (i = (n > 6 ? n - 6 : 0); i < n; i++) print "      " line[i]
    }
' "$log"
}

# Tests run one at a time: pixel tests read windows back from the one screen and
# input tests move the one pointer, so two at once would cover each other.
for mode in plain sanitize; do
  dir="$ROOT/build/test-$mode"
  san=OFF; [ $mode = sanitize ] && san=ON
  cmake -S "$ROOT" -B "$dir" -DCMAKE_BUILD_TYPE=Debug -DORV_SANITIZE=$san -DORV_TESTS=ON >/dev/null
  cmake --build "$dir" -j "$JOBS"
  echo "== ctest ($mode)"
  if ! (cd "$dir" && ctest --output-on-failure -j 1 --timeout 120); then
    status=1
    summary+="failed in the $mode build:"$'\n'"$(failures "$dir")"$'\n'
  fi
done

echo "== summary"
if [ $status -eq 0 ]; then
  echo "format clean; every test passed in the plain and the sanitizer build"
else
  [ -n "$summary" ] && printf '%s' "$summary"
  echo "FAILED"
fi
exit $status
