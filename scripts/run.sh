#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
# Sets up, builds and starts Ledgerly. Without an X11 or Wayland display the
# program runs on an X server of its own, shown over VNC on this machine
# only (scripts/headless.sh): connect a VNC viewer to 127.0.0.1:5900, or
# from another machine through ssh -L 5900:127.0.0.1:5900.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/setup.sh"
build_dir="${BUILD_DIR:-$root/build}"

# With arguments Ledgerly works on the command line and needs no screen.
if [ "$#" -eq 0 ] && [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    exec "$root/scripts/headless.sh" "$build_dir/ledgerly"
fi
exec "$build_dir/ledgerly" "$@"
