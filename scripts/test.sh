#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
# LUMIVEX_SANITIZE=1 builds with AddressSanitizer and UndefinedBehaviorSanitizer into build-asan/.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
extra=()
if [ "${LUMIVEX_SANITIZE:-0}" = "1" ]; then
  export LUMIVEX_BUILD_DIR="${LUMIVEX_BUILD_DIR:-$root/build-asan}"
  extra+=(-DLUMIVEX_SANITIZE=ON)
  export LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
fi
build="${LUMIVEX_BUILD_DIR:-$root/build}"
bash "$root/scripts/build.sh" -DLUMIVEX_WERROR=ON "${extra[@]}"
cd "$build"
ctest --output-on-failure --parallel "$(nproc)" --timeout 300
