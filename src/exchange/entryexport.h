// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "databasemanager.h"

#include <QString>

// Writes every stored entry into a CSV or QIF file, newest first, as
// GetAllEntries() gives them. The file appears whole or not at all: it is
// written beside its place and moved there once complete, so a failure or
// a cancelled export leaves whatever was there before.
class EntryExport
{
public:
    struct Outcome
    {
        bool written = false;
        int exported = 0;
        QString failure;
    };
    // The format is the file name's: .csv or .qif, in any case. `progress`
    // hears how many entries are written of how many, and cancels by
    // returning false.
    static Outcome write(DatabaseManager &store, const QString &fileName,
                         const DatabaseManager::Progress &progress = {});
    // The same for the entries given, in their order (the results of a
    // search, say); they stay the caller's.
    static Outcome write(const QList<Entry *> &entries, const QString &fileName,
                         const DatabaseManager::Progress &progress = {});

    // "Exported 1234 entries to FILE"
    static QString summary(const QString &fileName, int exported);
};
