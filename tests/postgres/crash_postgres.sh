#!/usr/bin/env bash
# Crashes the cluster under which with_postgres.sh runs a command, and starts it again.
#   crash_postgres.sh immediate|kill
# immediate: the processes end where they are; kill: they are killed, first the one that watches over the others.
source "$(dirname "${BASH_SOURCE[0]}")/cluster.sh"
folder=${KALVOR_TEST_CLUSTER:?to be run beside with_postgres.sh}

if [ "${1:-}" = kill ]; then
  main=$(head -n 1 "$folder/data/postmaster.pid")
  processes=("$main" $(cat "/proc/$main/task/$main/children"))
  as_owner kill -KILL "${processes[@]}" 2>/dev/null || true
  for process in "${processes[@]}"; do
    while [ -e "/proc/$process" ] && ! grep -q '^State:.Z' "/proc/$process/status" 2>/dev/null; do sleep 0.01; done
  done
  # They name a process that is no more, even where nobody has reaped it yet.
  as_owner rm -f "$folder/data/postmaster.pid" "$folder"/.s.PGSQL.*.lock
else
  as_owner "$programs/pg_ctl" --pgdata="$folder/data" --mode=immediate --silent stop >/dev/null
fi
start_cluster "$folder"
