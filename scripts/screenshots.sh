#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
#
# Draws docs/screenshots/ anew: Ledgerly on an X server of its own (Xvfb),
# over a fresh home holding a year of invented entries, with each page opened
# in turn and the window saved as a PNG. Run it again whenever a page
# changes, and commit the pictures. Every page is taken in the Classic look
# (docs/screenshots/) and in the Light and Dark looks (light/ and dark/
# below it); the README shows the history page in all three and the others
# in Classic, and the AppStream metadata adds the dark history page.
#
#   BUILD_DIR   build directory (default: build)
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build_dir="${BUILD_DIR:-$root/build}"
out="$root/docs/screenshots"

"$root/scripts/setup.sh"
cmake --build "$build_dir" -j"${LEDGERLY_JOBS:-2}" --target ledgerly_sample_year ledgerly_screenshots

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir -m 700 "$work/home" "$work/runtime"

# Only the variables the pictures depend on, set to fixed values: the home
# with the sample year, the language in which dates and amounts show, and
# the seed of Qt's hash tables, which otherwise changes from run to run and
# with it the order in which the pie charts lay out their categories.
run() {
    env -i PATH="$PATH" HOME="$work/home" XDG_RUNTIME_DIR="$work/runtime" LANG=C.UTF-8 LC_ALL=C.UTF-8 TZ=UTC \
        QT_HASH_SEED=0 QT_LOGGING_RULES="qt.webenginecontext.info=false" \
        ${QTWEBENGINE_CHROMIUM_FLAGS:+QTWEBENGINE_CHROMIUM_FLAGS="$QTWEBENGINE_CHROMIUM_FLAGS"} "$@"
}
if [ "$(id -u)" -eq 0 ]; then
    # Chromium refuses to start its sandbox as root.
    QTWEBENGINE_CHROMIUM_FLAGS="${QTWEBENGINE_CHROMIUM_FLAGS:---no-sandbox}"
fi

run "$build_dir/ledgerly_sample_year"

rm -rf "$out"
mkdir -p "$out"
# A screen larger than the window, at the 96 dots per inch that Qt's
# offscreen platform (the tests') assumes, so the window has the same size
# on both.
for look in classic light dark; do
    dir="$out"
    [ "$look" = classic ] || dir="$out/$look"
    run QT_QPA_PLATFORM=xcb xvfb-run --auto-servernum \
        --server-args="-screen 0 1280x1024x24 -dpi 96 -nolisten tcp" \
        "$build_dir/ledgerly_screenshots" --look "$look" "$dir"
    optipng -quiet -o2 -strip all "$dir"/*.png
    ls -l "$dir"
done
