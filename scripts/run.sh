#!/usr/bin/env bash
# Installs what is missing, builds, and starts Lumivex: the window where there is a display;
# without one, the headless demo, which builds collages of the sample photos and saves them.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"
bin="${LUMIVEX_BUILD_DIR:-$root/build}/bin/lumivex"
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec "$bin" "$@"
fi
echo "run: no display here; running the headless demo into build/demo."
exec "$bin" demo --out "$root/build/demo" "$@"
