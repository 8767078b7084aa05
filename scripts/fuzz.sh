#!/usr/bin/env bash
# Fuzzes the parsers with libFuzzer (clang, AddressSanitizer and UBSan), built into ./build-fuzz.
#   fuzz.sh --list                  the targets
#   fuzz.sh TARGET [SECONDS] [ARG]  runs one (default 60 s); ARGs go to libFuzzer (-runs=N, -jobs=N)
#   fuzz.sh --smoke [SECONDS]       every target for a few seconds each (default 5), as CI does
# Seeds come from tests/fuzz/TARGET/; what the run adds is kept in build-fuzz/corpus/TARGET.
# tests/fuzz/TARGET.flags, when present, holds libFuzzer flags of that target (ARGs come later
# and win).
# A finding (crash, sanitizer report, leak, timeout) is saved as build-fuzz/findings/TARGET-*
# and the exit status is non-zero.
set -euo pipefail
cd "$(dirname "$0")/.."

dir=build-fuzz
cxx=${FUZZ_CXX:-clang++-14}
cc=${FUZZ_CC:-clang-14}

targets() { sed -n 's/^  \([a-z_0-9]*\)$/\1/p' tests/fuzz/CMakeLists.txt; }

build() {
    command -v "$cxx" >/dev/null || { echo "fuzz: $cxx not found; run scripts/setup.sh" >&2; exit 1; }
    local flags="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -O1 -g"
    local launcher=()
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
    cmake -S . -B "$dir" -DTP_FUZZ=ON -DCMAKE_BUILD_TYPE=Debug "${launcher[@]}" \
        -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
        -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" >/dev/null
    cmake --build "$dir" -j"$(nproc 2>/dev/null || echo 2)" --target fuzzers
}

run() {
    local target=$1 seconds=$2
    shift 2
    targets | grep -qx "$target" || { echo "fuzz: no target $target (see --list)" >&2; exit 2; }
    mkdir -p "$dir/corpus/$target" "$dir/findings"
    local own=()
    if [ -f "tests/fuzz/$target.flags" ]; then
        read -r -a own <"tests/fuzz/$target.flags" || true
    fi
    echo "fuzz: $target for ${seconds}s"
    ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
        "$dir/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$dir/findings/$target-" "${own[@]}" "$@" \
        "$dir/corpus/$target" "tests/fuzz/$target"
}

case "${1:-}" in
--list)
    targets
    ;;
--smoke)
    build
    for t in $(targets); do
        log=$dir/smoke-$t.log
        if ! run "$t" "${2:-5}" >"$log" 2>&1; then
            tail -40 "$log" >&2
            echo "fuzz: $t found a fault; see $dir/findings" >&2
            exit 1
        fi
        echo "fuzz: $t $(grep -o 'number_of_executed_units: [0-9]*' "$log" | tail -1)"
    done
    ;;
""|-*)
    echo "usage: $0 --list | TARGET [SECONDS] [LIBFUZZER-ARG...] | --smoke [SECONDS]" >&2
    exit 2
    ;;
*)
    target=$1
    seconds=${2:-60}
    shift $(( $# >= 2 ? 2 : 1 ))
    build
    run "$target" "$seconds" "$@"
    ;;
esac
