# Shared by the scripts here: where PostgreSQL is, and who may run it.
set -euo pipefail

programs=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)
[ -n "$programs" ] || programs=$(dirname "$(command -v initdb || echo /nowhere/initdb)")
if ! [ -x "$programs/initdb" ] || ! [ -x "$programs/pg_ctl" ]; then
  echo "PostgreSQL is not installed" >&2
  exit 77
fi

account=
if [ "$(id -u)" = 0 ]; then
  # PostgreSQL refuses to run as root.
  account=postgres
  id "$account" >/dev/null 2>&1 || account=nobody
fi
as_owner() {
  if [ -n "$account" ]; then
    setpriv --reuid="$account" --regid="$(id -g "$account")" --clear-groups "$@"
  else
    "$@"
  fi
}

start_cluster() { # folder
  (
    cd "$1"
    as_owner "$programs/pg_ctl" --pgdata="$1/data" --silent --wait --log="$1/log" start \
      --options="$(cat "$1/options")" >/dev/null
  ) || { cat "$1/log" >&2; return 1; }
}
