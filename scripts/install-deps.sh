#!/usr/bin/env bash
# Installs the Debian packages QorTools needs to build, test and benchmark.
# Idempotent and quiet; run as root (CI does). Also generates the locales the
# text-conversion tests use.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config clang libclang-rt-14-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libxml2-dev libssl-dev libglib2.0-dev libgtk-3-dev libcairo2-dev
  libjpeg-dev libpng-dev libtiff-dev libgif-dev
  unixodbc-dev odbc-postgresql libsqliteodbc sqlite3 libsqlite3-dev postgresql
  xvfb xauth xclip dbus locales python3
  libimage-exiftool-perl exiv2 libvips-tools
  debhelper dpkg-dev fakeroot lintian abigail-tools xz-utils doxygen
  fonts-dejavu-core fonts-ipafont-gothic
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ "${#missing[@]}" -gt 0 ]; then
  if [ "$(id -u)" -ne 0 ]; then
    echo "install-deps: missing packages (${missing[*]}); run this script as root" >&2
    exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# Locales for the conversion tests: UTF-8 Japanese and Shift_JIS (CP932-like).
have_locale() { locale -a 2>/dev/null | grep -qix "$1"; }
if [ "$(id -u)" -eq 0 ]; then
  have_locale 'ja_JP.utf8' || localedef -i ja_JP -f UTF-8 ja_JP.UTF-8 >/dev/null 2>&1 || true
  have_locale 'ja_JP.sjis' || localedef -i ja_JP -f SHIFT_JIS ja_JP.SJIS >/dev/null 2>&1 || true
fi
exit 0
