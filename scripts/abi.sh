#!/usr/bin/env bash
# The library's exported interface against the released one kept in
# abi/libQorTools.so.N.abi.xz (an abidw description of the public types), N
# being the SONAME's number, which the runtime package's name in
# debian/control carries (libqortoolsN).
#   scripts/abi.sh check DIR    compares the libQorTools.so.N packaged in DIR's
#                               libqortoolsN .deb; an incompatible change fails
#   scripts/abi.sh update DIR   writes the description anew (at a release,
#                               with the SONAME bumped if the change was incompatible)
set -euo pipefail
cd "$(dirname "$0")/.."
mode=${1:?usage: scripts/abi.sh check|update DIR}
dir=${2:?usage: scripts/abi.sh check|update DIR}
runtime=$(sed -n 's/^Package: \(libqortools[0-9][0-9]*\)$/\1/p' debian/control)
soname=libQorTools.so.${runtime#libqortools}
unpacked="$dir/abi-unpacked"
rm -rf "$unpacked"
dpkg-deb -x "$dir/${runtime}"_*.deb "$unpacked"
dbg=$(ls "$dir/${runtime}"-dbgsym_*.*deb 2>/dev/null | head -n 1 || true)
[ -n "$dbg" ] && dpkg-deb -x "$dbg" "$unpacked"
library=$(ls "$unpacked"/usr/lib/*/"$soname".* | head -n 1)
debug=("--debug-info-dir" "$unpacked/usr/lib/debug")
# No headers directory: the packaged debug information names the headers
# relative to the source tree (dpkg maps the build's path away), so a headers
# directory matches none of them and would hide every change of a type.
stored=abi/$soname.abi.xz
if [ "$mode" = update ]; then
  mkdir -p abi
  abidw --no-corpus-path --no-show-locs "${debug[@]}" --out-file "$dir/released.abi" "$library"
  xz -9 -c "$dir/released.abi" >"$stored"
  echo "abi: written $stored"
  exit 0
fi
xz -dc "$stored" >"$dir/released.abi"
set +e
abidiff --no-show-locs --no-added-syms "${debug[@]/--debug-info-dir/--debug-info-dir2}" "$dir/released.abi" "$library" \
  >"$dir/abidiff.log" 2>&1
rc=$?
set -e
cat "$dir/abidiff.log"
# abidiff's status is a mask: 1 error, 2 usage, 4 a change, 8 an incompatible
# change. Added functions and variables are left out of the comparison (they
# are compatible); any other change of the released interface (a class that
# grew a member, a parameter of another type, a removed function) fails.
if [ "$rc" -ne 0 ]; then
  echo "abi: the released interface changed (abidiff status $rc); bump the SONAME and run scripts/abi.sh update" >&2
  exit 1
fi
echo "abi: compatible with the released interface (abidiff status $rc)"
