#!/usr/bin/env bash
# Installs what is missing, builds, and starts Lumivex: the window where there is a display;
# without one, the window on a virtual display, saving a picture of the first screen.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"
bin="${LUMIVEX_BUILD_DIR:-$root/build}/bin/lumivex"
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec "$bin" "$@"
fi
echo "run: no display here; starting Lumivex on a virtual display (Xvfb)."
mkdir -p "$root/build/screenshots"
exec xvfb-run -a -s "-screen 0 1280x1024x24" "$bin" --screenshot "$root/build/screenshots/first-screen.png" "$@"
