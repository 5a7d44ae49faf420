#!/usr/bin/env bash
# Builds the Debian packages (libqortools2, libqortools-dev, qortools-tools,
# libqortools-doc) from the committed tree, checks them with lintian (an
# error fails), and, with --install (as root), installs them with dpkg and
# builds and runs the outside application of tests/install/consumer against
# the installed packages. With --abi it also compares the packaged library's
# interface with the one kept in abi/ (scripts/abi.sh). The packages are left
# in build-deb/.
set -euo pipefail
cd "$(dirname "$0")/.."
install=0
abi=0
for a in "$@"; do
  case "$a" in
    --install) install=1 ;;
    --abi) abi=1 ;;
    *) echo "usage: scripts/package.sh [--install] [--abi]" >&2; exit 2 ;;
  esac
done

out="$PWD/build-deb"
rm -rf "$out"
mkdir -p "$out/src"
git archive --format=tar HEAD | tar -x -C "$out/src"
(cd "$out/src" && DEB_BUILD_OPTIONS="nocheck parallel=$(nproc)" dpkg-buildpackage -us -uc -b >"$out/build.log" 2>&1) \
  || { tail -n 60 "$out/build.log"; exit 1; }
ls "$out"/*.deb

lintian --no-tag-display-limit "$out"/*.changes >"$out/lintian.log" 2>&1 || true
cat "$out/lintian.log"
if grep -q '^E: ' "$out/lintian.log"; then
  echo "package: lintian reports errors" >&2
  exit 1
fi

if [ "$abi" -eq 1 ]; then
  scripts/abi.sh check "$out"
fi

if [ "$install" -eq 1 ]; then
  runtime=$(sed -n 's/^Package: \(libqortools[0-9][0-9]*\)$/\1/p' debian/control)
  dpkg -i "$out/${runtime}"_*.deb "$out"/libqortools-dev_*.deb "$out"/qortools-tools_*.deb "$out"/libqortools-doc_*.deb
  rm -rf "$out/consumer"
  cmake -S tests/install/consumer -B "$out/consumer" -G Ninja >/dev/null
  cmake --build "$out/consumer" >/dev/null
  "$out/consumer/consumer"
  QORTOOLS_REGISTRY_DIR="$out/registry" qortools-registry set 'Software\Package' Installed dword:1
  QORTOOLS_REGISTRY_DIR="$out/registry" qortools-registry get 'Software\Package' Installed
  pkg-config --modversion QorTools
fi
