// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>
#include <QtGlobal>

// Writes, on a connection of its own, 600 entries over 15 categories at only
// 20 date-times, so that most of a category's entries share a date-time with
// others of it, at prices whose single-precision sums depend on the order
// they are added in (2^24 takes no 1 added after it). Two more, of category
// "Drinks", hold one moment in two stored forms (24:00 of one day and 00:00
// of the next). False when the file could not be written.
bool writeEntriesWithTiedDateTimes(const QString &fileName);

// A float's bits: two sums are the very same float only if these are equal.
quint32 bitsOf(float value);
