// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <cstddef>
#include <cstdint>

// The entry points of a fuzz target, as libFuzzer calls them. The same
// target, built without libFuzzer, runs once over its seed corpus and
// findings under ctest (see replay.cpp), so that a fixed finding stays fixed.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
