#!/usr/bin/env bash
# Installs what Ledgerly needs on Debian 12 (only what is missing), then
# configures and builds. A second run does only an incremental build.
#
#   BUILD_DIR          build directory (default: build, or build-sanitize)
#   LEDGERLY_SANITIZE  ON to build with AddressSanitizer and UBSan
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
sanitize="${LEDGERLY_SANITIZE:-OFF}"
if [ "$sanitize" = "ON" ]; then
    build_dir="${BUILD_DIR:-$root/build-sanitize}"
else
    build_dir="${BUILD_DIR:-$root/build}"
fi

packages=(
    cmake g++ make pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libqt6sql6-sqlite qt6-webengine-dev
    libjs-leaflet libsqlite3-dev xvfb xauth
    # Packaging and its tests: dpkg-shlibdeps, the desktop entry's and the
    # metainfo's validators, xwininfo and xprop.
    dpkg-dev desktop-file-utils appstream x11-utils
)

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

if [ ! -f "$build_dir/CMakeCache.txt" ]; then
    cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLEDGERLY_SANITIZE="$sanitize"
fi
cmake --build "$build_dir" -j"${LEDGERLY_JOBS:-2}"
