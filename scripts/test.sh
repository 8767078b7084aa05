#!/usr/bin/env bash
# Sets up, builds, starts a throwaway PostgreSQL server and runs every test.
#   test.sh [Release|Debug]     into ./build
#   test.sh --sanitize          into ./build-asan, built with AddressSanitizer and UBSan; any
#                               finding fails its test (leaks only as tests/sanitizer/lsan.supp allows)
#   test.sh --all               what CI runs: the plain suite, the sanitized suite, then a few
#                               seconds of every fuzz target
# The exit status is ctest's (with --all, the first that failed).
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = --all ]; then
    scripts/test.sh
    scripts/test.sh --sanitize
    exec scripts/fuzz.sh --smoke
fi

builddir=build
if [ "${1:-}" = --sanitize ]; then
    shift
    builddir=build-asan
fi

scripts/setup.sh
if [ "$builddir" = build-asan ]; then
    flags="-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -O1"
    launcher=()
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    cmake -S . -B "$builddir" -DCMAKE_BUILD_TYPE=Debug "${launcher[@]}" \
        -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_C_FLAGS="$flags" \
        -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined"
    cmake --build "$builddir" -j"$(nproc 2>/dev/null || echo 2)"
    supp=$PWD/tests/sanitizer/lsan.supp
    export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:detect_stack_use_after_return=1
    export LSAN_OPTIONS=suppressions=$supp:print_suppressions=0
    export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
else
    scripts/build.sh "${1:-Release}"
fi

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
(cd "$builddir" && ctest --output-on-failure -j2) || status=$?
exit $status
