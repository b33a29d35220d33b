#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
# Builds Ledgerly's Debian package, build/ledgerly_<version>_<arch>.deb, from
# the install rules, and checks it with lintian, Debian's package checker,
# when that is installed (setup.sh installs it): an error or a warning fails
# the script. Install it with: sudo apt install ./build/ledgerly_*.deb
#
#   BUILD_DIR  build directory (default: build)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build_dir="${BUILD_DIR:-$root/build}"
# A package carries a plain build, never the sanitizers'.
LEDGERLY_SANITIZE=OFF BUILD_DIR="$build_dir" "$root/scripts/setup.sh"
cd "$build_dir"
cpack -G DEB
if command -v lintian >/dev/null; then
    version="$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' CMakeCache.txt)"
    lintian --fail-on error,warning "ledgerly_${version}_$(dpkg --print-architecture).deb"
fi
