#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
# Sets up, builds and runs the whole test suite headless.
#   LEDGERLY_SANITIZE=ON scripts/test.sh   runs it under ASan and UBSan
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/setup.sh"
if [ "${LEDGERLY_SANITIZE:-OFF}" = "ON" ]; then
    build_dir="${BUILD_DIR:-$root/build-sanitize}"
    export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
    export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1}"
else
    build_dir="${BUILD_DIR:-$root/build}"
fi

export QT_QPA_PLATFORM=offscreen
if [ "$(id -u)" -eq 0 ]; then
    # Chromium refuses to start its sandbox as root.
    export QTWEBENGINE_CHROMIUM_FLAGS="${QTWEBENGINE_CHROMIUM_FLAGS:---no-sandbox}"
fi
cd "$build_dir"
exec ctest --output-on-failure -j"${LEDGERLY_TEST_JOBS:-2}" "$@"
