// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

// Include once, in the test file of a page that shows a web view.
//
// The web engine's browser side runs inside the test process, prebuilt and
// not instrumented. Chromium frees some objects through a base of another
// size when a page goes, which AddressSanitizer reports as a new/delete type
// mismatch inside libQt6WebEngineCore; that one check is off for such a test.
// Chromium also keeps process-wide objects until exit, some through its font
// (fontconfig) and device (udev) back ends. A record or widget that the
// program itself forgets has no frame in these libraries and is still
// reported, and tests without a web view run with every check on.
#if defined(__SANITIZE_ADDRESS__)
extern "C" const char *__asan_default_options()
{
    return "new_delete_type_mismatch=0";
}

extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libQt6WebEngineCore.so\n"
           "leak:libfontconfig.so\n"
           "leak:libudev.so\n";
}
#endif
