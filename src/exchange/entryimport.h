// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "databasemanager.h"
#include "entryfilecontents.h"
#include "qifformat.h"

#include <QList>
#include <QString>

// Brings the entries of a CSV or QIF file into the store, all or nothing:
// the whole file is read and checked first (read()), and only a file
// without a problem is written (write()), in one transaction through the
// store's AddEntry, as the new-entry page adds an entry.
class EntryImport
{
public:
    // Reads and checks the file; nothing is written. The format is the
    // file name's: .csv, .qif, or .ofx, .qfx and .qbo, in any case. QIF dates read in
    // `dateOrder` when it is given, whatever the file seems to say; the
    // text in `encoding` when it is given (see QifFormat::read()).
    static EntryFileContents read(const QString &fileName,
                                  std::optional<QifFormat::DateOrder> dateOrder = std::nullopt,
                                  std::optional<TextEncoding::Kind> encoding = std::nullopt);

    struct Outcome
    {
        bool written = false;
        int added = 0;
        QString failure;
    };
    // Adds the entries in one transaction: first every category that table
    // Category lacks (AddCategory), then the entries, oldest first, so that
    // each item's last price is that of its newest entry; entries of the
    // same moment keep the file's order. `progress` hears how many entries
    // are written of how many, and cancels the whole import by returning
    // false. Either every entry is stored or none is.
    static Outcome write(DatabaseManager &store, const QList<EntryFileContents::LineEntry> &entries,
                         const DatabaseManager::Progress &progress = {});

    // "Imported 1200 entries from FILE; skipped 34 (income 30, transfers 4)"
    static QString summary(const QString &fileName, const EntryFileContents &contents, int added);
};
