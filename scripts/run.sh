#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
# Sets up, builds and starts Ledgerly. Without an X11 or Wayland display the
# program runs on Qt's VNC platform; connect a VNC viewer to 127.0.0.1:5900.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/setup.sh"
build_dir="${BUILD_DIR:-$root/build}"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    export QT_QPA_PLATFORM="vnc:size=1280x900:port=5900"
    echo "No display found: Ledgerly runs on a VNC server."
    echo "Connect a VNC viewer to 127.0.0.1:5900 (for example: vncviewer 127.0.0.1:5900)."
    echo "Qt's VNC server takes no password and listens on every interface: use it on a trusted machine."
fi
exec "$build_dir/ledgerly" "$@"
