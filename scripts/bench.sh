#!/usr/bin/env bash
# Runs a benchmark from a Release build:   scripts/bench.sh NAME   (e.g. export-time)
# Builds the target bench_NAME (dashes become underscores) into ./build-release and runs it.
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -ge 1 ] || { echo "usage: $0 NAME   (e.g. export-time)" >&2; exit 2; }
target=bench_${1//-/_}
shift
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build-release --target "$target" -j"$(nproc)"
# The PostgreSQL benchmark wants a server: $TALLYPORT_TEST_PG, or a scratch one started here.
if [ "$target" = bench_export_time_pg ] && [ -z "${TALLYPORT_TEST_PG:-}" ]; then
    pgdir=$(mktemp -d "${TMPDIR:-/tmp}/tallyport-bench-pg.XXXXXX")
    trap 'scripts/pg-test-server.sh stop "$pgdir" >/dev/null 2>&1 || true; rm -rf "$pgdir"' EXIT
    TALLYPORT_TEST_PG=$(scripts/pg-test-server.sh start "$pgdir" "${TALLYPORT_TEST_PG_PORT:-55490}")
    export TALLYPORT_TEST_PG
    "build-release/$target" "$@"
    exit
fi
exec "build-release/$target" "$@"
