#!/usr/bin/env bash
# Installs what building, testing and running Tallyport need. Fast when all is present.
set -euo pipefail

packages=(qt6-base-dev libqt6sql6-psql libsqlite3-dev libgtest-dev sqlite3 postgresql
          xvfb xauth fonts-dejavu-core cmake g++
          dpkg-dev desktop-file-utils man-db groff-base file   # the package and its check
          clang-14 libclang-rt-14-dev)   # scripts/fuzz.sh: clang with libFuzzer and the sanitizers

missing=()
for p in "${packages[@]}"; do
    if [ "$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null)" != "install ok installed" ]; then
        missing+=("$p")
    fi
done
if [ ${#missing[@]} -eq 0 ]; then
    echo "setup: all packages present"
    exit 0
fi

echo "setup: installing ${missing[*]}"
if [ "$(id -u)" = 0 ]; then
    as_root=()
elif command -v sudo >/dev/null 2>&1; then
    as_root=(sudo)
else
    echo "setup: need root or sudo to install: ${missing[*]}" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update
"${as_root[@]}" apt-get install -y "${missing[@]}"
