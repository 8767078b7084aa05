#!/usr/bin/env bash
# A throwaway PostgreSQL cluster for the tests.
#   pg-test-server.sh start DIR [PORT]   initialise DIR if needed, start, print the test URL
#   pg-test-server.sh stop DIR           stop the cluster in DIR
# Listens on 127.0.0.1 (and ::1 where the machine has it), trusts local connections, has the superuser role "tallyport"
# and the database "tallyport_test". Run as root it runs the server as the user "postgres"
# (initdb refuses root); otherwise as the calling user.
set -euo pipefail

usage() { echo "usage: $0 start DIR [PORT] | stop DIR" >&2; exit 2; }
[ $# -ge 2 ] || usage
cmd=$1
dir=$(realpath -m "$2")
port=${3:-55432}

bindir=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1 || true)
[ -n "$bindir" ] && [ -x "$bindir/initdb" ] || { echo "PostgreSQL server binaries not found under /usr/lib/postgresql" >&2; exit 1; }

if [ "$(id -u)" = 0 ]; then
    owner=postgres
    as_owner() { runuser -u "$owner" -- "$@"; }
else
    owner=$(id -un)
    as_owner() { "$@"; }
fi

data=$dir/data
run=$dir/run      # socket folder
log=$dir/server.log

case "$cmd" in
start)
    mkdir -p "$dir" "$run"
    chown "$owner" "$dir" "$run"
    chmod 0700 "$dir"
    if [ ! -f "$data/PG_VERSION" ]; then
        as_owner "$bindir/initdb" -D "$data" -U postgres --auth=trust --encoding=UTF8 --locale=C.UTF-8 >"$dir/initdb.log" 2>&1 \
            || { cat "$dir/initdb.log" >&2; exit 1; }
    fi
    if as_owner "$bindir/pg_ctl" -D "$data" status >/dev/null 2>&1; then
        echo "already running" >&2
    else
        # Test data only: durability is not wanted, speed is.
        as_owner "$bindir/pg_ctl" -D "$data" -l "$log" -w -t 30 \
            -o "-c listen_addresses='127.0.0.1,::1' -p $port -k $run -c fsync=off -c synchronous_commit=off -c full_page_writes=off" \
            start >/dev/null || { tail -20 "$log" >&2; exit 1; }
    fi
    for _ in $(seq 1 50); do
        "$bindir/pg_isready" -q -h 127.0.0.1 -p "$port" && break
        sleep 0.2
    done
    psql=( "$bindir/psql" -X -q -h 127.0.0.1 -p "$port" -U postgres -d postgres -v ON_ERROR_STOP=1 )
    if [ "$("${psql[@]}" -tAc "SELECT 1 FROM pg_roles WHERE rolname = 'tallyport'")" != 1 ]; then
        "${psql[@]}" -c "CREATE ROLE tallyport LOGIN SUPERUSER"
    fi
    if [ "$("${psql[@]}" -tAc "SELECT 1 FROM pg_database WHERE datname = 'tallyport_test'")" != 1 ]; then
        "${psql[@]}" -c "CREATE DATABASE tallyport_test OWNER tallyport"
    fi
    echo "postgresql://tallyport@127.0.0.1:$port/tallyport_test"
    ;;
stop)
    if [ -f "$data/PG_VERSION" ]; then
        as_owner "$bindir/pg_ctl" -D "$data" -m fast -w stop >/dev/null 2>&1 || true
    fi
    ;;
*)
    usage
    ;;
esac
