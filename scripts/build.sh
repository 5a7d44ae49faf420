#!/usr/bin/env bash
# Configures and builds QorTools.  Usage: scripts/build.sh [plain|asan|tsan|fuzz]
# Each mode builds into its own folder: build, build-asan, build-tsan, build-fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=${1:-plain}
# QORTOOLS_WERROR=ON in the environment turns warnings into errors (CI).
args=(-G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQORTOOLS_WERROR="${QORTOOLS_WERROR:-OFF}")
case "$mode" in
  plain) dir=build ;;
  asan)  dir=build-asan; args+=(-DQORTOOLS_SANITIZE=address,undefined -DQORTOOLS_BUILD_BENCH=OFF) ;;
  tsan)  dir=build-tsan; args+=(-DQORTOOLS_SANITIZE=thread -DQORTOOLS_BUILD_BENCH=OFF -DQORTOOLS_BUILD_EXAMPLES=OFF) ;;
  fuzz)  dir=build-fuzz; args+=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DQORTOOLS_BUILD_FUZZ=ON
                                -DQORTOOLS_SANITIZE=address,undefined -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link
                                -DQORTOOLS_BUILD_TESTS=OFF -DQORTOOLS_BUILD_BENCH=OFF -DQORTOOLS_BUILD_EXAMPLES=OFF) ;;
  *) echo "usage: $0 [plain|asan|tsan|fuzz]" >&2; exit 2 ;;
esac
cmake -S . -B "$dir" "${args[@]}" >&2
cmake --build "$dir" -- -k 0 >&2
echo "$dir"
