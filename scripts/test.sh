#!/usr/bin/env bash
# Builds QorTools and runs its test suite.  Usage: scripts/test.sh [plain|asan|tsan]
# asan: AddressSanitizer + UndefinedBehaviorSanitizer; tsan: ThreadSanitizer on
# the thread tests.  Database tests get a throwaway PostgreSQL server on loopback
# and GUI tests a virtual X server (both started here, stopped at the end).
set -euo pipefail
cd "$(dirname "$0")/.."
mode=${1:-plain}
dir=$(scripts/build.sh "$mode" | tail -n 1)

ctest_args=(--test-dir "$dir" --output-on-failure --timeout 900)
case "$mode" in
  asan) export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:fast_unwind_on_malloc=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
        export LSAN_OPTIONS=suppressions=$PWD/scripts/lsan.supp:print_suppressions=0
        ctest_args+=(-LE install) ;;
  tsan) export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
        ctest_args+=(-L thread) ;;
esac

source scripts/test-env.sh
start_test_services
trap stop_test_services EXIT
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
  xvfb-run -a -s "-screen 0 1280x1024x24" ctest "${ctest_args[@]}"
else
  ctest "${ctest_args[@]}"
fi
