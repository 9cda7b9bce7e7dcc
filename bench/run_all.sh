#!/usr/bin/env bash
# Runs every benchmark program of a folder, one after the other: nothing else should be working meanwhile.
set -euo pipefail
bin=${1:?folder of the benchmark programs}
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")/../tests" && pwd)
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=Europe/Sofia
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
for program in "$bin"/*_bench; do
  printf '\n== %s\n' "$(basename "$program")"
  # With a PostgreSQL cluster of its own; where PostgreSQL is not installed, without.
  if [ "$(basename "$program")" = clients_bench ]; then
    "$tests/postgres/with_postgres.sh" --synchronized "$program" && continue || code=$?
    [ "$code" = 77 ] || exit "$code"
  fi
  "$program"
done
