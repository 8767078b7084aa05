#!/usr/bin/env bash
# Configures and builds everything into ./build.   build.sh [Release|Debug]   (default Release)
set -euo pipefail
cd "$(dirname "$0")/.."

type=${1:-Release}
case "$type" in
Release|Debug|RelWithDebInfo) ;;
*) echo "usage: $0 [Release|Debug]" >&2; exit 2 ;;
esac

jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B build -DCMAKE_BUILD_TYPE="$type"
cmake --build build -j"$jobs"
