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
exec "build-release/$target" "$@"
