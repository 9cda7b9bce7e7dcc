#!/usr/bin/env bash
# Runs a command beside a PostgreSQL cluster of its own: in a temporary folder, on a unix socket without a network
# port, gone with the command. KALVOR_TEST_DATABASE names its databases for the tests, %1 being the name of one.
#   with_postgres.sh COMMAND [ARGUMENT ...]
# Exit code 77: PostgreSQL is not installed.
set -euo pipefail

programs=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)
[ -n "$programs" ] || programs=$(dirname "$(command -v initdb || echo /nowhere/initdb)")
if ! [ -x "$programs/initdb" ] || ! [ -x "$programs/pg_ctl" ]; then
  echo "PostgreSQL is not installed" >&2
  exit 77
fi

folder=$(mktemp -d -t kalvor-postgres.XXXXXX)
as_owner() { "$@"; }
if [ "$(id -u)" = 0 ]; then
  # PostgreSQL refuses to run as root.
  account=postgres
  id "$account" >/dev/null 2>&1 || account=nobody
  chown "$account" "$folder"
  as_owner() { setpriv --reuid="$account" --regid="$(id -g "$account")" --clear-groups "$@"; }
fi

child=
finish() {
  [ -z "$child" ] || kill "$child" 2>/dev/null || true
  as_owner "$programs/pg_ctl" --pgdata="$folder/data" --mode=immediate --silent stop >/dev/null 2>&1 || true
  rm -rf "$folder"
}
trap finish EXIT
trap 'exit 130' INT TERM

cd "$folder"
if ! as_owner "$programs/initdb" --pgdata="$folder/data" --username=kalvor --auth=trust --encoding=UTF8 \
  --locale=C.UTF-8 --no-sync >"$folder/initdb" 2>&1; then
  cat "$folder/initdb" >&2
  exit 1
fi
# Nothing of it is to outlive the tests, so that nothing has to reach the disk.
if ! as_owner "$programs/pg_ctl" --pgdata="$folder/data" --silent --wait --log="$folder/log" start --options="\
  -c listen_addresses='' -c unix_socket_directories='$folder' -c fsync=off -c full_page_writes=off \
  -c max_connections=200 -c shared_buffers=64MB -c max_wal_size=2GB" >/dev/null; then
  cat "$folder/log" >&2
  exit 1
fi
cd - >/dev/null

export KALVOR_TEST_DATABASE="postgresql://kalvor@/%1?host=$folder"
"$@" &
child=$!
code=0
wait "$child" || code=$?
child=
exit "$code"
