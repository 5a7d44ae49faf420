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
  start_postgres
}

# A throwaway PostgreSQL server on a loopback port, for the database tests.
# Needs root (the server runs as the postgres user); without it the
# PostgreSQL half of the database tests is skipped.
start_postgres() {
  local bin
  bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
  if [ "$(id -u)" -ne 0 ] || [ -z "$bin" ] || ! id postgres >/dev/null 2>&1; then
    echo "test-env: PostgreSQL tests skipped (needs root and the postgresql package)" >&2
    return 0
  fi
  QOR_PG_BIN=$bin
  QOR_PG_BASE=$(mktemp -d /tmp/qorpg.XXXXXX)
  QOR_PG_PORT=$((54300 + RANDOM % 500))
  chown postgres:postgres "$QOR_PG_BASE"
  chmod 700 "$QOR_PG_BASE"
  echo postgres > "$QOR_PG_BASE/.pw"
  chown postgres "$QOR_PG_BASE/.pw"
  runuser -u postgres -- "$bin/initdb" -D "$QOR_PG_BASE/data" -U postgres --auth-local=trust \
    --auth-host=scram-sha-256 --pwfile="$QOR_PG_BASE/.pw" -E UTF8 --locale=C.UTF-8 --no-sync >/dev/null
  runuser -u postgres -- "$bin/pg_ctl" -D "$QOR_PG_BASE/data" -l "$QOR_PG_BASE/server.log" -w -t 30 \
    -o "-c listen_addresses=127.0.0.1 -p $QOR_PG_PORT -k $QOR_PG_BASE -c fsync=off -c synchronous_commit=off" \
    start >/dev/null
  runuser -u postgres -- "$bin/psql" -h "$QOR_PG_BASE" -p "$QOR_PG_PORT" -U postgres -d postgres -q \
    -v ON_ERROR_STOP=1 -c "CREATE ROLE tester LOGIN PASSWORD 'testpw'" -c "CREATE DATABASE testdb OWNER tester" \
    -c "CREATE ROLE \"odd;user{}= 日本\" LOGIN PASSWORD 'pa}ss;w{= 日本'" \
    -c "CREATE DATABASE \"odd;db{}= 日本\" OWNER \"odd;user{}= 日本\"" >/dev/null
  export QORTOOLS_TEST_PG="127.0.0.1:$QOR_PG_PORT"
  export QORTOOLS_TEST_PG_CTL="runuser -u postgres -- $bin/pg_ctl -D $QOR_PG_BASE/data"
}

stop_test_services() {
  if [ -n "${QOR_PG_BASE:-}" ]; then
    runuser -u postgres -- "$QOR_PG_BIN/pg_ctl" -D "$QOR_PG_BASE/data" -m immediate -w stop >/dev/null 2>&1 || true
    rm -rf "$QOR_PG_BASE"
  fi
  [ -n "${QOR_TEST_ROOT:-}" ] && rm -rf "$QOR_TEST_ROOT"
  return 0
}
