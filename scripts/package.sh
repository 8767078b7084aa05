#!/usr/bin/env bash
# Builds the Debian package in Release into ./build-package and prints the .deb's path as the
# last line. Install it with:  sudo apt install ./build-package/tallyport_<version>_<arch>.deb
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
jobs=$(nproc 2>/dev/null || echo 2)
# Only what the package holds is built: tests and benchmarks are not installed, and cpack
# is told not to build everything first.
cmake -S . -B build-package -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
      -DCMAKE_SKIP_INSTALL_ALL_DEPENDENCY=ON
cmake --build build-package -j"$jobs" --target tallyport tallyport-batch tallyport-demo-db
rm -f build-package/tallyport_*.deb
(cd build-package && cpack -G DEB)
debs=(build-package/tallyport_*.deb)
[ -f "${debs[0]}" ] || { echo "package: cpack made no .deb" >&2; exit 1; }
# Debian's checker, where installed (apt-get install lintian): any error or warning fails.
if command -v lintian >/dev/null; then
    lintian --fail-on error,warning "${debs[0]}" >&2
fi
realpath "${debs[0]}"
