#!/usr/bin/env bash
# Builds QorTools and runs the example application.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$(scripts/build.sh plain | tail -n 1)
"$dir/examples/qor_hello"
