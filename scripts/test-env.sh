# Services for the test suite, sourced by scripts/test.sh.
# start_test_services: a private HOME and XDG folders, and whatever servers the
# tests need; stop_test_services undoes it.

start_test_services() {
  QOR_TEST_ROOT=$(mktemp -d /tmp/qortest.XXXXXX)
  chmod 755 "$QOR_TEST_ROOT"
  export HOME="$QOR_TEST_ROOT/home" XDG_CONFIG_HOME="$QOR_TEST_ROOT/config" \
         XDG_DATA_HOME="$QOR_TEST_ROOT/data" XDG_CACHE_HOME="$QOR_TEST_ROOT/cache"
  mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
  export GTK_THEME=Adwaita GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1
}

stop_test_services() {
  [ -n "${QOR_TEST_ROOT:-}" ] && rm -rf "$QOR_TEST_ROOT"
  return 0
}
