#!/usr/bin/env bash
# Sets up, builds, starts a throwaway PostgreSQL server and runs every test.
# The exit status is ctest's.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh "${1:-Release}"

pgdir=$(mktemp -d "${TMPDIR:-/tmp}/tallyport-pg.XXXXXX")
port=${TALLYPORT_TEST_PG_PORT:-55432}
stop_server() {
    scripts/pg-test-server.sh stop "$pgdir" || true
    rm -rf "$pgdir"
}
trap stop_server EXIT
# A port left taken by someone else: try a few more.
url=
for try in 0 1 2 3 4; do
    if url=$(scripts/pg-test-server.sh start "$pgdir" $((port + try))); then
        break
    fi
    scripts/pg-test-server.sh stop "$pgdir" || true
    url=
done
if [ -z "$url" ]; then
    echo "test: could not start the PostgreSQL test server" >&2
    exit 1
fi
export TALLYPORT_TEST_PG=$url
echo "test: PostgreSQL at $TALLYPORT_TEST_PG"

export QT_QPA_PLATFORM=offscreen
# mktemp makes the folder 0700, as Qt wants it.
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d "${TMPDIR:-/tmp}/tallyport-xdg.XXXXXX")}

status=0
(cd build && ctest --output-on-failure -j2) || status=$?
exit $status
