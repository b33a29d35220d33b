// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

// How the process finds its local time zone.
namespace LocalTimeZone {

// Every local date-time that Qt makes or converts asks the C library for the
// zone's offset, and with TZ unset the GNU C library looks at
// /etc/localtime on the disk again each time to see whether it changed: a
// file system call per date-time read from the file, most of the time it
// takes to list ten years of entries. Naming that same file in TZ (":" and
// the path, as POSIX has it) gives the same zone, read once. A TZ the user
// set, even an empty one, is left as it is. Call it first thing in main(),
// before any thread starts; the zone then stays what it was at start-up.
void readOnce();

} // namespace LocalTimeZone
