#!/usr/bin/env bash
# Runs a command beside a PostgreSQL cluster of its own: in a temporary folder, on a unix socket without a network
# port, gone with the command. KALVOR_TEST_DATABASE names its databases for the tests, %1 being the name of one.
#   with_postgres.sh [--synchronized] COMMAND [ARGUMENT ...]
# --synchronized: commits wait for the disk, as at a site; else nothing has to reach it, as nothing outlives the tests.
# Exit code 77: PostgreSQL is not installed.
source "$(dirname "${BASH_SOURCE[0]}")/cluster.sh"

synchronization="-c fsync=off -c full_page_writes=off"
if [ "${1:-}" = --synchronized ]; then
  synchronization=
  shift
fi

folder=$(mktemp -d -t kalvor-postgres.XXXXXX)
[ -z "$account" ] || chown "$account" "$folder"

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
cd - >/dev/null
echo "-c listen_addresses='' -c unix_socket_directories='$folder' $synchronization" \
  "-c max_connections=200 -c shared_buffers=64MB -c max_wal_size=2GB" >"$folder/options"
start_cluster "$folder"

export KALVOR_TEST_DATABASE="postgresql://kalvor@/%1?host=$folder"
export KALVOR_TEST_CLUSTER="$folder"
"$@" &
child=$!
code=0
wait "$child" || code=$?
child=
exit "$code"
