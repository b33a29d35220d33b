#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers
# Builds the fuzz targets (clang's libFuzzer with ASan and UBSan, in
# build-fuzz/) and runs each in turn for the given number of seconds
# (default 60):
#
#   scripts/fuzz.sh [seconds]
#
# Each target starts from its seed corpus in tests/fuzz/corpus/<target>/ and
# keeps what it learns in build-fuzz/fuzz-corpus/<target>/, so a later run
# goes on from there. An input that crashes a target, hangs it for more than
# ten seconds or makes the date reader disagree with Qt's parser is written
# to build-fuzz/fuzz-findings/<target>/; once fixed, copy it into the seed
# corpus, where ctest replays it in every ordinary build. The run ends with
# one line per target: its executions, and whether it found anything.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
seconds="${1:-60}"
build_dir="${BUILD_DIR:-$root/build-fuzz}"

LEDGERLY_FUZZ=ON BUILD_DIR="$build_dir" "$root/scripts/setup.sh"

summary=()
failed=0
for program in "$build_dir"/tests/fuzz/fuzz_*; do
    [ -f "$program" ] && [ -x "$program" ] || continue
    target="${program##*/fuzz_}"
    corpus="$build_dir/fuzz-corpus/$target"
    findings="$build_dir/fuzz-findings/$target"
    log="$build_dir/fuzz-$target.log"
    mkdir -p "$corpus" "$findings"
    options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
             -artifact_prefix="$findings/")
    if [ -f "$root/tests/fuzz/$target.dict" ]; then
        options+=(-dict="$root/tests/fuzz/$target.dict")
    fi

    echo "== $target: ${seconds} s"
    status=0
    "$program" "${options[@]}" "$corpus" "$root/tests/fuzz/corpus/$target" >"$log" 2>&1 || status=$?
    runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)"
    if [ "$status" -eq 0 ]; then
        summary+=("$target: ${runs:-?} executions in ${seconds} s, nothing found")
    else
        failed=1
        tail -n 40 "$log"
        summary+=("$target: FINDING after ${runs:-?} executions (exit $status), see $findings/ and $log")
    fi
done

echo
printf '%s\n' "${summary[@]}"
exit "$failed"
