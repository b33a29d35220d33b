// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "csvmapping.h"
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
    // text in `encoding` when it is given (see QifFormat::read()). A CSV
    // whose header is not Ledgerly's own is read through `mapping` (see
    // MappedCsvReader), and refused without one; `encoding` and
    // `dateOrder`, when given, then win over the mapping's.
    static EntryFileContents read(const QString &fileName,
                                  std::optional<QifFormat::DateOrder> dateOrder = std::nullopt,
                                  std::optional<TextEncoding::Kind> encoding = std::nullopt,
                                  const std::optional<CsvMapping> &mapping = std::nullopt);
    // The bytes of a file that may be imported, or nothing with the problem
    // in *contents (no such file, too large).
    static std::optional<QByteArray> readBytes(const QString &fileName, EntryFileContents *contents);

    // Gives every entry its fingerprint: its source id (an OFX account and
    // FITID) or else its stored date-time, amount, item and place, with
    // the number of entries before it in the file that have the same, so
    // that two identical records of one file stay two. Unless
    // `allowDuplicates`, then takes out the entries whose fingerprint an
    // earlier import of a file remembers, and counts them
    // (skippedDuplicates).
    static void recognise(DatabaseManager &store, EntryFileContents &contents, bool allowDuplicates = false);

    // Gives every entry without a category, or in "Others", the category
    // of the first rule (see Rules) that matches its item or place, and
    // counts them (categorisedByRules). A category the file gives is kept.
    static void categorise(DatabaseManager &store, EntryFileContents &contents);

    struct Outcome
    {
        bool written = false;
        int added = 0;
        QString failure;
        // The import's record (see ImportLog), 0 when none was made.
        int importId = 0;
    };
    // Adds the entries in one transaction: first every category that table
    // Category lacks (AddCategory), then the entries, oldest first, so that
    // each item's last price is that of its newest entry; entries of the
    // same moment keep the file's order. `progress` hears how many entries
    // are written of how many, and cancels the whole import by returning
    // false. Either every entry is stored or none is. With a `fileName`,
    // an import that writes any entry is recorded, with the fingerprint of
    // each (see recognise()), in the same transaction.
    static Outcome write(DatabaseManager &store, const QList<EntryFileContents::LineEntry> &entries,
                         const DatabaseManager::Progress &progress = {}, const QString &fileName = QString());

    // "Imported 1200 entries from FILE; skipped 34 (income 30, transfers 4)",
    // and "; categorised by rules 812" after it when a rule gave any entry
    // its category.
    static QString summary(const QString &fileName, const EntryFileContents &contents, int added);
};
