#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a few seconds.
# Usage: scripts/fuzz.sh [seconds-per-target]
# Inputs that fail land in build-fuzz/artifacts/, never in the source tree.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
dir=$(scripts/build.sh fuzz | tail -n 1)
artifacts="$PWD/$dir/artifacts"
mkdir -p "$artifacts"
shopt -s nullglob
for target in "$dir"/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  corpus=$(mktemp -d)
  [ -d "fuzz/corpus/$name" ] && cp -r "fuzz/corpus/$name/." "$corpus/"
  echo "fuzzing $name for ${seconds}s"
  ASAN_OPTIONS=detect_leaks=1 "$target" -max_total_time="$seconds" -rss_limit_mb=4096 -print_final_stats=0 \
    -artifact_prefix="$artifacts/$name-" "$corpus" 2>"$corpus.log" \
    || { tail -n 60 "$corpus.log"; echo "failing input kept in $artifacts" >&2; exit 1; }
  rm -rf "$corpus" "$corpus.log"
done
