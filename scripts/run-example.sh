#!/usr/bin/env bash
# Builds QorTools and runs the example application: one table row's road on
# the embedded SQLite database (connect, create, insert, select, move, update,
# delete, a record set, a rolled-back transaction).
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$(scripts/build.sh plain | tail -n 1)
"$dir/examples/qor_table_row"
