#!/usr/bin/env bash
# Configures and builds Lumivex into build/ (or $LUMIVEX_BUILD_DIR). Extra arguments go to CMake.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${LUMIVEX_BUILD_DIR:-$root/build}"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${LUMIVEX_BUILD_TYPE:-RelWithDebInfo}" "$@"
cmake --build "$build" --parallel "$(nproc)"
