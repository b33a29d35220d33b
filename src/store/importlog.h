// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

class DatabaseManager;

// The imports that wrote entries, and the fingerprint of every entry each
// wrote, kept in the file's tables ImportLog and ImportedEntry: so that an
// import recognises what an earlier one brought in, and so that an import
// can be taken back whole. Entries typed by hand have no fingerprint.
class ImportLog
{
public:
    // `store` outlives this object.
    explicit ImportLog(DatabaseManager &store);

    struct Import
    {
        int id = 0;
        QDateTime importedAt;
        QString fileName;
        int entries = 0;
    };
    // Every recorded import, newest first.
    QList<Import> imports();

    // The fingerprints of the imported entries that are still in the file.
    QSet<QString> knownFingerprints();

    // Inside the caller's transaction: the SNo of the entry that the last
    // insert wrote.
    int lastEntryId();
    // Inside the caller's transaction: records an import of `fileName` at
    // `when` that wrote the entries `entryIds`, each with the fingerprint
    // of the same index. The import's id, or 0 when it could not be written.
    int record(const QString &fileName, const QDateTime &when, const QList<int> &entryIds,
               const QStringList &fingerprints);

    // Removes the entries of import `id` and its record, fingerprints
    // included, in one transaction; the catalogue and the places keep their
    // counts. How many entries were removed; nothing for an unknown id or
    // a failure (*failure then says why, empty for an unknown id).
    std::optional<int> undo(int id, QString *failure = nullptr);

private:
    DatabaseManager &store;
};
