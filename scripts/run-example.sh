#!/usr/bin/env bash
# Builds QorTools and runs the example applications: one table row's road on
# the embedded SQLite database (connect, create, insert, select, move, update,
# delete, a record set, a rolled-back transaction), and one picture's road
# (a photograph given as the first argument, or a picture the example draws:
# EXIF, thumbnail, a JPEG copy with EXIF and thumbnail, the histogram plot, a
# card painted with the thumbnail and a caption).
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$(scripts/build.sh plain | tail -n 1)
"$dir/examples/qor_table_row"
echo
"$dir/examples/qor_picture" "$@"
