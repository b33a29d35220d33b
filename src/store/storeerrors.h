// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

class QSqlError;

// How the store tells SQLite's failures apart, by primary result code.
namespace StoreErrors {

// Whether a statement failed because of the file (locked by another
// program, the disk full, unreadable, read-only) rather than because the
// file refused the data (a constraint, a table that already exists).
bool isFileFailure(const QSqlError &error);
// Whether it failed only because another connection holds the file.
bool isBusy(const QSqlError &error);

} // namespace StoreErrors
