#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
# Installs what Ledgerly needs on Debian 12 (only what is missing), then
# configures and builds. A second run does only an incremental build.
#
#   BUILD_DIR          build directory (default: build, build-sanitize or
#                      build-fuzz)
#   LEDGERLY_SANITIZE  ON to build with AddressSanitizer and UBSan
#   LEDGERLY_FUZZ      ON to build only the fuzz targets, with clang's
#                      libFuzzer (scripts/fuzz.sh runs them)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
sanitize="${LEDGERLY_SANITIZE:-OFF}"
fuzz="${LEDGERLY_FUZZ:-OFF}"
if [ "$fuzz" = "ON" ]; then
    build_dir="${BUILD_DIR:-$root/build-fuzz}"
elif [ "$sanitize" = "ON" ]; then
    build_dir="${BUILD_DIR:-$root/build-sanitize}"
else
    build_dir="${BUILD_DIR:-$root/build}"
fi

packages=(
    cmake g++ make pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libqt6sql6-sqlite qt6-webengine-dev
    libjs-leaflet libsqlite3-dev xvfb xauth
    # scripts/run.sh without a display: an X server of its own shown over
    # VNC on the loopback addresses, and ss to see that the port listens.
    x11vnc iproute2
    # Packaging and its tests: dpkg-shlibdeps, the desktop entry's and the
    # metainfo's validators, xwininfo and xprop.
    dpkg-dev desktop-file-utils appstream x11-utils
    # The package's manual page is made by help2man; lintian checks the
    # package; bash-completion says where completions go and loads them in
    # the completion test.
    help2man lintian bash-completion
    # scripts/screenshots.sh shrinks its pictures.
    optipng
    # The store's tests read local days in zones whose offset changes at
    # midnight.
    tzdata
)
if [ "$fuzz" = "ON" ]; then
    # clang with libFuzzer and the sanitizer runtimes (the time zones its
    # date reader's target checks local times in are installed above).
    packages+=(clang-14 libclang-rt-14-dev)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ "${#missing[@]}" -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    $sudo apt-get update
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi

if [ "$fuzz" = "ON" ]; then
    if [ ! -f "$build_dir/CMakeCache.txt" ]; then
        CC=clang-14 CXX=clang++-14 cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DLEDGERLY_FUZZ=ON -DLEDGERLY_BUILD_TESTS=OFF -DLEDGERLY_BUILD_BENCH=OFF
    fi
    cmake --build "$build_dir" -j"${LEDGERLY_JOBS:-2}" --target ledgerly_fuzz
    exit 0
fi

if [ ! -f "$build_dir/CMakeCache.txt" ]; then
    cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLEDGERLY_SANITIZE="$sanitize"
fi
cmake --build "$build_dir" -j"${LEDGERLY_JOBS:-2}"
