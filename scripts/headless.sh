#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
#
# Runs a program on an X server of its own (Xvfb) and shows that screen over
# VNC to this machine only: x11vnc listens on the loopback addresses
# (127.0.0.1 and ::1), never on the network, because a VNC screen has no
# password and the window shows the user's finances. From another machine,
# reach it through an SSH tunnel: ssh -L 5900:127.0.0.1:5900 user@host.
# Both servers start before the program and stop with it, however the
# script ends.
#
#   scripts/headless.sh PROGRAM [ARGUMENT...]
#
#   LEDGERLY_VNC_PORT  the VNC port on 127.0.0.1 (default: 5900)
set -euo pipefail

port="${LEDGERLY_VNC_PORT:-5900}"
screen="1280x900x24"
if [ "$#" -eq 0 ]; then
    echo "Usage: $0 PROGRAM [ARGUMENT...]" >&2
    exit 2
fi
for tool in Xvfb x11vnc ss; do
    if ! command -v "$tool" >/dev/null; then
        echo "$tool is missing: scripts/setup.sh installs it." >&2
        exit 1
    fi
done

work="$(mktemp -d)"
pids=()
stop() {
    local status=$?
    trap - EXIT INT TERM HUP
    # The program first, then the screen it is on.
    for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
        kill "${pids[i]}" 2>/dev/null || true
        wait "${pids[i]}" 2>/dev/null || true
    done
    rm -rf "$work"
    exit "$status"
}
trap stop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
trap 'exit 129' HUP

listening() {
    [ -n "$(ss -Hltn "sport = :$port")" ]
}
if listening; then
    echo "Port $port is already taken: choose another with LEDGERLY_VNC_PORT." >&2
    exit 1
fi

# -displayfd: Xvfb picks a free display number and writes it once it
# accepts clients. No TCP: the X server is for this script's programs only.
mkfifo "$work/display"
Xvfb -displayfd 3 -nolisten tcp -screen 0 "$screen" 3>"$work/display" >"$work/xvfb.log" 2>&1 &
pids+=("$!")
display=""
read -r -t 30 display <"$work/display" || true
if [ -z "$display" ]; then
    echo "The X server did not start:" >&2
    cat "$work/xvfb.log" >&2
    exit 1
fi
export DISPLAY=":$display"
unset WAYLAND_DISPLAY QT_QPA_PLATFORM

# -localhost: listen on the loopback addresses alone and take clients only
# from there.
x11vnc -display "$DISPLAY" -localhost -rfbport "$port" -forever -shared -nopw -quiet \
    -desktop Ledgerly >"$work/x11vnc.log" 2>&1 &
pids+=("$!")
for ((tries = 0; tries < 300; tries++)); do
    if listening; then
        break
    fi
    if ! kill -0 "${pids[1]}" 2>/dev/null; then
        break
    fi
    sleep 0.1
done
if ! listening; then
    echo "The VNC server did not start:" >&2
    cat "$work/x11vnc.log" >&2
    exit 1
fi

echo "No display found: Ledgerly runs on a VNC screen of this machine."
echo "Connect a VNC viewer to 127.0.0.1:$port (for example: vncviewer 127.0.0.1:$port)."
echo "From another machine: ssh -L $port:127.0.0.1:$port $(id -un)@${HOSTNAME:-this-machine}, then connect to 127.0.0.1:$port there."

# Started in the background and waited for, so that a signal to the script
# runs its traps at once rather than after the program ends; its input stays
# the script's (a background job would otherwise read /dev/null).
"$@" <&0 &
pids+=("$!")
status=0
wait "${pids[2]}" || status=$?
exit "$status"
