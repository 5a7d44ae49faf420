#!/usr/bin/env bash
# Builds the benchmarks (Release) and runs them, printing the tables that the
# docs quote: the median of five repetitions of each, and its ratio to its
# anchor measured in the same run. Usage: scripts/bench.sh [name ...], where a
# name is a program of bench/ without its prefix (thread, string, csv, ...).
# The database benchmarks use the throwaway PostgreSQL server of the tests
# when run as root.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=build-release
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQORTOOLS_BUILD_TESTS=OFF -DQORTOOLS_BUILD_EXAMPLES=OFF >&2
cmake --build "$dir" >&2
names=("$@")
if [ "${#names[@]}" -eq 0 ]; then
  for program in "$dir"/bench/bench_*; do names+=("$(basename "$program" | sed 's/^bench_//')"); done
fi
source scripts/test-env.sh
start_test_services >&2
trap stop_test_services EXIT
out=$(mktemp -d)
for name in "${names[@]}"; do
  echo "running bench_$name" >&2
  run=("$dir/bench/bench_$name" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
       --benchmark_out="$out/$name.json" --benchmark_out_format=json)
  if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
    xvfb-run -a -s "-screen 0 1920x1200x24" "${run[@]}" >&2
  else
    "${run[@]}" >&2
  fi
done
python3 scripts/bench_table.py "$out"/*.json
rm -rf "$out"
