#!/usr/bin/env bash
# Installs what is missing, builds, and starts Lumivex: the window where there is a display;
# without one, the headless demo, which builds collages of the sample photos and saves them.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"
bin="${LUMIVEX_BUILD_DIR:-$root/build}/bin/lumivex"
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  # AI Blend needs the bundled face swap service; start it unless something already listens on its port.
  build="${LUMIVEX_BUILD_DIR:-$root/build}"
  swap_port="$(sed -n 's/^LUMIVEX_FACESWAP_PORT:STRING=//p' "$build/CMakeCache.txt" 2>/dev/null || true)"
  swap_port="${swap_port:-8787}"
  if ! (exec 3<>"/dev/tcp/127.0.0.1/$swap_port") 2>/dev/null && [ -x "$build/bin/lumivex-faceswap" ]; then
    nohup "$build/bin/lumivex-faceswap" --host 127.0.0.1 --port "$swap_port" >>"$build/faceswap.log" 2>&1 &
    echo "run: face swap service on http://127.0.0.1:$swap_port (log: $build/faceswap.log)"
  fi
  exec "$bin" "$@"
fi
echo "run: no display here; running the headless demo into build/demo."
exec "$bin" demo --out "$root/build/demo" "$@"
